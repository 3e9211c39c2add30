#ifndef MARLUNE_TESTS_SUPPORT_ENGINE_RIG_H_
#define MARLUNE_TESTS_SUPPORT_ENGINE_RIG_H_

#include <memory>
#include <string>
#include <vector>

#include "marlune/desktop/audio/desktop_audio_session.h"
#include "marlune/desktop/audio/desktop_queue_player.h"
#include "marlune/desktop/audio/output/audio_route.h"
#include "marlune/desktop/audio/output/cranked_output.h"
#include "marlune/desktop/audio/queue/file_player_item.h"
#include "support/recordings.h"

namespace marlune {

// The queue engine on an output that the test cranks. Time passes only when the test cranks it.
class EngineRig {
 public:
  explicit EngineRig(AudioFormat format = {22'050, 1})
      : output(std::make_shared<CrankedOutput>(format)) {}

  std::shared_ptr<DesktopQueuePlayer> makeQueue() const {
    return DesktopQueuePlayer::overRoute(route);
  }
  static std::shared_ptr<FilePlayerItem> append(QueuePlayer& queue, const std::string& path) {
    auto item = std::make_shared<FilePlayerItem>(path);
    queue.insert(item, nullptr);
    return item;
  }

  // The output of `frames` frames, as 16-bit samples. Waits before until everything possible is
  // decoded, and afterwards until all consequences have happened.
  std::vector<short> crank(DesktopQueuePlayer& queue, std::size_t frames) const {
    queue.waitUntilSettled();
    std::vector<short> samples;
    for (const float value : output->crank(frames)) {
      samples.push_back(static_cast<short>(std::lrintf(value * 32'768.0f)));
    }
    queue.waitUntilSettled();
    return samples;
  }

  const std::shared_ptr<CrankedOutput> output;
  const std::shared_ptr<AudioRoute> route = std::make_shared<AudioRoute>(output);
  DesktopAudioSession session{route};
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_ENGINE_RIG_H_
