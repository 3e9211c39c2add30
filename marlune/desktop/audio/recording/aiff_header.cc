#include "marlune/desktop/audio/recording/aiff_header.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace marlune {

namespace {

// Reads big-endian fields off a piece of the file. What lies beyond its end reads as 0.
class Fields {
 public:
  Fields(BufferedFile& file, std::uint64_t offset) {
    file.seek(static_cast<std::int64_t>(offset), SEEK_SET);
    _count = file.read(_bytes.data(), static_cast<std::int64_t>(_bytes.size()));
  }
  bool has(std::int64_t count) const { return _count >= count; }
  std::uint64_t number(std::size_t at, std::size_t count) const {
    std::uint64_t value = 0;
    for (std::size_t i = at; i < at + count; ++i) {
      value = value << 8 | static_cast<unsigned char>(_bytes[i]);
    }
    return value;
  }
  std::string_view name(std::size_t at) const { return {_bytes.data() + at, 4}; }

 private:
  std::array<char, 32> _bytes = {};
  std::int64_t _count = 0;
};

// A floating-point number of 80 bits as a whole number; 0 when it is none of 31 bits.
int wholeNumber(std::uint64_t exponent, std::uint64_t mantissa) {
  constexpr std::uint64_t kExponentOfOne = 16'383;
  if (exponent < kExponentOfOne || exponent > kExponentOfOne + 30) return 0;
  const std::uint64_t shift = 63 - (exponent - kExponentOfOne);
  return mantissa << (64 - shift) == 0 ? static_cast<int>(mantissa >> shift) : 0;
}

int sampleBytesOf(std::string_view encoding, int bits) {
  static constexpr struct {
    std::string_view encodings;
    int bytes;
  } kSizes[] = {{"ulaw ULAW alaw ALAW raw ", 1},
                {"in24 42ni", 3},
                {"fl32 FL32 in32 23ni", 4},
                {"fl64 FL64", 8}};
  for (const auto& each : kSizes) {
    if (each.encodings.find(encoding) != std::string_view::npos) return each.bytes;
  }
  const bool isPlain = encoding == "NONE" || encoding == "twos" || encoding == "sowt";
  return isPlain ? (bits + 7) / 8 : 0;
}

void readCommon(const Fields& fields, bool isCompressed, AiffHeader& header) {
  const std::string_view encoding = isCompressed ? fields.name(26) : "NONE";
  header.channels = static_cast<int>(fields.number(8, 2));
  header.claimedFrames = fields.number(10, 4);
  header.bits = static_cast<int>(fields.number(14, 2));
  header.sampleRate = wholeNumber(fields.number(16, 2), fields.number(18, 8));
  header.isLittleEndian = encoding == "sowt";
  header.sampleBytes = sampleBytesOf(encoding, header.bits);
}

void readSound(const Fields& fields, std::uint64_t at, std::uint64_t fileBytes,
               AiffHeader& header) {
  const std::uint64_t offset = fields.number(8, 4);
  const std::uint64_t size = fields.number(4, 4);
  header.soundStart = at + 16 + offset;
  header.claimedBytes = size > 8 + offset ? size - 8 - offset : 0;
  const std::uint64_t rest = fileBytes > header.soundStart ? fileBytes - header.soundStart : 0;
  header.heldBytes = std::min(header.claimedBytes, rest);
}

}  // namespace

std::optional<AiffHeader> AiffHeader::read(BufferedFile& file) {
  if (!isAiff(file)) return std::nullopt;
  AiffHeader header;
  const auto fileBytes = static_cast<std::uint64_t>(file.size());
  const bool isCompressed = Fields(file, 0).name(8) == "AIFC";
  constexpr int kMaxChunks = 1'000;
  std::uint64_t at = 12;
  for (int i = 0; i < kMaxChunks && (header.channels == 0 || header.soundStart == 0); ++i) {
    const Fields fields(file, at);
    if (!fields.has(16)) break;
    if (fields.name(0) == "COMM") readCommon(fields, isCompressed, header);
    if (fields.name(0) == "SSND") readSound(fields, at, fileBytes, header);
    const std::uint64_t size = fields.number(4, 4);
    at += 8 + size + size % 2;
  }
  file.seek(0, SEEK_SET);
  if (header.channels == 0 || header.soundStart == 0) return std::nullopt;
  return header;
}

std::uint64_t AiffHeader::missingFrames(std::uint64_t heldFrames) const {
  if (sampleBytes > 0) {
    const auto frameBytes =
        static_cast<std::uint64_t>(sampleBytes) * static_cast<std::uint64_t>(channels);
    const std::uint64_t held = heldBytes / frameBytes;
    return claimedFrames > held ? claimedFrames - held : 0;
  }
  if (heldBytes == 0) return 0;
  // At the same number of bytes a frame as what is there.
  return heldFrames * (claimedBytes - heldBytes) / heldBytes;
}

bool isAiff(BufferedFile& file) {
  std::array<char, 12> header = {};
  file.read(header.data(), static_cast<std::int64_t>(header.size()));
  file.seek(0, SEEK_SET);
  const std::string_view text(header.data(), header.size());
  return text.starts_with("FORM") && (text.ends_with("AIFF") || text.ends_with("AIFC"));
}

}  // namespace marlune
