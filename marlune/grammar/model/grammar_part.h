#ifndef MARLUNE_GRAMMAR_MODEL_GRAMMAR_PART_H_
#define MARLUNE_GRAMMAR_MODEL_GRAMMAR_PART_H_

#include <cstdint>
#include <memory>
#include <string>

#include "marlune/grammar/model/simple_slot_sequence.h"
#include "marlune/platform/value.h"
#include "marlune/platform/visibility.h"
#include "marlune/util/describable.h"

namespace marlune {

// A node of the grammar's tree: a directory of parts, or a rule. Abstract. Built once with its
// grammar; applying it does not change it.
class MARLUNE_API GrammarPart : public Describable {
 public:
  enum class Kind : unsigned char { other, directory, rule };

  // Makes a rule of a dictionary with "_lhs", a directory of any other; nullptr for anything else.
  static std::shared_ptr<GrammarPart> instanceFromPlist(const Value& plist);

  virtual Kind kind() const { return Kind::other; }

  // Reads order, depth and name. Missing ones are first written into the dictionary: order 0 (with
  // a traced warning), depth 0, name "ROOT".
  virtual void genericSetUpFromPlist(Dictionary& plist);

  // -1, 0 or 1: this part's order is smaller than, equal to or greater than the other's.
  int orderComparedTo(const GrammarPart& other) const;

  // The rewritten phrase, a new object. Abstract: logs an error and returns nullptr.
  virtual std::shared_ptr<SimpleSlotSequence> appliedTo(const SimpleSlotSequence& phrase) const;

  // The largest number of tabs printed for a depth. The file may give a root any depth.
  static constexpr std::int32_t kDeepestPrinted = 1000;

  std::string description() const override;  // a line feed, one tab for each level of depth, name,
                                             // ": "

  std::int32_t order() const { return _order; }            // smaller ones run first
  std::int32_t depth() const { return _depth; }            // 0 at the root
  const std::string* name() const { return _name.get(); }  // nullptr when it has none

  // Among siblings: by order, and by name if the orders are equal, because the file's enumeration
  // order is not guaranteed.
  bool _runsBefore(const GrammarPart& sibling) const;

  // Writes the place of a subpart of this part into its dictionary. Returns whether that changes
  // the dictionary.
  bool _placeSubpart(Dictionary& plist, std::shared_ptr<const std::string> name) const;

 protected:
  GrammarPart() = default;

 private:
  std::int32_t _order = 0;
  std::int32_t _depth = 0;
  std::shared_ptr<const std::string> _name;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_GRAMMAR_PART_H_
