#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/platform/json/QNJson.h"

namespace quillon {

// Keys of a login field in details "fields"
inline constexpr std::string_view QNLoginFieldKeyName = "name";
inline constexpr std::string_view QNLoginFieldKeyValue = "value";
inline constexpr std::string_view QNLoginFieldKeyType = "type";
inline constexpr std::string_view QNLoginFieldKeyDesignation = "designation";
inline constexpr std::string_view QNLoginFieldKeyHtmlId = "id";

// Keys of the same things in fill records
inline constexpr std::string_view QNFillObjectFieldKeyHtmlId = "htmlId";
inline constexpr std::string_view QNFillObjectFieldKeyHtmlName = "htmlName";
inline constexpr std::string_view QNFillObjectFieldKeyIsChecked = "checked";

// Kinds of form inputs
inline constexpr std::string_view QNLoginFieldTypeText = "T";
inline constexpr std::string_view QNLoginFieldTypePassword = "P";
inline constexpr std::string_view QNLoginFieldTypeEmail = "E";
inline constexpr std::string_view QNLoginFieldTypeURL = "U";
inline constexpr std::string_view QNLoginFieldTypeNumber = "N";
inline constexpr std::string_view QNLoginFieldTypeRadio = "R";
inline constexpr std::string_view QNLoginFieldTypeTextArea = "A";
inline constexpr std::string_view QNLoginFieldTypeButton = "B";
inline constexpr std::string_view QNLoginFieldTypeCheckbox = "C";
inline constexpr std::string_view QNLoginFieldTypeTelephone = "TEL";
inline constexpr std::string_view QNLoginFieldTypeTextString = "S";

// Designations
inline constexpr std::string_view QNLoginFieldDesignationUsername = "username";
inline constexpr std::string_view QNLoginFieldDesignationPassword = "password";
inline constexpr std::string_view QNFillObjectDesignationExistingPassword = "password";
inline constexpr std::string_view QNFillObjectDesignationNewPassword = "new-password";
inline constexpr std::string_view QNFillObjectDesignationTOTP = "totp";

/// One input of a web form as a browser captured it: a JSON object with named accessors, which
/// keeps the members that it doesn't know. The object lies in the wiping resource, which a plain
/// copy would leave: lists share their entries.
class QNLoginField final {
 public:
  QNLoginField();
  explicit QNLoginField(const JsonObject& initWithDictionary);
  /// Pairs them in order; what is left over on one side is left out.
  QNLoginField(std::span<const Json> initWithObjects, std::span<const std::string_view> forKeys);
  QNLoginField(const QNLoginField&) = delete;
  QNLoginField& operator=(const QNLoginField&) = delete;

  // Reading: a number reads as its decimal text, true and false as "1" and "0", an array or an
  // object as its JSON text; null and absent members as nothing.
  [[nodiscard]] std::optional<QNSecret> value() const;
  [[nodiscard]] std::optional<std::string> name() const;
  [[nodiscard]] std::optional<std::string> designation() const;
  /// "T" if it is missing or empty.
  [[nodiscard]] std::string type() const;
  /// The stored value itself; null if it is absent or a JSON null.
  [[nodiscard]] const Json* htmlId() const;
  /// Is the value that text?
  [[nodiscard]] bool hasValue(std::string_view value) const;

  void setName(std::string_view name);
  void setType(std::string_view type);
  /// Nothing removes the member.
  void setValue(std::optional<std::string_view> value);
  /// Nothing and "" remove the member. The designation of an entry in a list is the list's: use
  /// its designateLoginFieldAt(), which takes the mark from the other entry. The same goes for
  /// _removeDesignation().
  void setDesignation(std::optional<std::string_view> designation);
  void _removeDesignation();

  [[nodiscard]] bool designatedAsUsername() const;
  [[nodiscard]] bool designatedAsPassword() const;
  [[nodiscard]] bool canConflict() const;
  [[nodiscard]] bool isConcealed() const;
  [[nodiscard]] bool isButton() const;
  [[nodiscard]] bool isCheckbox() const;
  [[nodiscard]] bool isRadio() const;
  [[nodiscard]] bool isTextArea() const;
  /// The value, cut to that many UTF-16 code units.
  [[nodiscard]] std::optional<QNSecret> valueLimitedToLength(std::size_t length) const;

  // As a read-only dictionary
  [[nodiscard]] std::size_t count() const { return _field.size(); }
  /// The stored member; null if it is absent. Valid until the field changes.
  [[nodiscard]] const Json* objectForKey(std::string_view key) const {
    return _field.if_contains(key);
  }
  /// The names of its members, in order. Valid until the field changes.
  [[nodiscard]] std::vector<std::string_view> keyEnumerator() const;
  [[nodiscard]] const JsonObject& asDictionary() const { return _field; }

 private:
  void remove(std::string_view key);
  JsonObject _field;
};

}  // namespace quillon
