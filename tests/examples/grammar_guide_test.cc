#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "examples/worked_lines.h"
#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/parser.h"
#include "support/platform_fixture.h"
#include "support/temporary_directory.h"

namespace marlune {
namespace {

// A fenced block of the guide: its kind, its lines and its position.
struct Block {
  std::string kind;
  std::string text;
  int line = 0;
};

std::vector<Block> blocksOf(const std::string& path) {
  std::vector<Block> blocks;
  std::ifstream file(path);
  bool isInside = false;
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    if (line.starts_with("```")) {
      isInside = !isInside;
      if (isInside) blocks.push_back({line.substr(3), "", number});
    } else if (isInside) {
      blocks.back().text += line + "\n";
    }
  }
  return blocks;
}

// Runs the guide's examples in order: a grammar ("plist", the value of Main or a whole file),
// phrases for it ("rewrite"), and everything it has logged since it was loaded ("messages",
// including the error that stopped the load).
class GrammarGuideTest : public PlatformFixture {
 protected:
  void SetUp() override {
    PlatformFixture::SetUp();
    Platform::shared().propertyListReader = std::make_shared<PropertyListFile>();
  }

  void load(const Block& block) {
    const std::string path = _directory.path(std::to_string(block.line) + ".plist");
    const bool isWhole = block.text.starts_with("<plist");
    std::ofstream(path) << (isWhole ? block.text
                                    : "<plist version=\"1.0\"><dict><key>Main</key>" + block.text +
                                          "</dict></plist>");
    log->clear();
    _error.clear();
    _parser = nullptr;
    try {
      _parser = Parser::initWithPlistAtPath(path, "Main");
    } catch (const GrammarError& error) {
      _error = std::string(error.what()) + "\n";
    }
  }

  void rewrite(const Block& block) {
    ASSERT_NE(_parser, nullptr) << _error;
    std::istringstream lines(block.text);
    for (std::string line; std::getline(lines, line);) {
      const WorkedLine expected = workedLine(line);
      const auto result = _parser->resultOfRulesAppliedToStrings(wordsOf(expected.phrase));
      ASSERT_NE(result, nullptr);
      EXPECT_EQ(joined(result->stringArray()), expected.result) << line;
    }
  }

  std::string messages() const {
    std::string text;
    for (const std::string& line : log->lines()) text += line + "\n";
    return text + _error;
  }

 private:
  const TemporaryDirectory _directory;
  std::unique_ptr<Parser> _parser;
  std::string _error;
};

TEST_F(GrammarGuideTest, EveryExampleDoesWhatTheGuideSays) {
  const std::vector<Block> blocks = blocksOf(MARLUNE_SOURCE_DIR "/docs/grammar.md");
  ASSERT_GT(blocks.size(), 20U);
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    const Block& block = blocks[i];
    SCOPED_TRACE("docs/grammar.md:" + std::to_string(block.line));
    if (block.kind == "plist") {
      load(block);
    } else if (block.kind == "rewrite") {
      rewrite(block);
    } else if (block.kind == "messages") {
      EXPECT_EQ(messages(), block.text);
    } else {
      ADD_FAILURE() << "a block of kind \"" << block.kind << "\"";
    }
    const bool endsGrammar = i + 1 == blocks.size() || blocks[i + 1].kind == "plist";
    if (endsGrammar && block.kind != "messages") {
      EXPECT_EQ(messages(), "");
    }
  }
}

}  // namespace
}  // namespace marlune
