#ifndef MARLUNE_TESTS_REFERENCE_REFERENCE_GRAMMAR_H_
#define MARLUNE_TESTS_REFERENCE_REFERENCE_GRAMMAR_H_

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/platform/value.h"
#include "marlune/util/format.h"
#include "marlune/util/utf16.h"

// The rewriting grammar in its shortest form: copies everything and caches nothing, so that its
// correctness is easy to see. Works on its own structures, read from a grammar file's tree, and
// writes the lines that the stage writes without its trace into an array.
namespace marlune::reference {

// Thrown when a case takes more steps, passes or words than the plain form can handle.
struct Overrun {};

// An attribute's value: a plist value, or a reference to an attribute of a matched slot.
struct Attribute {
  std::string name;
  Value value;
  std::optional<std::int32_t> keyIndex;
  std::string keyName;
};

struct Cell {
  int type = 0;  // 0 wildcard, 1 blank, 2 literal
  std::vector<Attribute> attributes;

  const Value* find(std::string_view name) const {
    for (const Attribute& each : attributes) {
      if (each.name == name) return &each.value;
    }
    return nullptr;
  }
  void set(const std::string& name, const Value& value) {
    for (Attribute& each : attributes) {
      if (each.name == name) {
        each.value = value;
        return;
      }
    }
    attributes.push_back({name, value, {}, ""});
  }
};

struct Slot {
  char kind = 's';  // simple, or the marker of a compound slot
  Cell cell;
  std::vector<Slot> members;
};
using Slots = std::vector<Slot>;

template <typename Element>
std::vector<Element> from(const std::vector<Element>& all, std::size_t index) {
  return {all.begin() + static_cast<std::ptrdiff_t>(index), all.end()};
}
template <typename Element>
std::vector<Element> upTo(const std::vector<Element>& all, std::size_t index) {
  return {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(index)};
}
template <typename Element>
std::vector<Element> joined(std::vector<Element> one, const std::vector<Element>& two) {
  one.insert(one.end(), two.begin(), two.end());
  return one;
}

inline std::string textOf(const Value* value, std::string_view otherwise) {
  return value ? formatted("%@", {*value}) : std::string(otherwise);
}

inline std::string printed(const Cell& cell) {
  if (cell.type < 2) return cell.type == 0 ? "?" : "_E";
  return textOf(cell.find("firstTone"), "") + "(" + textOf(cell.find("pre"), "") + "[" +
         textOf(cell.find("content"), "_") + "]" + textOf(cell.find("post"), "") + ")" +
         textOf(cell.find("lastTone"), "");
}

inline std::string printed(const Slots& phrase) {
  std::string text;
  for (const Slot& slot : phrase) text += (text.empty() ? "" : ".") + printed(slot.cell);
  return text;
}

inline Cell literal(const Dictionary& fields) {
  Cell cell{2, {}};
  for (const auto& [name, value] : fields.entries()) {
    cell.attributes.push_back({*name, value, {}, ""});
  }
  return cell;
}

inline Cell cellFrom(const Value& plist) {
  if (const std::string* text = plist.asString()) {
    if (*text == "?") return {0, {}};
    if (*text == "_E") return {1, {}};
    return {2, {{"content", plist, {}, ""}}};
  }
  return plist.asDictionary() ? literal(*plist.asDictionary()) : Cell{};
}

inline Slot slotFrom(const Value& plist) {
  if (!plist.asArray()) return {'s', cellFrom(plist), {}};
  const std::vector<Value>& elements = plist.asArray()->elements();
  Slot slot{elements.at(0).asString()->at(0), {}, {}};
  for (const Value& member : from(elements, 1)) slot.members.push_back(slotFrom(member));
  return slot;
}

inline Slots slotsFrom(const Value& plist) {
  Slots slots;
  if (plist.asArray()) {
    for (const Value& element : plist.asArray()->elements()) slots.push_back(slotFrom(element));
  }
  return slots;
}

inline Slots reversed(Slots slots) {
  std::reverse(slots.begin(), slots.end());
  for (Slot& slot : slots) slot.members = reversed(slot.members);
  return slots;
}

inline Slots padded(Slots slots) {
  const auto isBlank = [](const Slot& slot) { return slot.kind == 's' && slot.cell.type == 1; };
  const bool needsFirst = slots.empty() || !isBlank(slots.front());
  const bool needsLast = slots.size() < 2 || !isBlank(slots.back());
  const Slot blank{'s', {1, {}}, {}};
  if (needsFirst) slots.insert(slots.begin(), blank);
  if (needsLast) slots.push_back(blank);
  return slots;
}

struct Production {
  std::vector<std::int32_t> indices;
  std::vector<Cell> overlays;
};

struct Rule {
  std::string name;
  std::int32_t order = 0;
  bool repeat = false;
  std::optional<Slots> significant;
  Slots before, behind;
  enum { none, plain, conditional } kind = none;
  Production production;             // not conditional
  std::vector<Attribute> signature;  // conditional; uses only keyIndex and keyName
  std::string delimiter;
  std::map<std::string, Production> expansions;
};

struct Part {
  std::string name;
  std::int32_t order = 0;
  std::optional<Rule> rule;
  std::vector<Part> subparts;  // in the order in which they run
};

inline Attribute keyFrom(const std::string& name, const Value& plist) {
  const Dictionary& fields = *plist.asDictionary();
  return {name, Value::string(""), fields.valueForKey("_index").integerValue(),
          *fields.valueForKey("_attribute").asString()};
}

inline Production productionFrom(const Value& plist) {
  Production production;
  if (!plist.asArray()) return production;
  for (const Value& entry : plist.asArray()->elements()) {
    if (entry.asString()) {
      production.indices.push_back(-1);
      production.overlays.push_back({2, {{"content", entry, {}, ""}}});
    } else if (entry.asDictionary()) {
      const Value index = entry.asDictionary()->valueForKey("_index");
      if (!index.isNumber()) break;
      Cell overlay{2, {}};
      for (const auto& [name, value] : entry.asDictionary()->entries()) {
        if (*name == "_index") continue;
        overlay.attributes.push_back(value.asDictionary() ? keyFrom(*name, value)
                                                          : Attribute{*name, value, {}, ""});
      }
      production.indices.push_back(index.integerValue());
      production.overlays.push_back(overlay);
    }
  }
  return production;
}

inline Rule ruleFrom(const Dictionary& fields, const std::string& name, std::int32_t order) {
  Rule rule;
  rule.name = name;
  rule.order = order;
  rule.repeat = fields.valueForKey("_repeat").integerValue() != 0;
  const Value& left = fields.valueForKey("_lhs");
  if (left.asDictionary()) {
    const Dictionary& sides = *left.asDictionary();
    if (sides.contains("_significantSlots")) {
      rule.significant = slotsFrom(sides.valueForKey("_significantSlots"));
    }
    rule.before = slotsFrom(sides.valueForKey("_preContext"));
    rule.behind = slotsFrom(sides.valueForKey("_postContext"));
  }
  const Value& right = fields.valueForKey("_rhs");
  if (right.asArray()) {
    rule.kind = Rule::plain;
    rule.production = productionFrom(right);
  } else if (right.asDictionary()) {
    rule.kind = Rule::conditional;
    const Dictionary& choice = *right.asDictionary();
    rule.delimiter =
        textOf(choice.contains("_delimiter") ? &choice.valueForKey("_delimiter") : nullptr, " ");
    if (const auto& signature = choice.valueForKey("_signature").asArray()) {
      for (const Value& key : signature->elements()) rule.signature.push_back(keyFrom("", key));
    }
    if (const auto& expansions = choice.valueForKey("_expansions").asDictionary()) {
      for (const auto& [key, value] : expansions->entries()) {
        rule.expansions[*key] = productionFrom(value);
      }
    }
  }
  return rule;
}

// The value with every insert directive in its dictionaries expanded. REQUIRES: no circles.
inline Value expanded(const Value& value, const Value& root) {
  const std::string* text = value.asString();
  if (text && text->starts_with("#insert")) {
    std::string path = text->substr(text->find(' ') + 1);
    std::string order;
    if (const auto blank = path.find(' '); blank != std::string::npos) {
      order = path.substr(blank + 1);
      path.resize(blank);
    }
    Value chunk = root;
    for (std::size_t at = 0; at != std::string::npos;) {
      const std::size_t dot = path.find('.', at);
      chunk = Value(chunk.asDictionary()->valueForKey(path.substr(at, dot - at)));
      at = dot == std::string::npos ? dot : dot + 1;
    }
    Value copy = expanded(chunk, root);
    if (!order.empty() && Value::string(order).integerValue() >= 0 && copy.asDictionary()) {
      copy.asDictionary()->setValueForKey(Value::integer(Value::string(order).integerValue()),
                                          "_order");
    }
    return copy;
  }
  if (!value.asDictionary()) return value;
  auto entries = std::make_shared<Dictionary>();
  for (const auto& [key, nested] : value.asDictionary()->entries()) {
    entries->setValueForKey(expanded(nested, root), *key);
  }
  return Value::dictionary(entries);
}

inline Part partFrom(const Dictionary& fields, const std::string& name) {
  Part part;
  part.name = name;
  part.order = fields.valueForKey("_order").integerValue();
  if (fields.contains("_lhs")) {
    part.rule = ruleFrom(fields, name, part.order);
    return part;
  }
  for (const auto& [key, value] : fields.entries()) {
    if (*key != "_order" && value.asDictionary()) {
      part.subparts.push_back(partFrom(*value.asDictionary(), *key));
    }
  }
  std::sort(part.subparts.begin(), part.subparts.end(), [](const Part& one, const Part& two) {
    return std::pair(one.order, one.name) < std::pair(two.order, two.name);
  });
  return part;
}

class Grammar {
 public:
  // The grammar under a top-level key of the file's tree, which is not changed.
  Grammar(const Value& file, const std::string& name)
      : _root(partFrom(*expanded(file, file).asDictionary()->valueForKey(name).asDictionary(),
                       "ROOT")) {}

