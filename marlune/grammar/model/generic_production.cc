#include "marlune/grammar/model/generic_production.h"

#include "marlune/util/tq_utils.h"

namespace marlune {

// Both messages name CompoundSlot, not this class: authors search logs for this exact text.

std::shared_ptr<GenericProduction> GenericProduction::initFromPlist(const Value&) {
  TQUtils::log("ERROR: 'initFromPlist' method called on CompoundSlot, which is an abstract class.");
  return nullptr;
}

std::shared_ptr<GenericProduction> GenericProduction::instanceFromPlist(const Value&) {
  TQUtils::log(
      "ERROR: 'instanceFromPlist' method called on CompoundSlot, which is an abstract class.");
  return nullptr;
}

}  // namespace marlune
