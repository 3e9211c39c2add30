#ifndef MARLUNE_TOOLS_MARLUNE_OPTIONS_H_
#define MARLUNE_TOOLS_MARLUNE_OPTIONS_H_

#include <CLI/App.hpp>
#include <string>
#include <vector>

// Options shared by several commands. An empty value, such as an unset shell variable, is an error
// that names the option.
namespace marlune::tool {

// Adds an option whose value must not be empty.
CLI::Option* addTextOption(CLI::App& command, const char* option, std::string& value,
                           const std::string& help);

CLI::Option* addSoundsOption(CLI::App& command, std::string& value);
CLI::Option* addOverridesOption(CLI::App& command, std::string& value);
CLI::Option* addGrammarOption(CLI::App& command, std::string& value);
CLI::Option* addNameOption(CLI::App& command, std::string& value);
void addVerboseOption(CLI::App& command, bool& value);
void addPhrases(CLI::App& command, std::vector<std::string>& phrases);

// The error message for an empty value.
inline constexpr const char* kEmptyValue = "the value is empty";

// Returns the first argument of the form "--option=", without the sign, or "" if there is none. The
// option parser would take the next argument as its value.
std::string optionWithoutValue(int argc, const char* const* argv);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_OPTIONS_H_
