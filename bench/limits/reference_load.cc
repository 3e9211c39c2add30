#include "limits/reference_load.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <set>

#include "marlune/desktop/plist/xml_list_writer.h"
#include "marlune/testing/fake_resource_bundle.h"

namespace marlune {

namespace {

constexpr std::uint32_t kSeed = 20;
constexpr std::uint32_t kPhrases = 1000;

}  // namespace

ReferenceLoad::ReferenceLoad() {
  const std::string path = writtenGrammar(kRules, "reference");
  _parser = Parser::initWithPlistAtPath(path, "Main");
  std::filesystem::remove(path);

  const GeneratedGrammar grammar(kRules, kSeed);
  std::vector<std::vector<std::string>> rewritten;
  std::set<std::string> recordings;
  for (std::uint32_t seed = 0; seed < kPhrases; ++seed) {
    _phrases.push_back(grammar.phrase(kWords, seed));
    rewritten.push_back(_parser->resultOfRulesAppliedToStrings(_phrases.back())->stringArray());
    recordings.insert(rewritten.back().begin(), rewritten.back().end());
  }
  std::mt19937 random(kSeed);
  while (recordings.size() < kRecordings) {
    const std::vector<std::string>& words = rewritten[random() % rewritten.size()];
    std::size_t at = random() % words.size();
    const std::size_t end = std::min(words.size(), at + 2 + random() % 3);
    std::string run = words[at];
    while (++at < end) run += "_" + words[at];
    recordings.insert(run);
  }
  _recordings.assign(recordings.begin(), recordings.end());
}

std::unique_ptr<Decomposer> ReferenceLoad::newDecomposer() const {
  return Decomposer::initWithDirectory("Sounds", std::make_shared<FakeResourceBundle>(_recordings));
}

std::string ReferenceLoad::writtenGrammar(std::size_t rules, const std::string& name) {
  const auto path = std::filesystem::temp_directory_path() / ("marlune_limits_" + name + ".plist");
  std::ofstream(path, std::ios::binary)
      << *writePropertyListXml(GeneratedGrammar(rules, kSeed).file());
  return path.string();
}

}  // namespace marlune
