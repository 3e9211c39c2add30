#ifndef MARLUNE_TOOLS_MARLUNE_SAY_COMMAND_H_
#define MARLUNE_TOOLS_MARLUNE_SAY_COMMAND_H_

#include <CLI/App.hpp>

#include "tools/marlune/exit_status.h"

namespace marlune::tool {

// Adds `marlune say` to the program: words in, sound out, to the device or to a file. The command
// sets `status` when it runs. Both arguments must outlive the parsing of the command line.
void addSayCommand(CLI::App& program, ExitStatus& status);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_SAY_COMMAND_H_
