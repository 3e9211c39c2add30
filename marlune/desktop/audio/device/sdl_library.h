#ifndef MARLUNE_DESKTOP_AUDIO_DEVICE_SDL_LIBRARY_H_
#define MARLUNE_DESKTOP_AUDIO_DEVICE_SDL_LIBRARY_H_

#include <SDL.h>

#include "marlune/desktop/loading/loaded_library.h"

namespace marlune {

// The SDL functions in use, loaded on demand: SDL pulls in some thirty other libraries, which would
// delay programs that only render.
struct SdlLibrary {
  // Without functions, for tests that fill in stand-ins.
  SdlLibrary() = default;

  decltype(&SDL_SetHint) setHint = nullptr;
  decltype(&SDL_InitSubSystem) initSubSystem = nullptr;
  decltype(&SDL_QuitSubSystem) quitSubSystem = nullptr;
  decltype(&SDL_GetError) getError = nullptr;
  decltype(&SDL_OpenAudioDevice) openAudioDevice = nullptr;
  decltype(&SDL_CloseAudioDevice) closeAudioDevice = nullptr;
  decltype(&SDL_PauseAudioDevice) pauseAudioDevice = nullptr;
  decltype(&SDL_GetAudioDeviceStatus) getAudioDeviceStatus = nullptr;

  // Loads the library once per process.
  static Result<const SdlLibrary*> shared();

 private:
  explicit SdlLibrary(LoadedLibrary& library);
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_DEVICE_SDL_LIBRARY_H_
