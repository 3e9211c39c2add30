#ifndef MARLUNE_DESKTOP_AUDIO_QUEUE_END_THREAD_H_
#define MARLUNE_DESKTOP_AUDIO_QUEUE_END_THREAD_H_

#include <thread>

namespace marlune {

// Joins `thread`. The thread must have been asked to end and must own a share of everything it
// uses. If called on that thread itself, detaches it instead.
inline void endThread(std::thread& thread) {
  if (!thread.joinable()) return;
  if (thread.get_id() == std::this_thread::get_id()) {
    thread.detach();
  } else {
    thread.join();
  }
}

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_QUEUE_END_THREAD_H_
