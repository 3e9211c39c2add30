#include "marlune/desktop/audio/recording/sndfile_reader.h"

namespace marlune {

namespace {

BufferedFile& fileFrom(void* user) { return *static_cast<BufferedFile*>(user); }

// A BufferedFile's operations as the library wants them; the user data is the BufferedFile.
SF_VIRTUAL_IO& operations() {
  static SF_VIRTUAL_IO operations = {
      [](void* user) { return sf_count_t{fileFrom(user).size()}; },
      [](sf_count_t offset, int whence, void* user) {
        return sf_count_t{fileFrom(user).seek(offset, whence)};
      },
      [](void* bytes, sf_count_t count, void* user) {
        return sf_count_t{fileFrom(user).read(bytes, count)};
      },
      [](const void*, sf_count_t, void*) { return sf_count_t{0}; },
      [](void* user) { return sf_count_t{fileFrom(user).position()}; }};
  return operations;
}

}  // namespace

Result<std::unique_ptr<SndfileReader>> SndfileReader::open(BufferedFile& file) {
  const auto loaded = SndfileLibrary::shared();
  if (!loaded.succeeded()) {
    return Failure::unavailable("libsndfile cannot be loaded to read it: " +
                                loaded.failure().message);
  }
  const SndfileLibrary& library = *loaded.value();
  std::unique_ptr<SndfileReader> reader(new SndfileReader(library));
  reader->_file = library.openVirtual(&operations(), SFM_READ, &reader->_info, &file);
  if (!reader->_file) return Failure::malformed(library.errorText(nullptr));
  return reader;
}

SndfileReader::~SndfileReader() {
  if (_file) _library.close(_file);
}

std::size_t SndfileReader::read(float* frames, std::size_t count) {
  const sf_count_t done = _library.readFloats(_file, frames, static_cast<sf_count_t>(count));
  return done > 0 ? static_cast<std::size_t>(done) : 0;
}

}  // namespace marlune
