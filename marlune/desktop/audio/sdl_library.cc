#include "marlune/desktop/audio/sdl_library.h"

#include <dlfcn.h>

namespace marlune {

const SdlLibrary* SdlLibrary::shared(std::string& cause) {
  static SdlLibrary library;
  static const bool isLoaded = library._load();
  if (isLoaded) return &library;
  cause = library._cause;
  return nullptr;
}

bool SdlLibrary::_load() {
  // Never closed: its threads may run until the process ends.
  void* const library = ::dlopen("libSDL2-2.0.so.0", RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    _cause = ::dlerror();
    return false;
  }
  const bool isWhole = _find(library, "SDL_SetHint", setHint) &&
                       _find(library, "SDL_InitSubSystem", initSubSystem) &&
                       _find(library, "SDL_QuitSubSystem", quitSubSystem) &&
                       _find(library, "SDL_GetError", getError) &&
                       _find(library, "SDL_OpenAudioDevice", openAudioDevice) &&
                       _find(library, "SDL_CloseAudioDevice", closeAudioDevice) &&
                       _find(library, "SDL_PauseAudioDevice", pauseAudioDevice) &&
                       _find(library, "SDL_GetAudioDeviceStatus", getAudioDeviceStatus);
  // Else the library takes Ctrl-C for itself.
  if (isWhole) setHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  return isWhole;
}

template <typename Function>
bool SdlLibrary::_find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(library, name));
  if (!function) _cause = ::dlerror();
  return function != nullptr;
}

}  // namespace marlune
