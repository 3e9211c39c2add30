#ifndef MARLUNE_DESKTOP_AUDIO_OUTPUT_FILE_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_OUTPUT_FILE_OUTPUT_H_

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "marlune/desktop/audio/output/audio_output.h"
#include "marlune/platform/visibility.h"

namespace marlune {

class SoundFileWriter;

// Writes what is played to one 16-bit .wav or .aif file, as fast as it is decoded. Silence between
// phrases is not written. Unless a format is given, the file takes that of the first recording, so
// recordings in one 16-bit format are written sample for sample; higher resolutions are rounded.
//
// The first opening creates a draft, NAME.partial, next to the file; it is a valid sound file at
// any time. Closing renames it. Until then, and permanently if writing fails, NAME keeps its former
// contents. Sound played after a later opening is appended. With keepDraftUntilFinished(), only
// finish() renames the draft. A loss may also be detected by close, which writes the last of the
// sound. See SoundFileWriter for links, and for devices and FIFOs as the target.
//
// Threads: as for AudioOutput; finish(), draftPath() and framesWritten() on the main thread, while
// no sound is running.
class MARLUNE_API FileOutput : public AudioOutput {
 public:
  explicit FileOutput(std::string path, std::optional<AudioFormat> format = std::nullopt);
  ~FileOutput() override;

  // Call it before the first opening. For programs that render several phrases into one file.
  void keepDraftUntilFinished() { _keepsDraft = true; }
  // Closes the output and renames the draft. Returns the first failure, now or earlier, in
  // whole sentences.
  std::optional<Failure> finish();
  // The path of the draft; empty if there is none. Call it only while the output is closed.
  std::string draftPath() const;
  // The path that a draft would have.
  std::string plannedDraftPath() const;

  std::optional<Failure> open(AudioSource& source, const std::string& role) override;
  void close() override;
  AudioFormat formatForClip(const AudioFormat& clip) override;
  std::optional<Failure> loss() const override { return _loss; }
  void takeAvailable(std::size_t frames) override;

  // Frames written so far. Do not call it while sound is running.
  std::size_t framesWritten() const { return _framesWritten; }

 private:
  std::size_t _take(std::size_t frames);
  void _setUnwritable();

  const std::string _path;
  std::optional<AudioFormat> _format;
  bool _keepsDraft = false;
  std::unique_ptr<SoundFileWriter> _writer;
  AudioSource* _source = nullptr;
  std::optional<Failure> _loss;
  std::size_t _framesWritten = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_OUTPUT_FILE_OUTPUT_H_
