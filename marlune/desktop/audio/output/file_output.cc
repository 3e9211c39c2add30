#include "marlune/desktop/audio/output/file_output.h"

#include <algorithm>
#include <utility>

#include "marlune/desktop/audio/output/sound_file_writer.h"

namespace marlune {

namespace {

constexpr AudioFormat kFormatOfNothing = {44'100, 1};  // of a file that nothing was played to

}  // namespace

FileOutput::FileOutput(std::string path, std::optional<AudioFormat> format)
    : _path(std::move(path)), _format(format) {}

FileOutput::~FileOutput() { close(); }

std::string FileOutput::draftPath() const { return _writer ? _writer->draftPath() : ""; }

std::string FileOutput::plannedDraftPath() const { return SoundFileWriter::draftPathFor(_path); }

std::optional<Failure> FileOutput::open(AudioSource& source, const std::string&) {
  if (_loss) return _loss;
  if (!_writer) {
    const std::optional<SoundFileKind> kind = soundFileKindOf(_path);
    if (!kind) {
      return Failure::unwritable(
          "\"" + _path + "\" ends neither in .wav nor in .aif: no sound file can be written.");
    }
    auto writer = SoundFileWriter::create(_path, *kind);
    if (!writer.succeeded()) {
      return Failure::unwritable("The sound file \"" + _path +
                                 "\" cannot be written: " + writer.failure().message + ".");
    }
    _writer = std::move(writer.value());
  }
  _source = &source;
  return std::nullopt;
}

void FileOutput::close() {
  if (!_source) return;
  _source = nullptr;
  if (_loss) return;
  if (!_writer->isStarted()) _writer->start(formatForClip(kFormatOfNothing));
  if (!_writer->flush() || (!_keepsDraft && !_writer->commit())) _setUnwritable();
}

std::optional<Failure> FileOutput::finish() {
  close();
  if (_writer && !_loss && !_writer->commit()) _setUnwritable();
  return _loss;
}

AudioFormat FileOutput::formatForClip(const AudioFormat& clip) {
  if (!_format) _format = clip;
  return *_format;
}

void FileOutput::takeAvailable(std::size_t frames) {
  if (!_source) return;
  if (frames > 0 && !_writer->isStarted()) _writer->start(formatForClip(kFormatOfNothing));
  do {
    const std::size_t some = frames == 0 ? 0 : std::min(frames, _writer->roomFrames());
    frames = _take(some) == some ? frames - some : 0;
  } while (frames > 0 && !_loss);
}

// Takes up to `frames` frames and returns how many were sound. With 0 the source can still release
// its used blocks.
std::size_t FileOutput::_take(std::size_t frames) {
  const int channels = _format ? _format->channels : 1;
  short* const room = frames > 0 ? _writer->room() : nullptr;
  const std::size_t sounding = _source->renderShorts(room, frames, channels);
  if (sounding == 0) return 0;
  _framesWritten += sounding;
  if (!_writer->add(sounding)) _setUnwritable();
  return sounding;
}

void FileOutput::_setUnwritable() {
  _loss = Failure::unwritable("The sound file \"" + _path + "\" cannot be written any further: " +
                              _writer->failure().message + ".");
  const std::string& draft = _writer->draftPath();
  if (!draft.empty()) _loss->message += " The part written so far is in \"" + draft + "\".";
}

}  // namespace marlune
