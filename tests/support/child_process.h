#ifndef MARLUNE_TESTS_SUPPORT_CHILD_PROCESS_H_
#define MARLUNE_TESTS_SUPPORT_CHILD_PROCESS_H_

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace marlune {

// A program that runs in parallel to the test, found by the PATH. It is killed in the destructor,
// or when the thread that started it ends. Its standard output can be read; its standard error is
// dropped.
class ChildProcess {
 public:
  explicit ChildProcess(const std::vector<std::string>& command) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    std::vector<char*> arguments;
    for (const std::string& each : command) arguments.push_back(const_cast<char*>(each.c_str()));
    arguments.push_back(nullptr);
    _id = ::fork();
    if (_id == 0) _become(arguments.data(), ends[1]);
    ::close(ends[1]);
    _output = ends[0];
    if (_id < 0) throw std::runtime_error("no process");
  }
  ~ChildProcess() {
    kill();
    ::close(_output);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  void signal(int number) const {
    if (_id > 0) ::kill(_id, number);
  }
  void kill() {
    signal(SIGKILL);
    wait();
  }
  // Its exit status; -1 if a signal ended it.
  int wait() {
    int status = -1;
    if (_id > 0) ::waitpid(std::exchange(_id, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  bool hasEnded() {
    if (_id > 0 && ::waitpid(_id, nullptr, WNOHANG) == _id) _id = -1;
    return _id <= 0;
  }

  int output() const { return _output; }
  std::string readAll() const {
    std::string text;
    char bytes[4'096];
    for (ssize_t count; (count = ::read(_output, bytes, sizeof bytes)) > 0;) {
      text.append(bytes, static_cast<std::size_t>(count));
    }
    return text;
  }

 private:
  [[noreturn]] static void _become(char* const* arguments, int output) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(::open("/dev/null", O_RDWR), STDERR_FILENO);
    ::execvp(arguments[0], arguments);
    ::_exit(127);
  }

  pid_t _id = -1;
  int _output = -1;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_CHILD_PROCESS_H_
