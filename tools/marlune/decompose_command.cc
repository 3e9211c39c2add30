#include "tools/marlune/decompose_command.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <memory>

#include "tools/marlune/input/phrase_error.h"
#include "tools/marlune/options.h"
#include "tools/marlune/phrase_command.h"
#include "tools/marlune/voice/voice.h"

namespace marlune::tool {

namespace {

struct Options {
  std::string sounds;
  std::string overrides;
  bool isVerbose = false;
  std::vector<std::string> phrases;
};

class DecomposeCommand : public PhraseCommand {
 public:
  explicit DecomposeCommand(const Options& options)
      : PhraseCommand(options.isVerbose), _voice(options.sounds, options.overrides) {}

 protected:
  std::string answerTo(const Phrase& phrase) override {
    const Voice::Answer answer = _voice.filesFor(phrase.words);
    if (!answer.files) throw PhraseError(answer.reason);
    return joined(*answer.files);
  }

 private:
  Voice _voice;
};

ExitStatus decompose(const Options& options) {
  PhraseInput input(options.phrases);
  return DecomposeCommand(options).answerAll(input);
}

}  // namespace

void addDecomposeCommand(CLI::App& program, ExitStatus& status) {
  CLI::App* command = program.add_subcommand("decompose", "Print the recordings that say a phrase");
  const auto options = std::make_shared<Options>();
  addSoundsOption(*command, options->sounds)->required();
  addOverridesOption(*command, options->overrides);
  addVerboseOption(*command, options->isVerbose);
  addPhrases(*command, options->phrases);
  command->callback([options, &status] { status = decompose(*options); });
}

}  // namespace marlune::tool
