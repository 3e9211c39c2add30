#ifndef MARLUNE_GRAMMAR_MODEL_CONDITIONAL_PRODUCTION_H_
#define MARLUNE_GRAMMAR_MODEL_CONDITIONAL_PRODUCTION_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/grammar/model/attribute_key.h"
#include "marlune/grammar/model/generic_production.h"
#include "marlune/grammar/model/new_production.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// Several productions, one of which is chosen at each occurrence by the values of its attributes.
class MARLUNE_API ConditionalProduction : public GenericProduction {
 public:
  using Signature = std::vector<std::shared_ptr<AttributeKey>>;
  using Expansion = std::pair<std::shared_ptr<const std::string>, std::shared_ptr<NewProduction>>;

  // From a dictionary with "_signature", "_expansions" and optionally "_delimiter". A value of the
  // wrong kind leaves its field absent; anything but a dictionary leaves all absent. Throws
  // GrammarError when an AttributeKey cannot be read.
  static std::shared_ptr<ConditionalProduction> initFromPlist(const Value& plist);
  static std::shared_ptr<ConditionalProduction> instanceFromPlist(const Value& plist);

  Kind kind() const override { return Kind::conditional; }
  const NewProduction* _productionFor(const SimpleSlotSequence* occurrence,
                                      std::uint64_t& steps) const override;

  const std::optional<std::string>& delimiter() const { return _delimiter; }
  const std::optional<Signature>& signature() const { return _signature; }
  const std::optional<std::vector<Expansion>>& expansions() const { return _expansions; }

  // The key of an occurrence: the signature's values, without absent ones, joined by the delimiter.
  // A null occurrence has no values. Throws std::out_of_range for an AttributeKey outside the
  // occurrence. A key longer than any expansion's key and than 4 KiB is truncated, so that long
  // values take no memory; a truncated key still selects no expansion.
  std::string keyForOccurrence(const SimpleSlotSequence* occurrence) const;

  // nullptr when there is none.
  std::shared_ptr<NewProduction> expansionForKey(std::string_view key) const;

  std::string description() const override;

 protected:
  ConditionalProduction() = default;

 private:
  static std::vector<Expansion> _expansionsOf(const Dictionary& plist);

  std::optional<std::string> _delimiter;
  std::optional<Signature> _signature;
  std::optional<std::vector<Expansion>> _expansions;  // in the file's order
  std::size_t _longestKey = 4096;                     // in bytes
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_CONDITIONAL_PRODUCTION_H_
