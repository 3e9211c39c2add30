#include "marlune/desktop/audio/device/pulse_stream.h"

#include <algorithm>
#include <utility>

namespace marlune {

namespace {

// Request a quarter of the buffer at a time: the server then holds one quarter itself, and half of
// the buffer is in reserve if the client is late.
constexpr double kRequestsInBuffer = 4;
// How long close waits for the server: longer than a busy server takes, too short to notice.
constexpr double kCloseSeconds = 0.25;
// Upper bound on the reported latency, so that a wrong report cannot keep recordings from ending.
constexpr std::uint64_t kMaxLatencySeconds = 2;
constexpr double kMicroseconds = 1e6;

// Holds the loop's lock for the scope.
class LoopLock {
 public:
  LoopLock(const PulseLibrary& pulse, pa_threaded_mainloop* loop) : _pulse(pulse), _loop(loop) {
    _pulse.loopLock(_loop);
  }
  ~LoopLock() { _pulse.loopUnlock(_loop); }
  LoopLock(const LoopLock&) = delete;
  LoopLock& operator=(const LoopLock&) = delete;

 private:
  const PulseLibrary& _pulse;
  pa_threaded_mainloop* const _loop;
};

std::size_t frameBytes(const pa_sample_spec& spec) { return sizeof(float) * spec.channels; }

}  // namespace

PulseStream::PulseStream(AudioSource& source, Options options,
                         std::shared_ptr<std::atomic<std::uint64_t>> gaps)
    : _options(std::move(options)), _gaps(std::move(gaps)) {
  gate.setSource(&source);
}

void PulseStream::openFor(DeviceHandover& caller) {
  if (!caller.isGivenUp()) _open();
  if (!caller.offer()) close();
}

void PulseStream::_open() {
  const auto library = PulseLibrary::shared();
  if (!library.succeeded()) {
    _failure = library.failure();
    return;
  }
  _pulse = library.value();
  _loop = _pulse->loopNew();
  if (!_loop || _pulse->loopStart(_loop) < 0) {
    _failure = Failure::unavailable("The sound server's client thread could not be started.");
  } else {
    const LoopLock lock(*_pulse, _loop);
    _isOpen = _connect() && _startStream();
    if (!_isOpen) _failure = _cause();
  }
  if (!_isOpen) _release();
}

// Does not start a server: it would inherit the app's open files and outlive the app.
bool PulseStream::_connect() {
  _context = _pulse->contextNew(_pulse->loopApi(_loop), /*name=*/nullptr);
  if (!_context) return false;
  _pulse->contextOnState(
      _context, [](pa_context*, void* user) { _onState(*static_cast<PulseStream*>(user)); }, this);
  if (_pulse->contextConnect(_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) return false;
  const bool isReady =
      _waitUntil([this] { return _pulse->contextState(_context) == PA_CONTEXT_READY; },
                 _options.patienceSeconds);
  _hasFoundServer = isReady || _isTimeUp;
  return isReady;
}

bool PulseStream::_startStream() {
  _askForRate();
  if (!_waitUntil([this] { return _isRateKnown; }, _options.patienceSeconds)) return false;
  pa_proplist* const properties = _pulse->propertiesNew();
  if (!properties) return false;
  if (!_options.role.empty()) {
    _pulse->propertiesSet(properties, PA_PROP_MEDIA_ROLE, _options.role.c_str());
  }
  _stream = _pulse->streamNew(_context, "Speech", &_spec, nullptr, properties);
  _pulse->propertiesFree(properties);
  return _stream && _connectStream();
}

bool PulseStream::_connectStream() {
  _pulse->streamOnState(
      _stream, [](pa_stream*, void* user) { _onState(*static_cast<PulseStream*>(user)); }, this);
  _pulse->streamOnWrite(_stream, &_onWrite, this);
  _pulse->streamOnUnderflow(
      _stream, [](pa_stream*, void* user) { static_cast<PulseStream*>(user)->_gaps->fetch_add(1); },
      this);
  const pa_buffer_attr attributes = _bufferAttributes();
  return _pulse->streamConnect(_stream, nullptr, &attributes, PA_STREAM_ADJUST_LATENCY, nullptr,
                               nullptr) >= 0 &&
         _waitUntil([this] { return _pulse->streamState(_stream) == PA_STREAM_READY; },
                    _options.patienceSeconds);
}

pa_buffer_attr PulseStream::_bufferAttributes() const {
  const auto bytes = [this](double seconds) {
    return static_cast<std::uint32_t>(seconds * _spec.rate) *
           static_cast<std::uint32_t>(frameBytes(_spec));
  };
  constexpr auto kServersChoice = static_cast<std::uint32_t>(-1);
  pa_buffer_attr attributes = {};
  attributes.maxlength = kServersChoice;
  attributes.tlength = bytes(_options.bufferSeconds);
  attributes.prebuf = kServersChoice;
  attributes.minreq = bytes(_options.bufferSeconds / kRequestsInBuffer);
  attributes.fragsize = kServersChoice;  // for recording only
  return attributes;
}

// At the sink's own rate recordings are converted here, in better quality than by the server. If
// the server does not answer, the stream keeps its rate and the server converts.
void PulseStream::_askForRate() {
  pa_operation* const operation =
      _pulse->contextSinkInfo(_context, "@DEFAULT_SINK@", &_onSink, this);
  if (operation) _pulse->operationUnref(operation);
  _isRateKnown = !operation;
}

void PulseStream::_onSink(pa_context*, const pa_sink_info* sink, int end, void* user) {
  PulseStream& self = *static_cast<PulseStream*>(user);
  if (end == 0) {
    self._spec.rate = sink->sample_spec.rate;
    return;
  }
  self._isRateKnown = true;
  self._pulse->loopSignal(self._loop, 0);
}

// Waits for the condition. Returns false if the connection breaks or time runs out first.
template <typename Condition>
bool PulseStream::_waitUntil(Condition isMet, double seconds) {
  const auto onTime = [](pa_mainloop_api*, pa_time_event*, const timeval*, void* user) {
    PulseStream& self = *static_cast<PulseStream*>(user);
    self._isTimeUp = true;
    self._pulse->loopSignal(self._loop, 0);
  };
  _isTimeUp = false;
  const pa_usec_t end = _pulse->now() + static_cast<pa_usec_t>(seconds * kMicroseconds);
  pa_time_event* const timer = _pulse->contextTimer(_context, end, onTime, this);
  while (!isMet() && !_isBroken() && !_isTimeUp) _pulse->loopWait(_loop);
  _pulse->loopApi(_loop)->time_free(timer);
  return isMet();
}

bool PulseStream::_isBroken() const {
  return !PA_CONTEXT_IS_GOOD(_pulse->contextState(_context)) ||
         (_stream && !PA_STREAM_IS_GOOD(_pulse->streamState(_stream)));
}

Failure PulseStream::_cause() const {
  if (_isTimeUp) return Failure::unavailable("The sound server does not answer.");
  const int error = _context ? _pulse->contextError(_context) : PA_ERR_INTERNAL;
  return Failure::unavailable(std::string("The sound server refused the stream: ") +
                              _pulse->errorText(error) + ".");
}

void PulseStream::_onState(PulseStream& self) {
  if (!PA_CONTEXT_IS_GOOD(self._pulse->contextState(self._context))) {
    self._loss = Loss::ofServer;
  } else if (self._stream && !PA_STREAM_IS_GOOD(self._pulse->streamState(self._stream))) {
    self._loss = Loss::ofStream;
  }
  self._pulse->loopSignal(self._loop, 0);
}

void PulseStream::_onWrite(pa_stream*, std::size_t bytes, void* user) {
  PulseStream& self = *static_cast<PulseStream*>(user);
  while (self._writeSome(bytes)) {
  }
  self._askForTiming();
}

// Writes up to `bytes` and subtracts what was written. Returns false when no further whole frame is
// wanted.
bool PulseStream::_writeSome(std::size_t& bytes) {
  const std::size_t frameSize = frameBytes(_spec);
  if (bytes < frameSize) return false;
  void* room = nullptr;
  std::size_t size = bytes;
  if (_pulse->streamBeginWrite(_stream, &room, &size) < 0 || !room) return false;
  const std::size_t frames = std::min(size, bytes) / frameSize;
  if (frames == 0) {
    _pulse->streamCancelWrite(_stream);
    return false;
  }
  // Counted before they are taken: latencyFrames() must include every frame its caller has counted.
  _framesTaken.fetch_add(frames);
  gate.render(static_cast<float*>(room), frames, _spec.channels);
  _pulse->streamWrite(_stream, room, frames * frameSize, nullptr, 0, PA_SEEK_RELATIVE);
  bytes -= frames * frameSize;
  return true;
}

void PulseStream::_askForTiming() {
  if (_isTimingAsked) return;
  pa_operation* const operation = _pulse->streamUpdateTiming(_stream, &_onTiming, this);
  _isTimingAsked = operation != nullptr;
  if (operation) _pulse->operationUnref(operation);
}

// The position heard when the server answered. Do not interpolate from it: if the server falls
// behind, frames would count as played that were not, and the close that follows would cut them
// off.
void PulseStream::_onTiming(pa_stream*, int, void* user) {
  PulseStream& self = *static_cast<PulseStream*>(user);
  self._isTimingAsked = false;
  const pa_timing_info* const timing = self._pulse->streamTiming(self._stream);
  if (!timing || timing->read_index_corrupt) return;
  const auto left = static_cast<std::int64_t>(timing->read_index) /
                    static_cast<std::int64_t>(frameBytes(self._spec));
  const auto inSink = static_cast<std::int64_t>(static_cast<double>(timing->sink_usec) *
                                                self._spec.rate / kMicroseconds);
  const auto taken = static_cast<std::int64_t>(self._framesTaken.load());
  const std::int64_t heard = std::clamp<std::int64_t>(left - inSink, 0, taken);
  if (static_cast<std::uint64_t>(heard) > self._framesHeard.load()) {
    self._framesHeard = static_cast<std::uint64_t>(heard);
  }
}

// One request more than is in flight: the caller may count frames that are taken during this call.
std::size_t PulseStream::latencyFrames() const {
  const std::uint64_t heard = _framesHeard.load();  // read first: it only grows
  const auto request =
      static_cast<std::uint64_t>(_options.bufferSeconds / kRequestsInBuffer * _spec.rate);
  return static_cast<std::size_t>(std::min<std::uint64_t>(_framesTaken.load() - heard + request,
                                                          kMaxLatencySeconds * _spec.rate));
}

std::optional<Failure> PulseStream::loss() const {
  switch (_loss.load()) {
    case Loss::none:
      return std::nullopt;
    case Loss::ofServer:
      return Failure::unavailable("The sound server is gone.");
    case Loss::ofStream:
      return Failure::unavailable("The sound server has ended the stream.");
  }
  return std::nullopt;
}

void PulseStream::close() {
  if (!std::exchange(_isOpen, false)) return;
  {
    const LoopLock lock(*_pulse, _loop);
    _pulse->streamOnWrite(_stream, nullptr, nullptr);
    _pulse->streamOnUnderflow(_stream, nullptr, nullptr);
    if (pa_operation* const flush = _pulse->streamFlush(_stream, nullptr, nullptr)) {
      _pulse->operationUnref(flush);
    }
    _pulse->streamDisconnect(_stream);
    _waitUntil([this] { return _pulse->streamState(_stream) == PA_STREAM_TERMINATED; },
               kCloseSeconds);
  }
  _release();
}

void PulseStream::_release() {
  if (!_loop) return;
  {
    const LoopLock lock(*_pulse, _loop);
    if (_context) _pulse->contextDisconnect(_context);
  }
  _pulse->loopStop(_loop);
  if (_stream) _pulse->streamUnref(std::exchange(_stream, nullptr));
  if (_context) _pulse->contextUnref(std::exchange(_context, nullptr));
  _pulse->loopFree(std::exchange(_loop, nullptr));
}

}  // namespace marlune
