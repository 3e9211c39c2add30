#include "tools/marlune/speaking/speaker.h"

#include <chrono>
#include <utility>

#include "marlune/desktop/audio/device/device_output.h"
#include "marlune/desktop/audio/queue/file_player_item.h"
#include "marlune/desktop/desktop_platform.h"
#include "marlune/platform/platform.h"
#include "marlune/playback/audio_session.h"
#include "tools/marlune/input/input_error.h"
#include "tools/marlune/input/phrase_error.h"
#include "tools/marlune/speaking/output_file.h"
#include "tools/marlune/speaking/progress_line.h"
#include "tools/marlune/streams/report.h"

namespace marlune::tool {

namespace {

// Interval for checking for signals and updating the progress line.
constexpr double kTickSeconds = 0.05;

std::string interruptedText(const FileOutput& file) {
  return "interrupted; the part that was rendered is in " + file.plannedDraftPath();
}

}  // namespace

Speaker::Speaker(std::shared_ptr<const FolderBundle> recordings, const std::string& outputPath) {
  if (!outputPath.empty()) {
    requireUsableOutput(outputPath, *recordings);
    _file = std::make_shared<FileOutput>(outputPath);
    _file->keepDraftUntilFinished();
  }
  _output = std::make_shared<WatchedOutput>(_file ? _file : makeDeviceOutput());
  Platform::shared().mainThread = _loop;
  installDesktopAudio(_output);
  _items.install(
      [this](const std::string& path) { return _queued ? _queued->takeNext(path) : nullptr; });
  Platform::shared().makeQueuePlayer = [this, make = Platform::shared().makeQueuePlayer] {
    auto queue = make();
    _queue = queue;
    return queue;
  };
  _player = Player::initWithDirectory("", std::move(recordings));
}

Speaker::~Speaker() {
  if (_file && !_output->failure() && !_file->draftPath().empty()) {
    complain("the rendering is incomplete; the part that was rendered is in " + _file->draftPath());
  }
}

void Speaker::say(const Words& files, Playlist& playlist) {
  if (files.empty()) return;  // an override may be empty; without items the queue never finishes
  if (_file && !_lastWords) _lastWords.emplace(interruptedText(*_file));
  Interruption interruption;
  _items.forget();
  _queued = &playlist;
  _player->playSoundFilesInSequence(files);
  _queued = nullptr;
  _runUntilHeard(playlist, interruption);
  if (interruption.hasCome()) {
    _silence();
    interruption.passOn();
  }
  _throwLosses(files.size());
}

void Speaker::finish() {
  Platform::shared().audioSession->setActive(false);
  if (!_file) return;
  if (const auto failure = _output->failure()) throw InputError(failure->message);
  if (const auto failure = _file->finish()) throw InputError(failure->message);
  _lastWords.reset();
}

// A lost device may come back for the next phrase: fatal only if none has ever been opened.
void Speaker::_throwLosses(std::size_t recordings) {
  if (_file || !_output->hasOpened()) {
    if (const auto failure = _output->failure()) throw InputError(failure->message);
  }
  const auto failure = _output->takeFailure();
  const std::string losses = _items.lossesAmong(recordings);
  if (!losses.empty())
    throw PhraseError("it was not played completely: " + (failure ? failure->message : losses));
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
  _awaitNewQueue(interruption);
}

// The player replaces a failed queue when its notification arrives; until then nothing can be
// queued.
void Speaker::_awaitNewQueue(const Interruption& interruption) {
  const auto hasFailed = [this] {
    const auto queue = _queue.lock();
    return queue && queue->status() == QueuePlayer::Status::failed;
  };
  while (hasFailed() && !interruption.hasCome()) {
    _loop->waitFor(kTickSeconds);
    _loop->runPending();
  }
}

// The session is released half a second after the sound stops; runs the loop until then.
void Speaker::_silence() {
  _player->stopAllSounds();
  while (const auto seconds = _loop->secondsUntilNext()) {
    _loop->waitFor(*seconds);
    _loop->runPending();
  }
}

}  // namespace marlune::tool
