#pragma once

#include "quillon/items/QNItem.h"
#include "quillon/logins/QNLoginFieldList.h"

namespace quillon {

/// A saved web sign-in, category "001". Its username and password are entries of the captured
/// form in details "fields", marked by a designation. The item's lock guards the list.
class QNLogin : public QNItem {
 public:
  explicit QNLogin(QNNew);
  explicit QNLogin(QNExisting existing);
  explicit QNLogin(QNDecoder& coder) : QNItem(coder) {}

  [[nodiscard]] std::string_view className() const override { return "QNLogin"; }
  /// Loaded at the first use. The same object as long as the login lives: it is emptied when the
  /// details are replaced and filled again by the next call. While the details can't be read it is
  /// empty and never saved: the next call tries again.
  ///
  /// For a login that one thread has to itself: the lock is given back before this returns, and
  /// everything done with the list, `fields()` included, is done without it. Otherwise use
  /// withLoginFields().
  ///
  /// A change of the list or of an entry doesn't mark the row dirty: call markRowDirty() too. Once
  /// the list is loaded it is what a save stores: willSerialize() puts it over anything written to
  /// details "fields" itself since.
  QNLoginFieldList& loginFields();
  /// Runs `work` with that list inside the login's lock, and gives back what it answers. Entries
  /// are shared, so let texts out and no entries; and don't wait for another thread in `work`.
  template <class Work>
  auto withLoginFields(const Work& work) {
    const std::lock_guard guard(monitor());
    return work(loginFields());
  }
  [[nodiscard]] bool hasLoginFields() override;
  [[nodiscard]] std::optional<std::string> username() override;
  void setUsername(std::optional<std::string_view> username) override;
  [[nodiscard]] std::optional<QNSecret> password() override;
  void setPassword(std::optional<std::string_view> password) override;

  /// The user name as a field of its own, which is no part of the item; null if it is empty.
  [[nodiscard]] std::shared_ptr<QNItemField> itemFieldForUsername();
  /// The fields of sections as form fields, by title: "value", "type" ("P" for a concealed one,
  /// else "T") and "name". Fields without a value are left out; of equal titles the last stays.
  static JsonObject fieldSectionsAsLoginFields(const FieldSections& sections);

  // The web form it was saved from
  [[nodiscard]] std::optional<std::string> htmlFormValueForKey(std::string_view key);
  void setHtmlFormValue(std::optional<std::string_view> value, std::string_view forKey);
  [[nodiscard]] std::optional<std::string> htmlName() { return htmlFormValueForKey("htmlName"); }
  void setHtmlName(std::optional<std::string_view> name) { setHtmlFormValue(name, "htmlName"); }
  [[nodiscard]] std::optional<std::string> htmlMethod() {
    return htmlFormValueForKey("htmlMethod");
  }
  void setHtmlMethod(std::optional<std::string_view> method) {
    setHtmlFormValue(method, "htmlMethod");
  }
  [[nodiscard]] std::optional<std::string> htmlID() { return htmlFormValueForKey("htmlID"); }
  void setHtmlID(std::optional<std::string_view> id) { setHtmlFormValue(id, "htmlID"); }
  [[nodiscard]] std::optional<std::string> htmlAction() {
    return htmlFormValueForKey("htmlAction");
  }
  void setHtmlAction(std::optional<std::string_view> action) {
    setHtmlFormValue(action, "htmlAction");
  }

  // Merging: QNLogin+Merge.cpp. A generated password joins, and wins, as the login that it stands
  // for: nobody may use it meanwhile, and let go of it afterwards. One that doesn't open stands for
  // none: a merge gives null, a replacement leaves this login as it is.
  std::shared_ptr<QNDatabaseObject> mergeWithConflict(
      const std::shared_ptr<QNDatabaseObject>& other) override;
  std::shared_ptr<QNDatabaseObject> objectByReplacingWith(
      const std::shared_ptr<QNDatabaseObject>& other) override;
  void mergeUsernameWithConflict(QNLogin& other);
  void mergePasswordWithConflict(QNLogin& other);
  void mergeLoginFieldsWithConflict(QNLogin& other);

  /// User name, password (with the right to reveal) and one-time password.
  [[nodiscard]] std::vector<QNQuickAccessShortcut> quickAccessFields() override;
  /// What a watch gets of it, in clear: touchpoints/QNWatchRecord.h.
  [[nodiscard]] JsonObject appleWatchDictionaryRepresentation();

  [[nodiscard]] std::optional<std::string> _additionalInformation() override;
  [[nodiscard]] std::optional<QNSecret> clipboardValue() override { return password(); }
  [[nodiscard]] bool isCreatedByBrowserExtension() override;

  // Search: entries of the form come first
  [[nodiscard]] std::vector<QNSecret> allValuesForSearch() override;
  [[nodiscard]] std::vector<QNSecret> allPasswordsForSearch() override;
  [[nodiscard]] std::vector<QNSecret> allFieldTitlesForSearch() override;

  // Kept for compatibility: not persisted, and nothing reads them
  [[nodiscard]] bool defaultAutosubmit() const { return false; }
  [[nodiscard]] bool alwaysAutosubmit() const { return false; }
  [[nodiscard]] bool neverAutosubmit() const { return false; }
  [[nodiscard]] std::optional<std::string> autosubmit() const {
    return _autosubmit == nullptr ? std::nullopt : std::optional(*_autosubmit);
  }
  void setAutosubmit(const std::optional<std::string>& value) {
    _autosubmit = value ? std::make_unique<const std::string>(*value) : nullptr;
  }
  [[nodiscard]] std::optional<std::string> localizedAutosubmitDescription() const {
    return std::nullopt;
  }

  void setDetailsData(std::optional<Bytes> data) override;
  void copyDetails(const JsonObject& details) override;
  void willSerialize() override;

 protected:
  void saveObjectsOfDetails() override;

 private:
  void saveLoginFields();
  void _loadLoginFields();
  void dropLoginFields();
  void removeHtmlFormValueForKey(std::string_view key);
  bool keepsValueOf(const QNLoginField& entry, std::string_view value);
  void keepAsConflict(const QNLoginField& entry);

  bool _loginFieldsAreLoaded = false;
  std::unique_ptr<QNLoginFieldList> _cachedLoginFields;
  std::unique_ptr<const std::string> _autosubmit;  // few logins have one, and each is listed
};

/// A login of category "800", made through the outside service Privacy.
class QNPrivacyComLogin final : public QNLogin {
 public:
  explicit QNPrivacyComLogin(QNNew);
  explicit QNPrivacyComLogin(QNExisting existing);
  explicit QNPrivacyComLogin(QNDecoder& coder) : QNLogin(coder) {}
  [[nodiscard]] std::string_view className() const override { return "QNPrivacyComLogin"; }
};

}  // namespace quillon
