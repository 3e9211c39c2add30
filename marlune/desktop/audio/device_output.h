#ifndef MARLUNE_DESKTOP_AUDIO_DEVICE_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_DEVICE_OUTPUT_H_

#include <memory>

#include "marlune/desktop/audio/audio_output.h"

namespace marlune {

// What an app may choose about the sound device.
struct DeviceOptions {
  // How many seconds of sound a PulseAudio server holds ahead. More survives a busier machine; less
  // is heard sooner after a call. At least 0.01, at most 2. Other devices hold about 0.04 s.
  double bufferSeconds = 0.08;
};

// The machine's sound device: a PulseAudio server (PipeWire's included) where one runs, and else
// the default device by way of SDL. A server is never started, and a server that refuses the stream
// or does not answer is the cause of the failure: SDL would only meet it again. Where
// SDL_AUDIODRIVER in the environment names another driver than pulseaudio, SDL alone is used.
//
// Only a PulseAudio server gets the session's role. Libraries are loaded at the first opening, not
// before. In a build without sound devices every opening is refused.
std::shared_ptr<AudioOutput> makeDeviceOutput(const DeviceOptions& options = {});

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_DEVICE_OUTPUT_H_
