#ifndef MARLUNE_DESKTOP_AUDIO_FILE_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_FILE_OUTPUT_H_

#include <sndfile.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "marlune/desktop/audio/audio_output.h"
#include "marlune/desktop/audio/buffered_file.h"

namespace marlune {

// Writes what is played to one .wav or .aif file of 16 bits, as fast as it is decoded. Silence
// between phrases is not written. The file takes the format of the first recording unless told
// another, so recordings of one 16-bit format come out sample for sample; finer ones are rounded.
//
// The file is made anew at the first opening. Closing completes it as it stands, and what is
// played after a later opening is appended. A loss can also show then: the last sound is written.
class FileOutput : public AudioOutput {
 public:
  explicit FileOutput(std::string path, std::optional<AudioFormat> format = std::nullopt)
      : _path(std::move(path)), _format(format) {}
  ~FileOutput() override { close(); }

  std::optional<std::string> open(AudioSource& source, const std::string& role) override;
  void close() override;
  AudioFormat formatForClip(const AudioFormat& clip) override;
  std::optional<std::string> loss() const override { return _loss; }
  void takeAvailable(std::size_t frames) override;

  // Frames written so far. Not while sound is running.
  std::size_t framesWritten() const { return _framesWritten; }

 private:
  struct Closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };
  void _startSound();
  void _write(const float* frames, std::size_t count);
  void _setUnwritable();

  const std::string _path;
  std::optional<AudioFormat> _format;
  std::unique_ptr<BufferedFile> _file;      // before _sound, which writes to it until it is closed
  std::unique_ptr<SNDFILE, Closer> _sound;  // none until the format is settled
  AudioSource* _source = nullptr;
  std::optional<std::string> _loss;
  std::size_t _framesWritten = 0;
  std::vector<float> _frames;
  std::vector<short> _samples;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_FILE_OUTPUT_H_
