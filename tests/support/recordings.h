#ifndef MARLUNE_TESTS_SUPPORT_RECORDINGS_H_
#define MARLUNE_TESTS_SUPPORT_RECORDINGS_H_

#include <sndfile.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <stdexcept>
#include <string>
#include <vector>

#include "marlune/desktop/audio/base/audio_format.h"
#include "support/temporary_directory.h"

namespace marlune {

// A folder for generated recordings, deleted at the end.
class RecordingFolder {
 public:
  std::string path(const std::string& name) const { return _folder.path(name); }

  // Writes interleaved 16-bit samples and returns the path.
  std::string write(const std::string& name, const std::vector<short>& samples, AudioFormat format,
                    int encoding = SF_FORMAT_AIFF | SF_FORMAT_PCM_16) const {
    SF_INFO info = {};
    info.samplerate = format.sampleRate;
    info.channels = format.channels;
    info.format = encoding;
    SNDFILE* const file = sf_open(path(name).c_str(), SFM_WRITE, &info);
    if (!file) throw std::runtime_error(sf_strerror(nullptr));
    const int type = encoding & SF_FORMAT_SUBMASK;
    if (type == SF_FORMAT_FLOAT || type == SF_FORMAT_DOUBLE) {
      std::vector<float> values;
      for (const short sample : samples) values.push_back(static_cast<float>(sample) / 32'768.0f);
      sf_write_float(file, values.data(), static_cast<sf_count_t>(values.size()));
    } else {
      sf_write_short(file, samples.data(), static_cast<sf_count_t>(samples.size()));
    }
    sf_close(file);
    return path(name);
  }

  std::string writeBytes(const std::string& name, const std::vector<char>& bytes) const {
    std::ofstream(path(name), std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return path(name);
  }

 private:
  TemporaryDirectory _folder;
};

struct Sound {
  AudioFormat format;
  std::vector<short> samples;
};

inline Sound readSound(const std::string& path) {
  SF_INFO info = {};
  SNDFILE* const file = sf_open(path.c_str(), SFM_READ, &info);
  if (!file) throw std::runtime_error(path + ": " + sf_strerror(nullptr));
  std::vector<short> samples(static_cast<std::size_t>(info.frames * info.channels));
  sf_read_short(file, samples.data(), static_cast<sf_count_t>(samples.size()));
  sf_close(file);
  return {{info.samplerate, info.channels}, samples};
}

inline std::vector<char> readBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// `frames` samples of a counter that does not repeat within 65,521 samples and is never 0, so that
// lost, doubled or misplaced samples are detected.
inline std::vector<short> countingSamples(std::size_t frames, std::size_t from) {
  std::vector<short> samples;
  for (std::size_t i = from; i < from + frames; ++i) {
    const auto value = static_cast<short>(static_cast<int>(i * 7919 % 65'521) - 32'760);
    samples.push_back(value == 0 ? short{1} : value);
  }
  return samples;
}

// A sine at half of full scale from second `start` on, the same in all channels.
inline std::vector<short> sineSamples(double hertz, double start, std::size_t frames,
                                      AudioFormat format) {
  std::vector<short> samples;
  for (std::size_t i = 0; i < frames; ++i) {
    const double time = start + static_cast<double>(i) / format.sampleRate;
    const double value = 16'384 * std::sin(2 * std::numbers::pi * hertz * time);
    samples.insert(samples.end(), static_cast<std::size_t>(format.channels),
                   static_cast<short>(std::lrint(value)));
  }
  return samples;
}

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_RECORDINGS_H_
