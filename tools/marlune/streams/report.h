#ifndef MARLUNE_TOOLS_MARLUNE_STREAMS_REPORT_H_
#define MARLUNE_TOOLS_MARLUNE_STREAMS_REPORT_H_

#include <string>
#include <string_view>

#include "tools/marlune/input/phrase_input.h"

namespace marlune::tool {

// Writes "marlune: <sentence>" and a line feed to standard error. Control characters appear as
// `shown` prints them.
void complain(std::string_view sentence);

// Reports why a phrase failed, with its text (only the start of a long one) and its line number in
// standard input.
void complainAbout(const Phrase& phrase, std::string_view reason);

// Names in quotes, separated by commas: "one", "two". After the first kMostQuoted names, " and
// others" replaces the rest.
inline constexpr std::size_t kMostQuoted = 50;
std::string quoted(const Words& names);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_STREAMS_REPORT_H_
