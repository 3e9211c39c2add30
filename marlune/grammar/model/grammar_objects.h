#ifndef MARLUNE_GRAMMAR_MODEL_GRAMMAR_OBJECTS_H_
#define MARLUNE_GRAMMAR_MODEL_GRAMMAR_OBJECTS_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/grammar/file/packed_list.h"
#include "marlune/grammar/model/grammar_part.h"
#include "marlune/grammar/model/rule.h"
#include "marlune/platform/value.h"

namespace marlune {

// The objects of a grammar. They take many times the memory of its compiled form, which does their
// work; so they are made when somebody looks at them, and without a line, since the grammar's lines
// were written when it was loaded. What has been looked at stays.
class GrammarObjects {
 public:
  // Some rules, each with its number. Rules are numbered in the order of application, from 0.
  using Rules = std::vector<std::pair<std::uint32_t, std::shared_ptr<const Rule>>>;

  // REQUIRES: the root is not null.
  explicit GrammarObjects(std::shared_ptr<GrammarPart> root) : _root(std::move(root)) {}

  // Those of the grammar that the dot-notation name selects in the tree, once somebody looks at
  // them. Rules that work meanwhile can be there already, in ascending order.
  GrammarObjects(std::shared_ptr<const PackedList> tree, std::string_view name, Rules rules)
      : _rules(std::move(rules)), _tree(std::move(tree)), _name(name) {}

  // Never null.
  const std::shared_ptr<GrammarPart>& root();

  // Shared with the caller: a line that the rule writes may have somebody look at the grammar, and
  // the rule replaced by the root's.
  std::shared_ptr<const Rule> rule(std::uint32_t number);

  // The part that the name selects; nullptr when that is no dictionary. GrammarError when the
  // grammar is broken.
  static std::shared_ptr<GrammarPart> rootIn(const Value& tree, std::string_view name);

 private:
  static void _addRules(const std::shared_ptr<GrammarPart>& part, Rules& rules);

  std::shared_ptr<GrammarPart> _root;  // null until somebody looks
  Rules _rules;                        // those that are there; all, or none, when there is a root
  std::shared_ptr<const PackedList> _tree;  // null when there is a root
  std::string _name;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_GRAMMAR_OBJECTS_H_
