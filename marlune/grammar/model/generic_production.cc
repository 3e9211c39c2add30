#include "marlune/grammar/model/generic_production.h"

#include "marlune/util/tq_utils.h"

namespace marlune {

// Both messages have always named the slots' abstract class, and are searched for as they are.

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
