#ifndef MARLUNE_TOOLS_MARLUNE_PHRASE_COMMAND_H_
#define MARLUNE_TOOLS_MARLUNE_PHRASE_COMMAND_H_

#include <stdexcept>
#include <string>

#include "tools/marlune/exit_status.h"
#include "tools/marlune/phrase_input.h"

namespace marlune::tool {

// Why one phrase cannot be rewritten or said, as a clause; the run goes on with the next.
class PhraseError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What a command does with each phrase of its input.
class PhraseCommand {
 public:
  virtual ~PhraseCommand() = default;

  // Answers every phrase with a line: an empty one, and the reason on standard error, where
  // answerTo throws PhraseError, where the phrase exceeds a limit or memory runs out for it.
  ExitStatus answerAll(PhraseInput& input);

 protected:
  // The answer to the phrase. Throws PhraseError when there is none.
  virtual std::string answerTo(const Phrase& phrase) = 0;

  // What is done once the last answer has been written. Throws PhraseError when the phrase counts
  // as not said all the same.
  virtual void followAnswer() {}

 private:
  bool _answer(const Phrase& phrase);
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_PHRASE_COMMAND_H_
