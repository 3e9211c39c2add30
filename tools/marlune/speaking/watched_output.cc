#include "tools/marlune/speaking/watched_output.h"

namespace marlune::tool {

std::optional<Failure> WatchedOutput::failure() const {
  const std::lock_guard lock(_mutex);
  return _failure;
}

std::optional<Failure> WatchedOutput::takeFailure() {
  const std::lock_guard lock(_mutex);
  return std::exchange(_failure, std::nullopt);
}

std::optional<Failure> WatchedOutput::open(AudioSource& source, const std::string& role) {
  auto failure = _noted(_output->open(source, role));
  _hasOpened = _hasOpened || !failure;
  return failure;
}

void WatchedOutput::close() {
  _output->close();
  _noted(_output->loss());
}

std::optional<Failure> WatchedOutput::loss() const { return _noted(_output->loss()); }

std::optional<Failure> WatchedOutput::_noted(std::optional<Failure> failure) const {
  if (failure) {
    const std::lock_guard lock(_mutex);
    if (!_failure) _failure = failure;
  }
  return failure;
}

}  // namespace marlune::tool
