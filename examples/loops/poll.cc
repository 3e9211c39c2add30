// An app with a poll loop of its own: the library's descriptor stands among the app's.
//
//     poll-loop VOICE OUTPUT.wav WORD...
#include <poll.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "marlune/announce.h"
#include "marlune/desktop.h"

using namespace marlune;

int main(int argc, char** argv) {
  if (argc < 4) return std::fputs("usage: poll-loop VOICE OUTPUT.wav WORD...\n", stderr), 2;
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

  pollfd descriptors[] = {{loop->fileDescriptor(), POLLIN, 0} /* and the app's own */};
  while (!isOver) {
    poll(descriptors, 1, -1);
    loop->runPending();
  }
}
