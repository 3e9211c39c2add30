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
// work, so they are made silently on demand and then kept. The grammar's lines were already logged
// when it was loaded.
class GrammarObjects {
 public:
  // Rules with their numbers. Rules are numbered in the order of application, from 0.
  using Rules = std::vector<std::pair<std::uint32_t, std::shared_ptr<const Rule>>>;

  // REQUIRES: the root is not null.
  explicit GrammarObjects(std::shared_ptr<GrammarPart> root) : _root(std::move(root)) {}

  // The grammar that the dot-notation name selects in the tree, made on demand. `rules` are those
  // that already exist, in ascending order.
  GrammarObjects(std::shared_ptr<const PackedList> tree, std::string_view name, Rules rules)
      : _rules(std::move(rules)), _tree(std::move(tree)), _name(name) {}

  // Never null.
  const std::shared_ptr<GrammarPart>& root();

  // Shared ownership: a log observer may access the grammar while the rule writes a line, which
  // replaces the rule by the root's.
  std::shared_ptr<const Rule> rule(std::uint32_t number);

  // The part that the name selects; nullptr when that is not a dictionary. Throws GrammarError when
  // the grammar is broken.
  static std::shared_ptr<GrammarPart> rootIn(const Value& tree, std::string_view name);

 private:
  static void _addRules(const std::shared_ptr<GrammarPart>& part, Rules& rules);

  std::shared_ptr<GrammarPart> _root;       // null until it is needed
  Rules _rules;                             // the existing rules; all or none when there is a root
  std::shared_ptr<const PackedList> _tree;  // null when there is a root
  std::string _name;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_GRAMMAR_OBJECTS_H_
