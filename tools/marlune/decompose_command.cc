#include "tools/marlune/decompose_command.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <iostream>
#include <memory>

#include "tools/marlune/help_texts.h"
#include "tools/marlune/phrase_input.h"
#include "tools/marlune/report.h"
#include "tools/marlune/voice.h"

namespace marlune::tool {

namespace {

struct Options {
  std::string sounds;
  std::string overrides;
  std::vector<std::string> phrases;
};

ExitStatus decompose(const Options& options) {
  Voice voice(options.sounds, options.overrides);
  PhraseInput input(options.phrases, std::cin);
  ExitStatus status = kEverythingSaid;
  while (const std::optional<Phrase> phrase = input.next()) {
    const Voice::Answer answer = voice.filesFor(phrase->words);
    if (!answer.files) {
      complainAbout(*phrase, answer.reason);
      status = kSomethingNotSaid;
    }
    std::cout << (answer.files ? joined(*answer.files) : "") << std::endl;
  }
  return status;
}

}  // namespace

void addDecomposeCommand(CLI::App& program, ExitStatus& status) {
  CLI::App* command = program.add_subcommand("decompose", "Print the recordings that say a phrase");
  const auto options = std::make_shared<Options>();
  command->add_option("--sounds", options->sounds, kSoundsHelp)->required();
  command->add_option("--overrides", options->overrides, kOverridesHelp);
  command->add_option("PHRASE", options->phrases, kPhrasesHelp);
  command->callback([options, &status] { status = decompose(*options); });
}

}  // namespace marlune::tool
