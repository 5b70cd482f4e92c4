#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/items/QNItemMerge.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/templates/QNCategoryUUID.h"

// The username and the password that this login has stay. Another username becomes a field of the
// section of conflicts, another password an entry of the history.

namespace quillon {
namespace {

/// The category of the login that it is or stands for; nothing for what is none.
std::optional<std::string> categoryAsLogin(const QNItem& item) {
  if (dynamic_cast<const QNPassword*>(&item) != nullptr) return std::string(QNCategoryUUIDLogin);
  return dynamic_cast<const QNLogin*>(&item) == nullptr ? std::nullopt : item.categoryUUID();
}

/// Null for what is no login and can't be made one. A password's addresses and sections move.
std::shared_ptr<QNLogin> asLogin(const std::shared_ptr<QNItem>& item) {
  const auto password = std::dynamic_pointer_cast<QNPassword>(item);
  return password == nullptr ? std::dynamic_pointer_cast<QNLogin>(item)
                             : password->convertToLoginBasedOnLogin(nullptr);
}

/// What the list can take from another one, and not lose a designation of its own by it.
void addKeepingDesignations(QNLoginFieldList& list, const QNLoginFieldList::Field& entry) {
  const auto designation = entry->designation();
  if (designation && list.loginFieldDesignatedAs(*designation) != nullptr) {
    entry->_removeDesignation();
  }
  list.addLoginField(entry);
}

/// Those that can conflict. Two lists may have any number of them, which no name tells apart.
QNLoginFieldList::Fields namelessOnes(const QNLoginFieldList& list) {
  QNLoginFieldList::Fields found;
  for (const auto& entry : list.fields()) {
    if (!entry->name() && entry->canConflict()) found.push_back(entry);
  }
  return found;
}

QNItemFieldRef conflictField(bool concealed, std::string_view title, std::string_view value) {
  std::shared_ptr<QNItemStringField> field;
  if (concealed) {
    field = std::make_shared<QNItemConcealedField>();
  } else {
    field = std::make_shared<QNItemStringField>();
  }
  field->setTitle(title);
  field->setValue(value);
  return field;
}

}  // namespace

std::shared_ptr<QNDatabaseObject> QNLogin::mergeWithConflict(
    const std::shared_ptr<QNDatabaseObject>& other) {
  const auto item = itemToMerge(other);
  if (item == nullptr) return shared_from_this();
  if (item->isTombstone()) {
    markRowDirty();
  } else if (categoryUUID() != categoryAsLogin(*item)) {
    reportForeignCategory(
        "Attempt to merge login {} ({}) with item from different category {} ({})", *item);
    return nullptr;
  } else {
    // Before a password gives away what it has.
    const auto login = openToMerge(*item, *this) ? asLogin(item) : nullptr;
    if (login == nullptr) return nullptr;
    QNItem::mergeWithConflict(login);
    if (login != item) {
      item->markRowDirty();
      markRowDirty();
    }
    mergeUsernameWithConflict(*login);
    mergePasswordWithConflict(*login);
    mergeLoginFieldsWithConflict(*login);
  }
  if (!hasOid()) copyOidFrom(item);
  return shared_from_this();
}

void QNLogin::mergeUsernameWithConflict(QNLogin& other) {
  const auto theirs = other.username();
  if (username() == theirs) return;
  markRowDirty();
  if (!theirs || theirs->empty()) return;
  if (loginFields().usernameField() == nullptr) {
    return loginFields().addLoginField(other.loginFields().usernameField());
  }
  if (hasFieldToKeepValue(*this, std::string_view(*theirs))) return;
  sectionForConflictsCreatedIfNeeded()->addField(
      conflictField(false, QNLocalizedString("username"), *theirs));
}

void QNLogin::mergePasswordWithConflict(QNLogin& other) {
  const auto mine = password();
  const auto theirs = other.password();
  const bool isSame = mine && theirs ? mine->equals(*theirs) : !mine && !theirs;
  if (isSame) return;
  markRowDirty();
  if (!theirs || containsPasswordValue(theirs->reveal())) return;
  addPreviouslyUsedPassword({theirs->clone(), updatedAt()});
}

// The entries themselves come over: the other list must not be used any more.
void QNLogin::mergeLoginFieldsWithConflict(QNLogin& other) {
  QNLoginFieldList& mine = loginFields();
  for (const auto& entry : other.loginFields().loginFieldsNotContainedWithin(mine)) {
    const auto value = entry->value();
    if (!value || value->empty() || mine.findLoginFieldWithValue(value->reveal())) continue;
    markRowDirty();
    addKeepingDesignations(mine, entry);
  }
  for (const auto& entry : other.loginFields().loginFieldsConflictingWith(mine)) {
    keepAsConflict(*entry);
  }
  for (const auto& entry : namelessOnes(other.loginFields())) {
    const auto value = entry->value();
    if (value && !mine.findLoginFieldWithValue(value->reveal())) keepAsConflict(*entry);
  }
}

void QNLogin::keepAsConflict(const QNLoginField& entry) {
  const auto value = entry.value();
  if (!value || value->empty() || keepsValueOf(entry, value->reveal())) return;
  markRowDirty();
  sectionForConflictsCreatedIfNeeded()->addField(
      conflictField(entry.isConcealed(), entry.name().value_or(""), value->reveal()));
}

// Is it in another place than the list?
bool QNLogin::keepsValueOf(const QNLoginField& entry, std::string_view value) {
  if (entry.designatedAsPassword() && containsPasswordValue(value)) return true;
  if (entry.designatedAsUsername() && username() == value) return true;
  return hasFieldToKeepValue(*this, value);
}

// A generated password comes as the login that it stands for, in the form that a save gives it.
std::shared_ptr<QNDatabaseObject> QNLogin::objectByReplacingWith(
    const std::shared_ptr<QNDatabaseObject>& other) {
  const auto password = std::dynamic_pointer_cast<QNPassword>(other);
  if (password == nullptr) return QNItem::objectByReplacingWith(other);
  const auto login = password->convertToLoginBasedOnLogin(nullptr);
  if (login == nullptr) return shared_from_this();
  login->willSave();
  return QNItem::objectByReplacingWith(login);
}

}  // namespace quillon
