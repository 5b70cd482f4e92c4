#include "quillon/fields/QNFieldSection.h"

#include <algorithm>

#include "quillon/platform/data/MRData.h"
#include "quillon/platform/data/QNNotFound.h"

namespace quillon {

QNFieldSection::QNFieldSection() : _stored(jsonStorage()) {}

std::string QNFieldSection::uniqueSectionName() {
  return "Section_" + mr_uuid();
}

// Name and title

std::optional<std::string_view> QNFieldSection::name() const {
  return mr_validStringValueForKey(_stored, kFieldSectionName);
}

void QNFieldSection::setName(std::optional<std::string_view> name) {
  setText(kFieldSectionName, name);
}

std::optional<std::string_view> QNFieldSection::title() const {
  return mr_validStringValueForKey(_stored, kFieldSectionTitle);
}

void QNFieldSection::setTitle(std::optional<std::string_view> title) {
  setText(kFieldSectionTitle, title);
}

void QNFieldSection::setNameFromJson(const Json& name) {
  const auto* const text = name.if_string();
  setName(text == nullptr ? uniqueSectionName() : std::string(*text));
}

void QNFieldSection::setTitleFromJson(const Json& title) {
  const auto* const text = title.if_string();
  setTitle(text == nullptr ? std::string_view() : std::string_view(*text));
}

void QNFieldSection::setText(std::string_view key, std::optional<std::string_view> text) {
  const auto present = _stored.find(key);
  if (text) {
    setJsonText(_stored, key, *text);
  } else if (present != _stored.end()) {
    _stored.stable_erase(present);
  }
}

// Fields

std::vector<QNItemFieldRef> QNFieldSection::nonEmptyFields() const {
  std::vector<QNItemFieldRef> found;
  std::copy_if(_fields.begin(), _fields.end(), std::back_inserter(found),
               [](const QNItemFieldRef& field) { return !field->isEmpty(); });
  return found;
}

QNItemFieldRef QNFieldSection::fieldAtIndex(std::size_t index) const {
  return index < _fields.size() ? _fields[index] : nullptr;
}

std::int64_t QNFieldSection::indexOfField(const QNItemFieldRef& field) const {
  const auto found = std::find(_fields.begin(), _fields.end(), field);
  return found == _fields.end() ? kNotFound : found - _fields.begin();
}

void QNFieldSection::insertField(const QNItemFieldRef& field, std::size_t atIndex) {
  if (field == nullptr) return;
  const std::size_t place = std::min(atIndex, _fields.size());
  _fields.insert(_fields.begin() + static_cast<std::ptrdiff_t>(place), field);
}

void QNFieldSection::removeField(const QNItemFieldRef& field) {
  const QNItemFieldRef removed = field;  // the argument may be an element
  _fields.erase(std::remove(_fields.begin(), _fields.end(), removed), _fields.end());
}

void QNFieldSection::removeFieldAtIndex(std::size_t index) {
  if (index < _fields.size()) _fields.erase(_fields.begin() + static_cast<std::ptrdiff_t>(index));
}

void QNFieldSection::moveField(const QNItemFieldRef& field, std::size_t toIndex) {
  const auto found = std::find(_fields.begin(), _fields.end(), field);
  if (found == _fields.end()) return;
  const QNItemFieldRef moved = field;
  const std::size_t target = std::min(toIndex, _fields.size() - 1);
  _fields.erase(found);
  insertField(moved, target);
}

void QNFieldSection::addFieldsFromSection(const QNFieldSection& other) {
  for (const QNItemFieldRef& theirs : other.fields()) {
    const QNItemFieldRef mine = fieldWithIdentifier(theirs->identifier());
    if (mine == nullptr) {
      addField(theirs);
    } else if (!theirs->isUnknownField()) {
      mine->setRawValue(theirs->rawValue());
    }
  }
}

// State

bool QNFieldSection::isGuarded() const {
  return std::any_of(_fields.begin(), _fields.end(),
                     [](const QNItemFieldRef& field) { return field->isGuarded(); });
}

bool QNFieldSection::isEmpty() const {
  return std::all_of(_fields.begin(), _fields.end(),
                     [](const QNItemFieldRef& field) { return field->isEmpty(); });
}

// Looking up

template <class Test>
QNItemFieldRef QNFieldSection::firstField(const Test& test) const {
  const auto found = std::find_if(_fields.begin(), _fields.end(),
                                  [&test](const QNItemFieldRef& field) { return test(*field); });
  return found == _fields.end() ? nullptr : *found;
}

QNItemFieldRef QNFieldSection::fieldWithIdentifier(
    std::optional<std::string_view> identifier) const {
  if (!identifier) return nullptr;
  return firstField([&](const QNItemField& field) { return field.identifier() == identifier; });
}

QNItemFieldRef QNFieldSection::fieldWithValue(const QNFieldValue& value) const {
  return firstField([&](const QNItemField& field) { return field.isValueEqualTo(value); });
}

QNItemFieldRef QNFieldSection::fieldEqualToField(const QNItemField& field) const {
  return firstField([&](const QNItemField& mine) { return mine.isEqual(field); });
}

std::vector<QNItemFieldRef> QNFieldSection::fieldsWithIdentifierPrefix(
    std::string_view prefix) const {
  std::vector<QNItemFieldRef> found;
  std::copy_if(_fields.begin(), _fields.end(), std::back_inserter(found),
               [prefix](const QNItemFieldRef& field) {
                 const auto identifier = field->identifier();
                 return identifier && identifier->starts_with(prefix);
               });
  return found;
}

QNItemFieldRef QNFieldSection::findNonEmptyPasswordField() const {
  return firstField(
      [](const QNItemField& field) { return field.isPasswordField() && !field.isEmpty(); });
}

QNItemFieldRef QNFieldSection::findNonEmptyConcealedField() const {
  return firstField(
      [](const QNItemField& field) { return field.isConcealedField() && !field.isEmpty(); });
}

QNItemFieldRef QNFieldSection::findFastmailAliasField() const {
  return firstField([](const QNItemField& field) { return !field.isEditable(); });
}

std::vector<QNSecret> QNFieldSection::allValuesForSearch() const {
  std::vector<QNSecret> values;
  for (const QNItemFieldRef& field : _fields) {
    auto value = field->stringValue();
    if (value && !value->empty()) values.push_back(std::move(*value));
  }
  return values;
}

std::vector<QNSecret> QNFieldSection::allPasswordsForSearch() const {
  std::vector<QNSecret> values;
  for (const QNItemFieldRef& field : _fields) {
    auto value = field->isConcealedField() ? field->stringValue() : std::nullopt;
    if (value && !value->empty()) values.push_back(std::move(*value));
  }
  return values;
}

std::vector<QNSecret> QNFieldSection::allFieldTitlesForSearch() const {
  std::vector<QNSecret> titles;
  for (const QNItemFieldRef& field : _fields) {
    if (!field->title().empty()) titles.emplace_back(field->title());
  }
  return titles;
}

// Merging

bool QNFieldSection::hasConflictForField(const QNItemField& field) const {
  const std::string prefix =
      std::string(field.identifier().value_or("")).append(kConflictIdentifierSeparator);
  const auto kept = fieldsWithIdentifierPrefix(prefix);
  return std::any_of(kept.begin(), kept.end(), [&field](const QNItemFieldRef& copy) {
    return copy->rawValue().isEqual(field.rawValue());
  });
}

// Neither value is lost and none is chosen: the person sees both.
void QNFieldSection::mergeField(const QNItemFieldRef& field) {
  if (field == nullptr) return;
  const QNItemFieldRef mine = fieldWithIdentifier(field->identifier());
  if (mine == nullptr) return addField(field);
  const auto here = mine->stringValue();
  const auto there = field->stringValue();
  const bool sameText = here && there ? here->equals(*there) : !here && !there;
  if (sameText && mine->title() == field->title()) return;
  addField(field->conflictCopyWithUniqueFieldIdentifierForConflict(std::nullopt));
}

bool QNFieldSection::isEqualToFieldSection(const QNFieldSection& other) const {
  return std::equal(_fields.begin(), _fields.end(), other._fields.begin(), other._fields.end(),
                    [](const QNItemFieldRef& mine, const QNItemFieldRef& theirs) {
                      return mine->isValueEqualTo(theirs->rawValue());
                    });
}

}  // namespace quillon
