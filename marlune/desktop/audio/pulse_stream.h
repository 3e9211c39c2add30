#ifndef MARLUNE_DESKTOP_AUDIO_PULSE_STREAM_H_
#define MARLUNE_DESKTOP_AUDIO_PULSE_STREAM_H_

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "marlune/desktop/audio/audio_format.h"
#include "marlune/desktop/audio/device_handover.h"
#include "marlune/desktop/audio/pulse_library.h"
#include "marlune/desktop/audio/source_gate.h"

namespace marlune {

// A playback stream on a PulseAudio server, with its own connection and libpulse thread, from its
// opening to its closing. Shared by the output and the thread that opens and closes it, since
// either can be the last to use it.
class PulseStream {
 public:
  struct Options {
    std::string role;            // the stream's media.role; empty: none
    double bufferSeconds = 0;    // how much sound the server holds ahead
    double patienceSeconds = 0;  // how long the server may take to answer
  };

  // Underflows are added to `gaps`.
  PulseStream(AudioSource& source, Options options,
              std::shared_ptr<std::atomic<std::uint64_t>> gaps);
  PulseStream(const PulseStream&) = delete;
  PulseStream& operator=(const PulseStream&) = delete;

  // The device thread. Opens the stream, unless the caller has given up, and hands it over; closes
  // it when the caller has given up by then. Never starts a server.
  void openFor(DeviceHandover& caller);
  // The device thread. Drops the sound that has not been played yet, waits a moment for the server
  // to answer, and ends the connection. Closing a closed stream does nothing.
  void close();

  // Where the sound comes from. Null is silence.
  SourceGate gate;

  // The rest is for whoever has accepted the stream.
  bool isOpen() const { return _isOpen; }
  // Whether there is a server: it answered, or it took the connection and has not answered yet.
  bool hasFoundServer() const { return _hasFoundServer; }
  // Why it is not open, as a sentence.
  const std::string& error() const { return _error; }
  // While it is open:
  AudioFormat format() const { return {static_cast<int>(_spec.rate), _spec.channels}; }
  // By the server's own account, and at least: the frames taken from the source and not heard yet.
  std::size_t latencyFrames() const;
  // Why nothing is heard any more, as a sentence.
  std::optional<std::string> loss() const;

 private:
  enum class Loss { none, ofServer, ofStream };

  // With the loop's lock, unless said otherwise.
  void _open();  // without it
  bool _connect();
  bool _startStream();
  bool _connectStream();
  pa_buffer_attr _bufferAttributes() const;
  void _askForRate();
  bool _isBroken() const;
  template <typename Condition>
  bool _waitUntil(Condition isMet, double seconds);
  std::string _cause() const;
  void _release();  // without it

  // libpulse's thread, with the loop's lock.
  static void _onState(PulseStream& stream);
  static void _onSink(pa_context*, const pa_sink_info* sink, int end, void* user);
  static void _onWrite(pa_stream*, std::size_t bytes, void* user);
  static void _onTiming(pa_stream*, int success, void* user);
  bool _writeSome(std::size_t& bytes);
  void _askForTiming();

  const Options _options;
  const std::shared_ptr<std::atomic<std::uint64_t>> _gaps;
  // Written while it is opened and closed, by the device thread or under the loop's lock.
  const PulseLibrary* _pulse = nullptr;
  pa_threaded_mainloop* _loop = nullptr;
  pa_context* _context = nullptr;
  pa_stream* _stream = nullptr;
  pa_sample_spec _spec = {PA_SAMPLE_FLOAT32NE, 48'000, 2};
  bool _isRateKnown = false;
  bool _isTimeUp = false;
  bool _isOpen = false;
  bool _hasFoundServer = false;
  std::string _error;
  // libpulse's thread.
  bool _isTimingAsked = false;
  // Any thread.
  std::atomic<Loss> _loss = Loss::none;
  std::atomic<std::uint64_t> _framesTaken = 0;
  std::atomic<std::uint64_t> _framesHeard = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_PULSE_STREAM_H_
