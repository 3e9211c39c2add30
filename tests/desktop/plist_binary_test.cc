#include <gtest/gtest.h>

#include <bit>
#include <string>

#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/desktop/plist/xml_list_writer.h"
#include "support/binary_list.h"
#include "support/dense_lists.h"
#include "support/list_read.h"
#include "support/small_stack.h"

namespace marlune {
namespace {

using std::string_literals::operator""s;

ListRead read(std::string_view bytes) { return PropertyListFile().readBytes(bytes, ""); }

// Reads a list whose only object is `object`, at byte 8.
ListRead readObject(std::string object) {
  BinaryList list;
  return read(list.file(list.add(std::move(object))));
}

std::string real(double number) {
  return BinaryList::bigEndian(std::bit_cast<std::uint64_t>(number), 8);
}

TEST(PlistBinaryTest, ReadsEveryKind) {
  const struct {
    std::string object;
    Value value;
  } kCases[] = {
      {"\x08", Value::boolean(false)},
      {"\x09", Value::boolean(true)},
      {"\x10\xff", Value::integer(255)},
      {"\x11\xff\xfe", Value::integer(65534)},
      {"\x12\xff\xff\xff\xff", Value::integer(4294967295)},
      {"\x13\xff\xff\xff\xff\xff\xff\xff\xf9", Value::integer(-7)},
      {"\x14" + std::string(16, '\xff'), Value::integer(-1)},
      {"\x14" + std::string(15, '\0') + "\x05", Value::integer(5)},
      {"\x22\x40\x20\0\0"s, Value::real(2.5)},
      {"\x23" + real(-1e300), Value::real(-1e300)},
      {"\x33" + real(86400.1254), Value::date(86400.125)},
      {"\x43\0\xff\x01"s, Value::data("\0\xff\x01"s)},
      {"\x52km", Value::string("km")},
      {"\x5f\x10\x10kilometers in it", Value::string("kilometers in it")},
      {"\x63\0\xfc\x20\xac\0a"s, Value::string("\u00fc\u20aca")},
      {"\x64\xd8\x3d\xde\0\xd8\x3d\0a"s, Value::string("\U0001f600\ufffda")},
      {"\xa0", Value::array(std::make_shared<Array>())},
      {"\xd0", Value::dictionary(std::make_shared<Dictionary>())},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(testing::PrintToString(c.object));
    const ListRead result = readObject(c.object);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.root.kind(), c.value.kind());
    EXPECT_TRUE(result.root.equals(c.value)) << *writePropertyListXml(result.root);
  }
}

TEST(PlistBinaryTest, ReadsWhatTheXmlFormHolds) {
  const Value root =
      read(
          "<plist><dict><key>b</key><array><true/><real>0.5</real></array>"
          "<key>a</key><dict><key>b</key><integer>-5</integer></dict></dict></plist>")
          .root;
  BinaryList list;
  const ListRead result = read(list.file(list.addValue(root)));
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(*writePropertyListXml(result.root), *writePropertyListXml(root));
}

TEST(PlistBinaryTest, AnErrorSaysTheByteAndWhatWasExpected) {
  const struct {
    std::string object, error;
  } kCases[] = {
      {"\x0f", "byte 8: expected a boolean, found an object marked 0x0f"},
      {"\x80\x01", "byte 8: expected an object of a property list, found one marked 0x80"},
      {"\x15" + std::string(32, '\0'),
       "byte 8: expected an integer of at most 16 bytes, found more"},
      {"\x14\x01" + std::string(15, '\0'),
       "byte 8: expected an integer of 64 bits, found a larger one"},
      {"\x21\0\0"s, "byte 8: expected a real of 4 or 8 bytes, found an object marked 0x21"},
      {"\x33" + real(1e18), "byte 8: expected a date in the years 1 to 9999, found another"},
      {"\x33" + real(__builtin_nan("")),
       "byte 8: expected a date in the years 1 to 9999, found another"},
      {"\x52\xc3\xbc", "byte 8: expected ASCII text, found the byte 0xc3"},
      {"\x53km", "byte 8: expected an object inside the file, found one of 3 items"},
      {"\x5f\x13" + std::string(8, '\xff') + "km",
       "byte 8: expected an object inside the file, found one of 18446744073709551615 items"},
      {"\x5f\x52km", "byte 8: expected a count, found an object marked 0x52"},
      {"\xa1\0\0"s, "byte 8: expected a tree, found an object that contains itself"},
      {"\xa1\0\1"s, "byte 8: expected one of 1 objects, found a reference to 1"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(testing::PrintToString(c.object));
    const ListRead result = readObject(c.object);
    EXPECT_EQ(result.error, c.error);
    EXPECT_TRUE(result.root.isAbsent());
  }
}

TEST(PlistBinaryTest, AWrongFrameIsRefused) {
  BinaryList list;
  const std::string good = list.file(list.add("\x09"));  // table at 9, trailer at 13
  const auto with = [&](std::size_t at, std::string_view bytes) {
    return std::string(good).replace(at, bytes.size(), bytes);
  };
  const struct {
    std::string bytes, error;
  } kCases[] = {
      {with(6, "15"), "byte 0: expected \"bplist00\", found \"bplist15\""},
      {good.substr(0, 39), "byte 39: expected a trailer of 32 bytes, found the end of the file"},
      {with(19, "\x09"), "byte 13: expected offsets and references of 1 to 8 bytes, found 9 and 2"},
      {with(28, "\x02"),
       "byte 13: expected a table of offsets inside the file, found 2 offsets "
       "from byte 9"},
      {with(44, "\x0e"),
       "byte 13: expected a table of offsets inside the file, found 1 offsets "
       "from byte 14"},
      {with(36, "\x01"), "byte 13: expected one of 1 objects, found a reference to 1"},
      {with(12, "\x09"), "byte 9: expected the offset of an object, found 9"},
      {with(12, "\x07"), "byte 9: expected the offset of an object, found 7"},
  };
  for (const auto& c : kCases) EXPECT_EQ(read(c.bytes).error, c.error);
}

TEST(PlistBinaryTest, DictionariesNeedTextsAsKeysAndEachOnce) {
  BinaryList list;
  const std::size_t yes = list.add("\x09"), a = list.addText("a"), again = list.add("\x51"s + "a");
  EXPECT_EQ(read(list.file(list.addDictionary({yes}, {yes}))).error,
            "byte 13: expected a string as key 0 of the dictionary");
  EXPECT_EQ(read(list.file(list.addDictionary({a, again}, {yes, yes}))).error,
            "byte 18: expected every key once in the dictionary, found \"a\" again");
}

TEST(PlistBinaryTest, ASharedContainerIsCopiedForEachHolder) {
  BinaryList list;
  const std::size_t shared = list.addDictionary({list.addText("a")}, {list.add("\x09")});
  const Value root = read(list.file(list.addArray({shared, shared}))).root;
  const std::vector<Value>& elements = root.asArray()->elements();
  elements[0].asDictionary()->setValueForKey(Value::integer(5), "a");
  EXPECT_EQ(elements[1].asDictionary()->valueForKey("a").kind(), Value::Kind::boolean);
}

TEST(PlistBinaryTest, ExponentialSharingIsRefused) {
  BinaryList list;
  std::size_t object = list.addArray({});
  for (int level = 0; level < 60; ++level) object = list.addArray({object, object});
  EXPECT_NE(read(list.file(object)).error.find("the list would take far more memory"),
            std::string::npos);
}

// The files that use the most memory per byte among those a program would write: no container is
// shared, and equal values are one object.
TEST(PlistBinaryTest, DenseListsThatShareNoContainerAreRead) {
  const struct {
    std::string why, file;
  } kCases[] = {
      {"13,000 rules, their words shared", denseRules(13'000)},
      {"small dictionaries of a few shared words", denseRows(40'000, 2)},
      {"tables of hashed rows", denseRows(3'000, 17)},
      {"empty containers", denseRows(60'000, 0)},
      {"texts that are all different, as keys", denseTexts(60'000)},
      {"references of one byte to one number", denseNumbers(2'000'000)},
  };
  for (const auto& c : kCases) EXPECT_EQ(read(c.file).error, "") << c.why;
}

TEST(PlistBinaryTest, ManyReferencesToOneLongTextShareIt) {
  BinaryList list;
  const std::size_t text = list.addText(std::string(100'000, 'a'));
  const Value root = read(list.file(list.addArray(std::vector<std::size_t>(10'000, text)))).root;
  ASSERT_FALSE(root.isAbsent());
  EXPECT_EQ(root.asArray()->elements().front().asString(),
            root.asArray()->elements().back().asString());
}

TEST(PlistBinaryTest, NestsToItsBoundOnASmallStackAndRefusesMore) {
  onSmallStack([] {
    BinaryList list;
    const std::size_t key = list.addText("a");
    std::size_t object = list.addArray({});
    for (int level = 1; level < 256; ++level) object = list.addDictionary({key}, {object});
    EXPECT_EQ(read(list.file(object)).error, "");
    for (int level = 256; level < 60'000; ++level) object = list.addArray({object});
    const ListRead result = read(list.file(object));
    EXPECT_NE(result.error.find("expected at most 256 levels of dictionaries and arrays"),
              std::string::npos)
        << result.error;
  });
}

}  // namespace
}  // namespace marlune
