#include "marlune/desktop/audio/device/sdl_library.h"

namespace marlune {

Result<const SdlLibrary*> SdlLibrary::shared() {
  static LoadedLibrary library("libSDL2-2.0.so.0");
  static const SdlLibrary functions(library);
  return library.offering(functions);
}

SdlLibrary::SdlLibrary(LoadedLibrary& library) {
  library.find("SDL_SetHint", setHint);
  library.find("SDL_InitSubSystem", initSubSystem);
  library.find("SDL_QuitSubSystem", quitSubSystem);
  library.find("SDL_GetError", getError);
  library.find("SDL_OpenAudioDevice", openAudioDevice);
  library.find("SDL_CloseAudioDevice", closeAudioDevice);
  library.find("SDL_PauseAudioDevice", pauseAudioDevice);
  library.find("SDL_GetAudioDeviceStatus", getAudioDeviceStatus);
  // Otherwise SDL handles Ctrl-C itself.
  if (library.isComplete()) setHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
}

}  // namespace marlune
