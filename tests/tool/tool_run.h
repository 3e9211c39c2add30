#ifndef MARLUNE_TESTS_TOOL_TOOL_RUN_H_
#define MARLUNE_TESTS_TOOL_TOOL_RUN_H_

#include <string>
#include <vector>

#include "support/program_run.h"

namespace marlune {

using ToolRun = ProgramRun;

// Runs the built `marlune`.
inline ToolRun runTool(const std::vector<std::string>& arguments, const std::string& input = "") {
  return runProgram(MARLUNE_TOOL_PATH, arguments, input);
}

}  // namespace marlune

#endif  // MARLUNE_TESTS_TOOL_TOOL_RUN_H_
