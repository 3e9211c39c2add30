#ifndef MARLUNE_DESKTOP_AUDIO_END_THREAD_H_
#define MARLUNE_DESKTOP_AUDIO_END_THREAD_H_

#include <thread>

namespace marlune {

// Waits for the end of `thread`, which has been asked to end and owns a share of all that it uses.
// On that thread itself, which cannot be waited for there, lets it end on its own.
inline void endThread(std::thread& thread) {
  if (!thread.joinable()) return;
  if (thread.get_id() == std::this_thread::get_id()) {
    thread.detach();
  } else {
    thread.join();
  }
}

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_END_THREAD_H_
