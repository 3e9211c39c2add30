#ifndef MARLUNE_TESTS_SUPPORT_SMALL_STACK_H_
#define MARLUNE_TESTS_SUPPORT_SMALL_STACK_H_

#include <pthread.h>

#include <cstddef>
#include <functional>

namespace marlune {

// Runs `work` on a thread with a stack of 512 KiB, typical of an app's secondary threads, and waits
// until it ends. Under the address sanitizer, whose frames are several times as large, the stack is
// larger.
inline void onSmallStack(const std::function<void()>& work) {
#if defined(__SANITIZE_ADDRESS__)
  constexpr std::size_t kStackBytes = std::size_t{4} << 20;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
  constexpr std::size_t kStackBytes = std::size_t{4} << 20;
#else
  constexpr std::size_t kStackBytes = std::size_t{512} << 10;
#endif
#else
  constexpr std::size_t kStackBytes = std::size_t{512} << 10;
#endif
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kStackBytes);
  pthread_t thread;
  const auto run = [](void* argument) -> void* {
    (*static_cast<const std::function<void()>*>(argument))();
    return nullptr;
  };
  if (pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)) == 0) {
    pthread_join(thread, nullptr);
  }
  pthread_attr_destroy(&attributes);
}

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_SMALL_STACK_H_
