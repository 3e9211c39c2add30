#ifndef MARLUNE_DESKTOP_AUDIO_FILE_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_FILE_OUTPUT_H_

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "marlune/desktop/audio/audio_output.h"
#include "marlune/desktop/audio/sound_file_writer.h"

namespace marlune {

// Writes what is played to one .wav or .aif file of 16 bits, as fast as it is decoded. Silence
// between phrases is not written. The file takes the format of the first recording unless told
// another, so recordings of one 16-bit format come out sample for sample; finer ones are rounded.
//
// The first opening makes a draft, NAME.partial, beside the file; it is a valid sound file at any
// time. Closing renames it: until then, and for good when something cannot be written, NAME keeps
// what it held. What is played after a later opening is appended. With keepDraftUntilFinished()
// the draft is renamed by finish() alone. A loss can also show at the closing, which writes the
// last of the sound. See SoundFileWriter for links, and for devices and FIFOs as the target.
class FileOutput : public AudioOutput {
 public:
  explicit FileOutput(std::string path, std::optional<AudioFormat> format = std::nullopt)
      : _path(std::move(path)), _format(format) {}
  ~FileOutput() override { close(); }

  // Before the first opening. For programs that render several phrases into one file.
  void keepDraftUntilFinished() { _keepsDraft = true; }
  // Closes the output and renames the draft. Returns what went wrong, now or before, as a sentence.
  std::optional<std::string> finish();
  // Where the draft lies; empty when there is none. While the output is closed.
  std::string draftPath() const { return _writer ? _writer->draftPath() : ""; }
  // Where one would lie.
  std::string plannedDraftPath() const { return SoundFileWriter::draftPathFor(_path); }

  std::optional<std::string> open(AudioSource& source, const std::string& role) override;
  void close() override;
  AudioFormat formatForClip(const AudioFormat& clip) override;
  std::optional<std::string> loss() const override { return _loss; }
  void takeAvailable(std::size_t frames) override;

  // Frames written so far. Not while sound is running.
  std::size_t framesWritten() const { return _framesWritten; }

 private:
  std::size_t _take(std::size_t frames);
  void _setUnwritable();

  const std::string _path;
  std::optional<AudioFormat> _format;
  bool _keepsDraft = false;
  std::unique_ptr<SoundFileWriter> _writer;
  AudioSource* _source = nullptr;
  std::optional<std::string> _loss;
  std::size_t _framesWritten = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_FILE_OUTPUT_H_
