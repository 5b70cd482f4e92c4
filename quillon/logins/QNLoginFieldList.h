#pragma once

#include <memory>
#include <vector>

#include "quillon/logins/QNLoginField.h"

namespace quillon {

/// The form inputs of a login, in order. At most one entry has a given designation: the newest
/// wins, the older loses its mark. Nothing guesses: only a designation makes an entry the
/// username or the password. Not locked: the login's lock guards it.
class QNLoginFieldList final {
 public:
  using Field = std::shared_ptr<QNLoginField>;
  using Fields = std::vector<Field>;

  /// A copy of the list, which may be gone through while this one changes; the entries are shared.
  [[nodiscard]] Fields fields() const { return _internalFields; }
  [[nodiscard]] std::size_t count() const { return _internalFields.size(); }
  /// Null if the index is out of range.
  [[nodiscard]] Field objectAtIndex(std::size_t index) const { return loginFieldAtIndex(index); }
  [[nodiscard]] Field loginFieldAtIndex(std::size_t index) const;
  /// The designated entries, or null.
  [[nodiscard]] const Field& usernameField() const { return _usernameField; }
  [[nodiscard]] const Field& passwordField() const { return _passwordField; }
  [[nodiscard]] Fields passwordFields() const;

  void addLoginField(const Field& field);
  void removeLoginFieldAtIndex(std::size_t index);
  Field addDesignatedUsername(std::optional<std::string_view> value);
  Field addDesignatedPassword(std::optional<std::string_view> value);
  /// Takes the designation away from who has it. A negative index gives it to nobody.
  void designateLoginFieldAt(std::int64_t index, std::string_view as);
  [[nodiscard]] Field loginFieldDesignatedAs(std::string_view designation) const;

  // First match by exact text, or null
  [[nodiscard]] Field findLoginFieldWithValue(std::string_view value) const;
  [[nodiscard]] Field findLoginFieldWithName(std::optional<std::string_view> name) const;
  [[nodiscard]] Fields loginFieldsWithName(std::string_view name) const;
  [[nodiscard]] Fields loginFieldsNotContainedWithin(const QNLoginFieldList& other) const;
  [[nodiscard]] Fields loginFieldsConflictingWith(const QNLoginFieldList& other) const;

  // Change-password forms hold the new password twice
  [[nodiscard]] Field findOldPasswordLoginField() const;
  [[nodiscard]] Field findNewPasswordLoginFieldExcludingPasswordValue(
      std::optional<std::string_view> value) const;

  // Nothing, not an empty list, when nothing qualifies
  [[nodiscard]] std::optional<std::vector<QNSecret>> allValuesForSearch() const;
  [[nodiscard]] std::optional<std::vector<QNSecret>> allPasswordsForSearch() const;
  [[nodiscard]] std::optional<std::vector<std::string>> allFieldTitlesForSearch() const;

  /// The form stored in details "fields".
  [[nodiscard]] JsonArray jsonArray() const;

 private:
  void forget(const Field& field);
  Field _usernameField;
  Field _passwordField;
  Fields _internalFields;
};

}  // namespace quillon
