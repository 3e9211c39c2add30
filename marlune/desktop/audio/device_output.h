#ifndef MARLUNE_DESKTOP_AUDIO_DEVICE_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_DEVICE_OUTPUT_H_

#include <memory>

#include "marlune/desktop/audio/audio_output.h"

namespace marlune {

// The machine's sound device. Looks for it, and loads the libraries that it takes, at the first
// opening and not before. In a build without sound devices every opening is refused.
std::shared_ptr<AudioOutput> makeDeviceOutput();

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_DEVICE_OUTPUT_H_
