#ifndef MARLUNE_PLATFORM_MAIN_THREAD_H_
#define MARLUNE_PLATFORM_MAIN_THREAD_H_

#include <functional>

#include "marlune/platform/visibility.h"

namespace marlune {

// The thread that the app's interface and the play queue live on, and its loop. Work runs in the
// order in which it was posted.
//
// Threads: any, at any time.
class MARLUNE_API MainThread {
 public:
  virtual ~MainThread() = default;

  // Whether the caller is on the main thread.
  virtual bool isCurrent() const = 0;

  // Runs `work` on the main thread and returns when it has finished. Runs it at once when the
  // caller is on the main thread. Returns false when the work was dropped without running, because
  // the loop has ended or the waiting thread's owner was torn down; the work then never runs. The
  // caller must not hold a lock that work on the main thread could need.
  virtual bool runAndWait(const std::function<void()>& work) = 0;

  // Runs `work` on the main thread later.
  virtual void post(std::function<void()> work) = 0;

  // Runs `work` on the main thread after `seconds`, or later if the loop is busy.
  virtual void postAfter(double seconds, std::function<void()> work) = 0;
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_MAIN_THREAD_H_
