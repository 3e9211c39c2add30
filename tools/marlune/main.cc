// The program `marlune`: rewrites phrases, decomposes them into recordings, says them.

#include <malloc.h>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstring>
#include <exception>
#include <iostream>
#include <sstream>

#include "marlune/platform/platform.h"
#include "tools/marlune/decompose_command.h"
#include "tools/marlune/exit_status.h"
#include "tools/marlune/input/input_error.h"
#include "tools/marlune/options.h"
#include "tools/marlune/rewrite_command.h"
#include "tools/marlune/say_command.h"
#include "tools/marlune/streams/answers.h"
#include "tools/marlune/streams/report.h"
#include "tools/marlune/streams/shown_log.h"
#include "tools/marlune/streams/standard_descriptors.h"
#include "tools/marlune/text/shown_text.h"

namespace marlune::tool {

namespace {

constexpr const char* kFooter =
    "Each phrase is answered with a line. One that cannot be rewritten or said gives an empty "
    "line,\n"
    "and the reason goes to standard error.\n"
    "Exit status: 0 all could be said, 1 some could not, 2 bad usage or unreadable input.";

// Escapes control characters: error messages quote the arguments.
std::string failureMessage(const CLI::App* command, const CLI::Error& error) {
  return shown(error.what()) +
         CLI::FailureMessage::simple(command, error).substr(std::strlen(error.what()));
}

ExitStatus finish(const CLI::App& program, const CLI::ParseError& error) {
  std::ostringstream text;
  const bool isFailure = program.exit(error, text, std::cerr) != 0;
  writeText(text.str());
  return isFailure ? kUnusable : kEverythingSaid;
}

ExitStatus run(int argc, char** argv) {
  CLI::App program("Speaks phrases from recordings.", "marlune");
  program.footer(kFooter);
  program.require_subcommand(0, 1);
  program.failure_message(failureMessage);
  program.set_version_flag("--version", "marlune " MARLUNE_VERSION);
  ExitStatus status = kEverythingSaid;
  addRewriteCommand(program, status);
  addDecomposeCommand(program, status);
  addSayCommand(program, status);
  const std::string option = optionWithoutValue(argc, argv);
  if (!option.empty()) throw InputError(option + ": " + kEmptyValue);
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return finish(program, error);
  }
  if (program.get_subcommands().empty()) {
    complain("a command is needed; --help lists them");
    return kUnusable;
  }
  return status;
}

}  // namespace

}  // namespace marlune::tool

int main(int argc, char** argv) {
#ifdef __GLIBC__
  // One arena for all threads: they are few and allocate in turn, so memory that one frees is
  // reused by the next instead of each touching fresh pages.
  ::mallopt(M_ARENA_MAX, 1);
#endif
  marlune::tool::occupyStandardDescriptors();
  try {
    marlune::Platform::shared().systemLog = std::make_shared<marlune::tool::ShownLog>();
    return marlune::tool::run(argc, argv);
  } catch (const marlune::tool::NobodyReads&) {
    marlune::tool::endByBrokenPipe();
  } catch (const std::exception& error) {
    marlune::tool::complain(error.what());
    return marlune::tool::kUnusable;
  }
}
