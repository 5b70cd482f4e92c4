#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

class QNLogin;

/// A generated password that isn't a login yet, category "005". The password is a text in its
/// details.
class QNPassword final : public QNItem {
 public:
  explicit QNPassword(QNNew);
  explicit QNPassword(QNExisting existing);
  explicit QNPassword(QNDecoder& coder) : QNItem(coder) {}

  [[nodiscard]] std::string_view className() const override { return "QNPassword"; }
  [[nodiscard]] std::optional<QNSecret> password() override;
  void setPassword(std::optional<std::string_view> password) override;
  [[nodiscard]] std::optional<QNSecret> clipboardValue() override { return password(); }
  /// The password first, if it isn't empty.
  [[nodiscard]] std::vector<QNSecret> allValuesForSearch() override;
  /// Password (with the right to reveal) and one-time password.
  [[nodiscard]] std::vector<QNQuickAccessShortcut> quickAccessFields() override;
  /// What a watch gets of it, in clear: touchpoints/QNWatchRecord.h.
  [[nodiscard]] JsonObject appleWatchDictionaryRepresentation();
  /// What a fill record made from this item is.
  [[nodiscard]] std::string_view fillObjectContext() const;
  /// Day and time of medium length in the user's language and time zone, by a formatter that each
  /// thread has for itself. Nothing if there is none for them.
  [[nodiscard]] static std::optional<std::string> dateFormatter(std::chrono::sys_seconds date);
  /// When it was made.
  [[nodiscard]] std::optional<std::string> _additionalInformation() override;
  /// Has a person changed it, or added something to it, since it was generated?
  [[nodiscard]] bool isModifedByUser();

  /// A login of this password and its row, which takes over what `login` has, if one is given:
  /// title, form, tags, folder, addresses (before its own) and sections. Null, with an assertion
  /// log and nothing changed, if that is of another vault or this item doesn't open. Both items'
  /// objects move: nobody may use either meanwhile, and let go of them afterwards.
  /// QNPassword+Login.cpp
  [[nodiscard]] std::shared_ptr<QNLogin> convertToLoginBasedOnLogin(
      const std::shared_ptr<QNLogin>& login);

  // Merging: QNPassword+Merge.cpp. With a login of category "001", this becomes one; a login never
  // becomes a password. If this item doesn't open, it can't: a merge gives null, a replacement
  // leaves it as it is.
  std::shared_ptr<QNDatabaseObject> mergeWithConflict(
      const std::shared_ptr<QNDatabaseObject>& other) override;
  std::shared_ptr<QNDatabaseObject> objectByReplacingWith(
      const std::shared_ptr<QNDatabaseObject>& other) override;

 private:
  void mergePasswordWithConflict(QNPassword& other);
  void keepOwnPassword(QNLogin& login);
};

}  // namespace quillon
