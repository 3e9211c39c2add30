#ifndef MARLUNE_DESKTOP_AUDIO_DEVICE_DEVICE_HANDOVER_H_
#define MARLUNE_DESKTOP_AUDIO_DEVICE_DEVICE_HANDOVER_H_

#include <atomic>

namespace marlune {

// Decides who owns a device if its opening completes at about the time the caller gives up. Each
// side makes one atomic exchange. The second one to do so owns the device: the caller uses it, the
// opener closes it.
class DeviceHandover {
 public:
  // Called by the opener when the opening has ended, successfully or not. Returns whether the
  // caller will take the device; if not, the opener must close it.
  bool offer() { return !_isMarked.exchange(true); }

  // Called by the caller when it stops waiting. Returns whether the opener has finished; if not,
  // the caller must not touch the device any more.
  bool accept() { return _isMarked.exchange(true); }

  // Whether the caller has stopped waiting. For the opener, before offer().
  bool isGivenUp() const { return _isMarked.load(); }

 private:
  std::atomic<bool> _isMarked = false;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_DEVICE_DEVICE_HANDOVER_H_
