#include "tools/marlune/say_command.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <memory>

#include "tools/marlune/input/phrase_error.h"
#include "tools/marlune/options.h"
#include "tools/marlune/phrase_command.h"
#include "tools/marlune/rewriting/rewriter.h"
#include "tools/marlune/speaking/playlist.h"
#include "tools/marlune/speaking/speaker.h"
#include "tools/marlune/streams/answers.h"
#include "tools/marlune/voice/voice.h"

namespace marlune::tool {

namespace {

struct Options {
  std::string sounds;
  std::string grammar;
  std::string name;
  std::string overrides;
  std::string output;
  bool isVerbose = false;
  std::vector<std::string> phrases;
};

// Chains the three stages, as an app does.
class SayCommand : public PhraseCommand {
 public:
  explicit SayCommand(const Options& options)
      : PhraseCommand(options.isVerbose),
        _voice(options.sounds, options.overrides),
        _speaker(_voice.bundle(), options.output) {
    if (!options.grammar.empty()) {
      _rewriter = std::make_unique<Rewriter>(options.grammar, options.name);
    }
  }

  void finish() { _speaker.finish(); }

 protected:
  // The words as they are said, and the recordings with their lengths in seconds.
  std::string answerTo(const Phrase& phrase) override {
    const Words words = _rewriter ? _rewriter->rewritten(phrase.words) : phrase.words;
    const Voice::Answer answer = _voice.filesFor(words);
    if (!answer.files) throw PhraseError(answer.reason);
    _files = answer.files;
    _playlist = std::make_unique<Playlist>(*_files, *_voice.bundle());
    if (!_playlist->faults().empty()) throw PhraseError(_playlist->faults());
    return joined(words) + " | " + _playlist->text();
  }

  void followAnswer() override {
    flushAnswers();
    _speaker.say(*_files, *_playlist);
  }

 private:
  Voice _voice;
  Speaker _speaker;
  std::unique_ptr<Rewriter> _rewriter;
  std::shared_ptr<const Words> _files;  // of the last phrase answered
  std::unique_ptr<Playlist> _playlist;
};

ExitStatus say(const Options& options) {
  SayCommand command(options);
  PhraseInput input(options.phrases);
  const ExitStatus status = command.answerAll(input);
  command.finish();
  return status;
}

}  // namespace

void addSayCommand(CLI::App& program, ExitStatus& status) {
  CLI::App* command = program.add_subcommand("say", "Say a phrase with recordings");
  const auto options = std::make_shared<Options>();
  addSoundsOption(*command, options->sounds)->required();
  CLI::Option* grammar = addGrammarOption(*command, options->grammar);
  CLI::Option* name = addNameOption(*command, options->name);
  grammar->needs(name);
  name->needs(grammar);
  addOverridesOption(*command, options->overrides);
  addTextOption(*command, "--output", options->output,
                "Write all phrases to this file, *.wav or *.aif, instead of playing them");
  addVerboseOption(*command, options->isVerbose);
  addPhrases(*command, options->phrases);
  command->callback([options, &status] { status = say(*options); });
}

}  // namespace marlune::tool
