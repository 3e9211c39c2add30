#include "marlune/desktop/audio/device/pulse_output.h"

#include <utility>

#include "marlune/desktop/audio/device/device_handover.h"
#include "marlune/desktop/audio/device/patient_thread.h"
#include "marlune/desktop/audio/device/pulse_stream.h"

namespace marlune {

std::optional<Failure> PulseOutput::open(AudioSource& source, const std::string& role) {
  close();
  const auto stream = std::make_shared<PulseStream>(
      source, PulseStream::Options{role, _bufferSeconds, _patienceSeconds}, _gaps);
  const auto handover = std::make_shared<DeviceHandover>();
  PatientThread::forDevices().runWithin(_patienceSeconds, [=] { stream->openFor(*handover); });
  const bool isMine = handover->accept();
  _hasFoundServer = !isMine || stream->hasFoundServer();
  if (isMine && stream->isOpen()) {
    _stream = stream;
    return std::nullopt;
  }
  stream->gate.setSource(nullptr);
  return isMine ? stream->failure() : Failure::unavailable("The sound server does not answer.");
}

void PulseOutput::close() {
  if (!_stream) return;
  _stream->gate.setSource(nullptr);
  PatientThread::forDevices().runWithin(0, [stream = std::move(_stream)] { stream->close(); });
}

AudioFormat PulseOutput::formatForClip(const AudioFormat& clip) {
  return _stream ? _stream->format() : clip;
}

std::size_t PulseOutput::latencyFrames() const { return _stream ? _stream->latencyFrames() : 0; }

std::optional<Failure> PulseOutput::loss() const {
  return _stream ? _stream->loss() : std::nullopt;
}

}  // namespace marlune
