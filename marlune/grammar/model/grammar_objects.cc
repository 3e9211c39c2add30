#include "marlune/grammar/model/grammar_objects.h"

#include <algorithm>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/file/grammar_loader.h"
#include "marlune/grammar/file/insert_directive.h"
#include "marlune/grammar/model/directory.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

std::shared_ptr<GrammarPart> GrammarObjects::rootIn(const Value& tree, std::string_view name) {
  return GrammarError::within(name, [&] {
    return GrammarPart::instanceFromPlist(GrammarLoader::valueAtPath(piecesOf(name, '.'), tree));
  });
}

const std::shared_ptr<GrammarPart>& GrammarObjects::root() {
  if (_root) return _root;
  const TQUtils::Silence silence;
  auto root = rootIn(_tree->unpacked(), _name);
  _rules = {};  // the root owns them now
  _root = std::move(root);
  _tree = nullptr;
  return _root;
}

std::shared_ptr<const Rule> GrammarObjects::rule(std::uint32_t number) {
  const auto find = [&] {
    return std::ranges::lower_bound(_rules, number, {}, &Rules::value_type::first);
  };
  auto place = find();
  if (place == _rules.end() || place->first != number) {
    Rules all;
    _addRules(root(), all);
    _rules = std::move(all);
    place = find();
  }
  return place->second;
}

void GrammarObjects::_addRules(const std::shared_ptr<GrammarPart>& part, Rules& rules) {
  if (part->kind() == GrammarPart::Kind::rule) {
    const auto number = static_cast<std::uint32_t>(rules.size());
    rules.emplace_back(number, std::static_pointer_cast<const Rule>(part));
  } else if (part->kind() == GrammarPart::Kind::directory) {
    for (const auto& each : static_cast<const Directory&>(*part).orderedSubparts()) {
      _addRules(each, rules);
    }
  }
}

}  // namespace marlune
