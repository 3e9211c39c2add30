#ifndef MARLUNE_TESTS_SUPPORT_DECOMPOSITION_TRIAL_H_
#define MARLUNE_TESTS_SUPPORT_DECOMPOSITION_TRIAL_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fakes/fake_preferences.h"
#include "fakes/fake_system_log.h"
#include "marlune/decompose/decomposer_implementation.h"
#include "marlune/platform/platform.h"
#include "marlune/testing/fake_resource_bundle.h"
#include "marlune/util/tq_utils.h"
#include "reference/reference_decomposer.h"

namespace marlune {

// A voice, delegates and phrases made from a source of choices (a seed, or the bytes of a fuzzer),
// for comparing the decomposer with the plain recursion. Small pools make stretches repeat, keys
// coincide and recordings fit.
class DecompositionTrial {
 public:
  explicit DecompositionTrial(unsigned seed) : _engine(seed) {}

  // Takes choices from the bytes; after the last byte, every choice is the first one.
  explicit DecompositionTrial(std::string_view bytes) : _bytes(bytes), _usesBytes(true) {}

  // How the two differ, and for which phrase; nothing when they are indistinguishable. Sets a log
  // and preferences in the platform's table.
  std::optional<std::string> difference() {
    const auto log = std::make_shared<FakeSystemLog>();
    const auto preferences = std::make_shared<FakePreferences>();
    Platform::shared().systemLog = log;
    Platform::shared().preferences = preferences;

    _isOdd = _below(3) != 0;
    const Words files = _names(_below(30));
    ReferenceDecomposer reference(files);
    const auto decomposer =
        Decomposer::initWithDirectory("Sounds", std::make_shared<FakeResourceBundle>(files));
    const bool isTraced = _below(2) == 0;
    preferences->set(ZKPlistNotificationDefault, Value::boolean(isTraced));
    const bool debugging = _below(4) == 0;
    Decomposer::Implementation::of(*decomposer)._setDebugging(debugging);
    reference.debugging = debugging;

    std::shared_ptr<Delegate> delegate;
    Questions expected;  // of the reference
    for (int i = 0; i < kPhrases; ++i) {
      if (_below(3) == 0) {
        delegate = _below(3) == 0 ? nullptr : _delegate();
        decomposer->setDelegate(delegate);
        reference.delegate = delegate ? delegate->forReference(reference, expected) : nullptr;
        expected.clear();
      }
      const Words words = _words(_below(32) == 31 ? 30 : 9);
      const auto fault = [&](const char* what) {
        return formatted("%s: %@ of %@", {what, words, files});
      };
      const Answer answer = _answerOf(decomposer->optimalDecompositionOf(words));
      if (answer != reference.optimalDecompositionOf(words)) return fault("another answer");
      if (delegate && delegate->questions != expected) return fault("other questions");
      if (Decomposer::Implementation::of(*decomposer).iterations() != reference.iterations)
        return fault("other iterations");
      if (log->lines() != (isTraced ? reference.lines : Words())) return fault("other lines");
      std::map<std::string, Answer> cache;
      for (const auto& [key, files] : Decomposer::Implementation::of(*decomposer)._cache())
        cache[key] = _answerOf(files);
      if (cache != reference.cache) return fault("other things remembered");
    }
    return std::nullopt;
  }

 private:
  using Words = std::vector<std::string>;
  using Answer = ReferenceDecomposer::Answer;
  using Questions = std::vector<std::pair<std::string, bool>>;

  static constexpr int kPhrases = 4;

  // Records its calls, may call the decomposer itself, and answers from two tables.
  class Delegate : public DecomposerOverrides {
   public:
    Decomposition decompositionOf(Decomposer& decomposer, std::string_view key,
                                  bool isSubsetOfWhole) override {
      const auto ask = [&](const Words& words) { decomposer.optimalDecompositionOf(words); };
      const Answer answer = _answer(questions, std::string(key), isSubsetOfWhole, ask);
      return answer ? std::make_shared<const Words>(*answer) : nullptr;
    }

    // The same for the reference; both arguments must outlive it.
    ReferenceDecomposer::Delegate forReference(ReferenceDecomposer& reference, Questions& noted) {
      return [this, &reference, &noted](const std::string& key, bool isSubsetOfWhole) {
        const auto ask = [&](const Words& words) { reference.optimalDecompositionOf(words); };
        return _answer(noted, key, isSubsetOfWhole, ask);
      };
    }

    Questions questions;
    std::map<std::string, Words> whole, parts;
    std::map<std::string, Words> asks;

   private:
    template <typename Ask>
    Answer _answer(Questions& noted, const std::string& key, bool isSubsetOfWhole, Ask ask) {
      constexpr int kMostNested = 2;
      noted.emplace_back(key, isSubsetOfWhole);
      if (const auto words = asks.find(key); words != asks.end() && _nested < kMostNested) {
        ++_nested;
        ask(words->second);
        --_nested;
      }
      const auto& table = isSubsetOfWhole ? parts : whole;
      const auto found = table.find(key);
      return found == table.end() ? std::nullopt : Answer(found->second);
    }

    int _nested = 0;
  };

  std::shared_ptr<Delegate> _delegate() {
    auto delegate = std::make_shared<Delegate>();
    for (auto* table : {&delegate->whole, &delegate->parts}) {
      for (std::size_t i = _below(5); i > 0; --i) (*table)[_key()] = _names(5);
    }
    if (_below(2) == 0) return delegate;
    for (std::size_t i = _below(5); i > 0; --i) delegate->asks[_key()] = _words(4);
    return delegate;
  }

  std::string _key() { return decompositionKey(_words(3)); }

  Words _words(std::size_t most) {
    static const Words kPlain{"a", "b", "c", "dd"};
    static const Words kOdd{"a",     "b",   "",     "[x]",  "b[x]",
                            "a b",   "a_",  "_[x]", " [x]", "[",
                            "]",     " ",   "_",    "a]b",  "b [y]",
                            "[x]_a", "[",   "",     "__[",  "[]",
                            "a[",    "c[x", "y]",   "[x]",  "longer-than-sixteen"};
    const Words& pool = _isOdd ? kOdd : kPlain;
    Words words(_below(most + 1));
    for (std::string& word : words) word = pool[_below(pool.size())];
    return words;
  }

  // Names of recordings: mostly keys, sometimes the words themselves.
  Words _names(std::size_t most) {
    Words names(_below(most + 1));
    for (std::string& name : names) {
      const Words word = _below(4) == 0 ? _words(1) : Words{_key()};
      name = word.empty() ? "" : word.front();
    }
    return names;
  }

  static Answer _answerOf(const Decomposition& files) {
    return files ? Answer(*files) : std::nullopt;
  }

  std::size_t _below(std::size_t end) {
    if (!_usesBytes) return std::uniform_int_distribution<std::size_t>(0, end - 1)(_engine);
    if (_bytes.empty()) return 0;
    const auto byte = static_cast<unsigned char>(_bytes.front());
    _bytes.remove_prefix(1);
    return byte % end;
  }

  std::mt19937 _engine;
  std::string_view _bytes;
  bool _usesBytes = false;
  bool _isOdd = false;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_DECOMPOSITION_TRIAL_H_
