#ifndef MARLUNE_GRAMMAR_MODEL_CELL_H_
#define MARLUNE_GRAMMAR_MODEL_CELL_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/grammar/model/attribute_dictionary.h"
#include "marlune/platform/value.h"
#include "marlune/util/describable.h"

namespace marlune {

enum CellType : std::uint32_t {
  CellTypeWildcard = 0,  // as a pattern: anything but a blank
  CellTypeBlank = 1,     // the empty position at a phrase's end; as a pattern: a blank
  CellTypeLiteral = 2,   // a word; as a pattern: whatever has these attributes
};

// One word of a phrase, or one word pattern of a rule: a type and attributes, of which "content" is
// the word itself. A cell read from something that is neither string nor dictionary has no
// attribute dictionary at all; every look-up in it finds nothing and setters do nothing.
class Cell : public Describable {
 public:
  static std::shared_ptr<Cell> init();  // a wildcard, which is intended
  static std::shared_ptr<Cell> initAsWildcard();
  static std::shared_ptr<Cell> initAsBlank();

  // A literal with a dictionary of its own; names and values are shared with the given one.
  static std::shared_ptr<Cell> initWithAttributesDictionary(const AttributeDictionary& attributes);
  static std::shared_ptr<Cell> initWithAttributesDictionary(const Dictionary& attributes);

  // A literal whose "content" is the string.
  static std::shared_ptr<Cell> initWithContentString(std::string content);

  // "?": a wildcard; "_E": a blank; any other string: a literal with that content, taken whole; a
  // dictionary: a literal with these attributes; anything else: a wildcard without a dictionary.
  static std::shared_ptr<Cell> initFromPlist(const Value& plist);

  static std::shared_ptr<Cell> cell();
  static std::shared_ptr<Cell> wildcard();
  static std::shared_ptr<Cell> blank();
  static std::shared_ptr<Cell> cellWithContentString(std::string content);
  static std::shared_ptr<Cell> instanceFromPlist(const Value& plist);
  static std::shared_ptr<Cell> cellWithCell(const Cell& cell);         // copyWithZone of it
  static std::shared_ptr<Cell> literalCellWithCell(const Cell& cell);  // literalCell of it

  CellType type() const { return _type; }

  // The live dictionary, nullptr when there is none; the setter shares the given one.
  const std::shared_ptr<AttributeDictionary>& attributes() const { return _attributes; }
  void setAttributes(std::shared_ptr<AttributeDictionary> attributes);

  // The attribute, whatever its kind; nullptr when there is none. Holds until the cell changes.
  const AttributeValue* valueForKey(std::string_view name) const;

  // The attribute's text; nullptr when there is none or it is no string. Holds until the cell
  // changes.
  const std::string* attributeForKey(std::string_view name) const;

  // An absent value changes nothing.
  void setAttribute(std::optional<AttributeValue> value, std::string_view forKey);
  void setAttribute(std::optional<AttributeValue> value, const AttributeDictionary::Name& forKey);

  const std::string* content() const;
  const std::string* pre() const;                       // text before the word
  const std::string* post() const;                      // text behind it
  void setContent(std::optional<std::string> content);  // absent changes nothing, likewise below
  void setPre(std::optional<std::string> pre);
  void setPost(std::optional<std::string> post);

  bool isBlank() const { return _type == CellTypeBlank; }
  bool hasContent() const;  // a literal with the attribute "content"

  // Pre, content and post, as far as present.
  std::vector<std::string> flattened() const;

  // A new literal with this cell's attributes, whatever this cell's type.
  std::shared_ptr<Cell> literalCell() const;

  // A copy: of a wildcard or blank a fresh one without attributes, of a literal one with a
  // dictionary of its own. Traces the type.
  std::shared_ptr<Cell> copyWithZone() const;

  // Whether this cell as a pattern matches the target; an absent target counts as a wildcard
  // without attributes. A literal compares attribute by attribute, a missing one of the target
  // reading as "". A name "#xx-" compares the value with as many first characters (UTF-16 units)
  // of the target's content as stand between the marks, "-xx#" with as many last ones; content
  // that is missing or too short does not match. Each prefix comparison writes a line straight to
  // the system log, a second one when it matched.
  bool matches(const Cell* target) const;

  // A new literal with the attributes of `underlying` and, winning over them, those of this cell.
  // Traces every step.
  std::shared_ptr<Cell> overlayedOn(const Cell& underlying) const;

  // "?", "_E", or tone marks, pre, content and post as in "H(x[ten]s)".
  std::string description() const override;

  // A literal over this very dictionary, which is not copied.
  static std::shared_ptr<Cell> _literalOver(std::shared_ptr<AttributeDictionary> attributes);

  // Whether matching with this cell as the pattern may write lines: it has a prefix key.
  bool _writesLines() const;

 protected:
  Cell(CellType type, std::shared_ptr<AttributeDictionary> attributes);

 private:
  static std::shared_ptr<Cell> _literalWithContent(std::shared_ptr<const std::string> content);
  bool _attributeMatches(const AttributeDictionary::Entry& attribute, const Cell* target) const;

  CellType _type;
  std::shared_ptr<AttributeDictionary> _attributes;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_CELL_H_
