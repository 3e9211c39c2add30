#include <gtest/gtest.h>

#include <random>
#include <string>

#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/desktop/plist/xml_list_writer.h"
#include "support/binary_list.h"
#include "support/plist_round_trip.h"

namespace marlune {
namespace {

constexpr std::string_view kList =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Example//DTD PLIST 1.0//EN\" \"http://localhost:9/list.dtd\">\n"
    "<plist version=\"1.0\"><dict>\n\t<key>Main</key><dict><key>_order</key><integer>-12</integer>"
    "<key>_lhs</key><array><string>km &amp; \xc3\xbc</string><true/><real>1.5e-7</real></array>"
    "<key>_rhs</key><array><dict/><array/><false/></array></dict>\n"
    "\t<key>data</key><data>bWFybHVuZQ==</data><key>date</key><date>2014-03-03T10:07:05Z</date>"
    "</dict></plist>\n";

std::string binaryList() {
  const Value root = PropertyListFile().readBytes(kList, "").value();
  Dictionary& dictionary = *root.asDictionary();
  dictionary.removeKey("data");
  dictionary.removeKey("date");
  dictionary.valueForKey("Main").asDictionary()->setValueForKey(Value::string("km"), "_lhs");
  BinaryList list;
  list.add(
      "\x43"
      "abc");
  list.add("\x62\xd8\x3d\xde\x01");
  return list.file(list.addValue(root));
}

TEST(PlistMalformedTest, EveryTruncationIsRefused) {
  // Only the line feed after the root may be missing.
  for (std::size_t length = 0; length + 1 < kList.size(); ++length) {
    const auto result = PropertyListFile().readBytes(kList.substr(0, length), "");
    ASSERT_TRUE(!result.succeeded() && !result.failure().message.empty()) << length;
  }
  const std::string binary = binaryList();
  ASSERT_TRUE(PropertyListFile().readBytes(binary, "").succeeded());
  for (std::size_t length = 0; length < binary.size(); ++length) {
    ASSERT_EQ(faultOfReading(std::string_view(binary).substr(0, length)), std::nullopt) << length;
  }
}

TEST(PlistMalformedTest, FlippedBytesAreRefusedOrReadSoundly) {
  std::mt19937 random(20140303);
  for (const std::string& sound : {std::string(kList), binaryList()}) {
    for (int round = 0; round < 20'000; ++round) {
      std::string bytes = sound;
      for (auto flips = random() % 4 + 1; flips > 0; --flips) {
        bytes[random() % bytes.size()] = static_cast<char>(random());
      }
      ASSERT_EQ(faultOfReading(bytes), std::nullopt) << testing::PrintToString(bytes);
    }
  }
}

}  // namespace
}  // namespace marlune
