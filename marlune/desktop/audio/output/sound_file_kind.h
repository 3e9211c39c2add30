#ifndef MARLUNE_DESKTOP_AUDIO_OUTPUT_SOUND_FILE_KIND_H_
#define MARLUNE_DESKTOP_AUDIO_OUTPUT_SOUND_FILE_KIND_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "marlune/desktop/audio/base/audio_format.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// The sound file formats that can be written.
enum class SoundFileKind { wav, aiff };

// The format for a file name's extension (.wav; .aif or .aiff). Nothing for any other extension.
MARLUNE_INTERNAL_API std::optional<SoundFileKind> soundFileKindOf(std::string_view path);

// The header for `dataBytes` bytes of 16-bit samples: little-endian in a .wav file, big-endian in
// an .aif file. Its length depends only on the format and is even.
std::string soundFileHeader(SoundFileKind kind, const AudioFormat& format, std::uint32_t dataBytes);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_OUTPUT_SOUND_FILE_KIND_H_
