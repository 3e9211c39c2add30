#include "tools/marlune/rewrite_command.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <iostream>
#include <memory>

#include "tools/marlune/help_texts.h"
#include "tools/marlune/phrase_input.h"
#include "tools/marlune/rewriter.h"
#include "tools/marlune/trace.h"

namespace marlune::tool {

namespace {

constexpr const char* kTraceHelp =
    "Show on standard error which rules change the phrase; with raw, all that the grammar logs";

struct Options {
  std::string grammar;
  std::string name;
  std::string trace;  // "" none, "rules", "raw"
  std::vector<std::string> phrases;
};

void showTrace(const Rewriter& rewriter, const Words& words, const std::string& form) {
  const Trace trace = rewriter.traceOf(words);
  std::cerr << (form == "raw" ? rawTrace(trace) : readableTrace(trace)) << std::flush;
}

ExitStatus rewrite(const Options& options) {
  const Rewriter rewriter(options.grammar, options.name);
  PhraseInput input(options.phrases, std::cin);
  while (const std::optional<Phrase> phrase = input.next()) {
    if (!options.trace.empty()) showTrace(rewriter, phrase->words, options.trace);
    std::cout << joined(rewriter.rewritten(phrase->words)) << std::endl;
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
  command->add_option("PHRASE", options->phrases, kPhrasesHelp);
  command->callback([options, &status] { status = rewrite(*options); });
}

}  // namespace marlune::tool
