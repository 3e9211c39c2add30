#include "tools/marlune/options.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <string_view>

namespace marlune::tool {

CLI::Option* addTextOption(CLI::App& command, const char* option, std::string& value,
                           const std::string& help) {
  const auto cause = [](const std::string& text) { return text.empty() ? kEmptyValue : ""; };
  return command.add_option(option, value, help)->check(CLI::Validator(cause, ""));
}

CLI::Option* addSoundsOption(CLI::App& command, std::string& value) {
  return addTextOption(command, "--sounds", value, "The folder of recordings, *.aif");
}

CLI::Option* addOverridesOption(CLI::App& command, std::string& value) {
  return addTextOption(command, "--overrides", value,
                       "A property list with the dictionaries \"whole\" and \"parts\": key of a "
                       "phrase to recordings");
}

CLI::Option* addGrammarOption(CLI::App& command, std::string& value) {
  return addTextOption(command, "--grammar", value, "The grammar file, a property list");
}

CLI::Option* addNameOption(CLI::App& command, std::string& value) {
  return addTextOption(command, "--name", value,
                       "The grammar to use in the file, such as Sports.Running");
}

void addVerboseOption(CLI::App& command, bool& value) {
  command.add_flag("--verbose", value,
                   "Write every message, instead of a count of those that repeat a thousand times");
}

void addPhrases(CLI::App& command, std::vector<std::string>& phrases) {
  command.add_option("PHRASE", phrases,
                     "Phrases, one per argument: quote a phrase of several words; without any, "
                     "one per line from standard input");
}

std::string optionWithoutValue(int argc, const char* const* argv) {
  for (int i = 1; i < argc && argv[i] != std::string_view("--"); ++i) {
    const std::string_view argument = argv[i];
    if (argument.starts_with("--") && argument.find('=') == argument.size() - 1) {
      return std::string(argument.substr(0, argument.size() - 1));
    }
  }
  return "";
}

}  // namespace marlune::tool
