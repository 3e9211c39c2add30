#ifndef MARLUNE_GRAMMAR_COMPILED_AGENDA_H_
#define MARLUNE_GRAMMAR_COMPILED_AGENDA_H_

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace marlune {

// The rules still to be tried on a phrase, as numbers in the order of application. A bit set, with
// a summary that has one bit for each 64 bits of the set, so that finding the next of a few rules
// among thousands takes a step or two.
class CompiledAgenda {
 public:
  static constexpr std::uint32_t kDone = 0xFFFFFFFF;

  void resize(std::size_t rules) {
    _bits.assign(rules / 64 + 1, 0);
    _summary.assign(_bits.size() / 64 + 1, 0);
    _place = 0;
  }

  // Adds a number; has no effect if it is already there. REQUIRES: larger than every number
  // removed.
  void add(std::uint32_t rule) {
    _bits[rule / 64] |= std::uint64_t{1} << (rule % 64);
    _summary[rule / 4096] |= std::uint64_t{1} << (rule / 64 % 64);
  }

  // Removes and returns the smallest number. When there is none, returns kDone and is ready for the
  // next phrase.
  std::uint32_t next() {
    for (; _place < _summary.size(); ++_place) {
      std::uint64_t& summary = _summary[_place];
      if (summary == 0) continue;
      const std::size_t word = _place * 64 + static_cast<std::size_t>(std::countr_zero(summary));
      std::uint64_t& bits = _bits[word];
      const auto bit = static_cast<std::size_t>(std::countr_zero(bits));
      bits &= bits - 1;
      if (bits == 0) summary &= summary - 1;
      return static_cast<std::uint32_t>(word * 64 + bit);
    }
    _place = 0;
    return kDone;
  }

  void clear() {
    std::fill(_bits.begin(), _bits.end(), 0);
    std::fill(_summary.begin(), _summary.end(), 0);
    _place = 0;
  }

 private:
  std::vector<std::uint64_t> _bits, _summary;
  std::size_t _place = 0;  // index of the first summary word that may have a bit set
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_AGENDA_H_
