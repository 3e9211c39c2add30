#ifndef MARLUNE_TOOLS_MARLUNE_OPTIONS_H_
#define MARLUNE_TOOLS_MARLUNE_OPTIONS_H_

#include <CLI/App.hpp>
#include <string>
#include <vector>

// The options that several commands have. An empty value, as from an unset variable of a shell, is
// an error that names the option.
namespace marlune::tool {

// An option with a value that must not be empty.
CLI::Option* addTextOption(CLI::App& command, const char* option, std::string& value,
                           const std::string& help);

CLI::Option* addSoundsOption(CLI::App& command, std::string& value);
CLI::Option* addOverridesOption(CLI::App& command, std::string& value);
CLI::Option* addGrammarOption(CLI::App& command, std::string& value);
CLI::Option* addNameOption(CLI::App& command, std::string& value);
void addPhrases(CLI::App& command, std::vector<std::string>& phrases);

// What is wrong with an empty value.
inline constexpr const char* kEmptyValue = "the value is empty";

// The option among the arguments that is given as "--option=", with nothing behind the sign; ""
// where there is none. The parser of options takes the next argument for its value.
std::string optionWithoutValue(int argc, const char* const* argv);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_OPTIONS_H_
