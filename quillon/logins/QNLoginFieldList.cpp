#include "quillon/logins/QNLoginFieldList.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "quillon/platform/json/QNJsonEquality.h"
#include "quillon/platform/json/QNJsonReading.h"

namespace quillon {
namespace {

using Field = QNLoginFieldList::Field;
using Fields = QNLoginFieldList::Fields;

template <class Test>
Field firstThat(const Fields& fields, const Test& test) {
  const auto found = std::find_if(fields.begin(), fields.end(), test);
  return found == fields.end() ? nullptr : *found;
}

template <class Test>
Fields allThat(const Fields& fields, const Test& test) {
  Fields found;
  std::copy_if(fields.begin(), fields.end(), std::back_inserter(found), test);
  return found;
}

template <class Read>
std::optional<std::vector<QNSecret>> nonEmptyTexts(const Fields& fields, const Read& read) {
  std::vector<QNSecret> texts;
  for (const Field& field : fields) {
    std::optional<QNSecret> text = read(*field);
    if (text && !text->empty()) texts.push_back(*std::move(text));
  }
  return texts.empty() ? std::nullopt : std::optional(std::move(texts));
}

std::optional<std::vector<QNSecret>> nonEmptyValues(const Fields& fields) {
  return nonEmptyTexts(fields, [](const QNLoginField& field) { return field.value(); });
}

Field fieldWith(std::string_view name, std::optional<std::string_view> value, std::string_view type,
                std::string_view designation) {
  auto field = std::make_shared<QNLoginField>();
  field->setName(name);
  field->setValue(value);
  field->setType(type);
  field->setDesignation(designation);
  return field;
}

}  // namespace

Field QNLoginFieldList::loginFieldAtIndex(std::size_t index) const {
  return index < _internalFields.size() ? _internalFields[index] : nullptr;
}

// A designation may have gone from the entry without the list: the entry is asked.
Field QNLoginFieldList::usernameField() const {
  return _usernameField != nullptr && _usernameField->designatedAsUsername() ? _usernameField
                                                                             : nullptr;
}

Field QNLoginFieldList::passwordField() const {
  return _passwordField != nullptr && _passwordField->designatedAsPassword() ? _passwordField
                                                                             : nullptr;
}

Fields QNLoginFieldList::passwordFields() const {
  return allThat(_internalFields, [](const Field& field) { return field->isConcealed(); });
}

void QNLoginFieldList::addLoginField(const Field& field) {
  if (field == nullptr) return;
  _internalFields.push_back(field);
  const auto last = static_cast<std::int64_t>(_internalFields.size()) - 1;
  if (field->designatedAsUsername()) {
    designateLoginFieldAt(last, QNLoginFieldDesignationUsername);
  } else if (field->designatedAsPassword()) {
    designateLoginFieldAt(last, QNLoginFieldDesignationPassword);
  }
}

void QNLoginFieldList::removeLoginFieldAtIndex(std::size_t index) {
  if (index >= _internalFields.size()) return;
  const auto place = _internalFields.begin() + static_cast<std::ptrdiff_t>(index);
  forget(*place);
  _internalFields.erase(place);
}

Field QNLoginFieldList::addDesignatedUsername(std::optional<std::string_view> value) {
  const Field added = fieldWith("username", value.value_or(""), QNLoginFieldTypeText,
                                QNLoginFieldDesignationUsername);
  addLoginField(added);
  return added;
}

Field QNLoginFieldList::addDesignatedPassword(std::optional<std::string_view> value) {
  const Field added =
      fieldWith("password", value, QNLoginFieldTypePassword, QNLoginFieldDesignationPassword);
  addLoginField(added);
  return added;
}

void QNLoginFieldList::designateLoginFieldAt(std::int64_t index, std::string_view as) {
  if (index >= static_cast<std::int64_t>(count())) return;
  const std::string designation(as);  // which may lie within the entry that loses it
  const Field entry = index < 0 ? nullptr : loginFieldAtIndex(static_cast<std::size_t>(index));
  const Field holder = firstThat(_internalFields, [&designation](const Field& field) {
    return field->designation() == designation;
  });
  if (holder != nullptr && holder != entry) {
    holder->_removeDesignation();
    forget(holder);
  }
  if (entry == nullptr) return;
  forget(entry);  // it may have been the other one until now
  entry->setDesignation(designation);
  if (designation == QNLoginFieldDesignationUsername) _usernameField = entry;
  if (designation == QNLoginFieldDesignationPassword) _passwordField = entry;
}

void QNLoginFieldList::forget(const Field& field) {
  if (_usernameField == field) _usernameField = nullptr;
  if (_passwordField == field) _passwordField = nullptr;
}

Field QNLoginFieldList::loginFieldDesignatedAs(std::string_view designation) const {
  if (designation == QNLoginFieldDesignationUsername) return usernameField();
  if (designation == QNLoginFieldDesignationPassword) return passwordField();
  return firstThat(_internalFields, [designation](const Field& field) {
    return field->designation() == designation;
  });
}

Field QNLoginFieldList::findLoginFieldWithValue(std::string_view value) const {
  return firstThat(_internalFields, [value](const Field& field) { return field->hasValue(value); });
}

Field QNLoginFieldList::findLoginFieldWithName(std::optional<std::string_view> name) const {
  return firstThat(_internalFields, [name](const Field& field) { return field->name() == name; });
}

Fields QNLoginFieldList::loginFieldsWithName(std::string_view name) const {
  return allThat(_internalFields, [name](const Field& field) { return field->name() == name; });
}

Fields QNLoginFieldList::loginFieldsNotContainedWithin(const QNLoginFieldList& other) const {
  return allThat(_internalFields, [&other](const Field& field) {
    return other.findLoginFieldWithName(field->name()) == nullptr;
  });
}

Fields QNLoginFieldList::loginFieldsConflictingWith(const QNLoginFieldList& other) const {
  return allThat(_internalFields, [&other](const Field& field) {
    const auto name = field->name();
    if (!field->canConflict() || !name || !field->value()) return false;
    const Fields rivals = other.loginFieldsWithName(*name);
    return std::none_of(rivals.begin(), rivals.end(), [&field](const Field& rival) {
      return equalJson(rival->asDictionary(), field->asDictionary());
    });
  });
}

Field QNLoginFieldList::findOldPasswordLoginField() const {
  const Fields passwords = passwordFields();
  if (passwords.empty()) return nullptr;
  const Field newPassword = findNewPasswordLoginFieldExcludingPasswordValue(std::nullopt);
  if (newPassword == nullptr) return passwords.front();
  const auto newValue = newPassword->value();
  const Field old = firstThat(passwords, [&newValue](const Field& field) {
    return !field->hasValue(newValue->reveal());  // a comparison in place
  });
  return old != nullptr ? old : newPassword;
}

Field QNLoginFieldList::findNewPasswordLoginFieldExcludingPasswordValue(
    std::optional<std::string_view> value) const {
  const Fields passwords = passwordFields();
  return firstThat(passwords, [&](const Field& field) {
    const auto own = field->value();
    if (!own || own->empty() || (value && own->equals(*value))) return false;
    const auto same = [&own](const Field& twin) { return twin->hasValue(own->reveal()); };
    return std::count_if(passwords.begin(), passwords.end(), same) >= 2;
  });
}

std::optional<std::vector<QNSecret>> QNLoginFieldList::allValuesForSearch() const {
  return nonEmptyValues(_internalFields);
}

std::optional<std::vector<QNSecret>> QNLoginFieldList::allPasswordsForSearch() const {
  return nonEmptyValues(allThat(_internalFields, [](const Field& field) {
    return field->isConcealed() || field->designatedAsPassword();
  }));
}

// What name() gives, in memory that is wiped.
std::optional<std::vector<QNSecret>> QNLoginFieldList::allFieldTitlesForSearch() const {
  return nonEmptyTexts(_internalFields, [](const QNLoginField& field) {
    const Json* const name = field.objectForKey(QNLoginFieldKeyName);
    return name == nullptr ? std::nullopt : descriptionOfJson(*name);
  });
}

JsonArray QNLoginFieldList::jsonArray() const {
  JsonArray array(jsonStorage());
  array.reserve(_internalFields.size());
  for (const Field& field : _internalFields) array.emplace_back(field->asDictionary());
  return array;
}

}  // namespace quillon
