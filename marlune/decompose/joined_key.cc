#include "marlune/decompose/joined_key.h"

#include <cstring>

#include "marlune/decompose/key_hash.h"

namespace marlune {

namespace {

constexpr std::size_t kShort = 16;
constexpr std::uint64_t kOnes = 0x0101010101010101u;

// Nonzero if any byte of `bytes` equals `c`.
constexpr std::uint64_t found(std::uint64_t bytes, unsigned char c) {
  const std::uint64_t zeroWhereFound = bytes ^ (kOnes * c);
  return (zeroWhereFound - kOnes) & ~zeroWhereFound & (kOnes << 7);
}

constexpr bool hasMark(std::uint64_t bytes) {
  return (found(bytes, ' ') | found(bytes, '_') | found(bytes, '[')) != 0;
}

void copyShort(char* to, const char* from, std::size_t count) {
  if (count >= 8) {
    const std::uint64_t first = key_hash::load64(from);
    const std::uint64_t last = key_hash::load64(from + count - 8);
    std::memcpy(to, &first, 8);
    std::memcpy(to + count - 8, &last, 8);
  } else if (count >= 4) {
    const std::uint32_t first = key_hash::load32(from);
    const std::uint32_t last = key_hash::load32(from + count - 4);
    std::memcpy(to, &first, 4);
    std::memcpy(to + count - 4, &last, 4);
  } else {
    for (std::size_t i = 0; i < count; ++i) to[i] = from[i];
  }
}

// Appends a word in the form it has in a key: " " becomes "_", and a "_" before a "[" is dropped.
// Returns the new end.
char* appendWord(char* to, std::string_view word) {
  char* const begin = to;
  for (const char c : word) {
    if (c == '[' && to != begin && to[-1] == '_') --to;
    *to++ = c == ' ' ? '_' : c;
  }
  return to;
}

bool isPlain(std::string_view word) {
  return !word.empty() && word[0] != '[' && word.find_first_of(" _") == std::string_view::npos;
}

// Most words are short and contain no special character: these are one piece, copied and hashed in
// one step. Clears `plain` if the word is not plain.
char* appendAndRead(char* to, const std::string& word, key_hash::Reader& reader, bool& plain) {
  if (word.size() <= kShort) {
    const key_hash::Bytes bytes = key_hash::loadShort(word.data(), word.size());
    if (!hasMark(bytes.first) && !hasMark(bytes.last)) [[likely]] {
      if (word.empty()) {
        plain = false;
        return to;
      }
      copyShort(to, word.data(), word.size());
      reader.addPiece(word.data(), word.size());
      return to + word.size();
    }
  }
  plain = plain && isPlain(word);
  char* const end = appendWord(to, word);
  reader.addText({to, static_cast<std::size_t>(end - to)});
  return end;
}

}  // namespace

void JoinedKey::_makeRoomFor(std::span<const std::string> words) {
  std::size_t size = words.size();
  for (const std::string& word : words) size += word.size();
  if (size > _text.size()) _text.resize(size);
  if (words.size() > _words.size()) _words.resize(words.size());
}

void JoinedKey::join(std::span<const std::string> words) {
  _makeRoomFor(words);
  key_hash::Reader reader;
  _isPlain = true;
  char* const begin = _text.data();
  char* end = begin;
  Word* next = _words.data();
  for (const std::string& word : words) {
    // No separator before the first word, and none before a bracket.
    if (next != _words.data() && !word.starts_with('[')) {
      *end++ = '_';
      reader.addSeparator();
    }
    next->begin = static_cast<std::size_t>(end - begin);
    next->hashAtBegin = reader.hash;
    next->piecesAtBegin = reader.pieces;
    end = appendAndRead(end, word, reader, _isPlain);
    next->end = static_cast<std::size_t>(end - begin);
    next->hashAtEnd = reader.hash;
    next->piecesAtEnd = reader.pieces;
    ++next;
  }
  _size = static_cast<std::size_t>(end - begin);
  _hash = reader.hash;
  _pieces = reader.pieces;
}

void JoinedKey::prepareSlices() {
  if (_powers.empty()) _powers.push_back(1);
  while (_powers.size() <= _pieces) _powers.push_back(_powers.back() * key_hash::kBase);
}

std::string decompositionKey(std::span<const std::string> words) {
  JoinedKey key;
  key.join(words);
  return std::string(key.text());
}

}  // namespace marlune
