#include "marlune/announce/phrase_preparer.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "marlune/announce/recording_words.h"
#include "marlune/decompose/joined_key.h"
#include "marlune/platform/platform.h"

namespace marlune {

namespace {

constexpr std::size_t kMostPhrases = 256;  // remembered

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += ' ';
    text += word;
  }
  return text;
}

PhraseProblem problem(PhraseProblem::Kind kind, std::string message) {
  return {kind, {}, {}, std::move(message)};
}

}  // namespace

std::size_t PhrasePreparer::HashOfWords::operator()(const Words& words) const {
  std::size_t hash = words.size();
  for (const std::string& word : words) hash = hash * 31 + std::hash<std::string>()(word);
  return hash;
}

PhrasePreparer::PhrasePreparer(std::unique_ptr<Parser> parser,
                               std::unique_ptr<Decomposer> decomposer, std::string directory,
                               std::shared_ptr<const ResourceBundle> bundle)
    : _parser(std::move(parser)),
      _decomposer(std::move(decomposer)),
      _directory(std::move(directory)),
      _bundle(std::move(bundle)) {}

Preparation PhrasePreparer::prepare(const std::vector<std::string>& words) {
  const std::lock_guard lock(_mutex);
  const auto known = _phrases.find(words);
  if (known != _phrases.end()) return known->second;
  Preparation preparation = _prepare(words);
  if (!preparation.isSayable()) return preparation;
  if (_phrases.size() == kMostPhrases) _phrases.clear();
  _phrases.emplace(words, preparation.phrase());
  return preparation;
}

Preparation PhrasePreparer::_prepare(const Words& words) {
  const auto phrase = std::make_shared<PreparedPhrase>();
  phrase->words = words;
  if (auto fault = _rewrite(words, phrase->rewritten)) return *std::move(fault);
  if (auto fault = _decompose(*phrase)) return *std::move(fault);
  if (auto fault = _examine(*phrase)) return *std::move(fault);
  return std::shared_ptr<const PreparedPhrase>(phrase);
}

std::optional<PhraseProblem> PhrasePreparer::_rewrite(const Words& words, Words& rewritten) {
  using Kind = PhraseProblem::Kind;
  rewritten = words;
  if (_parser && !words.empty()) {
    const auto& fault = _parser->whyNoGrammar();
    if (!_parser->hasGrammar()) {
      return problem(Kind::noGrammar, fault ? fault->message : "no grammar was named");
    }
    const auto result = _parser->resultOfRulesAppliedToStrings(words);
    if (const auto& unfinished = _parser->whyUnfinished()) {
      return PhraseProblem{
          Kind::unfinished, {}, _parser->ruleLeftUnfinished(), unfinished->message};
    }
    rewritten = result->stringArray();
  }
  if (!rewritten.empty()) return std::nullopt;
  return problem(Kind::nothingToSay,
                 words.empty() ? "the phrase has no words"
                               : "the grammar leaves no words of \"" + joined(words) + "\"");
}

std::optional<PhraseProblem> PhrasePreparer::_decompose(PreparedPhrase& phrase) {
  using Kind = PhraseProblem::Kind;
  const Words& words = phrase.rewritten;
  if (!_decomposer) return problem(Kind::uncoveredWords, "there is no voice");
  const Decomposition files = _decomposer->optimalDecompositionOf(words);
  if (!files) return _uncovered(words);
  if (files->empty()) {
    return PhraseProblem{
        Kind::nothingToSay, {}, decompositionKey(words), "an override says nothing"};
  }
  for (const std::string& file : *files) phrase.recordings.push_back({file, {}});
  assignWords(words, phrase.recordings);
  const Words missing = _decomposer->namesWithoutRecording(*files);
  if (missing.empty()) return std::nullopt;
  const auto& said = *std::find_if(phrase.recordings.begin(), phrase.recordings.end(),
                                   [&](const auto& each) { return each.name == missing.front(); });
  const Words stretch(words.begin() + static_cast<long>(said.firstWord),
                      words.begin() + static_cast<long>(said.endWord));
  std::string message = "the override \"" + decompositionKey(stretch) + "\" names \"" +
                        missing.front() + "\", which is no recording";
  return PhraseProblem{Kind::missingRecording, stretch, decompositionKey(stretch),
                       std::move(message)};
}

PhraseProblem PhrasePreparer::_uncovered(const Words& words) const {
  using Kind = PhraseProblem::Kind;
  const auto positions = _decomposer->uncoveredWordsOf(words);
  if (!positions) return problem(Kind::tooLong, "the phrase has too many words");
  PhraseProblem found = problem(Kind::uncoveredWords, "no recording says \"");
  for (const std::size_t position : *positions) found.words.push_back(words[position]);
  if (positions->empty()) {
    found.message = "overrides give more recordings than there are words";
  } else {
    found.message += joined(found.words) + "\"";
  }
  return found;
}

std::optional<PhraseProblem> PhrasePreparer::_examine(PreparedPhrase& phrase) {
  phrase.seconds = 0;
  for (SpokenRecording& recording : phrase.recordings) {
    std::string fault;
    const Known* const known = _examine(recording.name, fault);
    if (!known) {
      const auto first = phrase.rewritten.begin();
      return PhraseProblem{PhraseProblem::Kind::unreadable,
                           Words(first + static_cast<long>(recording.firstWord),
                                 first + static_cast<long>(recording.endWord)),
                           recording.name, "\"" + recording.name + "\" cannot be played: " + fault};
    }
    recording.path = known->path;
    recording.seconds = known->seconds;
    if (!known->seconds) phrase.seconds.reset();
    if (phrase.seconds) *phrase.seconds += *known->seconds;
  }
  return std::nullopt;
}

const PhrasePreparer::Known* PhrasePreparer::_examine(const std::string& name, std::string& fault) {
  const auto found = _recordings.find(name);
  if (found != _recordings.end()) return &found->second;
  auto path = _bundle ? _bundle->pathForResource(name, "aif", _directory) : std::nullopt;
  if (!path) {
    fault = "there is no such file";
    return nullptr;
  }
  RecordingFacts facts;
  if (const auto& examine = Platform::shared().examineRecording) {
    auto examined = examine(*path);
    if (!examined.succeeded()) {
      fault = examined.failure().message;
      return nullptr;
    }
    facts = examined.value();
  }
  return &_recordings.emplace(name, Known{*std::move(path), facts.seconds}).first->second;
}

}  // namespace marlune
