#include "tools/marlune/rewrite_command.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <iostream>
#include <memory>
#include <optional>

#include "tools/marlune/help_texts.h"
#include "tools/marlune/input_error.h"
#include "tools/marlune/phrase_input.h"
#include "tools/marlune/rewriter.h"
#include "tools/marlune/trace.h"
#include "tools/marlune/why.h"

namespace marlune::tool {

namespace {

constexpr const char* kTraceHelp =
    "Show on standard error which rules change the phrase; with raw, all that the grammar logs, "
    "the "
    "lines of prefix keys included";

constexpr const char* kWhyHelp =
    "Tell on standard error why this rule does or does not fire: its name or path, as in A.B";

struct Options {
  std::string grammar;
  std::string name;
  std::string trace;               // "" none, "rules", "raw"
  std::optional<std::string> why;  // the rule asked about
  std::vector<std::string> phrases;
};

// With the rules' trace the walk's own result, since rewriting once more would repeat its messages.
Words answerTo(const Words& words, const Rewriter& rewriter, const Options& options) {
  if (options.why) {
    std::cerr << whyText(rewriter.walkOf(words), {*options.why, options.name}) << std::flush;
  }
  if (options.trace == "rules") {
    const GrammarWalk walk = rewriter.walkOf(words);
    std::cerr << readableTrace(walk) << std::flush;
    return walk.after()->stringArray();
  }
  if (options.trace == "raw") std::cerr << rewriter.rawTraceOf(words) << std::flush;
  return rewriter.rewritten(words);
}

void requireRule(const Rewriter& rewriter, const Options& options) {
  if (!whyText(rewriter.walkOf({}), {*options.why, options.name}).empty()) return;
  throw InputError(options.grammar + ": " + options.name + " has no rule named " + *options.why);
}

ExitStatus rewrite(const Options& options) {
  const Rewriter rewriter(options.grammar, options.name);
  if (options.why) requireRule(rewriter, options);
  PhraseInput input(options.phrases, std::cin);
  while (const std::optional<Phrase> phrase = input.next()) {
    std::cout << joined(answerTo(phrase->words, rewriter, options)) << std::endl;
  }
  return kEverythingSaid;
}

}  // namespace

void addRewriteCommand(CLI::App& program, ExitStatus& status) {
  CLI::App* command = program.add_subcommand("rewrite", "Print a phrase as a grammar rewrites it");
  const auto options = std::make_shared<Options>();
  command->add_option("--grammar", options->grammar, kGrammarHelp)->required();
  command->add_option("--name", options->name, kNameHelp)->required();
  command->add_flag("--trace{rules}", options->trace, kTraceHelp)
      ->check(CLI::IsMember({"rules", "raw"}));
  command->add_option("--why", options->why, kWhyHelp)->type_name("RULE");
  command->add_option("PHRASE", options->phrases, kPhrasesHelp);
  command->callback([options, &status] { status = rewrite(*options); });
}

}  // namespace marlune::tool
