#include "support/program_run.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "support/temporary_directory.h"

extern char** environ;

namespace marlune {

namespace {

void check(int error) {
  if (error != 0) throw std::runtime_error("cannot run the program");
}

}  // namespace

ProgramRun runProgram(const char* path, const std::vector<std::string>& arguments,
                      const std::string& input) {
  const TemporaryDirectory folder;
  const std::string in = folder.write("in", input);
  const std::string out = folder.path("out"), err = folder.path("err");
  std::vector<char*> argv{const_cast<char*>(path)};
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);

  posix_spawn_file_actions_t files;
  check(posix_spawn_file_actions_init(&files));
  const int create = O_CREAT | O_WRONLY;
  check(posix_spawn_file_actions_addopen(&files, STDIN_FILENO, in.c_str(), O_RDONLY, 0));
  check(posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, out.c_str(), create, 0600));
  check(posix_spawn_file_actions_addopen(&files, STDERR_FILENO, err.c_str(), create, 0600));
  pid_t child = 0;
  check(posix_spawn(&child, path, &files, nullptr, argv.data(), environ));
  posix_spawn_file_actions_destroy(&files);

  int status = 0;
  if (waitpid(child, &status, 0) != child) throw std::runtime_error("the program was lost");
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return {code, TemporaryDirectory::contentOf(out), TemporaryDirectory::contentOf(err)};
}

}  // namespace marlune
