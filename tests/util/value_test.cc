#include "marlune/platform/value.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace marlune {
namespace {

struct NumberCase {
  std::string_view why;
  Value value;
  std::int32_t integer;
  bool truth;
};

TEST(ValueTest, ReadsAsNumberAndBoolean) {
  const NumberCase cases[] = {
      {"a real loses its fraction", Value::real(-2.9), -2, true},
      {"a small real is true and still 0", Value::real(0.5), 0, true},
      {"not a number", Value::real(std::numeric_limits<double>::quiet_NaN()), 0, true},
      {"a real beyond the range", Value::real(-1e300), INT32_MIN, true},
      {"an integer beyond the range", Value::integer(INT64_C(1) << 32), INT32_MAX, true},
      {"a negative one", Value::integer(INT64_MIN), INT32_MIN, true},
      {"a boolean", Value::boolean(true), 1, true},
      {"text gives its leading digits", Value::string(" \t-12ab"), -12, false},
      {"one sign only", Value::string("+-3"), 0, false},
      {"a sign alone", Value::string("+"), 0, false},
      {"text beyond the range", Value::string("-99999999999"), INT32_MIN, false},
      {"text without digits", Value::string("ab1"), 0, false},
      {"a date is not a number", Value::date(7), 0, false},
      {"absent", Value(), 0, false},
  };
  for (const NumberCase& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(c.value.integerValue(), c.integer);
    EXPECT_EQ(c.value.booleanValue(), c.truth);
  }
  EXPECT_EQ(Value::real(1e300).int64(), std::numeric_limits<std::int64_t>::max());
}

Value nested(const Value& leaf) {
  auto inner = std::make_shared<Dictionary>();
  inner->setValueForKey(leaf, "leaf");
  return Value::array(std::make_shared<Array>(std::vector<Value>{Value::dictionary(inner)}));
}

TEST(ValueTest, EqualsComparesContentThroughContainers) {
  EXPECT_TRUE(nested(Value::integer(2)).equals(nested(Value::real(2))));
  EXPECT_FALSE(nested(Value::integer(2)).equals(nested(Value::integer(3))));
  EXPECT_FALSE(nested(Value::integer(1)).equals(nested(Value::boolean(true))));
  EXPECT_FALSE(nested(Value::string("x")).equals(nested(Value::data("x"))));
  EXPECT_FALSE(nested(Value::string("")).equals(nested(Value())));
  EXPECT_FALSE(Value().equals(Value::string("")));
}

// The simplest possible dictionary.
class ReferenceDictionary {
 public:
  void set(const std::string& key, int value) {
    for (auto& entry : entries) {
      if (entry.first == key) {
        entry.second = value;
        return;
      }
    }
    entries.emplace_back(key, value);
  }
  void remove(const std::string& key) {
    std::erase_if(entries, [&](const auto& entry) { return entry.first == key; });
  }
  std::vector<std::pair<std::string, int>> entries;
};

TEST(DictionaryTest, KeepsOrderThroughChangesSmallAndLarge) {
  for (const int keyCount : {5, 60}) {  // linear look-up, then hashed
    std::mt19937 random(20140303);
    Dictionary dictionary;
    ReferenceDictionary reference;
    for (int step = 0; step < 2000; ++step) {
      const std::string key = std::to_string(random() % static_cast<unsigned>(keyCount));
      if (random() % 3 == 0) {
        dictionary.setValueForKey(Value(), key);
        reference.remove(key);
      } else {
        dictionary.setValueForKey(Value::integer(step), key);
        reference.set(key, step);
      }
      std::vector<std::pair<std::string, int>> entries;
      for (const auto& [each, value] : dictionary.entries()) {
        entries.emplace_back(*each, value.integerValue());
        ASSERT_EQ(&dictionary.valueForKey(*each), &value) << each << " after " << step;
      }
      ASSERT_EQ(entries, reference.entries) << "after " << step;
      ASSERT_EQ(dictionary.contains("absent"), false);
    }
  }
}

TEST(DictionaryTest, OneLevelCopySharesNestedContainers) {
  auto inner = std::make_shared<Dictionary>();
  Dictionary outer;
  outer.setValueForKey(Value::dictionary(inner), "inner");
  const auto copy = outer.oneLevelCopy();
  outer.setValueForKey(Value(), "inner");
  EXPECT_EQ(copy->valueForKey("inner").asDictionary(), inner);
}

}  // namespace
}  // namespace marlune
