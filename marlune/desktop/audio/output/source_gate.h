#ifndef MARLUNE_DESKTOP_AUDIO_OUTPUT_SOURCE_GATE_H_
#define MARLUNE_DESKTOP_AUDIO_OUTPUT_SOURCE_GATE_H_

#include <algorithm>
#include <atomic>
#include <thread>

#include "marlune/desktop/audio/output/audio_source.h"

namespace marlune {

// Connects a callback that cannot be stopped to a source that can be replaced. The callback never
// waits; setSource waits for a call in progress.
class SourceGate {
 public:
  // The previous source is not called after this returns. Null: silence.
  void setSource(AudioSource* source) {
    _source.store(source);
    while (_isRendering.load()) std::this_thread::yield();
  }

  std::size_t render(float* frames, std::size_t count, int channels) noexcept {
    return _render<&AudioSource::render>(frames, count, channels);
  }
  std::size_t renderShorts(short* frames, std::size_t count, int channels) noexcept {
    return _render<&AudioSource::renderShorts>(frames, count, channels);
  }

 private:
  template <auto Render, typename Sample>
  std::size_t _render(Sample* frames, std::size_t count, int channels) noexcept {
    _isRendering.store(true);  // before _source is read: see setSource
    AudioSource* const source = _source.load();
    std::size_t sounding = 0;
    if (source) {
      sounding = (source->*Render)(frames, count, channels);
    } else {
      std::fill_n(frames, count * static_cast<std::size_t>(channels), Sample{});
    }
    _isRendering.store(false);
    return sounding;
  }

  std::atomic<AudioSource*> _source = nullptr;
  std::atomic<bool> _isRendering = false;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_OUTPUT_SOURCE_GATE_H_
