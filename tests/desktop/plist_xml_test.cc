#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>

#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/util/format.h"
#include "support/list_read.h"
#include "support/small_stack.h"
#include "support/temporary_directory.h"

namespace marlune {
namespace {

constexpr std::string_view kUsualStart =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Example//DTD PLIST 1.0//EN\" \"http://localhost:9/list.dtd\">\n";

ListRead read(std::string_view bytes) { return PropertyListFile().readBytes(bytes, ""); }

// Reads a list that contains `content`, which begins on line 3, column 22.
ListRead readContent(std::string_view content) {
  return read(std::string(kUsualStart) + "<plist version=\"1.0\">" + std::string(content) +
              "</plist>\n");
}

std::string repeated(std::string_view text, std::size_t times) {
  std::string result;
  result.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) result += text;
  return result;
}

TEST(PlistXmlTest, ReadsEveryKindInTheOrderOfTheFile) {
  const ListRead result = readContent(
      "<dict> <key>zeta</key><string>a &lt;b&gt; &#xfc;<![CDATA[ & ]]><!-- not this -->c</string>\n"
      "<key>alpha &amp; omega</key><array><integer>-7</integer><real> 2.5 </real><true/><false/>"
      "<array/><dict></dict><string/></array><key/><data>\n\tbWFy bHVu\nZQ==\n</data>"
      "<key>day</key><date>2001-01-02T00:00:01.25Z</date></dict>");
  ASSERT_EQ(result.error, "");
  EXPECT_EQ(formatted("%@", {result.root}),
            "{\n    zeta = \"a <b> \u00fc & c\";\n    \"alpha & omega\" = (\n        -7,\n"
            "        2.5,\n        1,\n        0,\n        (\n        ),\n        {\n        },\n"
            "        \"\"\n    );\n    \"\" = <6d61726c756e65>;\n    day = 86401.25;\n}");
  const Dictionary& root = *result.root.asDictionary();
  EXPECT_EQ(*root.valueForKey("").asData(), "marlune");
  EXPECT_EQ(root.valueForKey("day").realValue(), 86401.25);
  EXPECT_EQ(root.valueForKey("day").kind(), Value::Kind::date);
  const std::vector<Value>& kinds = root.valueForKey("alpha & omega").asArray()->elements();
  EXPECT_EQ(kinds[0].kind(), Value::Kind::integer);
  EXPECT_EQ(kinds[1].kind(), Value::Kind::real);
  EXPECT_EQ(kinds[2].kind(), Value::Kind::boolean);
}

TEST(PlistXmlTest, ReadsNumbersToTheEndsOfTheirRange) {
  const struct {
    std::string_view text;
    std::int64_t number;
  } kIntegers[] = {{"+12", 12},
                   {" 0x1F\n", 31},
                   {"-0x10", -16},
                   {"9223372036854775807", INT64_MAX},
                   {"-9223372036854775808", INT64_MIN}};
  for (const auto& c : kIntegers) {
    SCOPED_TRACE(c.text);
    const ListRead result = readContent("<integer>" + std::string(c.text) + "</integer>");
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.root.int64(), c.number);
  }
  EXPECT_EQ(readContent("<real>-1.5e3</real>").root.realValue(), -1500);
  EXPECT_EQ(readContent("<real>+Infinity</real>").root.realValue(), INFINITY);
  EXPECT_EQ(readContent("<real>-inf</real>").root.realValue(), -INFINITY);
  EXPECT_TRUE(std::isnan(readContent("<real>nan</real>").root.realValue()));
}

