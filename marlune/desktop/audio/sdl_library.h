#ifndef MARLUNE_DESKTOP_AUDIO_SDL_LIBRARY_H_
#define MARLUNE_DESKTOP_AUDIO_SDL_LIBRARY_H_

#include <SDL.h>

#include <string>

#include "marlune/desktop/audio/loaded_library.h"

namespace marlune {

// The few functions of SDL that are used, loaded when they are first wanted: the library brings
// some thirty others along, which a program that only renders should not wait for.
struct SdlLibrary {
  // Without any function, to be filled with stand-ins.
  SdlLibrary() = default;

  decltype(&SDL_SetHint) setHint = nullptr;
  decltype(&SDL_InitSubSystem) initSubSystem = nullptr;
  decltype(&SDL_QuitSubSystem) quitSubSystem = nullptr;
  decltype(&SDL_GetError) getError = nullptr;
  decltype(&SDL_OpenAudioDevice) openAudioDevice = nullptr;
  decltype(&SDL_CloseAudioDevice) closeAudioDevice = nullptr;
  decltype(&SDL_PauseAudioDevice) pauseAudioDevice = nullptr;
  decltype(&SDL_GetAudioDeviceStatus) getAudioDeviceStatus = nullptr;

  // Loads it once for the process. Null when that failed, and then `cause` says why.
  static const SdlLibrary* shared(std::string& cause);

 private:
  explicit SdlLibrary(LoadedLibrary& library);
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_SDL_LIBRARY_H_
