#include "support/generated_grammar.h"

#include <initializer_list>
#include <memory>
#include <utility>

namespace marlune {
namespace {

using Words = std::vector<std::string>;

Value text(const std::string& words) { return Value::string(words); }

Value list(std::initializer_list<Value> elements) {
  return Value::array(std::make_shared<Array>(std::vector<Value>(elements)));
}

Value entries(std::initializer_list<std::pair<const char*, Value>> entries) {
  auto dictionary = std::make_shared<Dictionary>();
  for (const auto& [key, value] : entries) dictionary->setValueForKey(value, key);
  return Value::dictionary(std::move(dictionary));
}

Value reference(std::int64_t index, const char* attribute) {
  return entries({{"_index", Value::integer(index)}, {"_attribute", text(attribute)}});
}

// A pronounceable word, different for every number.
std::string wordFor(std::size_t number) {
  static constexpr const char* kSyllables[] = {"ba", "ri", "to", "ne", "lu", "ka", "mi", "so"};
  std::string word;
  for (std::size_t rest = number + 8; rest > 0; rest /= 8) word += kSyllables[rest % 8];
  return word;
}

}  // namespace

GeneratedGrammar::GeneratedGrammar(std::size_t rules, std::uint32_t seed) : _random(seed) {
  const std::size_t vocabulary = 20 + rules * 2 / 3;
  for (std::size_t i = 0; i < vocabulary; ++i) _words.push_back(wordFor(i));
  auto main = std::make_shared<Dictionary>();
  std::shared_ptr<Dictionary> directory;
  for (std::size_t number = 0; number < rules; ++number) {
    if (number % 20 == 0) {
      const auto order = static_cast<std::int64_t>(number / 20);
      Value part = entries({{"_order", Value::integer(order)}});
      directory = part.asDictionary();
      main->setValueForKey(part, "Part" + std::to_string(order));
    }
    directory->setValueForKey(_rule(number), "Rule" + std::to_string(number));
  }
  _file = entries({{"Main", Value::dictionary(main)}});
}

// Picks early words more often than late ones, as in language.
std::string GeneratedGrammar::_word() {
  const double at = std::uniform_real_distribution<>(0, 1)(_random);
  return _words[static_cast<std::size_t>(at * at * static_cast<double>(_words.size()))];
}

Value GeneratedGrammar::_rule(std::size_t number) {
  const std::string a = _word(), b = _word(), c = _word(), d = _word(), e = _word();
  Value lhs, rhs;
  Words input;
  switch (number % 20) {
    default:  // a word after or before another
      lhs = entries({{"_significantSlots", list({text(a)})},
                     {number % 2 ? "_preContext" : "_postContext", list({text(b)})}});
      rhs = list({text(c)});
      input = number % 2 ? Words{b, a} : Words{a, b};
      break;
    case 8:
    case 9:
    case 10:
    case 11:  // two words become one
      lhs = entries({{"_significantSlots", list({text(a), text(b)})}});
      rhs = list({text(c)});
      input = {a, b};
      break;
    case 12:
    case 13:  // one of three before it
      lhs = entries({{"_significantSlots", list({text(a)})},
                     {"_preContext", list({list({text("+"), text(b), text(c), text(d)})})}});
      rhs = list({text(e)});
      input = {c, a};
      break;
    case 14:  // an attribute on the word before an ending
      lhs = entries({{"_significantSlots", list({text(a)})}, {"_postContext", list({text("_E")})}});
      rhs = list({entries({{"_index", Value::integer(0)}, {"lastTone", text("L")}})});
      input = {a};
      break;
    case 15:  // a word that has an attribute
      lhs = entries(
          {{"_significantSlots", list({entries({{"content", text(a)}, {"post", text("s")}})})}});
      rhs = list({text(b)});
      input = {a};
      break;
    case 16:  // chosen by the previous word
      lhs = entries({{"_significantSlots", list({list({text("+"), text(a), text(b)}), text(c)})}});
      rhs = entries({{"_signature", list({reference(0, "content")})},
                     {"_expansions", entries({{a.c_str(), list({text(a), text(d)})},
                                              {b.c_str(), list({text(b), text(e)})}})}});
      input = {b, c};
      break;
    case 17:  // any number of one word between two others
      lhs = entries({{"_significantSlots", list({text(a)})},
                     {"_postContext", list({list({text("*"), text(b)}), text(c)})}});
      rhs = list({text(d)});
      input = {a, b, c};
      break;
    case 18:  // anything but one word, then anything
      lhs = entries({{"_significantSlots", list({text(a), text("?")})},
                     {"_preContext", list({list({text("~"), text(b), text("_E")})})}});
      rhs = list({entries({{"_index", Value::integer(1)}}),
                  entries({{"_index", Value::integer(0)}, {"post", text("s")}})});
      input = {c, a, d};
      break;
    case 19:  // as many times as it occurs
      lhs = entries({{"_significantSlots", list({text(a), text(a)})}});
      rhs = list({text(a)});
      input = {a, a, a};
      break;
  }
  _inputs.push_back(input);
  return entries({{"_order", Value::integer(static_cast<std::int64_t>(number % 20))},
                  {"_lhs", lhs},
                  {"_rhs", rhs},
                  {"_repeat", Value::integer(number % 20 == 19)}});
}

std::vector<std::string> GeneratedGrammar::phrase(std::size_t words, std::uint32_t seed) const {
  std::mt19937 random(seed);
  const auto below = [&random](std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
  };
  Words phrase;
  while (phrase.size() < words) {
    const Words& input = _inputs[below(_inputs.size())];
    phrase.insert(phrase.end(), input.begin(), input.end());
    for (std::size_t i = below(4); i > 0; --i) phrase.push_back(_words[below(_words.size())]);
  }
  phrase.resize(words);
  return phrase;
}

std::vector<std::string> GeneratedGrammar::untouchedPhrase(std::size_t words,
                                                           std::uint32_t seed) const {
  std::mt19937 random(seed);
  Words phrase;
  for (std::size_t i = 0; i < words; ++i) {
    // Few rules use late words; a word unique to the phrase separates them.
    const std::size_t place = _words.size() - 1 - random() % (_words.size() / 4);
    phrase.push_back(i % 2 ? "unheard" + std::to_string(random() % 10) : _words[place]);
  }
  return phrase;
}

}  // namespace marlune
