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
#include "marlune/platform/visibility.h"
#include "marlune/util/describable.h"

namespace marlune {

enum CellType : std::uint32_t {
  CellTypeWildcard = 0,  // as a pattern: anything but a blank
  CellTypeBlank = 1,     // the empty position at either end of a phrase; as a pattern: a blank
  CellTypeLiteral = 2,   // a word; as a pattern: any cell with these attributes
};

// One word of a phrase, or one word pattern of a rule: a type and attributes, among which "content"
// is the word itself. A cell read from a value that is neither string nor dictionary has no
// attribute dictionary; its look-ups find nothing and its setters do nothing.
class MARLUNE_API Cell : public Describable {
 public:
  static std::shared_ptr<Cell> init();  // intentionally a wildcard
  static std::shared_ptr<Cell> initAsWildcard();
  static std::shared_ptr<Cell> initAsBlank();

  // A literal with its own dictionary, which shares names and values with the given one.
  static std::shared_ptr<Cell> initWithAttributesDictionary(const AttributeDictionary& attributes);
  static std::shared_ptr<Cell> initWithAttributesDictionary(const Dictionary& attributes);

  // A literal whose "content" is the string.
  static std::shared_ptr<Cell> initWithContentString(std::string content);

  // "?" gives a wildcard, "_E" a blank, any other string a literal with that whole string as
  // content; a dictionary gives a literal with these attributes; anything else gives a wildcard
  // without a dictionary.
  static std::shared_ptr<Cell> initFromPlist(const Value& plist);

  static std::shared_ptr<Cell> cell();
  static std::shared_ptr<Cell> wildcard();
  static std::shared_ptr<Cell> blank();
  static std::shared_ptr<Cell> cellWithContentString(std::string content);
  static std::shared_ptr<Cell> instanceFromPlist(const Value& plist);
  static std::shared_ptr<Cell> cellWithCell(const Cell& cell);         // its copyWithZone
  static std::shared_ptr<Cell> literalCellWithCell(const Cell& cell);  // its literalCell

  CellType type() const { return _type; }

  // Whether a pattern of one type matches a target of the other; nothing when their attributes
  // decide.
  static std::optional<bool> _matchOfTypes(std::uint32_t pattern, std::uint32_t target) {
    if (pattern == CellTypeLiteral) return std::nullopt;
    return (pattern == CellTypeBlank) == (target == CellTypeBlank);
  }

  // The dictionary itself, not a copy; nullptr when there is none. The setter shares its argument.
  const std::shared_ptr<AttributeDictionary>& attributes() const { return _attributes; }
  void setAttributes(std::shared_ptr<AttributeDictionary> attributes);

  // The attribute of whatever kind; nullptr when there is none. Valid until the cell changes.
  const AttributeValue* valueForKey(std::string_view name) const;

  // The attribute's text; nullptr when there is none or it is not a string. Valid until the cell
  // changes.
  const std::string* attributeForKey(std::string_view name) const;

  // An absent value changes nothing.
  void setAttribute(std::optional<AttributeValue> value, std::string_view forKey);
  void setAttribute(std::optional<AttributeValue> value, const AttributeDictionary::Name& forKey);

  const std::string* content() const;
  const std::string* pre() const;                       // text before the word
  const std::string* post() const;                      // text after it
  void setContent(std::optional<std::string> content);  // absent changes nothing; likewise below
  void setPre(std::optional<std::string> pre);
  void setPost(std::optional<std::string> post);

  bool isBlank() const { return _type == CellTypeBlank; }
  bool hasContent() const;  // a literal with the attribute "content"

  // Pre, content and post, omitting those that are absent.
  std::vector<std::string> flattened() const;

  // A new literal with this cell's attributes, whatever this cell's type.
  std::shared_ptr<Cell> literalCell() const;

  // A copy: of a wildcard or blank a new one without attributes, of a literal one with its own
  // dictionary. Traces the type.
  std::shared_ptr<Cell> copyWithZone() const;

  // Whether this cell as a pattern matches the target. An absent target counts as a wildcard
  // without attributes. A literal compares attribute by attribute; an attribute that the target
  // lacks reads as "". For a name "#xx-", the value is compared with the start of the target's
  // content, as many characters (UTF-16 units) as there are between the marks; for "-xx#", with its
  // end. Content that is missing or too short does not match. Each prefix comparison writes a line
  // straight to the system log, and a second one if it matches.
  bool matches(const Cell* target) const;

  // A new literal with the attributes of both cells; those of this cell take precedence over those
  // of `underlying`. Traces every step.
  std::shared_ptr<Cell> overlayedOn(const Cell& underlying) const;

  // "?", "_E", or tone marks, pre, content and post as in "H(x[ten]s)".
  std::string description() const override;

  // A literal that uses this dictionary without copying it.
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
