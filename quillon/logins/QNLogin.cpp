// What a login adds to the details of an item; whole in docs/formats.md:
//
//   "fields"      array of form fields: what a browser captured, username and password among them
//   "htmlForm"    object of the texts "htmlName", "htmlMethod", "htmlID", "htmlAction", each only
//                 when set; not there while it is empty

#include "quillon/logins/QNLogin.h"

#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/items/QNQuickAccessShortcut.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/templates/QNCategoryUUID.h"
#include "quillon/touchpoints/QNWatchConstants.h"
#include "quillon/touchpoints/QNWatchRecord.h"

namespace quillon {
namespace {

// An empty id is one too: whoever types a login in leaves the member out, and a browser writes what
// the page says.
bool hasHtmlId(const QNLoginFieldList::Field& field) {
  return field != nullptr && field->htmlId() != nullptr;
}

std::vector<QNSecret> joined(std::optional<std::vector<QNSecret>> first,
                             std::vector<QNSecret> second) {
  if (!first) return second;
  std::move(second.begin(), second.end(), std::back_inserter(*first));
  return std::move(*first);
}

}  // namespace

QNLogin::QNLogin(QNNew) : QNItem(initNew) {
  setCategoryUUID(std::string(QNCategoryUUIDLogin));
}

QNLogin::QNLogin(QNExisting existing) : QNItem(existing) {
  setCategoryUUID(std::string(QNCategoryUUIDLogin));
}

QNLoginFieldList& QNLogin::loginFields() {
  const std::lock_guard guard(monitor());
  if (_cachedLoginFields == nullptr) _cachedLoginFields = std::make_unique<QNLoginFieldList>();
  if (!_loginFieldsAreLoaded) _loadLoginFields();
  return *_cachedLoginFields;
}

void QNLogin::_loadLoginFields() {
  JsonObject* const stored = details();  // whose first parse may come here and load the list
  if (_loginFieldsAreLoaded) return;
  *_cachedLoginFields = QNLoginFieldList();  // somebody may hold on to it
  if (stored == nullptr) return;
  _loginFieldsAreLoaded = true;
  if (const Json* const fields = mr_objectForKey(*stored, kDetailsFields, JsonKind::array)) {
    for (const Json& element : fields->get_array()) {
      const JsonObject* const dictionary = element.if_object();
      if (dictionary == nullptr || dictionary->empty()) continue;
      _cachedLoginFields->addLoginField(std::make_shared<QNLoginField>(*dictionary));
    }
  }
  noteOriginalPassword();
}

void QNLogin::dropLoginFields() {
  _loginFieldsAreLoaded = false;
  if (_cachedLoginFields != nullptr) *_cachedLoginFields = QNLoginFieldList();
}

void QNLogin::setDetailsData(std::optional<Bytes> data) {
  const std::lock_guard guard(monitor());
  QNItem::setDetailsData(std::move(data));
  dropLoginFields();
}

void QNLogin::copyDetails(const JsonObject& details) {
  const std::lock_guard guard(monitor());
  QNItem::copyDetails(details);
  dropLoginFields();
}

void QNLogin::willSerialize() {
  const std::lock_guard guard(monitor());
  saveLoginFields();
  QNItem::willSerialize();
}

void QNLogin::saveObjectsOfDetails() {
  const std::lock_guard guard(monitor());
  saveLoginFields();
  QNItem::saveObjectsOfDetails();
}

void QNLogin::saveLoginFields() {
  JsonObject* const stored = detailsLoaded() && _loginFieldsAreLoaded ? details() : nullptr;
  if (stored != nullptr) (*stored)[kDetailsFields] = _cachedLoginFields->jsonArray();
}

bool QNLogin::hasLoginFields() {
  const std::lock_guard guard(monitor());
  return loginFields().count() > 0;
}

std::optional<std::string> QNLogin::username() {
  const std::lock_guard guard(monitor());
  const auto field = loginFields().usernameField();
  const auto value = field == nullptr ? std::nullopt : field->value();
  return value ? std::optional<std::string>(value->reveal()) : std::nullopt;
}

void QNLogin::setUsername(std::optional<std::string_view> username) {
  const std::lock_guard guard(monitor());
  if (details() == nullptr) return;
  const std::string_view value = username.value_or("");
  const auto field = loginFields().usernameField();
  if (field != nullptr && field->hasValue(value)) return;
  markRowDirty();
  if (field != nullptr) {
    field->setValue(value);
  } else {
    loginFields().addDesignatedUsername(value);
  }
}

std::optional<QNSecret> QNLogin::password() {
  const std::lock_guard guard(monitor());
  const auto field = loginFields().passwordField();
  auto value = field == nullptr ? std::nullopt : field->value();
  return value && !value->empty() ? std::move(value) : std::nullopt;
}

void QNLogin::setPassword(std::optional<std::string_view> password) {
  const std::lock_guard guard(monitor());
  if (details() == nullptr) return;
  const std::string_view value = password.value_or("");
  const auto field = loginFields().passwordField();
  if (field != nullptr && field->hasValue(value)) return;
  markRowDirty();
  if (field != nullptr) {
    field->setValue(value);
  } else {
    loginFields().addDesignatedPassword(value);
  }
}

std::shared_ptr<QNItemField> QNLogin::itemFieldForUsername() {
  const auto name = username();
  if (!name || name->empty()) return nullptr;
  auto field = QNItemStringField::fieldWithIdentifier("username");
  field->setTitle(QNLocalizedString("username"));
  field->setValue(*name);
  return field;
}

JsonObject QNLogin::fieldSectionsAsLoginFields(const FieldSections& sections) {
  JsonObject byTitle(jsonStorage());
  for (const auto& section : sections) {
    for (const auto& field : section->fields()) {
      const auto value = field->stringValue();
      if (!value) continue;
      JsonObject made(jsonStorage());
      setJsonText(made, QNLoginFieldKeyValue, value->reveal());  // into the wiping resource
      const bool concealed = field->type() == QNItemConcealedField::typeName();
      setJsonText(made, QNLoginFieldKeyType,
                  concealed ? QNLoginFieldTypePassword : QNLoginFieldTypeText);
      setJsonText(made, QNLoginFieldKeyName, field->title());
      byTitle[field->title()] = std::move(made);
    }
  }
  return byTitle;
}

std::optional<std::string> QNLogin::htmlFormValueForKey(std::string_view key) {
  const std::lock_guard guard(monitor());
  const JsonObject* const stored = details();
  if (stored == nullptr) return std::nullopt;
  const Json* const form = mr_objectForKey(*stored, kDetailsHtmlForm, JsonKind::object);
  if (form == nullptr) return std::nullopt;
  const auto value = mr_validStringValueForKey(form->get_object(), key);
  return value ? std::optional<std::string>(*value) : std::nullopt;
}

void QNLogin::setHtmlFormValue(std::optional<std::string_view> value, std::string_view forKey) {
  const std::lock_guard guard(monitor());
  if (!value) return removeHtmlFormValueForKey(forKey);
  JsonObject* const stored = details();
  if (stored == nullptr || htmlFormValueForKey(forKey) == value) return;
  markRowDirty();
  Json& form = (*stored)[kDetailsHtmlForm];
  if (!form.is_object()) form.emplace_object();
  setJsonText(form.get_object(), forKey, *value);
}

void QNLogin::removeHtmlFormValueForKey(std::string_view key) {
  JsonObject* const stored = details();
  const auto form = stored == nullptr ? nullptr : stored->find(kDetailsHtmlForm);
  if (stored == nullptr || form == stored->end() || !form->value().is_object()) return;
  JsonObject& members = form->value().get_object();
  if (!members.empty() && !members.contains(key)) return;
  markRowDirty();
  members.stable_erase(key);
  if (members.empty()) stored->stable_erase(form);
}

std::vector<QNQuickAccessShortcut> QNLogin::quickAccessFields() {
  const std::lock_guard guard(monitor());
  std::vector<QNQuickAccessShortcut> shortcuts;
  if (auto name = itemFieldForUsername()) shortcuts.emplace_back(std::move(name), 2);
  if (auto secret = mayReveal() ? itemFieldForPassword() : nullptr) {
    shortcuts.emplace_back(std::move(secret), 1);
  }
  addOneTimePasswordFieldRequestingCopyKey(3, shortcuts);
  return shortcuts;
}

JsonObject QNLogin::appleWatchDictionaryRepresentation() {
  const std::lock_guard guard(monitor());
  QNWatchRecord record(QNWatchTypeLogin);
  record.setValue(QNSecret(username().value_or("")), QNWatchLoginItemUsernameKey);
  record.setValue(password(), QNWatchLoginItemPasswordKey);
  return std::move(record).dictionaryOfItem(*this);
}

std::optional<std::string> QNLogin::_additionalInformation() {
  auto name = username();
  if (name && !name->empty()) return name;
  if (auto alias = fastmailAlias()) return alias;
  return QNLocalizedString("—");
}

bool QNLogin::isCreatedByBrowserExtension() {
  const std::lock_guard guard(monitor());
  const JsonObject* const stored = details();
  if (stored != nullptr && mr_objectForKey(*stored, kDetailsHtmlForm, JsonKind::object))
    return true;
  const QNLoginFieldList& fields = loginFields();
  return hasHtmlId(fields.usernameField()) || hasHtmlId(fields.passwordField());
}

std::vector<QNSecret> QNLogin::allValuesForSearch() {
  return joined(
      withLoginFields([](const QNLoginFieldList& fields) { return fields.allValuesForSearch(); }),
      QNItem::allValuesForSearch());
}

std::vector<QNSecret> QNLogin::allPasswordsForSearch() {
  return joined(withLoginFields(
                    [](const QNLoginFieldList& fields) { return fields.allPasswordsForSearch(); }),
                QNItem::allPasswordsForSearch());
}

std::vector<QNSecret> QNLogin::allFieldTitlesForSearch() {
  return joined(withLoginFields([](const QNLoginFieldList& fields) {
                  return fields.allFieldTitlesForSearch();
                }),
                QNItem::allFieldTitlesForSearch());
}

QNPrivacyComLogin::QNPrivacyComLogin(QNNew) : QNLogin(initNew) {
  setOverviewText("privacy", "integration");
  setCategoryUUID(std::string(QNCategoryUUIDPrivacyComLogin));
}

// Its category comes with its row.
QNPrivacyComLogin::QNPrivacyComLogin(QNExisting existing) : QNLogin(existing) {}

}  // namespace quillon
