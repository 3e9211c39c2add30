#ifndef MARLUNE_TESTS_REFERENCE_REFERENCE_DECOMPOSER_H_
#define MARLUNE_TESTS_REFERENCE_REFERENCE_DECOMPOSER_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace marlune {

// The simplest form of decomposition: the recursion over all splits, with a dictionary of answers.
// The real decomposer must be indistinguishable from it except in speed.
class ReferenceDecomposer {
 public:
  using Words = std::vector<std::string>;
  using Answer = std::optional<Words>;  // nothing: cannot be said
  using Delegate = std::function<Answer(const std::string& key, bool isSubsetOfWhole)>;

  explicit ReferenceDecomposer(Words files) : _files(std::move(files)) {}

  Answer optimalDecompositionOf(const Words& words) {
    lines.push_back("Attempting to say: '" + _joined(words) + "'.");
    return optimalDecompositionOf(words, false);
  }

  Answer optimalDecompositionOf(const Words& words, bool isSubsetOfWhole) {
    iterations = static_cast<std::int32_t>(static_cast<std::uint32_t>(iterations) + 1);
    if (debugging) lines.push_back("Iterations so far: " + std::to_string(iterations));
    const std::string key = _replaced(_replaced(_joined(words), " ", "_"), "_[", "[");
    if (const auto found = cache.find(key); found != cache.end()) return found->second;
    if (Answer given = delegate ? delegate(key, isSubsetOfWhole) : std::nullopt) {
      lines.push_back("delegateSpecifiedDecomposition: " + _listed(*given));
      return cache[key] = given;
    }
    if (words.size() == 1 && !_isFile(words[0])) {
      cache[key] = std::nullopt;
      lines.push_back("Cannot find a sound file for '" + words[0] + ".'");
      return std::nullopt;
    }
    if (_isFile(key)) return cache[key] = Words{key};
    const std::string stripped = _withoutBracketedWords(key);
    if (_isFile(stripped)) return cache[key] = Words{stripped};
    if (words.size() <= 1) return cache[key] = std::nullopt;
    Answer best = _bestSplit(words);
    return cache[key] = best;
  }

  Delegate delegate;
  bool debugging = false;
  std::int32_t iterations = 0;
  std::map<std::string, Answer> cache;
  std::vector<std::string> lines;

 private:
  Answer _bestSplit(const Words& words) {
    Answer best;
    std::size_t bound = words.size();
    for (std::size_t i = 1; i < words.size(); ++i) {
      const auto middle = words.begin() + static_cast<std::ptrdiff_t>(i);
      const Answer left = optimalDecompositionOf(Words(words.begin(), middle), true);
      const Answer right = optimalDecompositionOf(Words(middle, words.end()), true);
      if (!left || !right || left->size() + right->size() > bound) continue;
      best = left;
      best->insert(best->end(), right->begin(), right->end());
      bound = best->size();
    }
    return best;
  }

  bool _isFile(const std::string& name) const {
    return std::find(_files.begin(), _files.end(), name) != _files.end();
  }
  static std::string _joined(const Words& words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) text += (i > 0 ? " " : "") + words[i];
    return text;
  }
  static std::string _replaced(std::string text, const std::string& what, const std::string& by) {
    for (std::size_t at = text.find(what); at != std::string::npos;
         at = text.find(what, at + by.size())) {
      text.replace(at, what.size(), by);
    }
    return text;
  }
  static std::string _withoutBracketedWords(const std::string& text) {
    std::string kept;
    bool inside = false;
    for (const char c : text) {
      if (c == '[') inside = true;
      if (c != '[' && c != ']' && !inside) kept += c;
      if (c == ']') inside = false;
    }
    return kept;
  }
  // The form of a list in a log line: text of letters, digits and "_" unquoted, any other quoted.
  static std::string _listed(const Words& words) {
    std::string text = "(";
    for (std::size_t i = 0; i < words.size(); ++i) {
      text += (i > 0 ? ",\n    " : "\n    ") + _quoted(words[i]);
    }
    return text + "\n)";
  }
  static std::string _quoted(const std::string& text) {
    const char* const plain = "abcdefghijklmnopqrstuvwxyz0123456789_";
    const bool isPlain = !text.empty() && text.find_first_not_of(plain) == std::string::npos;
    return isPlain ? text : '"' + text + '"';
  }

  Words _files;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_REFERENCE_REFERENCE_DECOMPOSER_H_
