#ifndef MARLUNE_BENCH_DECOMPOSE_PHRASE_WORLD_H_
#define MARLUNE_BENCH_DECOMPOSE_PHRASE_WORLD_H_

#include <algorithm>
#include <random>
#include <string>
#include <unordered_set>
#include <vector>

namespace marlune {

// A voice, and phrases that it can say. A fifth of the recordings are single words; the others are
// runs of two to four of these. A phrase is a concatenation of recordings.
class PhraseWorld {
 public:
  using Words = std::vector<std::string>;

  explicit PhraseWorld(std::size_t fileCount) {
    const Words vocabulary = _makeWords(std::max<std::size_t>(fileCount / 5, 20));
    std::unordered_set<std::string> seen;
    for (const std::string& word : vocabulary) _add({word}, seen);
    while (files.size() < fileCount) {
      Words run(2 + _below(3));
      for (std::string& word : run) word = vocabulary[_below(vocabulary.size())];
      _add(run, seen);
    }
  }

  Words phrase(std::size_t wordCount) {
    Words words;
    while (words.size() < wordCount) {
      for (const std::string& word : _runs[_below(_runs.size())]) words.push_back(word);
    }
    words.resize(wordCount);
    return words;
  }

  Words files;

 private:
  std::size_t _below(std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(_engine);
  }

  Words _makeWords(std::size_t count) {
    std::unordered_set<std::string> words;
    while (words.size() < count) {
      std::string word(3 + _below(6), ' ');
      for (char& letter : word) letter = static_cast<char>('a' + _below(26));
      words.insert(word);
    }
    Words sorted(words.begin(), words.end());
    std::sort(sorted.begin(), sorted.end());
    return sorted;
  }

  void _add(const Words& run, std::unordered_set<std::string>& seen) {
    std::string name;
    for (const std::string& word : run) name += (name.empty() ? "" : "_") + word;
    if (!seen.insert(name).second) return;
    files.push_back(name);
    _runs.push_back(run);
  }

  std::mt19937 _engine{7};
  std::vector<Words> _runs;
};

}  // namespace marlune

#endif  // MARLUNE_BENCH_DECOMPOSE_PHRASE_WORLD_H_
