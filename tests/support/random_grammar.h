#ifndef MARLUNE_TESTS_SUPPORT_RANDOM_GRAMMAR_H_
#define MARLUNE_TESTS_SUPPORT_RANDOM_GRAMMAR_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/platform/value.h"

namespace marlune {

// Small grammar files and phrases made from a source of choices: a seed, or the bytes of a fuzzer.
// The vocabulary is tiny, so that rules apply to the phrases and interact. Every file is well
// formed: it loads, and its grammar is under "Main".
class RandomGrammar {
 public:
  explicit RandomGrammar(std::uint64_t seed) : _state(seed * 2 + 1) {}

  // Takes choices from the bytes; after the last byte, every choice is the first one.
  explicit RandomGrammar(std::string_view bytes) : _bytes(bytes), _usesBytes(true) {}

  // Prefix keys write two lines for every comparison; traces are easier to read without them.
  bool allowsPrefixKeys = true;

  Value file() {
    Entries root;
    Entries shared;
    shared.emplace_back("Rule", rule());
    shared.emplace_back("Group", _dictionary({{"Nested", directory(0)}, {"R", rule()}}));
    shared.emplace_back("Chain", _dictionary({{"_order", Value::integer(2)},
                                              {"Link", Value::string("#insert Shared.Rule 3")}}));
    root.emplace_back("Main", chance(8) ? rule() : directory(2));
    root.emplace_back("Shared", _dictionary(std::move(shared)));
    return _dictionary(std::move(root));
  }

  std::vector<std::string> phrase() {
    std::vector<std::string> words;
    for (std::size_t i = below(9); i > 0; --i) {
      words.push_back(chance(16) ? (chance(2) ? "?" : "_E") : word());
    }
    return words;
  }

  Value directory(int levels) {
    Entries parts;
    if (chance(2)) parts.emplace_back("_order", Value::integer(static_cast<int>(below(7)) - 2));
    if (chance(6)) parts.emplace_back("note", Value::string("no part"));
    for (std::size_t i = 1 + below(4); i > 0; --i) {
      parts.emplace_back("part" + std::to_string(below(9)), _part(levels));
    }
    return _dictionary(std::move(parts));
  }

  Value rule() {
    Entries fields;
    fields.emplace_back("_order", Value::integer(static_cast<int>(below(7)) - 2));
    Entries left;
    _significant = 1 + below(3);
    if (chance(30)) _significant = 0;
    if (chance(6)) {
      _significant = 1;
      left.emplace_back("_significantSlots", _array({_dictionary({{"g", Value::string("f")}})}));
    } else if (!chance(40)) {
      left.emplace_back("_significantSlots", slots(_significant, 2));
    }
    if (chance(3)) left.emplace_back("_preContext", slots(1 + below(2), 2));
    if (chance(3)) left.emplace_back("_postContext", slots(1 + below(2), 2));
    fields.emplace_back("_lhs", _dictionary(std::move(left)));
    if (!chance(40)) fields.emplace_back("_rhs", chance(3) ? conditional() : production());
    if (chance(4))
      fields.emplace_back("_repeat", _pick<Value>({Value::boolean(true), Value::integer(1),
                                                   Value::string("YES"), Value::string("2x")}));
    return _dictionary(std::move(fields));
  }

  Value slots(std::size_t count, int levels) {
    std::vector<Value> elements;
    for (; count > 0; --count) elements.push_back(slot(levels));
    return _array(std::move(elements));
  }

  Value slot(int levels) {
    if (levels > 0 && chance(3)) {
      std::vector<Value> elements{Value::string(_pick<std::string>({"+", "*", "~"}))};
      for (std::size_t i = chance(12) ? 0 : 1 + below(2); i > 0; --i) {
        elements.push_back(slot(levels - 1));
      }
      return _array(std::move(elements));
    }
    switch (below(10)) {
      case 0:
        return Value::string("?");
      case 1:
        return Value::string("_E");
      case 2:
      case 3:
        return patternCell();
      default:
        return Value::string(word());
    }
  }

  Value patternCell() {
    Entries attributes;
    for (std::size_t i = below(3); i > 0; --i) {
      const std::string name = attribute();
      attributes.emplace_back(name, Value::string(chance(4) ? "" : attributeValue(name)));
    }
    if (chance(4)) attributes.emplace_back("-xx#", Value::string(_pick<std::string>({"er", "ab"})));
    if (allowsPrefixKeys && chance(8)) {
      attributes.emplace_back(_pick<std::string>({"#xx-", "#ü-", "#-"}),
                              Value::string(_pick<std::string>({"üb", "a", ""})));
    }
    if (chance(12)) attributes.emplace_back("n", Value::integer(1));
    return _dictionary(std::move(attributes));
  }