TEST(PlistXmlTest, AnErrorSaysLineColumnAndWhatWasExpected) {
  const struct {
    std::string_view content, error;
  } kCases[] = {
      {"<dict>\n<string>a</string></dict>",
       "line 4, column 1: expected a <key> or </dict>, found <string>"},
      {"<dict><key>a</key></dict>",
       "line 3, column 40: expected a value for the key \"a\", found </dict>"},
      {"<dict><key>a</key><key>b</key></dict>",
       "line 3, column 40: expected a value for the key \"a\", found <key>"},
      {"<dict><key>a</key><true/><key>a</key><false/></dict>",
       "line 3, column 67: expected every key once in the dictionary that ends here, found \"a\" "
       "again"},
      {"<array><key>a</key></array>",
       "line 3, column 29: expected a value or </array>, found <key>"},
      {"<array>\n  \u00fcber</array>",
       "line 4, column 1: expected a value or </array>, found the text \"  \u00fcber\""},
      {"<array><set/></array>", "line 3, column 29: expected a value or </array>, found <set>"},
      {"<string>a<b/></string>", "line 3, column 31: expected text or </string>, found <b>"},
      {"<true>1</true>", "line 3, column 28: expected </true>, found the text \"1\""},
      {"<true/><true/>", "line 3, column 29: expected </plist>, found <true>"},
      {"", "line 3, column 22: expected a value, found </plist>"},
      {"<plist/>", "line 3, column 22: expected a value, found <plist>"},
      {"<array><true/></dict>",
       "line 3, column 38: expected a value or </array>, found another end tag"},
      {"<string>&km;</string>",
       "line 3, column 30: expected text or </string>, found the unknown entity \"km\""},
      {"<integer>twelve</integer>",
       "line 3, column 37: expected an integer of 64 bits, found \"twelve\""},
      {"<integer/>", "line 3, column 32: expected an integer of 64 bits, found \"\""},
      {"<integer>9223372036854775808</integer>",
       "line 3, column 50: expected an integer of 64 bits, found \"9223372036854775808\""},
      {"<integer>--1</integer>",
       "line 3, column 34: expected an integer of 64 bits, found \"--1\""},
      {"<real>1,5</real>", "line 3, column 31: expected a number, found \"1,5\""},
      {"<real>-</real>", "line 3, column 29: expected a number, found \"-\""},
      {"<date>2014-02-30T00:00:00Z</date>",
       "line 3, column 48: expected a date such as 2014-03-03T10:07:05Z, found "
       "\"2014-02-30T00:00:00Z\""},
      {"<data>bWFy=bHV</data>", "line 3, column 36: expected base64, found \"bWFy=bHV\""},
      {"<data>bWF</data>", "line 3, column 31: expected base64 in groups of four, found \"bWF\""},
      {"<string>a\x01</string>",
       "line 3, column 31: expected text or </string>, found broken XML (not well-formed (invalid "
       "token))"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.content);
    const ListRead result = readContent(c.content);
    EXPECT_EQ(result.error, c.error);
    EXPECT_TRUE(result.root.isAbsent());
  }
}

TEST(PlistXmlTest, WhatIsNoXmlListIsRefusedWithItsReason) {
  const struct {
    std::string_view bytes, error;
  } kCases[] = {
      {"", "expected a property list, found an empty file"},
      {" { km = 5; }",
       "expected an XML or binary property list, found the old-style text form, which has no "
       "numbers; convert it to XML"},
      {"PK\x03\x04", "expected an XML or binary property list, found something else"},
      {"<dict/>", "line 1, column 1: expected <plist>, found <dict>"},
      {"<plist><true/></plist> more",
       "line 1, column 24: expected the end of the file, found broken XML (junk after document "
       "element)"},
      {"<plist><array>",
       "line 1, column 15: expected a value or </array>, found the end of the "
       "file"},
      {"<!DOCTYPE plist [<!ENTITY a SYSTEM \"/etc/hostname\">]><plist><string>&a;</string></plist>",
       "line 1, column 51: expected <plist>, found the declaration of an entity \"a\""},
      {"<!DOCTYPE plist [<!ENTITY % a \"&#37;a;\">%a;]><plist><true/></plist>",
       "line 1, column 31: expected <plist>, found the declaration of an entity \"a\""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.bytes);
    EXPECT_EQ(read(c.bytes).error, c.error);
  }
}

TEST(PlistXmlTest, ReadsOtherEncodings) {
  EXPECT_EQ(*read("\xef\xbb\xbf<plist><string>\u00fc</string></plist>").root.asString(), "\u00fc");
  EXPECT_EQ(*read("<?xml version='1.0' encoding='ISO-8859-1'?><plist><string>\xfc</string></plist>")
                 .root.asString(),
            "\u00fc");
  std::string wide = "\xff\xfe";
  for (const char c : std::string_view("<plist><string>a</string></plist>")) wide += {c, '\0'};
  EXPECT_EQ(*read(wide).root.asString(), "a");
}

