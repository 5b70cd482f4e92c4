#pragma once

#include <memory>
#include <vector>

#include "quillon/logins/QNLoginField.h"

namespace quillon {

/// The form inputs of a login, in order. At most one entry is designated username and at most one
/// password: the newest wins, the older loses its mark. Any other designation moves only by
/// designateLoginFieldAt(); entries that were added with it keep it. Nothing guesses: only a
/// designation makes an entry the username or the password.
///
/// Entries are shared by pointer, the list is moved and never copied: two lists with the same
/// entries would change each other's designations. An index is a place from 0; one that is out of
/// range changes nothing and finds null. Not locked: the login's lock guards it.
class QNLoginFieldList final {
 public:
  QNLoginFieldList() = default;
  QNLoginFieldList(QNLoginFieldList&&) noexcept = default;
  QNLoginFieldList& operator=(QNLoginFieldList&&) noexcept = default;
  QNLoginFieldList(const QNLoginFieldList&) = delete;
  QNLoginFieldList& operator=(const QNLoginFieldList&) = delete;
  ~QNLoginFieldList() = default;

  using Field = std::shared_ptr<QNLoginField>;
  using Fields = std::vector<Field>;

  /// A copy of the list, which may be gone through while this one changes; the entries are shared.
  [[nodiscard]] Fields fields() const { return _internalFields; }
  [[nodiscard]] std::size_t count() const { return _internalFields.size(); }
  [[nodiscard]] Field objectAtIndex(std::size_t index) const { return loginFieldAtIndex(index); }
  [[nodiscard]] Field loginFieldAtIndex(std::size_t index) const;
  /// The entry that this list designated, as long as it has that designation; or null.
  [[nodiscard]] Field usernameField() const;
  [[nodiscard]] Field passwordField() const;
  /// The concealed entries, designated or not.
  [[nodiscard]] Fields passwordFields() const;

  /// Puts it at the end. One that is designated username or password takes the mark from who has
  /// it. Null is ignored.
  void addLoginField(const Field& field);
  /// Nobody takes over its designation.
  void removeLoginFieldAtIndex(std::size_t index);
  /// Adds a designated entry of that value and gives it back. Nothing makes an empty username, but
  /// a password entry without a value.
  Field addDesignatedUsername(std::optional<std::string_view> value);
  Field addDesignatedPassword(std::optional<std::string_view> value);
  /// Gives the entry the designation, and takes it from the first entry that has it, if that is
  /// another one. A negative index only takes it; one behind the end changes nothing.
  void designateLoginFieldAt(std::int64_t index, std::string_view as);
  /// For a designation that isn't username or password, the first entry that has it.
  [[nodiscard]] Field loginFieldDesignatedAs(std::string_view designation) const;

  // First match by exact text, or null
  [[nodiscard]] Field findLoginFieldWithValue(std::string_view value) const;
  [[nodiscard]] Field findLoginFieldWithName(std::optional<std::string_view> name) const;
  [[nodiscard]] Fields loginFieldsWithName(std::string_view name) const;
  /// The entries for whose names the other list has none. No name equals no name, so what this
  /// leaves out may hold another value than any there.
  [[nodiscard]] Fields loginFieldsNotContainedWithin(const QNLoginFieldList& other) const;
  /// The entries that can conflict, have a name and a value, and to which no entry of the other
  /// list is equal in all members, unknown ones included. So an entry whose name the other list
  /// lacks conflicts too.
  [[nodiscard]] Fields loginFieldsConflictingWith(const QNLoginFieldList& other) const;

  // Change-password forms hold the new password twice: it is the first value, not empty, that two
  // concealed entries share.
  /// The first concealed entry of another value than that; if all share it, the new password's
  /// own. Without a new password, the first concealed entry.
  [[nodiscard]] Field findOldPasswordLoginField() const;
  /// Entries of the given value are passed over.
  [[nodiscard]] Field findNewPasswordLoginFieldExcludingPasswordValue(
      std::optional<std::string_view> value) const;

  // For search. Empty texts are left out; nothing, not an empty list, when none is left
  [[nodiscard]] std::optional<std::vector<QNSecret>> allValuesForSearch() const;
  /// Values of the entries that are concealed or designated password.
  [[nodiscard]] std::optional<std::vector<QNSecret>> allPasswordsForSearch() const;
  /// Names of the entries.
  [[nodiscard]] std::optional<std::vector<QNSecret>> allFieldTitlesForSearch() const;

  /// The form stored in details "fields".
  [[nodiscard]] JsonArray jsonArray() const;

 private:
  void forget(const Field& field);
  Field _usernameField;
  Field _passwordField;
  Fields _internalFields;
};

}  // namespace quillon
