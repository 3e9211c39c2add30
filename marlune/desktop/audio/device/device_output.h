#ifndef MARLUNE_DESKTOP_AUDIO_DEVICE_DEVICE_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_DEVICE_DEVICE_OUTPUT_H_

#include <memory>

#include "marlune/desktop/audio/output/audio_output.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// Options for the sound device.
struct MARLUNE_API DeviceOptions {
  // Seconds of sound that a PulseAudio server buffers. More tolerates a busier machine; less
  // reduces the delay until a call is audible. At least 0.01, at most 2. Other devices buffer about
  // 0.04 s.
  double bufferSeconds = 0.08;
};

// The machine's sound device: a running PulseAudio server (or PipeWire's), otherwise the default
// device through SDL. Never starts a server. If a server refuses the stream or does not answer, the
// opening fails: SDL would use the same server and fail, too. If the environment variable
// SDL_AUDIODRIVER names a driver other than pulseaudio, only SDL is used.
//
// Only a PulseAudio server receives the session's role. Libraries are loaded at the first opening.
// In a build without sound devices every opening fails.
//
// Threads: any; for the output see AudioOutput.
MARLUNE_API std::shared_ptr<AudioOutput> makeDeviceOutput(const DeviceOptions& options = {});

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_DEVICE_DEVICE_OUTPUT_H_