TEST(PlistXmlTest, EqualShortTextsAreMadeOnce) {
  const Value root = readContent(
                         "<array><dict><key>_lhs</key><string>km</string></dict>"
                         "<dict><key>_lhs</key><string>km</string></dict></array>")
                         .root;
  const std::vector<Value>& rules = root.asArray()->elements();
  const auto& one = rules[0].asDictionary()->entries()[0];
  const auto& two = rules[1].asDictionary()->entries()[0];
  EXPECT_EQ(one.first, two.first);
  EXPECT_EQ(one.second.asString(), two.second.asString());
  EXPECT_NE(rules[0].asDictionary(), rules[1].asDictionary());
}

TEST(PlistXmlTest, NestsToItsBoundOnASmallStackAndRefusesMore) {
  const auto nested = [](std::size_t levels) {
    return "<plist>" + repeated("<dict><key>a</key>", levels - 1) + "<array/>" +
           repeated("</dict>", levels - 1) + "</plist>";
  };
  onSmallStack([&] {
    EXPECT_EQ(read(nested(256)).error, "");
    EXPECT_EQ(read(nested(257)).error,
              "line 1, column 4616: expected at most 256 levels of dictionaries and arrays, found "
              "more");
    for (const std::size_t levels : {100'000u, 1'000'000u}) {
      EXPECT_EQ(read("<plist>" + repeated("<array>", levels)).error,
                "line 1, column 1800: expected at most 256 levels of dictionaries and arrays, "
                "found more");
    }
  });
}

// Reaching the bound would take a file of 64 MiB, because XML spells out every container.
TEST(PlistXmlTest, NothingButEmptyContainersIsRead) {
  for (const std::string_view element : {"<dict/>", "<array/>", "<true/>"}) {
    EXPECT_EQ(read("<plist><array>" + repeated(element, 500'000) + "</array></plist>").error, "");
  }
}

TEST(PlistXmlTest, RefusesMoreAttributesThanAnElementHas) {
  std::string attributes = "<plist";
  // Short names, so that Expat's copy of each is many times its text, also with the sanitizers'
  // allocators.
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  for (std::size_t i = 0; i < 1'000'000; ++i) {
    attributes += ' ';
    for (std::size_t rest = i, digit = 0; digit < 4; ++digit, rest /= kLetters.size()) {
      attributes += kLetters[rest % kLetters.size()];
    }
    attributes += "=''";
  }
  EXPECT_EQ(read(attributes + "><true/></plist>").error,
            "line 1, column 1: parsing the XML takes more memory than a list may");
}

class PlistFileTest : public testing::Test {
 protected:
  std::string path(const std::string& name) const { return _folder.path(name); }

 private:
  const TemporaryDirectory _folder;
};

TEST_F(PlistFileTest, ReadsAFileAndNamesItInErrors) {
  std::ofstream(path("good.plist")) << "<plist><integer>5</integer></plist>";
  std::ofstream(path("bad\n.plist")) << "<plist>";
  const PropertyListFile reader;
  EXPECT_EQ(ListRead(reader.readFile(path("good.plist"))).root.int64(), 5);
  EXPECT_EQ(ListRead(reader.readFile(path("bad\n.plist"))).error,
            path("bad?.plist: line 1, column 8: expected a value, found the end of the file"));
  EXPECT_EQ(ListRead(reader.readFile(path("bad\n.plist"))).kind, Failure::Kind::malformed);
  EXPECT_EQ(ListRead(reader.readFile(path("none.plist"))).kind, Failure::Kind::unreadable);
}

TEST_F(PlistFileTest, RefusesWhatIsNoRegularFileOfBoundedSize) {
  ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
  std::ofstream(path("large"));
  std::filesystem::resize_file(path("large"), (std::uintmax_t{64} << 20) + 1);
  const PropertyListFile reader;
  EXPECT_EQ(ListRead(reader.readFile(path(""))).error,
            path(": expected a regular file, found a directory"));
  EXPECT_EQ(ListRead(reader.readFile(path("fifo"))).error,
            path("fifo: expected a regular file, found a FIFO"));
  EXPECT_EQ(ListRead(reader.readFile("/dev/zero")).error,
            "/dev/zero: expected a regular file, found a device");
  EXPECT_EQ(ListRead(reader.readFile(path("large"))).error,
            path("large: expected at most 64 MiB, found 67108865 bytes"));
  EXPECT_EQ(ListRead(reader.readFile(path("none"))).error, path("none: No such file or directory"));
}

}  // namespace
}  // namespace marlune
