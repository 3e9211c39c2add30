#ifndef MARLUNE_DESKTOP_AUDIO_RECORDING_SNDFILE_READER_H_
#define MARLUNE_DESKTOP_AUDIO_RECORDING_SNDFILE_READER_H_

#include <sndfile.h>

#include <cstddef>
#include <memory>

#include "marlune/desktop/audio/recording/buffered_file.h"
#include "marlune/desktop/audio/recording/sndfile_library.h"
#include "marlune/platform/failure.h"

namespace marlune {

// A file that libsndfile reads through a BufferedFile, from its first frame on.
class SndfileReader {
 public:
  // `file` must outlive the reader. Fails, with a clause, if the library cannot be loaded or cannot
  // read the file.
  static Result<std::unique_ptr<SndfileReader>> open(BufferedFile& file);

  ~SndfileReader();
  SndfileReader(const SndfileReader&) = delete;
  SndfileReader& operator=(const SndfileReader&) = delete;

  // As the library read it from the header: not checked against anything.
  const SF_INFO& info() const { return _info; }

  // Reads up to `count` frames (interleaved) and returns how many there were.
  std::size_t read(float* frames, std::size_t count);

 private:
  explicit SndfileReader(const SndfileLibrary& library) : _library(library) {}

  const SndfileLibrary& _library;
  SF_INFO _info = {};
  SNDFILE* _file = nullptr;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_RECORDING_SNDFILE_READER_H_
