#ifndef MARLUNE_TOOLS_MARLUNE_REWRITE_COMMAND_H_
#define MARLUNE_TOOLS_MARLUNE_REWRITE_COMMAND_H_

#include <CLI/App.hpp>

#include "tools/marlune/exit_status.h"

namespace marlune::tool {

// Adds `marlune rewrite` to the program: words in, rewritten words out. The command sets `status`
// when it runs. Both arguments must outlive the parsing of the command line.
void addRewriteCommand(CLI::App& program, ExitStatus& status);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_REWRITE_COMMAND_H_
