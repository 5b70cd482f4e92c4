#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/templates/QNTemplate.h"

namespace quillon {

/// The kind of a field as `--add-field` and JSON name it: what is stored, but "totp" for the seed
/// of one-time passwords.
std::string kindOf(const QNItemField& field);
/// Is its value printed on demand only? Also what can't be known to be none: kinds that this
/// version doesn't know.
bool isSecret(const QNItemField& field);
/// Nothing to show? An address of which the country alone is there was never filled in.
bool isBlank(const QNItemField& field);
/// Is what QNFieldTexts::shownValueOf() gives of it the language's own text, with nothing in it
/// that anybody chose? Its marks of direction mislead nobody.
bool isWrittenByUs(const QNItemField& field);

/// What the fields of one category say to a person: titles and values in the user's language.
class QNFieldTexts final {
 public:
  explicit QNFieldTexts(std::optional<std::string_view> categoryUUID);

  /// A title that the template gave, in whatever language, is told in the user's; one that a
  /// person chose stays. A field without one has its identifier.
  [[nodiscard]] std::string titleOf(const QNFieldSection& section) const;
  [[nodiscard]] std::string titleOf(const QNItemField& field) const;

  /// For a person: the date as the locale writes it, the label of a menu value, the name of a
  /// country, an address in lines.
  [[nodiscard]] QNSecret shownValueOf(const QNItemField& field) const;
  /// For a program, as `--set` takes it: "2024-07-05", "2024-07", the value of a menu, a country's
  /// code. An address, which is set by its parts, is as it is shown.
  [[nodiscard]] QNSecret plainValueOf(const QNItemField& field) const;

  /// What a field chooses from, in order; nothing for one that takes any text, and for a country.
  struct Choice {
    std::string value;
    std::string label;
  };
  [[nodiscard]] std::vector<Choice> choicesOf(const QNItemField& field) const;

 private:
  std::shared_ptr<QNTemplate> _template;  // null for a category without one
};

}  // namespace quillon
