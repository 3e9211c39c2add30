#ifndef MARLUNE_GRAMMAR_GRAMMAR_OBJECTS_H_
#define MARLUNE_GRAMMAR_GRAMMAR_OBJECTS_H_

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/grammar/grammar_file.h"
#include "marlune/grammar/grammar_part.h"
#include "marlune/grammar/packed_list.h"
#include "marlune/grammar/rule.h"

namespace marlune {

// The objects of a grammar. They take many times the memory of its compiled form, which does their
// work; so they are let go, and read again, without a line, when somebody looks at them. What has
// been looked at stays.
class GrammarObjects {
 public:
  // Made by hand: not to be let go. REQUIRES: the root is not null.
  explicit GrammarObjects(std::shared_ptr<GrammarPart> root) : _root(std::move(root)) {}

  // Those of the grammar that the dot-notation name selects in the tree; nullptr when that is no
  // dictionary. GrammarError when the grammar is broken.
  static std::shared_ptr<GrammarObjects> initFromPlist(const Value& tree, std::string_view name);

  // Never null.
  const std::shared_ptr<GrammarPart>& root();

  // Rules are numbered in the order in which they are applied, from 0. Shared with the caller: a
  // line that the rule writes may have somebody look at the grammar, and the rule replaced by the
  // root's.
  std::shared_ptr<const Rule> rule(std::uint32_t number);

  // Lets go of the objects, but for the rules of these numbers, in ascending order. `tree` is what
  // they were read from, as it was then. REQUIRES: nobody holds the root.
  void letGo(std::shared_ptr<const PackedList> tree, std::span<const std::uint32_t> butRules);

 private:
  using Rules = std::vector<std::pair<std::uint32_t, std::shared_ptr<const Rule>>>;

  static void _addRules(const std::shared_ptr<GrammarPart>& part, Rules& rules);
  static std::shared_ptr<GrammarPart> _rootIn(const Value& tree, std::string_view name);

  std::shared_ptr<GrammarPart> _root;  // null while let go
  Rules _rules;  // those asked for so far: all when there is a root, else those kept

  std::string _name;
  std::shared_ptr<const PackedList> _tree;  // null before the objects are let go
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_GRAMMAR_OBJECTS_H_
