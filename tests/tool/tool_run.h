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

// Runs `marlune` from a shell script in which "$@" is the program with these arguments.
inline ToolRun runToolIn(const std::string& script, const std::vector<std::string>& arguments,
                         const std::string& input = "") {
  std::vector<std::string> all{"-c", script, "sh", MARLUNE_TOOL_PATH};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return runProgram("/bin/sh", all, input);
}

}  // namespace marlune

#endif  // MARLUNE_TESTS_TOOL_TOOL_RUN_H_
