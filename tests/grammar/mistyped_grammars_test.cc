#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "fakes/fake_property_list_reader.h"
#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/parser.h"
#include "support/platform_fixture.h"
#include "support/plist_notation.h"

namespace marlune {
namespace {

// A grammar that uses every key and marker of the format.
constexpr std::string_view kFullGrammar = R"(
{
  Main = {
    _order = #1;
    Units = '#insert Shared.Units 2';
    Nested = {
      _order = #3;
      Number = {
        _order = #1;
        _repeat = #true;
        _lhs = {
          _preContext = [[*, [+, run, ?]], _E];
          _significantSlots = [{content = five; post = s}, [~, six, _E]];
          _postContext = [[+, km, {-x# = s}]]
        };
        _rhs = [{_index = #0; post = '' }, of, {_index = #1; pre = {_index = #0; _attribute = content}}]
      }
    }
  };
  Shared = {
    Units = {
      _lhs = {_significantSlots = [[+, km, mi]]};
      _rhs = {
        _signature = [{_index = #0; _attribute = content}];
        _delimiter = '-';
        _expansions = {km = [kilometers]; mi = [{_index = #0; content = miles}, away]}
      }
    }
  }
}
)";

const std::vector<Value>& strangers() {
  static const std::vector<Value> kValues = {
      Value::string("word"),
      Value::string(""),
      Value::string("#insert"),
      Value::string("#insert Main"),
      Value::integer(-1),
      Value::integer(99),
      Value::real(0.5),
      Value::boolean(true),
      Value::data("bytes"),
      Value::date(0),
      Value::array(std::make_shared<Array>()),
      PlistNotation::parse("[[]]"),
      PlistNotation::parse("[*]"),
      PlistNotation::parse("{}"),
      PlistNotation::parse("{_index = #7; _attribute = content}")};
  return kValues;
}

// Calls `visit` with every value of the tree below `value`; `visit` may replace it.
void forEachPlace(Value& value, const std::function<void(Value&)>& visit) {
  visit(value);
  if (value.asArray()) {
    for (Value& element : value.asArray()->elements()) forEachPlace(element, visit);
  } else if (value.asDictionary()) {
    const std::vector<Dictionary::Entry> entries = value.asDictionary()->entries();
    for (const auto& [key, nested] : entries) {
      Value changed = nested;
      forEachPlace(changed, visit);
      value.asDictionary()->setValueForKey(changed, key);
    }
  }
}

// The full grammar with `stranger` at the place with this number, counted from 0 at the root;
// nothing past the last.
std::optional<Value> grammarWith(const Value& stranger, std::size_t place) {
  Value root = PlistNotation::parse(kFullGrammar);
  std::size_t at = 0;
  bool placed = false;
  forEachPlace(root, [&](Value& value) {
    if (at++ != place) return;
    value = stranger;
    placed = true;
  });
  return placed ? std::optional(root) : std::nullopt;
}

class MistypedGrammarsTest : public PlatformFixture {
 protected:
  void SetUp() override {
    PlatformFixture::SetUp();
    Platform::shared().propertyListReader = reader;
  }

  // The resulting words, "absent", or the message of the loading error.
  std::string outcomeOf(const std::string& path) {
    try {
      const auto parser = Parser::initWithPlistAtPath(path, "Main");
      const auto phrase = parser->resultOfRulesAppliedToStrings(
          {"run", "five", "x", "km", "five", "mi", "s", "five", "km", "_E", "?"});
      return phrase ? phrase->description() : "absent";
    } catch (const GrammarError& error) {
      return std::string("error ") + error.what();
    }
  }

  const std::shared_ptr<FakePropertyListReader> reader = std::make_shared<FakePropertyListReader>();
};

TEST_F(MistypedGrammarsTest, AnyValueAtAnyPlaceIsRefusedOrAppliedAlikeWithTheTraceOnAndOff) {
  std::size_t place = 0;
  std::size_t refused = 0;
  std::set<std::string> outcomes;
  for (; grammarWith(Value::integer(0), place); ++place) {
    for (std::size_t which = 0; which < strangers().size(); ++which) {
      const std::string path = "mistyped " + std::to_string(place) + "." + std::to_string(which);
      SCOPED_TRACE(path);
      reader->files[path] = *grammarWith(strangers()[which], place);
      preferences->set(std::string(ZKPlistNotificationDefault), Value::boolean(false));
      const std::string outcome = outcomeOf(path);
      preferences->set(std::string(ZKPlistNotificationDefault), Value::boolean(true));
      EXPECT_EQ(outcomeOf(path), outcome);
      if (outcome.starts_with("error ")) {
        ++refused;
        EXPECT_GT(outcome.size(), std::string("error Main").size());
      }
      outcomes.insert(outcome);
    }
  }
  // The strangers take effect: some places cause an error, some change the result.
  EXPECT_GT(place, 50u);
  EXPECT_GT(refused, 50u);
  EXPECT_GT(outcomes.size(), 50u);
}

}  // namespace
}  // namespace marlune
