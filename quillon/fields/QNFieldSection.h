#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quillon/fields/QNItemField.h"
#include "quillon/platform/json/QNForeignElements.h"

namespace quillon {

class QNFieldSection;
using QNFieldSectionRef = std::shared_ptr<QNFieldSection>;

/// A named, ordered group of fields of an item. Names are for programs, titles for people. What is
/// stored in it and not known here stays: members, and elements of "fields" that are no objects.
/// Fields are shared: two sections may hold one. Not locked: the lock of its item guards it.
class QNFieldSection final {
 public:
  /// No fields, no name, no title.
  QNFieldSection();
  QNFieldSection(const QNFieldSection&) = delete;
  QNFieldSection& operator=(const QNFieldSection&) = delete;
  /// "Section_" and a fresh uuid.
  static std::string uniqueSectionName();

  // Name and title. The views are valid until they are set.
  [[nodiscard]] std::optional<std::string_view> name() const;
  void setName(std::optional<std::string_view> name);
  [[nodiscard]] std::optional<std::string_view> title() const;
  void setTitle(std::optional<std::string_view> title);
  /// From foreign data: what is no text becomes a unique name, and an empty title.
  void setNameFromJson(const Json& name);
  void setTitleFromJson(const Json& title);

  // Fields. An object is found by its identity; an index out of range changes nothing.
  [[nodiscard]] std::vector<QNItemFieldRef> fields() const { return _fields; }
  [[nodiscard]] std::vector<QNItemFieldRef> nonEmptyFields() const;
  [[nodiscard]] std::size_t numberOfFields() const { return _fields.size(); }
  /// Null if the index is out of range.
  [[nodiscard]] QNItemFieldRef fieldAtIndex(std::size_t index) const;
  /// kNotFound if it isn't there.
  [[nodiscard]] std::int64_t indexOfField(const QNItemFieldRef& field) const;
  /// At the end if the index lies beyond it.
  void insertField(const QNItemFieldRef& field, std::size_t atIndex);
  void addField(const QNItemFieldRef& field) { insertField(field, _fields.size()); }
  void removeField(const QNItemFieldRef& field);
  void removeFieldAtIndex(std::size_t index);
  /// To the last place if the index lies beyond it.
  void moveField(const QNItemFieldRef& field, std::size_t toIndex);
  /// Fields of one identifier take over the other's value, unless one of them is unknown; other
  /// fields are added, shared.
  void addFieldsFromSection(const QNFieldSection& other);

  // State
  [[nodiscard]] bool isGuarded() const;
  [[nodiscard]] bool isEmpty() const;
  [[nodiscard]] bool isFileSection() const { return name() == kFileSectionName; }

  // Looking up: the first in order, or null
  [[nodiscard]] QNItemFieldRef fieldWithIdentifier(
      std::optional<std::string_view> identifier) const;
  [[nodiscard]] QNItemFieldRef fieldWithValue(const QNFieldValue& value) const;
  [[nodiscard]] QNItemFieldRef fieldEqualToField(const QNItemField& field) const;
  [[nodiscard]] std::vector<QNItemFieldRef> fieldsWithIdentifierPrefix(
      std::string_view prefix) const;
  [[nodiscard]] QNItemFieldRef findNonEmptyPasswordField() const;
  [[nodiscard]] QNItemFieldRef findNonEmptyConcealedField() const;
  /// The first that isn't editable: it holds a mail alias of an outside service.
  [[nodiscard]] QNItemFieldRef findFastmailAliasField() const;
  /// For searching: what isn't empty, in order.
  [[nodiscard]] std::vector<QNSecret> allValuesForSearch() const;
  [[nodiscard]] std::vector<QNSecret> allPasswordsForSearch() const;
  [[nodiscard]] std::vector<QNSecret> allFieldTitlesForSearch() const;

  // Merging
  /// Has an earlier merge kept this value?
  [[nodiscard]] bool hasConflictForField(const QNItemField& field) const;
  /// Adds the field, or a copy of it where another value or title stands under its identifier.
  void mergeField(const QNItemFieldRef& field);

  /// The same values in the same order; names, titles and identifiers don't count.
  [[nodiscard]] bool isEqualToFieldSection(const QNFieldSection& other) const;
  [[nodiscard]] bool isEqual(const QNFieldSection& other) const {
    return isEqualToFieldSection(other);
  }

  // Stored form: QNFieldSection+JSON.cpp
  [[nodiscard]] JsonObject dictionaryRepresentation() const {
    return dictionaryRepresentationExcludingFileFields(false);
  }
  [[nodiscard]] JsonObject dictionaryRepresentationExcludingFileFields(bool exclude) const;
  /// Over what is there: name and title become those of the dictionary, nothing if it has none,
  /// and its fields are added.
  void loadDictionary(const JsonObject& dictionary);
  /// Is dictionaryRepresentation() an empty object?
  [[nodiscard]] bool isBlank() const;
  /// Makes `stored` what dictionaryRepresentation() gives. What is equal already stays as it is
  /// written. True if something changed.
  bool storeInto(Json& stored) const;

 private:
  void setText(std::string_view key, std::optional<std::string_view> text);
  template <class Test>
  QNItemFieldRef firstField(const Test& test) const;

  std::vector<QNItemFieldRef> _fields;
  /// As stored, but for the fields: their place in the order of members holds a null.
  JsonObject _stored;
  QNForeignElements _foreign;
};

}  // namespace quillon
