#ifndef MARLUNE_TESTS_SUPPORT_PROGRAM_RUN_H_
#define MARLUNE_TESTS_SUPPORT_PROGRAM_RUN_H_

#include <string>
#include <vector>

namespace marlune {

// The result of one run of a program.
struct ProgramRun {
  int status = -1;  // the exit status; 128 + n if signal n ended it
  std::string out;
  std::string err;
};

// Runs the program at `path` with these arguments and this standard input, without a shell, and
// waits until it ends.
ProgramRun runProgram(const char* path, const std::vector<std::string>& arguments,
                      const std::string& input = "");

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_PROGRAM_RUN_H_
