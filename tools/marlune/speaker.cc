#include "tools/marlune/speaker.h"

#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <utility>

#include "marlune/desktop/audio/device_output.h"
#include "marlune/desktop/audio/file_output.h"
#include "marlune/desktop/desktop_platform.h"
#include "marlune/platform/platform.h"
#include "marlune/playback/audio_session.h"
#include "tools/marlune/input_error.h"
#include "tools/marlune/progress_line.h"

namespace marlune::tool {

namespace {

// How often a signal is looked for, and the progress line moves.
constexpr double kTickSeconds = 0.05;

void requireWritable(const std::string& path) {
  const std::filesystem::path file(path);
  const std::string extension = file.extension().string();
  if (extension != ".wav" && extension != ".aif") {
    throw InputError(path + ": the output must be a file *.wav or *.aif");
  }
  const std::string folder = file.has_parent_path() ? file.parent_path().string() : ".";
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error)) {
    throw InputError(path + ": there is no folder " + folder);
  }
  const bool exists = std::filesystem::exists(path, error);
  if (access(exists ? path.c_str() : folder.c_str(), W_OK) != 0 ||
      std::filesystem::is_directory(path, error)) {
    throw InputError(path + ": cannot be written");
  }
}

std::shared_ptr<AudioOutput> outputTo(const std::string& path) {
  if (path.empty()) return makeDeviceOutput();
  requireWritable(path);
  return std::make_shared<FileOutput>(path);
}

}  // namespace

Speaker::Speaker(std::shared_ptr<const ResourceBundle> recordings, const std::string& outputPath)
    : _output(std::make_shared<WatchedOutput>(outputTo(outputPath))) {
  Platform::shared().mainThread = _loop;
  installDesktopAudio(_output);
  _player = Player::initWithDirectory("", std::move(recordings));
}

void Speaker::say(const Words& files, const Playlist& playlist) {
  if (files.empty()) return;  // an override may say nothing; the queue would wait for something
  Interruption interruption;
  _player->playSoundFilesInSequence(files);
  _runUntilHeard(playlist, interruption);
  if (interruption.hasCome()) {
    _silence();
    interruption.passOn();
  }
  _throwFailure();
}

void Speaker::finish() {
  Platform::shared().audioSession->setActive(false);
  _throwFailure();
}

void Speaker::_throwFailure() const {
  if (const auto failure = _output->failure()) throw InputError(*failure);
}

void Speaker::_runUntilHeard(const Playlist& playlist, const Interruption& interruption) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  ProgressLine line(playlist);
  while (_player->isPlaying() && !interruption.hasCome()) {
    line.show(std::chrono::duration<double>(Clock::now() - start).count());
    _loop->waitFor(kTickSeconds);
    _loop->runPending();
  }
}

// The session is released half a second after the sound stops; the loop runs until then.
void Speaker::_silence() {
  _player->stopAllSounds();
  while (const auto seconds = _loop->secondsUntilNext()) {
    _loop->waitFor(*seconds);
    _loop->runPending();
  }
}

}  // namespace marlune::tool
