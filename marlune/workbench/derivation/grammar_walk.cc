#include "marlune/workbench/derivation/grammar_walk.h"

#include <algorithm>

#include "marlune/grammar/model/cell.h"
#include "marlune/grammar/model/directory.h"
#include "marlune/grammar/model/rewriting_fault.h"
#include "marlune/workbench/derivation/captured_log.h"

namespace marlune {

namespace {

bool holdsAllOf(const Cell& cell, const AttributeDictionary& attributes) {
  return std::ranges::all_of(attributes.entries(), [&cell](const auto& attribute) {
    const AttributeValue* value = cell.valueForKey(*attribute.first);
    return value && value->equals(attribute.second);
  });
}

bool areEqual(const std::shared_ptr<Slot>& one, const std::shared_ptr<Slot>& two) {
  const auto& cell = one->_cellOrNull();
  const auto& other = two->_cellOrNull();
  if (!cell || !other || !cell->attributes() || !other->attributes()) return one == two;
  return cell->type() == other->type() &&
         cell->attributes()->count() == other->attributes()->count() &&
         holdsAllOf(*cell, *other->attributes());
}

bool arePhrasesEqual(const SimpleSlotSequence& one, const SimpleSlotSequence& two) {
  return std::ranges::equal(one.slots(), two.slots(), areEqual);
}

PhrasePointer padded(const SimpleSlotSequence& phrase) {
  const auto copy = SimpleSlotSequence::slotSequenceWithArray(phrase.slots());
  copy->pad();
  return copy;
}

}  // namespace

GrammarWalk::GrammarWalk(const GrammarPart& grammar, PhrasePointer phrase)
    : _before(std::move(phrase)), _current(_before) {
  if (grammar.kind() == GrammarPart::Kind::rule) {
    _applyRule(static_cast<const Rule&>(grammar), grammar.name() ? *grammar.name() : "ROOT");
  } else {
    _apply(grammar, "");
  }
}

void GrammarWalk::_apply(const GrammarPart& part, const std::string& path) {
  if (part.kind() == GrammarPart::Kind::rule) _applyRule(static_cast<const Rule&>(part), path);
  if (part.kind() != GrammarPart::Kind::directory) return;
  for (const auto& subpart : static_cast<const Directory&>(part).orderedSubparts()) {
    _apply(*subpart, path + (path.empty() ? "" : ".") + *subpart->name());
  }
}

void GrammarWalk::_applyRule(const Rule& rule, const std::string& path) {
  const CapturedLog log;
  RewritingFault fault;
  const PhrasePointer before = padded(*_current);
  const PhrasePointer after = rule.appliedTo(*before);
  _current = arePhrasesEqual(*before, *after) ? before : after;
  _turns.push_back({path, &rule, before, _current, log.lines(), std::move(fault.failure)});
}

}  // namespace marlune
