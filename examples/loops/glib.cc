// An app with a GLib main loop: the library's descriptor is one of its sources.
//
//     glib-loop VOICE OUTPUT.wav WORD...
#include <glib-unix.h>
#include <glib.h>

#include <cstdio>
#include <memory>

#include "marlune/announce.h"
#include "marlune/desktop.h"

using namespace marlune;

namespace {
gboolean runPending(gint, GIOCondition, gpointer loop) {
  static_cast<RunLoop*>(loop)->runPending();
  return G_SOURCE_CONTINUE;
}
}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) return std::fputs("usage: glib-loop VOICE OUTPUT.wav WORD...\n", stderr), 2;
  const auto loop = installDesktopServices();
  installDesktopAudio(std::make_shared<FileOutput>(argv[2]));
  const auto voice = std::make_shared<FolderBundle>(argv[1]);
  const auto announcer =
      Announcer::initWithParser(nullptr, Decomposer::initWithDirectory("", voice), "", voice);

  GMainLoop* const appLoop = g_main_loop_new(nullptr, FALSE);
  g_unix_fd_add(loop->fileDescriptor(), G_IO_IN, &runPending, loop.get());
  announcer->setObserver({.ended = [&](AnnouncementId, const AnnouncementEnd& end) {
    std::printf("%s\n",
                end.kind == AnnouncementEnd::Kind::finished ? "finished" : end.message.c_str());
    g_main_loop_quit(appLoop);
  }});
  announcer->say({.words = {argv + 3, argv + argc}});
  g_main_loop_run(appLoop);
  g_main_loop_unref(appLoop);
}
