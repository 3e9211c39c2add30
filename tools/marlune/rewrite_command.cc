#include "tools/marlune/rewrite_command.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <iostream>
#include <memory>
#include <optional>

#include "marlune/workbench/derivation/trace.h"
#include "marlune/workbench/derivation/why.h"
#include "tools/marlune/input/input_error.h"
#include "tools/marlune/options.h"
#include "tools/marlune/phrase_command.h"
#include "tools/marlune/rewriting/rewriter.h"
#include "tools/marlune/streams/answers.h"
#include "tools/marlune/text/shown_text.h"

namespace marlune::tool {

namespace {

constexpr const char* kTraceHelp =
    "Show on standard error which rules change the phrase; with raw, everything the grammar logs, "
    "the "
    "comparisons of prefix keys included";

constexpr const char* kWhyHelp =
    "Explain on standard error why this rule does or does not apply: its name or path, as in A.B";

struct Options {
  std::string grammar;
  std::string name;
  std::string trace;               // "" none, "rules", "raw"
  std::optional<std::string> why;  // the rule to explain
  bool isVerbose = false;
  std::vector<std::string> phrases;
};

class RewriteCommand : public PhraseCommand {
 public:
  explicit RewriteCommand(const Options& options)
      : PhraseCommand(options.isVerbose),
        _options(options),
        _rewriter(options.grammar, options.name) {
    if (!options.why || !_why({}).empty()) return;
    throw InputError(options.grammar + ": " + options.name + " has no rule named " + *options.why);
  }

 protected:
  std::string answerTo(const Phrase& phrase) override { return joined(_rewritten(phrase.words)); }

 private:
  std::vector<std::string> _why(const Words& words) const {
    return whyLines(_rewriter.walkOf(words), {*_options.why, _options.name});
  }

  static void _show(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += shownLine(line);
    _write(text);
  }

  static void _write(const std::string& text) {
    flushAnswersBeforeMessage();
    std::cerr << text << std::flush;
  }

  // With --trace=rules the walk already has the result; rewriting again would repeat its messages.
  Words _rewritten(const Words& words) const {
    if (_options.why) _show(_why(words));
    if (_options.trace == "rules") {
      const GrammarWalk walk = _rewriter.walkOf(words);
      _show(readableTrace(walk));
      for (const Turn& turn : walk.turns()) requireWithinLimits(turn.unfinished);
      return walk.after()->stringArray();
    }
    if (_options.trace == "raw") _write(_rewriter.rawTraceOf(words));
    return _rewriter.rewritten(words);
  }

  const Options& _options;
  const Rewriter _rewriter;
};

ExitStatus rewrite(const Options& options) {
  PhraseInput input(options.phrases);
  return RewriteCommand(options).answerAll(input);
}

}  // namespace

void addRewriteCommand(CLI::App& program, ExitStatus& status) {
  CLI::App* command = program.add_subcommand("rewrite", "Print a phrase as a grammar rewrites it");
  const auto options = std::make_shared<Options>();
  addGrammarOption(*command, options->grammar)->required();
  addNameOption(*command, options->name)->required();
  command->add_flag("--trace{rules}", options->trace, kTraceHelp)
      ->check(CLI::IsMember({"rules", "raw"}));
  command->add_option("--why", options->why, kWhyHelp)->type_name("RULE");
  addVerboseOption(*command, options->isVerbose);
  addPhrases(*command, options->phrases);
  command->callback([options, &status] { status = rewrite(*options); });
}

}  // namespace marlune::tool
