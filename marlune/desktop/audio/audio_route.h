#ifndef MARLUNE_DESKTOP_AUDIO_AUDIO_ROUTE_H_
#define MARLUNE_DESKTOP_AUDIO_AUDIO_ROUTE_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "marlune/desktop/audio/audio_output.h"
#include "marlune/desktop/audio/source_gate.h"

namespace marlune {

// A queue as the route sees it.
class RouteUser : public AudioSource {
 public:
  // Whether it would be heard if an output were open.
  virtual bool isSounding() const = 0;
};

// The way from the queues to the output, shared by the audio session, which opens and closes it,
// and the queues, of which one sounds at a time: the one that was told last to play.
class AudioRoute : private AudioSource {
 public:
  explicit AudioRoute(std::shared_ptr<AudioOutput> output) : _output(std::move(output)) {}
  ~AudioRoute() override { close(); }

  // Main thread. Opens the output, anew when it was lost; does nothing when it is open and well.
  // Returns what went wrong, as a sentence; the route is then closed.
  std::optional<std::string> open(const std::string& role);
  // Main thread. Opens a closed output again as it was opened last; does nothing before the first
  // open(). When it fails, whyClosed() says so.
  void reopen();
  // Main thread.
  void close();

  // Any thread.
  bool isOpen() const;
  std::string whyClosed() const;  // as a sentence: what the last opening was refused for, if it was
  bool isSounding() const;        // whether the user in place does
  const std::shared_ptr<AudioOutput>& output() const { return _output; }

  // Makes `user` the one that sounds. Main thread.
  void enter(RouteUser& user);
  // From the return on, `user` is not called any more. Any thread.
  void leave(const RouteUser& user);

  // Which opening of the output this is, or was while the route is closed; 0 before the first. Any
  // thread, the callback's included, for which it is that of the frames it takes.
  std::uint64_t opening() const noexcept { return _opening.load(); }

  // What the worker of a queue asks, any thread. All answer or do nothing while the route is
  // closed.
  struct State {
    std::uint64_t opening = 0;
    bool isMine = false;  // the asking user is the one that sounds
    std::size_t latencyFrames = 0;
    std::optional<double> stallLimitSeconds;
    std::optional<std::string> loss;  // why nothing is heard any more
    std::uint64_t gapCount = 0;       // see AudioOutput
  };
  std::optional<State> stateFor(const RouteUser& user) const;
  // Nothing also when the output is not in `opening` any more.
  std::optional<AudioFormat> formatForClip(const AudioFormat& clip, std::uint64_t opening);
  void takeAvailable(const RouteUser& user, std::size_t frames);

  // Records that the opened output is lost; the next open() opens it anew. Does nothing when
  // `opening` is over already.
  void setLost(std::uint64_t opening, std::string reason);

 private:
  std::size_t render(float* frames, std::size_t count, int channels) noexcept override {
    return _gate.render(frames, count, channels);
  }
  std::size_t renderShorts(short* frames, std::size_t count, int channels) noexcept override {
    return _gate.renderShorts(frames, count, channels);
  }
  void rendered() override;
  std::optional<std::string> _openLocked(const std::string& role);
  void _closeLocked();
  std::optional<std::string> _loss() const;

  const std::shared_ptr<AudioOutput> _output;
  SourceGate _gate;
  mutable std::mutex _mutex;  // never taken by the callback; for all below
  bool _isOpen = false;
  std::atomic<std::uint64_t> _opening = 0;  // changes while the output is closed
  std::optional<std::string> _lost;
  std::optional<std::string> _role;     // of the last opening; nothing before the first
  std::optional<std::string> _refusal;  // of the last opening
  mutable std::mutex _userMutex;        // inside _mutex or alone
  RouteUser* _user = nullptr;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_AUDIO_ROUTE_H_
