#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "support/decomposition_trial.h"

// The bytes choose a voice, delegates and phrases. Checks that the decomposer equals the plain
// recursion in answers, delegate calls, lines, counted calls and remembered answers.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostBytes = 1024;
  if (size > kMostBytes) return 0;
  marlune::DecompositionTrial trial(std::string_view(reinterpret_cast<const char*>(data), size));
  if (const auto difference = trial.difference()) {
    std::fprintf(stderr, "%s\n", difference->c_str());
    std::abort();
  }
  return 0;
}
