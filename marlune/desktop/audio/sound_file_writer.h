#ifndef MARLUNE_DESKTOP_AUDIO_SOUND_FILE_WRITER_H_
#define MARLUNE_DESKTOP_AUDIO_SOUND_FILE_WRITER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "marlune/desktop/audio/audio_format.h"
#include "marlune/desktop/audio/sound_file_kind.h"

namespace marlune {

// A sound file of 16 bits in the making. Until commit() it is a draft, NAME.partial beside NAME:
// what NAME held before stays. The header is brought up to date with every write, so the draft is
// a valid sound file at any time. Symbolic links are followed first.
//
// A target that exists and is no regular file (a device, a FIFO) is written directly, from front to
// back: its header claims the greatest length, as readers of pipes expect.
class SoundFileWriter {
 public:
  // Makes the draft, or opens what is written directly; waits for the reader of a FIFO. Null when
  // that fails, and then `cause` says why, as a clause.
  static std::unique_ptr<SoundFileWriter> create(const std::string& path, SoundFileKind kind,
                                                 std::string& cause);
  // `path` with the symbolic links at its end followed, as far as they lead.
  static std::string targetOf(std::string path);
  static std::string draftPathFor(const std::string& path) { return targetOf(path) + ".partial"; }

  ~SoundFileWriter();  // writes nothing
  SoundFileWriter(const SoundFileWriter&) = delete;
  SoundFileWriter& operator=(const SoundFileWriter&) = delete;

  // Once, before any sample.
  void start(const AudioFormat& format);
  bool isStarted() const { return _format.channels != 0; }

  // Where the samples of the next frames go, in the machine's byte order, and for how many frames
  // there is room (at least one). Then, add() takes `count` of them.
  short* room() { return _buffer.get() + _used; }
  std::size_t roomFrames() const;
  bool add(std::size_t count);

  // Writes what is in the buffer. This and add() return false when something since the creation
  // could not be written, and then cause() says why, as a clause.
  bool flush();
  // Renames the draft; writing can go on behind what the file holds. Does nothing the second time,
  // or for what is written directly. False when that fails; cause() then says why.
  bool commit();
  const std::string& cause() const { return _cause; }

  // Where the draft lies; empty when there is none (any more).
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
  int _descriptor = -1;
  bool _isDirect = false;
  std::string _draftPath;
  std::string _cause;
  AudioFormat _format;
  std::unique_ptr<short[]> _buffer;
  std::size_t _used = 0;  // samples in the buffer; before the first write the header's room, too
  std::uint64_t _headerBytes = 0;
  std::uint64_t _fileBytes = 0;  // written
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_SOUND_FILE_WRITER_H_
