// The least that an app needs: client FOLDER OUTPUT.wav WORD... renders the words with the
// recordings in the folder.
#include <iostream>

#include "marlune/decompose/decomposer.h"
#include "marlune/desktop/audio/file_output.h"
#include "marlune/desktop/desktop_platform.h"
#include "marlune/desktop/services/folder_bundle.h"
#include "marlune/desktop/services/run_loop.h"
#include "marlune/platform/platform.h"
#include "marlune/playback/player.h"

int main(int argc, char** argv) {
  if (argc < 4) {
    std::cerr << "usage: client FOLDER OUTPUT.wav WORD...\n";
    return 2;
  }
  const auto loop = std::make_shared<marlune::RunLoop>();
  marlune::Platform::shared().mainThread = loop;
  marlune::installDesktopAudio(std::make_shared<marlune::FileOutput>(argv[2]));

  const auto recordings = std::make_shared<marlune::FolderBundle>(argv[1]);
  const auto decomposer = marlune::Decomposer::initWithDirectory("", recordings);
  const auto player = marlune::Player::initWithDirectory("", recordings);
  const auto files =
      decomposer->optimalDecompositionOf(std::vector<std::string>(argv + 3, argv + argc));
  if (!files) {
    std::cerr << "These words cannot be said.\n";
    return 1;
  }
  player->playSoundFilesInSequence(files);
  while (player->isPlaying()) {
    loop->waitFor(0.1);
    loop->runPending();
  }
  return 0;
}
