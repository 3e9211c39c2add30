#ifndef MARLUNE_GRAMMAR_MODEL_GENERIC_PRODUCTION_H_
#define MARLUNE_GRAMMAR_MODEL_GENERIC_PRODUCTION_H_

#include <cstdint>
#include <memory>

#include "marlune/platform/value.h"
#include "marlune/platform/visibility.h"
#include "marlune/util/describable.h"

namespace marlune {

class NewProduction;
class SimpleSlotSequence;

// The right-hand side of a rule, which replaces each occurrence of its significant slots. Abstract.
class MARLUNE_API GenericProduction : public Describable {
 public:
  enum class Kind : unsigned char { newProduction, conditional };

  // Abstract: log an error and return nullptr.
  static std::shared_ptr<GenericProduction> initFromPlist(const Value& plist);
  static std::shared_ptr<GenericProduction> instanceFromPlist(const Value& plist);

  virtual Kind kind() const = 0;

  // The production that makes the slots for an occurrence, which may be null; nullptr when the
  // occurrence stays unchanged. Valid as long as this production. Adds the work done to `steps`.
  // Throws std::out_of_range for an AttributeKey outside the occurrence.
  virtual const NewProduction* _productionFor(const SimpleSlotSequence* occurrence,
                                              std::uint64_t& steps) const = 0;

 protected:
  GenericProduction() = default;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_GENERIC_PRODUCTION_H_
