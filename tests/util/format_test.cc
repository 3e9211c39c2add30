#include "marlune/util/format.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <memory>

namespace marlune {
namespace {

class Named : public Describable {
 public:
  explicit Named(std::string name) : _name(std::move(name)) {}
  std::string description() const override { return _name; }

 private:
  const std::string _name;
};

template <typename... Arguments>
std::string made(std::string_view format, const Arguments&... arguments) {
  return formatted(format, {FormatArgument(arguments)...});
}

TEST(FormatTest, PlaceholdersTakeTheArgumentsInOrder) {
  EXPECT_EQ(made("%@ %s|%i %d|%lu 100%%", "a", std::string("b"), -3, true, std::size_t{7}),
            "a b|-3 1|7 100%");
  EXPECT_EQ(made("%@, %@", 0.1 + 0.2, 1e20), "0.3, 1e+20");
  EXPECT_EQ(made("%lu", std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

// The C library's result for the same format and arguments.
template <typename... Arguments>
std::string madeInC(const char* format, Arguments... arguments) {
  char text[4096];
  const int size = std::snprintf(text, sizeof text, format, arguments...);
  return {text, static_cast<std::size_t>(size)};
}

template <typename... Arguments>
void expectAsInC(std::initializer_list<const char*> formats, Arguments... arguments) {
  for (const char* format : formats) {
    EXPECT_EQ(made(format, arguments...), madeInC(format, arguments...)) << format;
  }
}

TEST(FormatTest, PlaceholdersOfTheCLibraryGiveWhatItGives) {
  for (const int number : {0, 7, -42, std::numeric_limits<int>::min(), 70'000}) {
    expectAsInC({"%d",    "%i",   "%5d",      "%-5d|", "%05d",  "%02d",   "%+d",      "% d", "%.3d",
                 "%8.3d", "%.0d", "%-+8.3d|", "%hd",   "%hhd",  "%u",     "%x",       "%X",  "%#x",
                 "%#o",   "%08x", "%hhx",     "%hu",   "%300d", "%.200d", "%+-+- 6d|"},
                number);
    expectAsInC({"%*d", "%-*d|", "%.*d"}, 6, number);
    expectAsInC({"%*d", "%.*d"}, -6, number);
    expectAsInC({"%*.*d"}, 9, 4, number);
  }
  for (const long long number : {0LL, -1LL, std::numeric_limits<long long>::max()}) {
    expectAsInC({"%lld", "%20lld", "%lli", "%llx", "%llu", "%llo"}, number);
    expectAsInC({"%jd"}, static_cast<std::intmax_t>(number));
    expectAsInC({"%td"}, static_cast<std::ptrdiff_t>(number));
    expectAsInC({"%zu", "%9zu", "%zx"}, static_cast<std::size_t>(number));
    expectAsInC({"%ld", "%lx"}, static_cast<long>(number));
  }
  expectAsInC({"%u", "%10u", "%X", "%o"}, std::numeric_limits<unsigned>::max());
  for (const double number : {0.0, -0.0, 3.14159, -1e10, 1e-7, 1e300, 1.0 / 0.0, 0.0 / 0.0}) {
    expectAsInC({"%f", "%.2f", "%8.1f", "%-8.1f|", "%+.0f", "%#.0f", "%e", "%.3E", "%g", "%G", "%a",
                 "%010.2f", "%.150f"},
                number);
  }
  for (const char c : {'a', '%', '\0'}) expectAsInC({"%c", "%3c", "%-3c|", "100%% %c"}, c);
  expectAsInC({"%s", "%6s", "%-6s|", "%.2s", "%6.2s", "%.0s", "%2s"}, "text");
}

TEST(FormatTest, APlaceholderForAnotherKindShowsTheArgumentByItsOwnType) {
  EXPECT_EQ(made("%d %x %f %c", "text", 2.5, 7, std::string("word")), "text 2.5 7 word");
  EXPECT_EQ(made("%6d|%-6x|%.2s", "text", 2.5, 12345), "  text|2.5   |12");
  EXPECT_EQ(made("%5@|%-5@|", "ab", 12), "   ab|12   |");
  EXPECT_EQ(made("%d %hd", std::numeric_limits<std::int64_t>::max(), nullptr),
            "9223372036854775807 (null)");
  EXPECT_EQ(made("%d", std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
  EXPECT_EQ(made("%n%p%y", 1, 2, 3), "123");
  EXPECT_EQ(made("%*d|%.*f", "wide", 5, 1.5, 2.5), "5|2");  // any other kind is a width of 0
  EXPECT_EQ(made("%*d", 5), "(null)");
  EXPECT_EQ(made("%5", 1), "%5");
  EXPECT_EQ(made("%99999999999d", 1).size(), 100'000u);
}

TEST(FormatTest, ArgumentsAndPlaceholdersThatDoNotMeet) {
  EXPECT_EQ(made("%@ %@", "one"), "one (null)");
  EXPECT_EQ(made("none", "one"), "none");
  EXPECT_EQ(made("50%"), "50%");
  EXPECT_EQ(made("%@ done", "%@"), "%@ done");  // an argument is not a format
}

TEST(FormatTest, AbsentPrintsAsNull) {
  EXPECT_EQ(made("%@%@%@%@%@", nullptr, static_cast<const char*>(nullptr),
                 std::optional<std::string>(), std::shared_ptr<Named>(), Value()),
            "(null)(null)(null)(null)(null)");
}

TEST(FormatTest, ObjectsAndListsOfThem) {
  const auto object = std::make_shared<const Named>("a b");
  EXPECT_EQ(made("%@ %@", *object, object), "a b a b");
  EXPECT_EQ(made("%@", std::vector{object, object}), "(\n    \"a b\",\n    \"a b\"\n)");
  EXPECT_EQ(made("%@", std::vector<std::string>{"ten", "half_way", "f[x]", ""}),
            "(\n    ten,\n    half_way,\n    \"f[x]\",\n    \"\"\n)");
  EXPECT_EQ(made("%@", std::vector<std::int32_t>{3, -1}), "(\n    3,\n    -1\n)");
  EXPECT_EQ(made("%@", std::vector<std::string>{}), "(\n)");
}

TEST(FormatTest, PropertyListsAreIndentedAndQuoted) {
  auto array = std::make_shared<Array>(std::vector{Value::string("say \"x\"\\\n"), Value::real(2)});
  auto dictionary = std::make_shared<Dictionary>();
  dictionary->setValueForKey(Value::array(array), "a list");
  dictionary->setValueForKey(Value::data("\x01\xfe"), "data");
  EXPECT_EQ(made("%@", Value::dictionary(dictionary)),
            "{\n"
            "    \"a list\" = (\n"
            "        \"say \\\"x\\\"\\\\\\n\",\n"
            "        2\n"
            "    );\n"
            "    data = <01fe>;\n"
            "}");
  EXPECT_EQ(made("%@", Value::string("say \"x\"")), "say \"x\"");  // at the top level, unquoted
}

TEST(FormatTest, RingOfContainersEnds) {
  auto ring = std::make_shared<Array>();
  ring->elements().push_back(Value::array(ring));
  EXPECT_NE(made("%@", Value::array(ring)).find("..."), std::string::npos);
  ring->elements().clear();
}

}  // namespace
}  // namespace marlune
