#include "marlune/desktop/audio/file_output.h"

#include <algorithm>
#include <string_view>

namespace marlune {

namespace {

constexpr std::size_t kFramesAtATime = 2'048;
constexpr AudioFormat kFormatOfNothing = {44'100, 1};  // of a file that nothing was played to

int containerOf(std::string_view path) {
  if (path.ends_with(".wav")) return SF_FORMAT_WAV;
  if (path.ends_with(".aif") || path.ends_with(".aiff")) return SF_FORMAT_AIFF;
  return 0;
}

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
  if (containerOf(_path) == 0) {
    return "\"" + _path + "\" ends neither in .wav nor in .aif: no sound file can be written.";
  }
  if (!_file) {
    std::string cause;
    _file = BufferedFile::openForWriting(_path, cause);
    if (!_file) return "The sound file \"" + _path + "\" cannot be written: " + cause + ".";
  }
  if (_loss) return _loss;
  _source = &source;
  return std::nullopt;
}

void FileOutput::close() {
  if (!_source) return;
  _source = nullptr;
  if (!_sound && !_format) _format = kFormatOfNothing;
  _startSound();
  if (_sound) sf_command(_sound.get(), SFC_UPDATE_HEADER_NOW, nullptr, 0);
  if (!_file->flush()) _setUnwritable();
}

AudioFormat FileOutput::formatForClip(const AudioFormat& clip) {
  if (!_format) _format = clip;
  return *_format;
}

void FileOutput::_startSound() {
  if (_sound || _loss) return;
  SF_INFO info = {};
  info.samplerate = _format->sampleRate;
  info.channels = _format->channels;
  info.format = containerOf(_path) | SF_FORMAT_PCM_16;
  _sound.reset(sf_open_virtual(&BufferedFile::operations(), SFM_WRITE, &info, _file.get()));
  if (!_sound) _loss = "The sound file \"" + _path + "\" cannot be started.";
}

void FileOutput::takeAvailable(std::size_t frames) {
  if (!_source) return;
  const int channels = _format ? _format->channels : 1;
  _frames.resize(kFramesAtATime * static_cast<std::size_t>(channels));
  do {
    const std::size_t some = std::min(frames, kFramesAtATime);
    const std::size_t sounding = _source->render(_frames.data(), some, channels);
    if (sounding > 0) _write(_frames.data(), sounding);
    frames = sounding == some ? frames - some : 0;
  } while (frames > 0 && !_loss);
}

void FileOutput::_write(const float* frames, std::size_t count) {
  _startSound();
  if (!_sound) return;
  _samples.resize(count * static_cast<std::size_t>(_format->channels));
  std::transform(frames, frames + _samples.size(), _samples.begin(), sampleFrom);
  const sf_count_t done =
      sf_writef_short(_sound.get(), _samples.data(), static_cast<sf_count_t>(count));
  _framesWritten += static_cast<std::size_t>(std::max<sf_count_t>(done, 0));
  if (done != static_cast<sf_count_t>(count)) _setUnwritable();
}

void FileOutput::_setUnwritable() {
  _loss = "The sound file \"" + _path + "\" cannot be written any further.";
}

}  // namespace marlune
