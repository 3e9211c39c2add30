#include "marlune/decompose/decomposer.h"

#include <span>
#include <utility>

#include "marlune/decompose/decomposer_implementation.h"
#include "marlune/util/describable.h"
#include "marlune/util/tq_utils.h"

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

}  // namespace

std::unique_ptr<Decomposer> Decomposer::initWithDirectory(
    std::string_view directory, std::shared_ptr<const ResourceBundle> bundle) {
  return std::unique_ptr<Decomposer>(new Decomposer(directory, std::move(bundle)));
}

Decomposer::Decomposer(std::string_view directory, std::shared_ptr<const ResourceBundle> bundle)
    : _implementation(std::make_unique<Implementation>(*this, directory, std::move(bundle))) {}

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
  return _implementation->optimalDecompositionOf(words, isSubsetOfWhole);
}

std::optional<std::vector<std::size_t>> Decomposer::uncoveredWordsOf(
    const std::vector<std::string>& words) const {
  return _implementation->uncoveredWordsOf(words);
}

std::vector<std::string> Decomposer::namesWithoutRecording(
    const std::vector<std::string>& files) const {
  return _implementation->namesWithoutRecording(files);
}

std::shared_ptr<DecomposerOverrides> Decomposer::delegate() const {
  return _implementation->delegate();
}

void Decomposer::setDelegate(std::weak_ptr<DecomposerOverrides> delegate) {
  _implementation->setDelegate(std::move(delegate));
}

const std::vector<std::string>& Decomposer::availableSoundFiles() const {
  return _implementation->availableSoundFiles();
}

}  // namespace marlune
