#ifndef MARLUNE_DESKTOP_AUDIO_DEVICE_HANDOVER_H_
#define MARLUNE_DESKTOP_AUDIO_DEVICE_HANDOVER_H_

#include <atomic>

namespace marlune {

// Decides who owns a device when its opening ends at about the moment at which the caller loses
// patience. Each side makes one atomic exchange. The first leaves its mark; the second finds it and
// takes the device: the caller to use it, the opener to close it.
class DeviceHandover {
 public:
  // The opener, once it is done with the opening, successful or not. Returns whether the caller
  // takes the device; if not, the opener must close it.
  bool offer() { return !_isMarked.exchange(true); }

  // The caller, once it stops waiting. Returns whether the opener is done; if not, the caller must
  // not touch the device any more.
  bool accept() { return _isMarked.exchange(true); }

  // Whether the caller has stopped waiting. For the opener before offer().
  bool isGivenUp() const { return _isMarked.load(); }

 private:
  std::atomic<bool> _isMarked = false;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_DEVICE_HANDOVER_H_
