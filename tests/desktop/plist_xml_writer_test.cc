#include "marlune/desktop/plist/xml_list_writer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "marlune/desktop/plist/property_list_file.h"

namespace marlune {
namespace {

TEST(PlistXmlWriterTest, WhatIsWrittenReadsBackEqual) {
  auto root = std::make_shared<Dictionary>();
  root->setValueForKey(Value::string("a <b> & \"c\"\r\n\t]]> \xf0\x9f\x98\x80"), "text & <key>");
  root->setValueForKey(Value::integer(INT64_MIN), "integer");
  root->setValueForKey(Value::real(-0.1), "real");
  root->setValueForKey(Value::real(INFINITY), "infinity");
  root->setValueForKey(Value::data(std::string("\0\xff", 2)), "data");
  root->setValueForKey(Value::date(-63113904000 + 0.001), "first date");
  root->setValueForKey(Value::date(252423993598.5), "late date");
  const std::optional<std::string> xml = writePropertyListXml(Value::dictionary(root));
  const auto result = PropertyListFile().readBytes(*xml, "");
  ASSERT_TRUE(result.succeeded());
  EXPECT_TRUE(result.value().equals(Value::dictionary(root))) << *xml;
}

TEST(PlistXmlWriterTest, IndentsWithTabsAndReplacesWhatXmlCannotHold) {
  const Value root = Value::array(
      std::make_shared<Array>(std::vector<Value>{Value::string("a\x01"
                                                               "b\xff\xed\xa0\x80"),
                                                 Value::array(std::make_shared<Array>())}));
  EXPECT_EQ(
      *writePropertyListXml(root),
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<array>\n"
      "\t<string>a\ufffdb\ufffd\ufffd\ufffd\ufffd</string>\n\t<array/>\n</array>\n</plist>\n");
}

TEST(PlistXmlWriterTest, DoesNotWriteWhatTheReaderRefuses) {
  EXPECT_EQ(writePropertyListXml(Value()), std::nullopt);
  EXPECT_EQ(writePropertyListXml(Value::date(NAN)), std::nullopt);
  auto ring = std::make_shared<Array>();
  ring->elements().push_back(Value::array(ring));
  EXPECT_EQ(writePropertyListXml(Value::array(ring)), std::nullopt);
  ring->elements().clear();
}

}  // namespace
}  // namespace marlune
