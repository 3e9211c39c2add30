#include "marlune/decompose/decomposer.h"

#include <utility>

#include "marlune/decompose/decomposition_memo.h"
#include "marlune/decompose/split_search.h"
#include "marlune/util/describable.h"
#include "marlune/util/tq_utils.h"
#include "marlune/util/utf16.h"

namespace marlune {

namespace {

// Joins the words only if the line is written.
class SpokenWords : public Describable {
 public:
  explicit SpokenWords(std::span<const std::string> words) : _words(words) {}
  std::string description() const override {
    std::string text;
    for (std::size_t i = 0; i < _words.size(); ++i) {
      if (i > 0) text += ' ';
      text += _words[i];
    }
    return text;
  }

 private:
  std::span<const std::string> _words;
};

// The last path component without its last four characters, which are ".aif": the bundle was asked
// for that type only.
std::string nameOfRecording(std::string_view path) {
  std::string_view name = path.substr(path.find_last_of('/') + 1);
  const auto extension = utf16Suffix(name, 4);
  name.remove_suffix(extension ? extension->size() : name.size());
  return std::string(name);
}

}  // namespace

std::unique_ptr<Decomposer> Decomposer::initWithDirectory(
    std::string_view directory, std::shared_ptr<const ResourceBundle> bundle) {
  return std::unique_ptr<Decomposer>(new Decomposer(directory, std::move(bundle)));
}

Decomposer::Decomposer(std::string_view directory, std::shared_ptr<const ResourceBundle> bundle)
    : _bundle(std::move(bundle)), _memo(std::make_unique<DecompositionMemo>()) {
  _readRecordings(directory);
  // After `paths` is freed, so that the allocator consolidates now rather than on the first phrase.
  _memo->addRecordings(_availableSoundFiles);
}

void Decomposer::_readRecordings(std::string_view directory) {
  std::vector<std::string> paths;
  if (_bundle) paths = _bundle->pathsForResourcesOfType("aif", directory);
  _availableSoundFiles.reserve(paths.size());
  for (const std::string& path : paths) _availableSoundFiles.push_back(nameOfRecording(path));
  TQUtils::forDefaultLog(ZKPlistNotificationDefault, "available sound files from '%@': %@", paths,
                         _availableSoundFiles);
}

Decomposer::~Decomposer() = default;

Decomposition Decomposer::optimalDecompositionOf(const std::vector<std::string>& words) {
  TQUtils::forDefaultLog(ZKPlistNotificationDefault, "Attempting to say: '%@'.",
                         SpokenWords(words));
  return optimalDecompositionOf(words, /*isSubsetOfWhole=*/false);
}

Decomposition Decomposer::optimalDecompositionOf(const std::vector<std::string>* words) {
  return words ? optimalDecompositionOf(*words) : nullptr;
}

Decomposition Decomposer::optimalDecompositionOf(const std::vector<std::string>& words,
                                                 bool isSubsetOfWhole) {
  _calls.add(1);
  _forgetSuperseded();
  if (const Decomposition* const files = _phrases.find(words)) return *files;
  _key.join(words);
  DecompositionMemo::Id id = _memo->find({_key.text(), _key.hash()});
  const bool isRemembered = id != 0 && _memo->state(id) != DecompositionMemo::State::open;
  if (!isRemembered) id = _search(words, isSubsetOfWhole);
  if (id == 0) return _refuse(words.size());
  Decomposition files = _memo->decomposition(id);
  _phrases.add(words, files);
  return files;
}

Decomposition Decomposer::_refuse(std::size_t words) {
  TQUtils::log("ERROR: A phrase of %lu words and %lu bytes is too long to be decomposed.", words,
               _key.text().size());
  _key = JoinedKey();  // release the buffer, which has grown to the phrase's size
  return nullptr;
}

// We cannot tell which phrases changed, so drop them all.
void Decomposer::_forgetSuperseded() {
  if (_memo->superseded().size() == _supersededSeen) return;
  _phrases.clear();
  _supersededSeen = _memo->superseded().size();
}

// A delegate may call this decomposer while answering. The nested call then finds no idle search
// and creates its own.
std::uint32_t Decomposer::_search(std::span<const std::string> words, bool isSubsetOfWhole) {
  std::unique_ptr<SplitSearch> search = std::move(_idleSearch);
  if (!search) search = std::make_unique<SplitSearch>(*this, _delegate, _calls, *_memo);
  const DecompositionMemo::Id id = search->run(words, _key, isSubsetOfWhole);
  if (search->isWorthKeeping()) _idleSearch = std::move(search);
  return id;
}

std::map<std::string, Decomposition> Decomposer::_cache() const {
  std::map<std::string, Decomposition> cache;
  _memo->forEachRemembered([&](std::string_view key, DecompositionMemo::Id id) {
    cache.emplace(key, _memo->decomposition(id));
  });
  return cache;
}

}  // namespace marlune