  std::vector<std::string> lines;

  // The steps that a case may take before it is an Overrun.
  long mostSteps = 200000;
  std::size_t mostSlots = 60;
  int mostPasses = 60;

  Slots applied(const std::vector<std::string>& words) {
    Slots phrase{{'s', {1, {}}, {}}};
    for (const std::string& word : words) phrase.push_back(slotFrom(Value::string(word)));
    phrase.push_back({'s', {1, {}}, {}});
    _stepsLeft = mostSteps;
    return _applied(_root, phrase);
  }

  // The same, with only the lines of this phrase; nothing when it would take too many steps.
  std::optional<Slots> appliedAlone(const std::vector<std::string>& words) {
    lines.clear();
    try {
      return applied(words);
    } catch (const Overrun&) {
      return std::nullopt;
    }
  }

  static std::vector<std::string> words(const Slots& phrase) {
    std::vector<std::string> words;
    for (const Slot& slot : phrase) {
      const Value* content = slot.cell.find("content");
      if (slot.cell.type == 2 && content) words.push_back(textOf(content, ""));
    }
    return words;
  }

  void restartSteps() { _stepsLeft = mostSteps; }

  bool matches(Slots pattern, Slots target) {
    if (--_stepsLeft < 0) throw Overrun();
    if (pattern.empty()) return true;
    if (target.empty()) return false;
    const Slot slot = pattern.front();
    if (slot.kind != '*') {
      return _matchesFirst(slot, target) && matches(from(pattern, 1), from(target, 1));
    }
    for (std::size_t n = 0; n == 0 || !slot.members.empty(); ++n) {
      if (slot.members.size() * n > target.size()) return false;
      Slots repeated;
      for (std::size_t i = 0; i < n; ++i) repeated = joined(repeated, slot.members);
      if (matches(joined(repeated, from(pattern, 1)), target)) return true;
    }
    return false;
  }

