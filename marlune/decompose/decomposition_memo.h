#ifndef MARLUNE_DECOMPOSE_DECOMPOSITION_MEMO_H_
#define MARLUNE_DECOMPOSE_DECOMPOSITION_MEMO_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/decompose/decomposition.h"

namespace marlune {

// What is known of decomposition keys, in one table: which of them name a recording, and what was
// worked out for them, failures included. Only grows.
//
// An entry is a few numbers. Its key lies in a text that is shared with the other stretches of the
// phrase; a found split is the two entries of its halves. Lists are built when handed out.
class DecompositionMemo {
 public:
  // An entry, good for the memo's lifetime; 0 is none.
  using Id = std::uint32_t;

  // A key with its hash (key_hash::ofText of the whole of it).
  struct Key {
    std::string_view text;
    std::uint64_t hash;
  };

  enum class State : std::uint8_t {
    open,      // nothing remembered
    failed,    // remembered: cannot be said
    recorded,  // one recording says it: its entry is `first`
    split,     // said by `first`, then `second`
    given      // a list from outside
  };

  // Makes the names known as recordings, and room for as many other keys: not in the middle of the
  // first phrases is the table to grow. REQUIRES: the texts outlive the memo.
  void addRecordings(std::span<const std::string> names);

  // The recording named as the key is without what stands between "[" and "]", and without these; 0
  // when there is none, or no bracket.
  Id recordingWithoutBrackets(std::string_view key);

  // The entry of the key; `findOrAdd` makes an open one, and keeps a view of the text, when there
  // is none. REQUIRES for `findOrAdd`: the text outlives the memo (see `keep`).
  Id find(const Key& key) const;
  Id findOrAdd(const Key& key);

  // The same for many keys, for whose places memory is asked at once. `ids` has room for as many.
  void findOrAdd(std::span<const Key> keys, Id* ids);

  // A copy of the text that lives as long as the memo.
  const char* keep(std::string_view text);

  State state(Id id) const { return static_cast<State>(_entry(id).state); }
  bool isRecording(Id id) const { return id != 0 && _entry(id).isRecording; }
  std::uint32_t fileCount(Id id) const { return _entry(id).fileCount; }  // 0 when failed
  std::string_view text(Id id) const { return {_entry(id).text, _entry(id).length}; }

  // Remembers the answer of an open entry.
  void answerWithFailure(Id id) { _setAnswer(_entry(id), _answer(State::failed)); }
  void answerWithRecording(Id id, Id recording) {
    _setAnswer(_entry(id), _answer(State::recorded, 1, recording));
  }
  void answerWithSplit(Id id, Id first, Id second, std::uint32_t files) {
    _setAnswer(_entry(id), _answer(State::split, files, first, second));
  }

  // Remembers what was found for the key, whose entry was `id` when the work on it began. Returns
  // the entry that now holds it. That is `id`, unless the key was answered otherwise meanwhile:
  // then the last answer counts for the key, and the entry that held the earlier one joins
  // `superseded`, still the half of whatever split was found with it.
  Id rememberFailure(Id id, const Key& key);
  Id rememberRecording(Id id, const Key& key, Id recording);
  Id rememberSplit(Id id, const Key& key, Id first, Id second);
  Id rememberGiven(Id id, const Key& key, Decomposition files);
  const std::vector<Id>& superseded() const { return _superseded; }

  // The remembered answer; null when failed. A list that was not given from outside is built anew.
  // REQUIRES: the entry is not open.
  Decomposition decomposition(Id id) const;

  // Calls back with every remembered key and its entry, in no particular order.
  void forEachRemembered(const std::function<void(std::string_view key, Id id)>& visit) const;

 private:
  struct Entry {
    const char* text = nullptr;
    std::uint32_t length = 0;
    Id first = 0;  // or, for a list from outside, its place in _given
    Id second = 0;
    std::uint32_t fileCount : 28 = 0;
    std::uint32_t state : 3 = 0;
    std::uint32_t isRecording : 1 = 0;
  };
  static constexpr std::uint32_t kMostFiles = (1u << 28) - 1;
  // Part of the hash stands beside the entry's number, so that most misses end here.
  struct Slot {
    std::uint32_t tag = 0;
    Id id = 0;
  };

  // Entries stand in blocks: a growing memo never moves them, nor holds twice what it needs.
  static constexpr std::size_t kBlock = 128;
  const Entry& _entry(Id id) const { return _blocks[id / kBlock][id % kBlock]; }
  Entry& _entry(Id id) { return _blocks[id / kBlock][id % kBlock]; }
  Id _add(const Entry& entry);

  static std::uint32_t _tag(std::uint64_t hash);
  // Where it is, or the free slot where it belongs.
  std::size_t _slotOf(std::string_view text, std::uint32_t tag) const;
  std::size_t _slotOf(const Key& key) const { return _slotOf(key.text, _tag(key.hash)); }
  Id _addAt(std::size_t slot, std::string_view text, std::uint32_t tag);
  void _makeRoomFor(std::size_t keys);
  void _makeTextBlock(std::size_t size);
  static Entry _answer(State state, std::uint32_t files = 0, Id first = 0, Id second = 0) {
    Entry answer;
    answer.first = first;
    answer.second = second;
    answer.fileCount = files & kMostFiles;
    answer.state = static_cast<std::uint32_t>(state) & 7u;
    return answer;
  }
  static void _setAnswer(Entry& entry, const Entry& answer) {
    entry.first = answer.first;
    entry.second = answer.second;
    entry.fileCount = answer.fileCount;
    entry.state = answer.state;
  }
  Id _remember(Id id, const Key& key, const Entry& answer);
  Id _supersede(const Key& key, const Entry& answer);
  std::vector<std::string> _files(const Entry& answer) const;

  std::vector<std::unique_ptr<Entry[]>> _blocks;
  std::size_t _entryCount = 1;                       // entry 0 is none, and never looked at
  std::vector<Slot> _slots = std::vector<Slot>(16);  // a power of two, at most half used
  std::size_t _used = 0;
  std::vector<Decomposition> _given;
  std::vector<Id> _superseded;
  std::vector<std::unique_ptr<char[]>> _texts;
  char* _freeText = nullptr;
  std::size_t _freeTextSize = 0;
  std::size_t _longestRecording = 0;  // in bytes
  std::string _stripped;
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_DECOMPOSITION_MEMO_H_
