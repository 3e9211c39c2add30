#ifndef MARLUNE_GRAMMAR_COMPILED_AGENDA_H_
#define MARLUNE_GRAMMAR_COMPILED_AGENDA_H_

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace marlune {

// The rules that are still to be looked at for a phrase, as numbers in the order of application:
// a set of bits, and above it one bit for each 64 of them, so that finding the next of a few among
// thousands takes a step or two.
class CompiledAgenda {
 public:
  static constexpr std::uint32_t kDone = 0xFFFFFFFF;

  void resize(std::size_t rules) {
    _bits.assign(rules / 64 + 1, 0);
    _summary.assign(_bits.size() / 64 + 1, 0);
    _place = 0;
  }

  // A number that is there already stays there once. REQUIRES: larger than all taken out.
  void add(std::uint32_t rule) {
    _bits[rule / 64] |= std::uint64_t{1} << (rule % 64);
    _summary[rule / 4096] |= std::uint64_t{1} << (rule / 64 % 64);
  }

  // Takes out the smallest; kDone, and ready for the next phrase, when there is none.
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
  std::size_t _place = 0;  // of the first word of the summary that may hold a bit
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_AGENDA_H_
