#include "marlune/desktop/audio/output/sound_file_kind.h"

#include <bit>

namespace marlune {

namespace {

constexpr std::uint64_t kSampleBytes = 2;

class HeaderBytes {
 public:
  explicit HeaderBytes(bool isBigEndian) : _isBigEndian(isBigEndian) {}

  HeaderBytes& text(std::string_view name) {
    _bytes += name;
    return *this;
  }
  // Appends the lowest `count` bytes of `value`.
  HeaderBytes& number(std::uint64_t value, unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
      _bytes += static_cast<char>(value >> 8 * (_isBigEndian ? count - 1 - i : i));
    }
    return *this;
  }
  std::string take() { return std::move(_bytes); }

 private:
  const bool _isBigEndian;
  std::string _bytes;
};

std::string wavHeader(std::uint64_t rate, std::uint64_t channels, std::uint64_t dataBytes) {
  constexpr std::uint64_t kRestOfHeader = 36;
  const std::uint64_t frameBytes = channels * kSampleBytes;
  HeaderBytes header(/*isBigEndian=*/false);
  header.text("RIFF").number(dataBytes + kRestOfHeader, 4).text("WAVEfmt ").number(16, 4);
  header.number(/*PCM*/ 1, 2).number(channels, 2).number(rate, 4).number(rate * frameBytes, 4);
  header.number(frameBytes, 2).number(8 * kSampleBytes, 2).text("data").number(dataBytes, 4);
  return header.take();
}

std::string aiffHeader(std::uint64_t rate, std::uint64_t channels, std::uint64_t dataBytes) {
  constexpr std::uint64_t kRestOfHeader = 46;
  // The rate is an 80-bit floating-point number: exponent, then mantissa with its leading 1.
  constexpr std::uint64_t kExponentOfTopBit = 16'383 + 63;
  const auto shift = static_cast<unsigned>(std::countl_zero(rate | 1));
  HeaderBytes header(/*isBigEndian=*/true);
  header.text("FORM").number(dataBytes + kRestOfHeader, 4).text("AIFFCOMM").number(18, 4);
  header.number(channels, 2).number(dataBytes / (channels * kSampleBytes), 4);
  header.number(8 * kSampleBytes, 2).number(kExponentOfTopBit - shift, 2);
  header.number(rate << shift, 8).text("SSND").number(dataBytes + 8, 4);
  return header.number(/*offset and block size*/ 0, 8).take();
}

}  // namespace

std::optional<SoundFileKind> soundFileKindOf(std::string_view path) {
  if (path.ends_with(".wav")) return SoundFileKind::wav;
  if (path.ends_with(".aif") || path.ends_with(".aiff")) return SoundFileKind::aiff;
  return std::nullopt;
}

std::string soundFileHeader(SoundFileKind kind, const AudioFormat& format,
                            std::uint32_t dataBytes) {
  const auto rate = static_cast<std::uint64_t>(format.sampleRate);
  const auto channels = static_cast<std::uint64_t>(format.channels);
  return kind == SoundFileKind::wav ? wavHeader(rate, channels, dataBytes)
                                    : aiffHeader(rate, channels, dataBytes);
}

}  // namespace marlune
