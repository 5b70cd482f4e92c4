#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/fields/QNAddressValue.h"

namespace quillon {

/// How a country writes an address: which parts on which lines, in which order. Definitions are
/// data files, "addressFormats.json" and "countries.json" in the resource folder, read at first
/// use and kept; names of countries come from the identity template. A missing or broken file
/// costs a log line and leaves the built-in format. Any thread may use it.
class QNAddressFormat final {
 public:
  using Definition = std::shared_ptr<const JsonObject>;

  /// The whole file, by country code; null if it can't be read.
  static Definition addressFormats();
  /// No code: the country of the user's locale. A code without a definition has "Default".
  static QNAddressFormat addressFormatForCountryCode(std::optional<std::string_view> code);
  /// "" for no code; "menu.country.CODE" for one without a name.
  static std::string localizedCountryForCode(std::optional<std::string_view> code);
  /// The codes that have a name, in the order of the names for the user.
  static std::vector<std::string> countryCodes();

  /// The definition's own keyboard settings go over those given. A null definition: the built-in
  /// display format.
  QNAddressFormat(Definition initWithDefinition, const JsonObject* keyboardSettings);

  /// The address as its own country writes it.
  [[nodiscard]] static QNSecret displayTextOf(const QNAddressValue& value);

  // The views and references are valid while the format lives.
  /// Lines separated by "\n", with the parts of an address by name (QNAddressFieldIdentifier...).
  [[nodiscard]] std::string_view displayFormat() const;
  /// The same for a form to edit; nothing if the country has none.
  [[nodiscard]] std::optional<std::string_view> editFormat() const;
  /// The address in the display format. No line is left out, and nothing is trimmed.
  [[nodiscard]] QNSecret displayTextForAddressValue(const QNAddressValue& value) const;
  [[nodiscard]] const JsonObject& keyboardSettings() const { return _keyboardSettings; }
  [[nodiscard]] const Definition& addressFormatDict() const { return _addressFormatDict; }
  /// Placeholder of a part: by the key, by the key with each word capitalized, or in capitals.
  [[nodiscard]] std::optional<std::string_view> placeholderStringForKey(std::string_view key) const;
  /// The words of one line, split by Unicode's blanks; none for a line that isn't there.
  [[nodiscard]] std::vector<std::string> componentsForRow(std::size_t row, bool editMode) const;
  [[nodiscard]] std::size_t numberOfRows(bool editMode) const;

 private:
  [[nodiscard]] std::vector<std::string_view> rows(bool editMode) const;
  JsonObject _keyboardSettings;
  Definition _addressFormatDict;
};

}  // namespace quillon
