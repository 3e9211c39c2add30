#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "support/plist_round_trip.h"

// Checks that any bytes either are refused with one line or give a list that is equal after writing
// and rereading it as XML. The reader itself must bound depth and memory.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto fault = marlune::faultOfReading({reinterpret_cast<const char*>(data), size});
  if (fault) {
    std::fprintf(stderr, "%s\n", fault->c_str());
    std::abort();
  }
  return 0;
}
