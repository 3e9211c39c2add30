#ifndef MARLUNE_DESKTOP_AUDIO_RECORDING_AIFF_HEADER_H_
#define MARLUNE_DESKTOP_AUDIO_RECORDING_AIFF_HEADER_H_

#include <cstdint>
#include <optional>

#include "marlune/desktop/audio/recording/buffered_file.h"

namespace marlune {

// What the header of an .aif or .aifc file says about its sound.
struct AiffHeader {
  int sampleRate = 0;  // 0 when it is not a whole number of 31 bits
  int channels = 0;
  int bits = 0;  // a sample
  bool isLittleEndian = false;
  int sampleBytes = 0;  // 0 for compressed sound, whose frames take no whole bytes
  std::uint64_t claimedFrames = 0;
  std::uint64_t soundStart = 0;    // byte of the file
  std::uint64_t claimedBytes = 0;  // of sound
  std::uint64_t heldBytes = 0;     // of them, what the file holds

  // Reads the header and leaves the file at its start. Nothing when it is not an AIFF file, or
  // when there is no sound in it.
  static std::optional<AiffHeader> read(BufferedFile& file);

  // How many frames the header claims beyond those that the file holds. `heldFrames` is how many
  // it holds, for compressed sound.
  std::uint64_t missingFrames(std::uint64_t heldFrames) const;
};

// Whether the file begins as an AIFF file does. Leaves it at its start.
bool isAiff(BufferedFile& file);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_RECORDING_AIFF_HEADER_H_
