#ifndef MARLUNE_DESKTOP_AUDIO_OUTPUT_AUDIO_ROUTE_H_
#define MARLUNE_DESKTOP_AUDIO_OUTPUT_AUDIO_ROUTE_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "marlune/desktop/audio/output/audio_output.h"
#include "marlune/desktop/audio/output/source_gate.h"

namespace marlune {

// A queue, as seen by the route.
class RouteUser : public AudioSource {
 public:
  // Whether it would be audible if an output were open.
  virtual bool isSounding() const = 0;
};

// Connects the queues to the output. The audio session opens and closes it. Only one queue is
// audible at a time: the last one started.
class AudioRoute : private AudioSource {
 public:
  explicit AudioRoute(std::shared_ptr<AudioOutput> output) : _output(std::move(output)) {}
  ~AudioRoute() override { close(); }

  // Main thread. Opens the output, and reopens it if it was lost; does nothing if it is open and
  // working. After a failure, whose message is a whole sentence, the route is closed.
  std::optional<Failure> open(const std::string& role);
  // Main thread. Reopens a closed output with the role of the last opening; does nothing before the
  // first open(). After a failure, whyClosed() has the reason.
  void reopen();
  // Main thread.
  void close();

  // Any thread.
  bool isOpen() const;
  Failure whyClosed() const;  // why the last opening failed, if it did; whole sentences
  bool isSounding() const;    // of the current user
  const std::shared_ptr<AudioOutput>& output() const { return _output; }

  // Makes `user` the audible one. Main thread.
  void enter(RouteUser& user);
  // `user` is not called after this returns. Any thread.
  void leave(const RouteUser& user);

  // The number of the current opening of the output, or of the last one while the route is closed;
  // 0 before the first. Any thread, including the callback, where it identifies the opening that
  // takes the frames.
  std::uint64_t opening() const noexcept { return _opening.load(); }

  // For a queue's worker; any thread. While the route is closed, these return nothing or do
  // nothing.
  struct State {
    std::uint64_t opening = 0;
    bool isMine = false;  // the calling user is the audible one
    std::size_t latencyFrames = 0;
    std::optional<double> stallLimitSeconds;
    std::optional<Failure> loss;  // why there is no sound any more
    std::uint64_t gapCount = 0;   // see AudioOutput
  };
  std::optional<State> stateFor(const RouteUser& user) const;
  // Also nothing if `opening` is no longer the current opening.
  std::optional<AudioFormat> formatForClip(const AudioFormat& clip, std::uint64_t opening);
  void takeAvailable(const RouteUser& user, std::size_t frames);

  // Records that the opened output is lost, so that the next open() reopens it. Does nothing if
  // `opening` is no longer the current opening.
  void setLost(std::uint64_t opening, Failure reason);

 private:
  std::size_t render(float* frames, std::size_t count, int channels) noexcept override {
    return _gate.render(frames, count, channels);
  }
  std::size_t renderShorts(short* frames, std::size_t count, int channels) noexcept override {
    return _gate.renderShorts(frames, count, channels);
  }
  void rendered() override;
  std::optional<Failure> _openLocked(const std::string& role);
  void _closeLocked();
  std::optional<Failure> _loss() const;

  const std::shared_ptr<AudioOutput> _output;
  SourceGate _gate;
  mutable std::mutex _mutex;  // never locked by the callback; guards all below
  bool _isOpen = false;
  std::atomic<std::uint64_t> _opening = 0;  // changes only while the output is closed
  std::optional<Failure> _lost;
  std::optional<std::string> _role;  // of the last opening; nothing before the first
  std::optional<Failure> _refusal;   // of the last opening
  mutable std::mutex _userMutex;     // locked after _mutex, or alone
  RouteUser* _user = nullptr;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_OUTPUT_AUDIO_ROUTE_H_
