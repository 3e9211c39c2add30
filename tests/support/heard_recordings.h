#ifndef MARLUNE_TESTS_SUPPORT_HEARD_RECORDINGS_H_
#define MARLUNE_TESTS_SUPPORT_HEARD_RECORDINGS_H_

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "marlune/desktop/audio/base/sample_conversion.h"
#include "marlune/desktop/audio/recording/clip_decoder.h"

namespace marlune {

// Finds complete recordings in an output's frames, in any format. Use from one thread at a time.
class HeardRecordings {
 public:
  using Samples = std::vector<short>;

  // Sets the conditions of the output's next opening, while it is closed: frames are `paths` in
  // `format`. Forgets frames that were taken but not heard.
  void prepare(const std::vector<std::string>& paths, AudioFormat format,
               std::size_t latencyFrames) {
    Voice& voice = _voices[{format.sampleRate, format.channels}];
    for (std::size_t i = voice.size(); i < paths.size(); ++i) {
      voice.push_back(_decoded(paths[i], format));
      for (std::size_t k = 0; k < i; ++k) {
        if (voice[k][0] == voice[i][0]) throw std::logic_error("two recordings begin alike");
      }
    }
    _nextVoice = &voice;
    _channels = static_cast<std::size_t>(format.channels);
    _latencyFrames = latencyFrames;
    _whole.resize(paths.size());
    _endings.clear();
  }

  // Takes `count` frames, of which the first `sounding` are sound.
  void take(const float* frames, std::size_t count, std::size_t sounding) {
    // After an opening without sound, the recording under way may continue in the next one.
    if (sounding > 0 && std::exchange(_voice, _nextVoice) != _nextVoice) _current = nullptr;
    for (std::size_t i = 0; i < sounding; ++i) {
      _take(static_cast<short>(
                std::lrintf(std::clamp(frames[i * _channels] * 32'768.0f, -32'768.0f, 32'767.0f))),
            _taken + i + 1);
    }
    _taken += count;
    while (!_endings.empty() && _endings.front().first + _latencyFrames <= _taken) {
      ++_whole[_endings.front().second];
      _endings.pop_front();
    }
  }

  // How often each recording was heard completely, indexed as in `paths`.
  const std::vector<std::size_t>& whole() const { return _whole; }
  std::size_t strangeFrames() const { return _strangeFrames; }  // frames outside all recordings

 private:
  using Voice = std::vector<Samples>;

  static Samples _decoded(const std::string& path, AudioFormat format) {
    auto opened = ClipDecoder::open(path);
    if (!opened.succeeded()) throw std::runtime_error(opened.failure().message);
    const std::unique_ptr<ClipDecoder> decoder = std::move(opened.value());
    if (auto failure = decoder->convertTo(format)) throw std::runtime_error(failure->message);
    Samples samples;
    SoundBlock block;
    do {
      decoder->fill(block);
      for (std::size_t i = 0; i < block.frames; ++i) {
        const std::size_t first = i * static_cast<std::size_t>(format.channels);
        samples.push_back(block.hasShorts ? block.shorts[first]
                                          : shortFromFloat(block.samples[first]));
      }
    } while (!block.endsItem);
    return samples;
  }

  void _take(short sample, std::uint64_t takenAt) {
    if (!_current || (*_current)[_position] != sample) _begin(sample);
    if (!_current) {
      ++_strangeFrames;
    } else if (++_position == _current->size()) {
      _endings.emplace_back(takenAt, static_cast<std::size_t>(_current - _voice->data()));
      _current = nullptr;
    }
  }

  void _begin(short sample) {
    const auto place = std::find_if(_voice->begin(), _voice->end(),
                                    [&](const Samples& each) { return each[0] == sample; });
    _current = place == _voice->end() ? nullptr : &*place;
    _position = 0;
  }

  std::map<std::pair<int, int>, Voice> _voices;  // by rate and channels
  const Voice* _voice = nullptr;                 // the voice of the last sound
  const Voice* _nextVoice = nullptr;             // the voice of the next sound
  std::size_t _channels = 1;
  std::size_t _latencyFrames = 0;
  std::uint64_t _taken = 0;
  const Samples* _current = nullptr;  // the recording being taken; _position is the progress in it
  std::size_t _position = 0;
  std::deque<std::pair<std::uint64_t, std::size_t>> _endings;  // when it was taken, and the
                                                               // recording's index
  std::vector<std::size_t> _whole;
  std::size_t _strangeFrames = 0;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_HEARD_RECORDINGS_H_
