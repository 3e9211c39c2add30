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
  const int descriptor = openFile(folder.c_str(), O_RDONLY | O_DIRECTORY);
  if (descriptor < 0) throw InputError(folder + ": " + std::strerror(errno));
  ::close(descriptor);
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
  // Only an override can name a missing recording: the search chooses among existing files.
  const Words missing = _overrides ? _missingAmong(*files) : Words();
  if (!missing.empty()) {
    return {nullptr, "the overrides name recordings that do not exist: " + quoted(missing)};
  }
  return {files, ""};
}

std::string Voice::_reasonAgainst(const Words& words) {
  if (words.empty()) return "there is nothing to say";
  Words missing, dependent;
  const auto isIn = [](const Words& names, const std::string& word) {
    return std::find(names.begin(), names.end(), word) != names.end();
  };
  for (std::size_t i = 0; i < words.size() && missing.size() <= kMostQuoted; ++i) {
    if (isIn(missing, words[i]) || _canSay(words, i, i + 1)) continue;
    Words& names = _isCovered(words, i) ? dependent : missing;
    if (names.size() <= kMostQuoted && !isIn(names, words[i])) names.push_back(words[i]);
  }
  if (!missing.empty()) return "no recording of " + quoted(missing) + _caseHint(missing);
  if (!dependent.empty()) return "no separate recording of " + quoted(dependent);
  if (!_overrides) return "it is too long to be decomposed";
  return "the overrides use more recordings than there are words, or it is too long to be "
         "decomposed";
}

std::string Voice::_caseHint(const Words& missing) const {
  const Words names = namesDifferingByCase(missing, _decomposer->availableSoundFiles());
  if (names.empty()) return "";
  return "; " + quoted(names) + (names.size() == 1 ? " differs" : " differ") + " only by case";
}

bool Voice::_canSay(const Words& words, std::size_t from, std::size_t to) {
  // Cached by the search that failed, so the overrides are not asked again.
  const auto start = words.begin();
  const Words part(start + static_cast<std::ptrdiff_t>(from),
                   start + static_cast<std::ptrdiff_t>(to));
  return _decomposer->optimalDecompositionOf(part, /*isSubsetOfWhole=*/true) != nullptr;
}

bool Voice::_isCovered(const Words& words, std::size_t index) {
  const std::size_t first = index < kLongestPart ? 0 : index - kLongestPart + 1;
  for (std::size_t from = first; from <= index; ++from) {
    const std::size_t last = std::min(words.size(), from + kLongestPart);
    for (std::size_t to = index + 1; to <= last; ++to) {
      if (_canSay(words, from, to)) return true;
    }
  }
  return false;
}

Words Voice::_missingAmong(const Words& files) const {
  Words missing;
  for (const std::string& name : files) {
    if (!_bundle->pathForResource(name, "aif", "")) missing.push_back(name);
  }
  return missing;
}

}  // namespace marlune::tool
