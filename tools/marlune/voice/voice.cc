#include "tools/marlune/voice/voice.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>

#include "marlune/platform/open_file.h"
#include "tools/marlune/input/input_error.h"
#include "tools/marlune/streams/report.h"
#include "tools/marlune/voice/case_hints.h"
#include "tools/marlune/voice/overrides_file.h"

namespace marlune::tool {

namespace {

// Length in words of the longest recording considered when explaining a failure.
constexpr std::size_t kLongestPart = 10;

void requireFolder(const std::string& folder) {
  const FileDescriptor descriptor(openFile(folder.c_str(), O_RDONLY | O_DIRECTORY));
  if (!descriptor.isOpen()) throw InputError(folder + ": " + std::strerror(errno));
}

}  // namespace

Voice::Voice(const std::string& folder, const std::string& overridesPath)
    : _bundle(std::make_shared<FolderBundle>(folder)) {
  requireFolder(folder);
  _decomposer = Decomposer::initWithDirectory("", _bundle);
  if (_decomposer->availableSoundFiles().empty()) {
    throw InputError(folder + ": this folder contains no recordings (*.aif)");
  }
  if (overridesPath.empty()) return;
  const Overrides overrides = readOverridesFile(overridesPath);
  _overrides = DecomposerDelegate::initWithWholeOverrides(overrides.whole, overrides.parts);
  _decomposer->setDelegate(_overrides);
}

Voice::Answer Voice::filesFor(const Words& words) {
  const std::shared_ptr<const Words> files = _decomposer->optimalDecompositionOf(words);
  if (!files) return {nullptr, _reasonAgainst(words)};
  const Words missing = _decomposer->namesWithoutRecording(*files);
  if (!missing.empty()) {
    return {nullptr, "the overrides name recordings that do not exist: " + quoted(missing)};
  }
  return {files, ""};
}

std::string Voice::_reasonAgainst(const Words& words) {
  if (words.empty()) return "there is nothing to say";
  const auto gaps = _decomposer->uncoveredWordsOf(words);
  if (!gaps) return "it is too long to be decomposed";
  if (gaps->empty()) {
    return _overrides
               ? "the overrides use more recordings than there are words"
               : "another phrase with the same key, its words joined by \"_\", cannot be said";
  }
  Words missing, dependent;
  for (const std::size_t gap : *gaps) {
    if (missing.size() > kMostQuoted) break;
    Words& names = _isCovered(words, gap) ? dependent : missing;
    const bool isNew = std::find(names.begin(), names.end(), words[gap]) == names.end();
    if (isNew && names.size() <= kMostQuoted) names.push_back(words[gap]);
  }
  if (!missing.empty()) return "no recording of " + quoted(missing) + _caseHint(missing);
  return "no separate recording of " + quoted(dependent);
}

std::string Voice::_caseHint(const Words& missing) const {
  const Words names = namesDifferingByCase(missing, _decomposer->availableSoundFiles());
  if (names.empty()) return "";
  return "; " + quoted(names) + (names.size() == 1 ? " differs" : " differ") + " only by case";
}

bool Voice::_isCovered(const Words& words, std::size_t index) {
  const std::size_t first = index < kLongestPart ? 0 : index - kLongestPart + 1;
  for (std::size_t from = first; from <= index; ++from) {
    const std::size_t last = std::min(words.size(), from + kLongestPart);
    for (std::size_t to = index + 1; to <= last; ++to) {
      const Words part(words.begin() + static_cast<std::ptrdiff_t>(from),
                       words.begin() + static_cast<std::ptrdiff_t>(to));
      if (_decomposer->uncoveredWordsOf(part)->empty()) return true;
    }
  }
  return false;
}

}  // namespace marlune::tool
