#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "examples/worked_lines.h"
#include "marlune/decompose/decomposer.h"
#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/desktop/services/folder_bundle.h"
#include "marlune/grammar/parser.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

const std::string kExamples = MARLUNE_SOURCE_DIR "/examples/";

// Beginnings of words that a grammar compares write a line each. A grammar that asks for them
// without care writes hundreds of lines for a phrase; these are to stay readable.
constexpr auto kMostLinesAPhrase = 19;

class AnnouncementsTest : public PlatformFixture {
 protected:
  void SetUp() override {
    PlatformFixture::SetUp();
    Platform::shared().propertyListReader = std::make_shared<PropertyListFile>();
  }

  void expectRewritten(const std::string& grammarFile, const std::string& name,
                       const std::vector<WorkedLine>& announcements) {
    const auto parser = Parser::initWithPlistAtPath(kExamples + "grammars/" + grammarFile, name);
    std::ptrdiff_t mostLines = 0;
    for (const WorkedLine& each : announcements) {
      SCOPED_TRACE(each.phrase);
      log->clear();
      const auto result = parser->resultOfRulesAppliedToStrings(wordsOf(each.phrase));
      ASSERT_NE(result, nullptr);
      EXPECT_EQ(joined(result->stringArray()), each.result);
      mostLines = std::max(mostLines, _prefixLines());
      EXPECT_LE(_prefixLines(), kMostLinesAPhrase);
    }
    RecordProperty("announcements", static_cast<int>(announcements.size()));
    RecordProperty("mostPrefixLines", static_cast<int>(mostLines));
  }

 private:
  std::ptrdiff_t _prefixLines() const {
    const std::vector<std::string> lines = log->lines();
    return std::count_if(lines.begin(), lines.end(),
                         [](const std::string& line) { return line.starts_with("Prefix!"); });
  }
};

TEST_F(AnnouncementsTest, EnglishBecomesTheWordsThatTheVoiceHas) {
  const auto announcements = workedLinesIn(kExamples + "grammars/announcements_en.txt");
  ASSERT_EQ(announcements.size(), 60U);
  expectRewritten("workout_en.plist", "Workout", announcements);

  const auto voice =
      Decomposer::initWithDirectory("voice", std::make_shared<FolderBundle>(kExamples));
  for (const WorkedLine& each : announcements) {
    EXPECT_NE(voice->optimalDecompositionOf(wordsOf(each.result)), nullptr) << each.result;
  }
}

TEST_F(AnnouncementsTest, PolishAgreesInNumberGenderAndCase) {
  const auto announcements = workedLinesIn(kExamples + "grammars/announcements_pl.txt");
  ASSERT_EQ(announcements.size(), 40U);
  expectRewritten("workout_pl.plist", "Trening", announcements);
}

std::string numberSaid(int number) {
  static const std::vector<std::string> kOnes = wordsOf(
      "zero one two three four five six seven eight nine ten eleven twelve thirteen fourteen "
      "fifteen sixteen seventeen eighteen nineteen");
  static const std::vector<std::string> kTens =
      wordsOf("twenty thirty forty fifty sixty seventy eighty ninety");
  const auto withRest = [](std::string text, int rest) {
    return rest == 0 ? text : text + " " + numberSaid(rest);
  };
  const auto at = [](int index) { return static_cast<std::size_t>(index); };
  if (number < 20) return kOnes[at(number)];
  if (number < 100) return withRest(kTens[at(number / 10 - 2)], number % 10);
  if (number < 1000) return withRest(kOnes[at(number / 100)] + " hundred", number % 100);
  return withRest(kOnes[at(number / 1000)] + " thousand", number % 1000);
}

std::string twoDigits(int number) { return (number < 10 ? "0" : "") + std::to_string(number); }

// The tables are long and made by loops; a sample that meets all of their joints is held against a
// plain computation. What stands before ":" and "." is 0 to 9 and 10 to 59 or 99, with and without
// an hour, and steps that have no factor in common with ten or sixty pass through all digits.
TEST_F(AnnouncementsTest, EnglishNumbersAndTimesHaveNoGaps) {
  const auto parser =
      Parser::initWithPlistAtPath(kExamples + "grammars/workout_en.plist", "Workout");
  const auto said = [&](const std::string& word) {
    return joined(parser->resultOfRulesAppliedToStrings({word, "."})->stringArray());
  };
  for (int number = 0; number < 10000; number += 31) {
    EXPECT_EQ(said(std::to_string(number)), numberSaid(number) + " .");
  }
  for (int seconds = 1; seconds < 36000; seconds += 97) {
    std::string digits = std::to_string(seconds / 60 % 60), words;
    if (seconds >= 3600)
      digits = std::to_string(seconds / 3600) + ":" + twoDigits(seconds / 60 % 60);
    const auto add = [&](int count, const std::string& unit) {
      if (count > 0) words += numberSaid(count) + " " + unit + (count > 1 ? "s " : " ");
    };
    add(seconds / 3600, "hour");
    add(seconds / 60 % 60, "minute");
    add(seconds % 60, "second");
    EXPECT_EQ(said(digits + ":" + twoDigits(seconds % 60)), words + ".");
  }
  for (int hundredths = 0; hundredths < 10000; hundredths += 37) {
    const int whole = hundredths / 100, tenth = hundredths / 10 % 10;
    const std::string begin = std::to_string(whole) + ".";
    const std::string words = numberSaid(whole) + " point " + numberSaid(tenth);
    EXPECT_EQ(said(begin + std::to_string(tenth)), words + " .");
    EXPECT_EQ(said(begin + twoDigits(hundredths % 100)),
              words + " " + numberSaid(hundredths % 10) + " .");
  }
}

TEST_F(AnnouncementsTest, WhatTheEnglishTablesDoNotCoverStaysAsItIs) {
  const auto parser =
      Parser::initWithPlistAtPath(kExamples + "grammars/workout_en.plist", "Workout");
  for (const char* word : {"12345", "131:20", "12:02:05", "110.25", "1:60", "x5.25", ":20", ".5"}) {
    EXPECT_EQ(joined(parser->resultOfRulesAppliedToStrings({word})->stringArray()), word);
  }
}

}  // namespace
}  // namespace marlune
