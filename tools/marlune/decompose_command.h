#ifndef MARLUNE_TOOLS_MARLUNE_DECOMPOSE_COMMAND_H_
#define MARLUNE_TOOLS_MARLUNE_DECOMPOSE_COMMAND_H_

#include <CLI/App.hpp>

#include "tools/marlune/exit_status.h"

namespace marlune::tool {

// Adds `marlune decompose` to the program: words in, file names out. The command sets `status` when
// it runs. Both arguments must outlive the parsing of the command line.
void addDecomposeCommand(CLI::App& program, ExitStatus& status);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_DECOMPOSE_COMMAND_H_
