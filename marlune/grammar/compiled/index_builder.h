#ifndef MARLUNE_GRAMMAR_COMPILED_INDEX_BUILDER_H_
#define MARLUNE_GRAMMAR_COMPILED_INDEX_BUILDER_H_

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "marlune/grammar/compiled/tables.h"

namespace marlune {

// Indexes the rules of a compiled grammar by the features that a phrase needs for them to apply.
class IndexBuilder {
 public:
  // The tables must outlive the builder.
  explicit IndexBuilder(CompiledTables& tables) : _tables(tables) {}

  // Fills in the index, and the rules' masks and anchors. `isIdle` has a true value for every rule
  // that does nothing; such a rule is not indexed, and the phrase is padded without it.
  void file(const std::vector<char>& isIdle);

 private:
  using Element = CompiledPatterns::Element;
  using Features = std::vector<std::uint64_t>;

  void _countFeatures(const Element& element);
  void _file(std::uint32_t number);
  Features _triggerOf(const Element& element) const;
  std::size_t _costOf(const Features& features) const;
  template <typename Visit>
  void _forEachElement(const CompiledRule& rule, Visit visit) const;

  CompiledTables& _tables;
  std::unordered_map<std::uint64_t, std::uint32_t> _frequencies;  // for each feature, the number of
                                                                  // uses in rules
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_INDEX_BUILDER_H_
