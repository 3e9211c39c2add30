// An app with an SDL event loop: it waits no longer than the library has work.
//
//     sdl-loop VOICE OUTPUT.wav WORD...
#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>

#include "marlune/announce.h"
#include "marlune/desktop.h"

using namespace marlune;

int main(int argc, char** argv) {
  if (argc < 4) return std::fputs("usage: sdl-loop VOICE OUTPUT.wav WORD...\n", stderr), 2;
  SDL_Init(SDL_INIT_EVENTS);
  const auto loop = installDesktopServices();
  installDesktopAudio(std::make_shared<FileOutput>(argv[2]));
  const auto voice = std::make_shared<FolderBundle>(argv[1]);
  const auto announcer =
      Announcer::initWithParser(nullptr, Decomposer::initWithDirectory("", voice), "", voice);

  bool isOver = false;
  announcer->setObserver({.ended = [&](AnnouncementId, const AnnouncementEnd& end) {
    std::printf("%s\n",
                end.kind == AnnouncementEnd::Kind::finished ? "finished" : end.message.c_str());
    isOver = true;
  }});
  announcer->say({.words = {argv + 3, argv + argc}});

  // Other threads of the library may have work for this one at any time, so a frame's time is the
  // most to wait.
  constexpr double kFrameSeconds = 0.016;
  while (!isOver) {
    const double seconds =
        std::min(loop->secondsUntilNext().value_or(kFrameSeconds), kFrameSeconds);
    SDL_Event event;
    if (SDL_WaitEventTimeout(&event, static_cast<int>(std::lround(seconds * 1'000)))) {
      if (event.type == SDL_QUIT) break;
    }
    loop->runPending();
  }
  SDL_Quit();
}