  Value production() {
    std::vector<Value> entries;
    for (std::size_t i = below(4); i > 0; --i) {
      if (chance(3)) {
        entries.push_back(Value::string(word()));
      } else if (chance(30)) {
        entries.push_back(Value::integer(7));
      } else {
        entries.push_back(overlay());
      }
    }
    return _array(std::move(entries));
  }

  Value overlay() {
    Entries fields;
    if (!chance(30)) fields.emplace_back("_index", Value::integer(_index()));
    for (std::size_t i = below(3); i > 0; --i) {
      const std::string name = attribute();
      fields.emplace_back(name, chance(4) ? attributeKey() : Value::string(attributeValue(name)));
    }
    if (chance(16)) fields.emplace_back("n", Value::integer(static_cast<int>(below(2))));
    return _dictionary(std::move(fields));
  }

  Value attributeKey() {
    return _dictionary(
        {{"_index", Value::integer(_index())}, {"_attribute", Value::string(attribute())}});
  }

  Value conditional() {
    Entries fields;
    std::vector<Value> signature;
    for (std::size_t i = 1 + below(2); i > 0; --i) signature.push_back(attributeKey());
    if (!chance(20)) fields.emplace_back("_signature", _array(std::move(signature)));
    if (chance(2)) fields.emplace_back("_delimiter", Value::string(chance(2) ? "/" : ""));
    Entries expansions;
    for (std::size_t i = below(5); i > 0; --i) {
      std::string key = attributeValue(attribute());
      if (chance(3)) key += (chance(2) ? "/" : " ") + word();
      if (chance(5)) key.clear();
      expansions.emplace_back(key, chance(20) ? Value::string("no array") : production());
    }
    if (!chance(20)) fields.emplace_back("_expansions", _dictionary(std::move(expansions)));
    return _dictionary(std::move(fields));
  }

  std::string word() {
    return _pick<std::string>({"a", "b", "c", "ab", "über", "😀k", "twenty", "a b"});
  }
  // Few names, and few values of each: a rule that asks for an attribute runs only after one that
  // has set it to the same value.
  std::string attribute() { return _pick<std::string>({"content", "g", "g", "g", "post"}); }
  std::string attributeValue(std::string_view name) {
    if (name == "content" || chance(8)) return word();
    return _pick<std::string>({"f", "f", "m"});
  }

  // A choice among `count`; and whether a chance of one in `count` hits.
  std::size_t below(std::size_t count) { return static_cast<std::size_t>(_next() % count); }
  bool chance(std::size_t oneIn) { return below(oneIn) == oneIn - 1; }

 private:
  using Entries = std::vector<std::pair<std::string, Value>>;

  Value _part(int levels) {
    if (levels > 0 && chance(4)) return directory(levels - 1);
    if (levels > 0 && chance(5)) {
      return Value::string(_pick<std::string>({"#insert Shared.Rule", "#insert Shared.Rule 4",
                                               "#insert Shared.Group -1", "#insert Shared.Group 0",
                                               "#insert Shared.Chain 1"}));
    }
    return rule();
  }

  // Mostly inside the significant slots, sometimes just outside, often a new slot.
  int _index() {
    if (chance(4)) return -1;
    if (chance(24)) return static_cast<int>(_significant);
    return _significant == 0 ? -1 : static_cast<int>(below(_significant));
  }

  template <typename Element>
  Element _pick(std::initializer_list<Element> choices) {
    return choices.begin()[below(choices.size())];
  }

  static Value _dictionary(Entries entries) {
    auto dictionary = std::make_shared<Dictionary>();
    for (auto& [key, value] : entries) dictionary->setValueForKey(std::move(value), key);
    return Value::dictionary(std::move(dictionary));
  }
  static Value _array(std::vector<Value> elements) {
    return Value::array(std::make_shared<Array>(std::move(elements)));
  }

  std::uint64_t _next() {
    if (_usesBytes) {
      if (_bytes.empty()) return 0;
      const auto byte = static_cast<unsigned char>(_bytes.front());
      _bytes.remove_prefix(1);
      return byte;
    }
    _state += 0x9E3779B97F4A7C15;
    std::uint64_t bits = _state;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EB;
    return bits ^ (bits >> 31);
  }

  std::uint64_t _state = 0;
  std::string_view _bytes;
  bool _usesBytes = false;
  std::size_t _significant = 1;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_RANDOM_GRAMMAR_H_
