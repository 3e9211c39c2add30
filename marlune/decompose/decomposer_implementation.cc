#include "marlune/decompose/decomposer_implementation.h"

#include <algorithm>

#include "marlune/decompose/key_hash.h"
#include "marlune/decompose/phrase_gaps.h"
#include "marlune/util/tq_utils.h"
#include "marlune/util/utf16.h"

namespace marlune {

namespace {

// The last path component without its last four characters, which are ".aif": the bundle was asked
// for that type only.
std::string nameOfRecording(std::string_view path) {
  std::string_view name = path.substr(path.find_last_of('/') + 1);
  const auto extension = utf16Suffix(name, 4);
  name.remove_suffix(extension ? extension->size() : name.size());
  return std::string(name);
}

}  // namespace

Decomposer::Implementation::Implementation(Decomposer& decomposer, std::string_view directory,
                                           std::shared_ptr<const ResourceBundle> bundle)
    : _decomposer(decomposer), _bundle(std::move(bundle)) {
  _readRecordings(directory);
  // After `paths` is freed, so that the allocator consolidates now rather than on the first phrase.
  _memo.addRecordings(_availableSoundFiles);
}

void Decomposer::Implementation::_readRecordings(std::string_view directory) {
  std::vector<std::string> paths;
  if (_bundle) paths = _bundle->pathsForResourcesOfType("aif", directory);
  _availableSoundFiles.reserve(paths.size());
  for (const std::string& path : paths) _availableSoundFiles.push_back(nameOfRecording(path));
  TQUtils::forDefaultLog(ZKPlistNotificationDefault, "available sound files from '%@': %@", paths,
                         _availableSoundFiles);
}

Decomposition Decomposer::Implementation::optimalDecompositionOf(
    const std::vector<std::string>& words, bool isSubsetOfWhole) {
  _calls.add(1);
  _forgetSuperseded();
  if (const Decomposition* const files = _phrases.find(words)) return *files;
  _key.join(words);
  DecompositionMemo::Id id = _memo.find({_key.text(), _key.hash()});
  const bool isRemembered = id != 0 && _memo.state(id) != DecompositionMemo::State::open;
  if (!isRemembered) id = _search(words, isSubsetOfWhole);
  if (id == 0) return _refuse(words.size());
  Decomposition files = _memo.decomposition(id);
  _phrases.add(words, files);
  return files;
}

Decomposition Decomposer::Implementation::_refuse(std::size_t words) {
  TQUtils::log("ERROR: A phrase of %lu words and %lu bytes is too long to be decomposed.", words,
               _key.text().size());
  _key = JoinedKey();  // release the buffer, which has grown to the phrase's size
  return nullptr;
}

// We cannot tell which phrases changed, so drop them all.
void Decomposer::Implementation::_forgetSuperseded() {
  if (_memo.superseded().size() == _supersededSeen) return;
  _phrases.clear();
  _supersededSeen = _memo.superseded().size();
}

// A delegate may call this decomposer while answering. The nested call then finds no idle search
// and creates its own.
std::uint32_t Decomposer::Implementation::_search(std::span<const std::string> words,
                                                  bool isSubsetOfWhole) {
  std::unique_ptr<SplitSearch> search = std::move(_idleSearch);
  if (!search) search = std::make_unique<SplitSearch>(_decomposer, _delegate, _calls, _memo);
  const DecompositionMemo::Id id = search->run(words, _key, isSubsetOfWhole);
  if (search->isWorthKeeping()) _idleSearch = std::move(search);
  return id;
}

std::optional<std::vector<std::size_t>> Decomposer::Implementation::uncoveredWordsOf(
    std::span<const std::string> words) {
  if (words.empty()) return std::vector<std::size_t>();
  JoinedKey key;
  key.join(words);
  if (SplitSearch::isTooLong(words.size(), key.text().size())) return std::nullopt;
  key.prepareSlices();
  return PhraseGaps(_memo, key, words).positions();
}

std::vector<std::string> Decomposer::Implementation::namesWithoutRecording(
    std::span<const std::string> files) const {
  std::vector<std::string> names;
  for (const std::string& file : files) {
    const bool isRecording = _memo.isRecording(_memo.find({file, key_hash::ofText(file)}));
    if (!isRecording && std::find(names.begin(), names.end(), file) == names.end()) {
      names.push_back(file);
    }
  }
  return names;
}

std::map<std::string, Decomposition> Decomposer::Implementation::_cache() const {
  std::map<std::string, Decomposition> cache;
  _memo.forEachRemembered([&](std::string_view key, DecompositionMemo::Id id) {
    cache.emplace(key, _memo.decomposition(id));
  });
  return cache;
}

}  // namespace marlune
