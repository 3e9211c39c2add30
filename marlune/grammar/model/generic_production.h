#ifndef MARLUNE_GRAMMAR_MODEL_GENERIC_PRODUCTION_H_
#define MARLUNE_GRAMMAR_MODEL_GENERIC_PRODUCTION_H_

#include <memory>

#include "marlune/platform/value.h"
#include "marlune/platform/visibility.h"
#include "marlune/util/describable.h"

namespace marlune {

// The right-hand side of a rule, which replaces each occurrence of its significant slots. Abstract;
// a production of an unknown kind replaces nothing.
class MARLUNE_API GenericProduction : public Describable {
 public:
  enum class Kind : unsigned char { other, newProduction, conditional };

  // Abstract: log an error and return nullptr.
  static std::shared_ptr<GenericProduction> initFromPlist(const Value& plist);
  static std::shared_ptr<GenericProduction> instanceFromPlist(const Value& plist);

  virtual Kind kind() const { return Kind::other; }

 protected:
  GenericProduction() = default;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_GENERIC_PRODUCTION_H_
