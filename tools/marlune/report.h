#ifndef MARLUNE_TOOLS_MARLUNE_REPORT_H_
#define MARLUNE_TOOLS_MARLUNE_REPORT_H_

#include <string>
#include <string_view>

#include "tools/marlune/phrase_input.h"

namespace marlune::tool {

// Writes "marlune: <sentence>" and a line feed to standard error, control characters as `shown`
// prints them.
void complain(std::string_view sentence);

// Reports why a phrase came to nothing, with its text (the start of a long one) and its line in
// standard input.
void complainAbout(const Phrase& phrase, std::string_view reason);

// Names in a row, in quotes: "one", "two". Behind the first kMostQuoted, " and others" stands for
// those that follow.
inline constexpr std::size_t kMostQuoted = 50;
std::string quoted(const Words& names);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_REPORT_H_
