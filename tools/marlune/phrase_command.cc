#include "tools/marlune/phrase_command.h"

#include <new>
#include <stdexcept>

#include "tools/marlune/input/phrase_error.h"
#include "tools/marlune/input/phrase_limits.h"
#include "tools/marlune/streams/answers.h"
#include "tools/marlune/streams/report.h"

namespace marlune::tool {

namespace {

constexpr std::size_t kMostAlike = 1'000;  // messages with one reason
constexpr std::size_t kMostReasons =
    10'000;  // that are counted; every message of others is written

}  // namespace

// Runs one step of the work on a phrase. Returns whether it succeeded; reports the reason if not.
bool PhraseCommand::_tried(const Phrase& phrase, const std::function<void()>& work) {
  try {
    work();
    return true;
  } catch (const PhraseError& error) {
    _complain(phrase, error.what());
  } catch (const std::bad_alloc&) {
    complainAbout(phrase, kOutOfMemory);
  } catch (const std::length_error&) {
    complainAbout(phrase, kOutOfMemory);
  }
  return false;
}

void PhraseCommand::_complain(const Phrase& phrase, const std::string& reason) {
  if (!_isVerbose && _reasons.size() < kMostReasons) _reasons.emplace(reason, 0);
  const auto known = _reasons.find(reason);
  if (known == _reasons.end() || ++known->second <= kMostAlike) complainAbout(phrase, reason);
}

void PhraseCommand::_writeCounts() const {
  for (const auto& [reason, count] : _reasons) {
    if (count <= kMostAlike) continue;
    complain(std::to_string(count - kMostAlike) + " more phrases: " + reason);
  }
}

ExitStatus PhraseCommand::answerAll(PhraseInput& input) {
  ExitStatus status = kEverythingSaid;
  input.setBeforeWaiting(&flushAnswers);
  while (const std::optional<Phrase> phrase = input.next()) {
    if (!_answer(*phrase)) status = kSomethingNotSaid;
  }
  flushAnswers();
  _writeCounts();
  return status;
}

bool PhraseCommand::_answer(const Phrase& phrase) {
  std::string answer;
  const bool hasAnswer = _tried(phrase, [&] {
    if (!phrase.fault.empty()) throw PhraseError(std::string(phrase.fault));
    answer = answerTo(phrase);
  });
  writeAnswer(answer);
  return hasAnswer && _tried(phrase, [this] { followAnswer(); });
}

}  // namespace marlune::tool
