#ifndef MARLUNE_DESKTOP_AUDIO_DEVICE_PULSE_STREAM_H_
#define MARLUNE_DESKTOP_AUDIO_DEVICE_PULSE_STREAM_H_

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "marlune/desktop/audio/base/audio_format.h"
#include "marlune/desktop/audio/device/device_handover.h"
#include "marlune/desktop/audio/device/pulse_library.h"
#include "marlune/desktop/audio/output/source_gate.h"
#include "marlune/platform/failure.h"

namespace marlune {

// One playback stream on a PulseAudio server, with its own connection and libpulse thread, from
// opening to closing. Shared by the output and the device thread, because either can be the last to
// use it.
class PulseStream {
 public:
  struct Options {
    std::string role;            // the stream's media.role; empty for none
    double bufferSeconds = 0;    // how much sound the server buffers
    double patienceSeconds = 0;  // how long the server may take to answer
  };

  // Adds underflows to `gaps`.
  PulseStream(AudioSource& source, Options options,
              std::shared_ptr<std::atomic<std::uint64_t>> gaps);
  PulseStream(const PulseStream&) = delete;
  PulseStream& operator=(const PulseStream&) = delete;

  // Device thread. Opens the stream, unless the caller has given up, and hands it over. Closes it
  // if the caller has given up by then. Never starts a server.
  void openFor(DeviceHandover& caller);
  // Device thread. Drops sound that has not been played, waits briefly for the server to answer,
  // and disconnects. Closing a closed stream does nothing.
  void close();

  // The source of the sound. Null: silence.
  SourceGate gate;

  // Only for the side that has accepted the stream.
  bool isOpen() const { return _isOpen; }
  // Whether there is a server: it answered, or it accepted the connection and has not answered yet.
  bool hasFoundServer() const { return _hasFoundServer; }
  // Why the stream is not open, as a sentence.
  const Failure& failure() const { return *_failure; }  // REQUIRES: it was not opened
  // Only while the stream is open:
  AudioFormat format() const { return {static_cast<int>(_spec.rate), _spec.channels}; }
  // Upper estimate of the frames taken from the source and not yet heard, from the server's
  // reports.
  std::size_t latencyFrames() const;
  // Why there is no sound any more, as a sentence.
  std::optional<Failure> loss() const;

 private:
  enum class Loss { none, ofServer, ofStream };

  // With the loop's lock held, unless stated otherwise.
  void _open();  // without the lock
  bool _connect();
  bool _startStream();
  bool _connectStream();
  pa_buffer_attr _bufferAttributes() const;
  void _askForRate();
  bool _isBroken() const;
  template <typename Condition>
  bool _waitUntil(Condition isMet, double seconds);
  Failure _cause() const;
  void _release();  // without the lock

  // libpulse's thread, with the loop's lock held.
  static void _onState(PulseStream& stream);
  static void _onSink(pa_context*, const pa_sink_info* sink, int end, void* user);
  static void _onWrite(pa_stream*, std::size_t bytes, void* user);
  static void _onTiming(pa_stream*, int success, void* user);
  bool _writeSome(std::size_t& bytes);
  void _askForTiming();

  const Options _options;
  const std::shared_ptr<std::atomic<std::uint64_t>> _gaps;
  // Written during opening and closing, by the device thread or under the loop's lock.
  const PulseLibrary* _pulse = nullptr;
  pa_threaded_mainloop* _loop = nullptr;
  pa_context* _context = nullptr;
  pa_stream* _stream = nullptr;
  pa_sample_spec _spec = {PA_SAMPLE_FLOAT32NE, 48'000, 2};
  bool _isRateKnown = false;
  bool _isTimeUp = false;
  bool _isOpen = false;
  bool _hasFoundServer = false;
  std::optional<Failure> _failure;  // to open it
  // libpulse's thread.
  bool _isTimingAsked = false;
  // Any thread.
  std::atomic<Loss> _loss = Loss::none;
  std::atomic<std::uint64_t> _framesTaken = 0;
  std::atomic<std::uint64_t> _framesHeard = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_DEVICE_PULSE_STREAM_H_
