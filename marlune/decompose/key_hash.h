#ifndef MARLUNE_DECOMPOSE_KEY_HASH_H_
#define MARLUNE_DECOMPOSE_KEY_HASH_H_

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// A hash of decomposition keys. The hash of any slice between two words is available without
// reading the slice's characters again.
//
// A key is divided into pieces: every "_" is one, and the text in between is cut before each "[".
// Words begin and end between two pieces, so a stretch has the same pieces wherever it occurs and
// however its words were cut. The hash is a polynomial over the hashes of the pieces, modulo 2^64.
namespace marlune::key_hash {

inline constexpr std::uint64_t kBase = 0x9e3779b97f4a7c15u;       // odd, else powers lose bits
inline constexpr std::uint64_t kSeparator = 0xd6e8feb86659fd93u;  // the hash of the piece "_"

// Up to 16 bytes as two numbers, which overlap when there are fewer bytes.
struct Bytes {
  std::uint64_t first = 0;
  std::uint64_t last = 0;
};

inline std::uint64_t load64(const char* from) {
  std::uint64_t bytes;
  std::memcpy(&bytes, from, sizeof bytes);
  return bytes;
}

inline std::uint32_t load32(const char* from) {
  std::uint32_t bytes;
  std::memcpy(&bytes, from, sizeof bytes);
  return bytes;
}

// REQUIRES: count <= 16.
inline Bytes loadShort(const char* from, std::size_t count) {
  if (count >= 8) return {load64(from), load64(from + count - 8)};
  if (count >= 4) return {load32(from), load32(from + count - 4)};
  if (count == 0) return {};
  const auto at = [from](std::size_t i) {
    return std::uint64_t{static_cast<unsigned char>(from[i])};
  };
  return {at(0) | at(count / 2) << 8 | at(count - 1) << 16, 0};
}

inline std::uint64_t mixed(const Bytes& bytes, std::uint64_t seed) {
  std::uint64_t hash =
      (bytes.first ^ seed) * 0xa0761d6478bd642fu + std::rotl(bytes.last, 29) * 0xe7037ed1a0b428dbu;
  hash ^= hash >> 32;
  return hash * 0x8ebc6af09c88c6e3u;
}

// The hash of one piece other than "_".
inline std::uint64_t ofPiece(const char* from, std::size_t count) {
  std::uint64_t seed = count * 0x589965cc75374cc3u;
  for (; count > 16; from += 16, count -= 16) {
    seed = mixed({load64(from), load64(from + 8)}, seed);
  }
  return mixed(loadShort(from, count), seed);
}

// Hashes a key from left to right.
struct Reader {
  std::uint64_t hash = 0;
  std::uint32_t pieces = 0;

  void addSeparator() { _add(kSeparator); }
  void addPiece(const char* from, std::size_t count) { _add(ofPiece(from, count)); }
  void addText(std::string_view text);

 private:
  void _add(std::uint64_t piece) {
    hash = hash * kBase + piece;
    ++pieces;
  }
};

// Adds any number of pieces; the beginning and the end of the text are cuts too.
inline void Reader::addText(std::string_view text) {
  std::size_t begin = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool separates = text[i] == '_';
    if (!separates && text[i] != '[') continue;
    if (i > begin) addPiece(text.data() + begin, i - begin);
    if (separates) addSeparator();
    begin = separates ? i + 1 : i;
  }
  if (begin < text.size()) addPiece(text.data() + begin, text.size() - begin);
}

inline std::uint64_t ofText(std::string_view text) {
  Reader reader;
  reader.addText(text);
  return reader.hash;
}

}  // namespace marlune::key_hash

#endif  // MARLUNE_DECOMPOSE_KEY_HASH_H_
