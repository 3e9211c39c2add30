#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "support/plist_round_trip.h"

// Whatever the bytes, they are refused in one line or make a list that comes back equal from its
// XML form. The reader bounds depth and memory itself; that it does is part of what is tried.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto fault = marlune::faultOfReading({reinterpret_cast<const char*>(data), size});
  if (fault) {
    std::fprintf(stderr, "%s\n", fault->c_str());
    std::abort();
  }
  return 0;
}
