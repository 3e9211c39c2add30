#ifndef MARLUNE_TOOLS_MARLUNE_PHRASE_COMMAND_H_
#define MARLUNE_TOOLS_MARLUNE_PHRASE_COMMAND_H_

#include <cstddef>
#include <functional>
#include <map>
#include <string>

#include "tools/marlune/exit_status.h"
#include "tools/marlune/input/phrase_input.h"

namespace marlune::tool {

// The work of one command on each phrase of its input.
class PhraseCommand {
 public:
  // Messages with the same reason are counted after the first thousand, unless `isVerbose`; the
  // counts are written at the end.
  explicit PhraseCommand(bool isVerbose) : _isVerbose(isVerbose) {}
  virtual ~PhraseCommand() = default;

  // Answers every phrase with one line. Writes an empty line, and the reason to standard error, if
  // answerTo throws PhraseError, if the phrase exceeds a limit, or if memory runs out.
  ExitStatus answerAll(PhraseInput& input);

 protected:
  // The answer to the phrase. Throws PhraseError if there is none.
  virtual std::string answerTo(const Phrase& phrase) = 0;

  // Runs after the answer has been written. Throws PhraseError if the phrase could not be said
  // after all.
  virtual void followAnswer() {}

 private:
  bool _answer(const Phrase& phrase);
  bool _tried(const Phrase& phrase, const std::function<void()>& work);
  void _complain(const Phrase& phrase, const std::string& reason);
  void _writeCounts() const;

  const bool _isVerbose;
  std::map<std::string, std::size_t> _reasons;  // how often each was given; only the first ones
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_PHRASE_COMMAND_H_