 private:
  using Occurrence = std::optional<Slots>;  // absent: it does not fit
  struct Fault {
    std::string why;
  };

  bool _matchesFirst(const Slot& slot, const Slots& target) {
    if (slot.kind == 's') return _matchesCell(slot.cell, target.front().cell);
    if (slot.kind == '*') {
      lines.push_back("ERROR: 'matches' method called on KleeneSlot.");
      return false;
    }
    for (const Slot& member : slot.members) {
      if (_matchesFirst(member, target)) return slot.kind == '+';
    }
    return slot.kind == '~';
  }

  bool _matchesCell(const Cell& pattern, const Cell& target) {
    if (pattern.type == 1) return target.type == 1;
    if (pattern.type == 0) return target.type != 1;
    for (const Attribute& each : pattern.attributes) {
      if (!_matchesAttribute(each, target)) return false;
    }
    return true;
  }

  using Cut = std::optional<std::string_view> (*)(std::string_view, std::size_t);
  static std::optional<std::string> _cut(const std::string* content, std::size_t length, Cut cut) {
    if (!content) return std::nullopt;
    const auto characters = cut(*content, length);
    if (!characters) return std::nullopt;
    return std::string(*characters);
  }

  bool _matchesAttribute(const Attribute& attribute, const Cell& target) {
    const std::string& name = attribute.name;
    const std::string* value = attribute.value.asString();
    const Value* held = target.find("content");
    const std::string* content = held ? held->asString() : nullptr;
    const std::size_t length = utf16Length(name) - std::min<std::size_t>(2, name.size());
    if (name.starts_with("#") && name.ends_with("-")) {
      const auto start = _cut(content, length, &utf16Prefix);
      lines.push_back(formatted("Prefix! (unsigned long)chars = %lu   This: %@    Other: %@",
                                {length, attribute.value, start}));
      if (!value || start != *value) return false;
      lines.push_back("MATCH!");
      return true;
    }
    if (name.starts_with("-") && name.ends_with("#")) {
      return value && _cut(content, length, &utf16Suffix) == *value;
    }
    const Value* theirs = target.find(name);
    return attribute.value.equals(theirs ? *theirs : Value::string(""));
  }

