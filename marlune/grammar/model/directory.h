#ifndef MARLUNE_GRAMMAR_MODEL_DIRECTORY_H_
#define MARLUNE_GRAMMAR_MODEL_DIRECTORY_H_

#include <memory>
#include <string>
#include <vector>

#include "marlune/grammar/model/grammar_part.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// An inner node of the grammar: applies its subparts in sequence, each to the output of the
// previous one, in ascending order; those of equal order run by name.
class MARLUNE_API Directory : public GrammarPart {
 public:
  using Parts = std::vector<std::shared_ptr<GrammarPart>>;

  // Makes a subpart of every value of the dictionary that is itself a dictionary, and writes depth
  // and name into it. For anything but a dictionary, writes two lines straight to the system log
  // and returns nullptr. Throws GrammarError when a rule in it cannot be read.
  static std::shared_ptr<Directory> initFromPlist(const Value& plist);
  static std::shared_ptr<Directory> instanceFromPlist(const Value& plist);

  Kind kind() const override { return Kind::directory; }

  std::shared_ptr<SimpleSlotSequence> appliedTo(const SimpleSlotSequence& phrase) const override;

  std::string description() const override;  // its own, then those of the ordered subparts

  const Parts& orderedSubparts() const { return _orderedSubparts; }

 protected:
  Directory() = default;

 private:
  void _addSubpart(const std::shared_ptr<const std::string>& name, const Value& plist);

  Parts _orderedSubparts;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_DIRECTORY_H_
