#include "tools/marlune/say_command.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <iostream>
#include <memory>

#include "tools/marlune/help_texts.h"
#include "tools/marlune/phrase_input.h"
#include "tools/marlune/playlist.h"
#include "tools/marlune/report.h"
#include "tools/marlune/rewriter.h"
#include "tools/marlune/speaker.h"
#include "tools/marlune/voice.h"

namespace marlune::tool {

namespace {

struct Options {
  std::string sounds;
  std::string grammar;
  std::string name;
  std::string overrides;
  std::string output;
  std::vector<std::string> phrases;
};

// The three stages in a row, as an app chains them.
class SayCommand {
 public:
  explicit SayCommand(const Options& options)
      : _voice(options.sounds, options.overrides), _speaker(_voice.bundle(), options.output) {
    if (!options.grammar.empty()) {
      _rewriter = std::make_unique<Rewriter>(options.grammar, options.name);
    }
  }

  // Whether the phrase could be said. Answers it with a line: its words as they are said, and
  // the recordings with their lengths in seconds.
  bool say(const Phrase& phrase) {
    const Words words = _rewriter ? _rewriter->rewritten(phrase.words) : phrase.words;
    const Voice::Answer answer = _voice.filesFor(words);
    if (!answer.files) return _refuse(phrase, answer.reason);
    const Playlist playlist(*answer.files, *_voice.bundle());
    if (!playlist.faults().empty()) return _refuse(phrase, playlist.faults());
    std::cout << joined(words) + " | " + playlist.text() << std::endl;
    _speaker.say(*answer.files, playlist);
    return true;
  }

  void finish() { _speaker.finish(); }

 private:
  static bool _refuse(const Phrase& phrase, const std::string& reason) {
    complainAbout(phrase, reason);
    std::cout << std::endl;
    return false;
  }

  Voice _voice;
  Speaker _speaker;
  std::unique_ptr<Rewriter> _rewriter;
};

ExitStatus say(const Options& options) {
  SayCommand command(options);
  PhraseInput input(options.phrases, std::cin);
  ExitStatus status = kEverythingSaid;
  while (const std::optional<Phrase> phrase = input.next()) {
    if (!command.say(*phrase)) status = kSomethingNotSaid;
  }
  command.finish();
  return status;
}

}  // namespace

void addSayCommand(CLI::App& program, ExitStatus& status) {
  CLI::App* command = program.add_subcommand("say", "Say a phrase with recordings");
  const auto options = std::make_shared<Options>();
  command->add_option("--sounds", options->sounds, kSoundsHelp)->required();
  CLI::Option* grammar = command->add_option("--grammar", options->grammar, kGrammarHelp);
  CLI::Option* name = command->add_option("--name", options->name, kNameHelp);
  grammar->needs(name);
  name->needs(grammar);
  command->add_option("--overrides", options->overrides, kOverridesHelp);
  command->add_option("--output", options->output,
                      "A file *.wav or *.aif to make instead of playing; all phrases in a row");
  command->add_option("PHRASE", options->phrases, kPhrasesHelp);
  command->callback([options, &status] { status = say(*options); });
}

}  // namespace marlune::tool