  std::vector<std::int32_t> _indices(const Rule& rule, const Slots& target) {
    std::vector<std::int32_t> candidates, indices;
    if (!rule.significant) return indices;
    for (std::size_t i = 0; i < target.size(); ++i) {
      if (matches(*rule.significant, from(target, i))) {
        candidates.push_back(static_cast<std::int32_t>(i));
      }
    }
    for (const std::int32_t index : candidates) {
      const auto i = static_cast<std::size_t>(index);
      const std::size_t end = i + rule.significant->size();
      const bool pre = matches(reversed(rule.before), reversed(upTo(target, i)));
      const bool post = matches(rule.behind, end <= target.size() ? from(target, end) : Slots());
      if (pre && post) indices.push_back(index);
    }
    return indices;
  }

  const Value* _valueOf(const Attribute& key, const Occurrence& occurrence) {
    if (!occurrence) return nullptr;
    const std::int32_t index = *key.keyIndex;
    if (index < 0 || static_cast<std::size_t>(index) >= occurrence->size()) {
      throw Fault{
          formatted("attribute key's index %i outside the %lu slots", {index, occurrence->size()})};
    }
    return (*occurrence)[static_cast<std::size_t>(index)].cell.find(key.keyName);
  }

  const Production* _productionFor(const Rule& rule, const Occurrence& occurrence) {
    if (rule.kind != Rule::conditional)
      return rule.kind == Rule::plain ? &rule.production : nullptr;
    std::string signature;
    bool isFirst = true;
    for (const Attribute& key : rule.signature) {
      const Value* value = _valueOf(key, occurrence);
      if (!value) continue;
      signature += (isFirst ? "" : rule.delimiter) + textOf(value, "");
      isFirst = false;
    }
    const auto found = rule.expansions.find(signature);
    return found == rule.expansions.end() ? nullptr : &found->second;
  }

