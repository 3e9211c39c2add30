#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fakes/fake_system_log.h"
#include "marlune/grammar/compiled/grammar.h"
#include "marlune/grammar/file/grammar_file.h"
#include "marlune/grammar/model/simple_slot_sequence.h"
#include "marlune/grammar/parser.h"
#include "marlune/platform/platform.h"
#include "reference/reference_grammar.h"
#include "support/random_grammar.h"

namespace {

using Words = std::vector<std::string>;

constexpr std::size_t kMostBytes = 2048;
constexpr int kPhrases = 3;

void require(bool holds, const char* what, const marlune::Value& file, const Words& words) {
  if (holds) return;
  std::fprintf(stderr, "%s\n", marlune::formatted("%s: %@ %@", {what, file, words}).c_str());
  std::abort();
}

}  // namespace

// The bytes choose a grammar and phrases. Checks that the compiled grammar gives the same words,
// slots and lines as the plain reference.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace marlune;
  if (size > kMostBytes) return 0;
  static const auto log = std::make_shared<FakeSystemLog>();
  Platform::shared().systemLog = log;

  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  RandomGrammar random(bytes), again(bytes);
  const Value file = random.file();
  Value tree = again.file();
  while (Parser::insertStatementsFromOriginal(tree, tree)) {
  }
  GrammarFile packed(std::move(tree));
  const auto compiled = CompiledGrammar::initFromFile(packed, "Main", /*isTraced=*/false);
  reference::Grammar reference(file, "Main");
  reference.mostSteps = 20000;
  for (int i = 0; i < kPhrases; ++i) {
    const Words words = random.phrase();
    const auto expected = reference.appliedAlone(words);
    if (!expected) continue;
    log->clear();
    const auto result = compiled->appliedToStrings(words);
    require(log->lines() == reference.lines, "other lines", file, words);
    require(result->stringArray() == reference::Grammar::words(*expected), "other words", file,
            words);
    require(result->description() == reference::printed(*expected), "other slots", file, words);
  }
  return 0;
}
