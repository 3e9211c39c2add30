#include "tools/marlune/speaking/output_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "marlune/desktop/audio/output/sound_file_writer.h"
#include "tools/marlune/input/input_error.h"

namespace marlune::tool {

namespace {

void requireNoRecording(const std::string& path, const std::string& target,
                        const FolderBundle& recordings) {
  if (const auto recording = recordings.pathOfSameFile(target, "aif")) {
    throw InputError(path + ": this is a recording of the voice, " + *recording);
  }
}

void requireWritableFolder(const std::string& path, const std::string& target) {
  const std::filesystem::path parent = std::filesystem::path(target).parent_path();
  const std::string folder = parent.empty() ? "." : parent.string();
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error)) {
    throw InputError(path + ": there is no folder " + folder);
  }
  if (::access(folder.c_str(), W_OK) != 0) {
    throw InputError(path + ": the folder " + folder + " cannot be written to");
  }
}

}  // namespace

void requireUsableOutput(const std::string& path, const FolderBundle& recordings) {
  if (!soundFileKindOf(path)) throw InputError(path + ": the output must be a file *.wav or *.aif");
  const std::string target = SoundFileWriter::targetOf(path);
  struct stat file;
  const bool exists = ::stat(target.c_str(), &file) == 0;
  if (exists) requireNoRecording(path, target, recordings);
  if (!exists || S_ISREG(file.st_mode)) requireWritableFolder(path, target);
  if (exists && (S_ISDIR(file.st_mode) || ::access(target.c_str(), W_OK) != 0)) {
    throw InputError(path + ": cannot be written");
  }
}

}  // namespace marlune::tool