  Slots _replacement(const Production& production, const Occurrence& occurrence) {
    Slots base;
    for (const std::int32_t index : production.indices) {
      const std::size_t count = occurrence ? occurrence->size() : 0;
      if (index >= 0 && static_cast<std::size_t>(index) >= count) {
        throw Fault{formatted("production's index %i outside the %lu slots of the occurrence",
                              {index, count})};
      }
      base.push_back(index < 0 ? Slot() : (*occurrence)[static_cast<std::size_t>(index)]);
    }
    std::vector<Cell> overlays;
    for (const Cell& overlay : production.overlays) {
      Cell fresh;
      for (const Attribute& each : overlay.attributes) {
        const Value* found = each.keyIndex ? _valueOf(each, occurrence) : &each.value;
        fresh.set(each.name, found ? *found : Value::string(""));
      }
      overlays.push_back(fresh);
    }
    for (std::size_t i = 0; i < std::min(base.size(), overlays.size()); ++i) {
      base[i].cell = _overlayed(overlays[i], base[i].cell);
    }
    return base;
  }

  Cell _overlayed(const Cell& overlay, const Cell& under) {
    Cell result{2, under.attributes};
    for (const Attribute& each : overlay.attributes) {
      result.set(each.name, each.value);
    }
    return result;
  }

  void _replace(const Rule& rule, Slots& target, std::vector<std::int32_t>& indices,
                std::size_t which) {
    const std::size_t length = rule.significant->size();
    if (indices[which] < 0) throw Fault{"it has moved before the phrase's start"};
    const auto at = static_cast<std::size_t>(indices[which]);
    Occurrence occurrence;
    if (at + length <= target.size()) occurrence = upTo(from(target, at), length);
    const Production* production = _productionFor(rule, occurrence);
    if (!production) return;
    const Slots replacement = _replacement(*production, occurrence);
    const Slots after = at + length <= target.size() ? from(target, at + length) : Slots();
    target = joined(joined(upTo(target, at), replacement), after);
    if (target.size() > mostSlots) throw Overrun();
    for (std::size_t i = which; i < indices.size(); ++i) {
      indices[i] +=
          static_cast<std::int32_t>(replacement.size()) - static_cast<std::int32_t>(length);
    }
  }

  Slots _replaced(const Rule& rule, const Slots& phrase) {
    Slots target = padded(phrase);
    std::vector<std::int32_t> indices = _indices(rule, target);
    for (std::size_t i = 0; i < indices.size(); ++i) {
      try {
        _replace(rule, target, indices, i);
      } catch (const Fault& fault) {
        lines.push_back(
            formatted("ERROR: The occurrence at %i stays as it is: %s.", {indices[i], fault.why}));
      }
    }
    return target;
  }

  // All properties of a phrase; a cell's attributes are in no particular order.
  static std::string _state(const Slots& phrase) {
    std::string state;
    for (const Slot& slot : phrase) {
      std::set<std::string> attributes;
      for (const Attribute& each : slot.cell.attributes) {
        attributes.insert(formatted("%@=%@:%@;", {each.name, each.value.kindName(), each.value}));
      }
      state += std::to_string(slot.cell.type) + "{";
      for (const std::string& attribute : attributes) state += attribute;
      state += "}";
    }
    return state;
  }

  Slots _applied(const Rule& rule, const Slots& phrase) {
    Slots current = phrase;
    std::set<std::string> earlier;
    for (int passes = 1;; ++passes) {
      const Slots before = padded(current);
      current = _replaced(rule, before);
      if (!rule.repeat) return current;
      current = padded(current);
      if (matches(before, current)) return current;
      earlier.insert(_state(before));
      if (earlier.contains(_state(current))) {
        lines.push_back(
            formatted("ERROR: The repeating rule '%@' stopped after %i passes: the "
                      "phrase came back to what it had been.",
                      {rule.name, passes}));
        return current;
      }
      if (passes == mostPasses) throw Overrun();
    }
  }

  Slots _applied(const Part& part, const Slots& phrase) {
    if (part.rule) return _applied(*part.rule, phrase);
    Slots current = phrase;
    for (const Part& subpart : part.subparts) current = _applied(subpart, current);
    return current;
  }

  Part _root;
  long _stepsLeft = 0;
};

}  // namespace marlune::reference

#endif  // MARLUNE_TESTS_REFERENCE_REFERENCE_GRAMMAR_H_
