#include "marlune/desktop/audio/file_output.h"

#include <algorithm>

namespace marlune {

namespace {

constexpr std::size_t kFramesAtATime = 2'048;
constexpr AudioFormat kFormatOfNothing = {44'100, 1};  // of a file that nothing was played to

// Full scale is 32768, so that what was read from 16 bits comes back as it was.
short sampleFrom(float value) {
  // Added to a value and taken off again, it leaves a whole number: floats of its size have no
  // digits behind the point. This rounds as lrintf does, but several samples at once.
  constexpr float kRounder = 12'582'912.0f;  // 1.5 × 2^23
  const float scaled = std::clamp(value * 32'768.0f, -32'768.0f, 32'767.0f);
  return static_cast<short>(static_cast<int>(scaled + kRounder - kRounder));
}

}  // namespace

std::optional<std::string> FileOutput::open(AudioSource& source, const std::string&) {
  if (_loss) return _loss;
  if (!_writer) {
    const std::optional<SoundFileKind> kind = soundFileKindOf(_path);
    if (!kind) {
      return "\"" + _path + "\" ends neither in .wav nor in .aif: no sound file can be written.";
    }
    std::string cause;
    _writer = SoundFileWriter::create(_path, *kind, cause);
    if (!_writer) return "The sound file \"" + _path + "\" cannot be written: " + cause + ".";
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

std::optional<std::string> FileOutput::finish() {
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
    const std::size_t some =
        frames == 0 ? 0 : std::min({frames, kFramesAtATime, _writer->roomFrames()});
    frames = _take(some) == some ? frames - some : 0;
  } while (frames > 0 && !_loss);
}

// Takes so many frames and returns how many were sound. Taking none still lets the source tidy up.
std::size_t FileOutput::_take(std::size_t frames) {
  const int channels = _format ? _format->channels : 1;
  _frames.resize(frames * static_cast<std::size_t>(channels));
  const std::size_t sounding = _source->render(_frames.data(), frames, channels);
  if (sounding == 0) return 0;
  const auto samples = static_cast<long>(sounding * static_cast<std::size_t>(channels));
  std::transform(_frames.begin(), _frames.begin() + samples, _writer->room(), sampleFrom);
  _framesWritten += sounding;
  if (!_writer->add(sounding)) _setUnwritable();
  return sounding;
}

void FileOutput::_setUnwritable() {
  _loss =
      "The sound file \"" + _path + "\" cannot be written any further: " + _writer->cause() + ".";
  const std::string& draft = _writer->draftPath();
  if (!draft.empty()) *_loss += " What was written until then is \"" + draft + "\".";
}

}  // namespace marlune
