#include "marlune/util/format.h"

#include <gtest/gtest.h>

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

TEST(FormatTest, ArgumentsAndPlaceholdersThatDoNotMeet) {
  EXPECT_EQ(made("%@ %@", "one"), "one (null)");
  EXPECT_EQ(made("none", "one"), "none");
  EXPECT_EQ(made("50%"), "50%");
  EXPECT_EQ(made("%@ done", "%@"), "%@ done");  // an argument is no format
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
  EXPECT_EQ(made("%@", Value::string("say \"x\"")), "say \"x\"");  // on its own as it is
}

TEST(FormatTest, RingOfContainersEnds) {
  auto ring = std::make_shared<Array>();
  ring->elements().push_back(Value::array(ring));
  EXPECT_NE(made("%@", Value::array(ring)).find("..."), std::string::npos);
  ring->elements().clear();
}

}  // namespace
}  // namespace marlune
