#ifndef MARLUNE_DESKTOP_AUDIO_OUTPUT_SOUND_FILE_WRITER_H_
#define MARLUNE_DESKTOP_AUDIO_OUTPUT_SOUND_FILE_WRITER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "marlune/desktop/audio/base/audio_format.h"
#include "marlune/desktop/audio/output/sound_file_kind.h"
#include "marlune/platform/failure.h"
#include "marlune/platform/open_file.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// Writes a 16-bit sound file. Until commit() the file is a draft, NAME.partial next to NAME, and
// NAME keeps its former contents. Every write updates the header, so the draft is a valid sound
// file at any time. Symbolic links are resolved first.
//
// A target that exists and is not a regular file (a device, a FIFO) is written directly and
// sequentially. Its header claims the maximum length, as readers of pipes expect.
class MARLUNE_INTERNAL_API SoundFileWriter {
 public:
  // Creates the draft, or opens a target that is written directly; waits for the reader of a FIFO.
  // All failures of a writer have a clause.
  static Result<std::unique_ptr<SoundFileWriter>> create(const std::string& path,
                                                         SoundFileKind kind);
  // `path` with the symbolic links at its end resolved as far as possible.
  static std::string targetOf(std::string path);
  static std::string draftPathFor(const std::string& path) { return targetOf(path) + ".partial"; }

  // Call it once, before any sample.
  void start(const AudioFormat& format);
  bool isStarted() const { return _format.channels != 0; }

  // Where to store the samples of the next frames, in the machine's byte order, and how many frames
  // fit (at least one). add() then accepts `count` of them.
  short* room() { return _buffer.get() + _used; }
  std::size_t roomFrames() const;
  bool add(std::size_t count);

  // Writes the buffer. Like add(), returns false if anything since the creation could not be
  // written; failure() then has the reason.
  bool flush();
  // Renames the draft; later writes append to the file. Does nothing when called again, or for a
  // target that is written directly. Returns false on failure; failure() then has the reason.
  bool commit();
  const Failure& failure() const { return *_failure; }  // REQUIRES: there was one

  // The path of the draft; empty if there is none, or none any more.
  const std::string& draftPath() const { return _draftPath; }

 private:
  SoundFileWriter(std::string target, SoundFileKind kind)
      : _target(std::move(target)), _kind(kind) {}
  bool _open();
  bool _createDraft(unsigned mode);
  bool _fail(int error);
  bool _writeBuffer(std::uint64_t size);
  bool _correctHeader();
  bool _isDraftOurs() const;
  std::string _header(std::uint64_t dataBytes) const;

  const std::string _target;
  const SoundFileKind _kind;
  FileDescriptor _descriptor;
  bool _isDirect = false;
  std::string _draftPath;
  std::optional<Failure> _failure;
  AudioFormat _format;
  std::unique_ptr<short[]> _buffer;
  std::size_t _used = 0;  // samples in the buffer, plus room for the header before the first write
  std::uint64_t _headerBytes = 0;
  std::uint64_t _fileBytes = 0;  // bytes written
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_OUTPUT_SOUND_FILE_WRITER_H_
