#ifndef MARLUNE_DESKTOP_AUDIO_SOUND_FILE_KIND_H_
#define MARLUNE_DESKTOP_AUDIO_SOUND_FILE_KIND_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "marlune/desktop/audio/audio_format.h"

namespace marlune {

// The kinds of sound file that can be written.
enum class SoundFileKind { wav, aiff };

// The kind that a file's ending stands for (.wav; .aif or .aiff). Nothing for any other ending.
std::optional<SoundFileKind> soundFileKindOf(std::string_view path);

// The bytes in front of `dataBytes` bytes of 16-bit samples: little-endian ones in a .wav file,
// big-endian ones in an .aif file. The length of the header depends on the kind alone, and is even.
std::string soundFileHeader(SoundFileKind kind, const AudioFormat& format, std::uint32_t dataBytes);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_SOUND_FILE_KIND_H_
