#ifndef MARLUNE_TOOLS_MARLUNE_HELP_TEXTS_H_
#define MARLUNE_TOOLS_MARLUNE_HELP_TEXTS_H_

// What --help says about the options that several commands have.
namespace marlune::tool {

inline constexpr const char* kSoundsHelp = "The folder of recordings, *.aif";
inline constexpr const char* kOverridesHelp =
    "A property list with the dictionaries \"whole\" and \"parts\": key of a phrase to recordings";
inline constexpr const char* kGrammarHelp = "The grammar file, a property list";
inline constexpr const char* kNameHelp = "Which grammar of the file, such as Sports.Running";
inline constexpr const char* kPhrasesHelp =
    "Phrases, one an argument: quote one of several words; without any, one a line from standard "
    "input";

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_HELP_TEXTS_H_
