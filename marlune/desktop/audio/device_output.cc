#include "marlune/desktop/audio/device_output.h"

#include "marlune/desktop/audio/sdl_output.h"

namespace marlune {

std::shared_ptr<AudioOutput> makeDeviceOutput() { return std::make_shared<SdlOutput>(); }

}  // namespace marlune
