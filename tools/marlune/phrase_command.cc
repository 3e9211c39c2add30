#include "tools/marlune/phrase_command.h"

#include <functional>
#include <new>
#include <stdexcept>

#include "tools/marlune/input/phrase_error.h"
#include "tools/marlune/input/phrase_limits.h"
#include "tools/marlune/streams/answers.h"
#include "tools/marlune/streams/report.h"

namespace marlune::tool {

namespace {

// Runs one step of the work on a phrase. Returns whether it succeeded; reports the reason if not.
bool tried(const Phrase& phrase, const std::function<void()>& work) {
  try {
    work();
    return true;
  } catch (const PhraseError& error) {
    complainAbout(phrase, error.what());
  } catch (const std::bad_alloc&) {
    complainAbout(phrase, kOutOfMemory);
  } catch (const std::length_error&) {
    complainAbout(phrase, kOutOfMemory);
  }
  return false;
}

}  // namespace

ExitStatus PhraseCommand::answerAll(PhraseInput& input) {
  ExitStatus status = kEverythingSaid;
  input.setBeforeWaiting(&flushAnswers);
  while (const std::optional<Phrase> phrase = input.next()) {
    if (!_answer(*phrase)) status = kSomethingNotSaid;
  }
  flushAnswers();
  return status;
}

bool PhraseCommand::_answer(const Phrase& phrase) {
  std::string answer;
  const bool hasAnswer = tried(phrase, [&] {
    if (!phrase.fault.empty()) throw PhraseError(std::string(phrase.fault));
    answer = answerTo(phrase);
  });
  writeAnswer(answer);
  return hasAnswer && tried(phrase, [this] { followAnswer(); });
}

}  // namespace marlune::tool
