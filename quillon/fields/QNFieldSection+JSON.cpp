#include <algorithm>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/platform/json/QNJsonEquality.h"

// Stored form, an element of details "sections":
//
//   "name"    text; left out when it is nothing
//   "title"   text; left out when it is nothing
//   "fields"  list of field objects, in order; left out when there are none
//
// Other members stay where they are, and so do elements of "fields" that are no objects.

namespace quillon {
namespace {

// Is the list the fields and foreign elements in that order, as far as their number goes?
bool isListOfSize(const JsonObject& stored, std::size_t count) {
  const Json* const list = stored.if_contains(kFieldSectionFields);
  if (list == nullptr) return count == 0;
  return list->is_array() && list->get_array().size() == count && count > 0;
}

// Are the members but the fields equal? `mine` holds a null in the place of the fields.
bool hasEqualMembers(const JsonObject& stored, const JsonObject& mine) {
  const auto counted = [](const JsonObject& object) {
    return object.size() - (object.contains(kFieldSectionFields) ? 1 : 0);
  };
  return counted(stored) == counted(mine) &&
         std::all_of(mine.begin(), mine.end(), [&stored](const auto& member) {
           if (member.key() == kFieldSectionFields) return true;
           const Json* const found = stored.if_contains(member.key());
           return found != nullptr && equalJson(*found, member.value());
         });
}

bool replaceUnlessEqual(Json& stored, const JsonObject& wanted) {
  if (stored.is_object() && equalJson(stored.get_object(), wanted)) return false;
  stored = Json(wanted, jsonStorage());
  return true;
}

bool replaceUnlessEqual(Json& stored, const Json& wanted) {
  if (equalJson(stored, wanted)) return false;
  stored = Json(wanted, jsonStorage());
  return true;
}

}  // namespace

// The unfolding of an SSH key into fields of its own goes before fieldFromStored(); until then
// such an element is an unknown field.
void QNFieldSection::loadDictionary(const JsonObject& dictionary) {
  for (const auto& member : dictionary) {
    const bool isFields = member.key() == kFieldSectionFields;
    _stored[member.key()] =
        isFields ? Json(nullptr, jsonStorage()) : Json(member.value(), jsonStorage());
  }
  for (const std::string_view key : {kFieldSectionName, kFieldSectionTitle}) {
    if (!mr_validStringValueForKey(dictionary, key)) setText(key, std::nullopt);
  }
  const Json* const stored = mr_objectForKey(dictionary, kFieldSectionFields, JsonKind::array);
  if (stored == nullptr) return;
  _fields.reserve(_fields.size() + stored->get_array().size());
  std::size_t place = _fields.size() + _foreign.count();
  for (const Json& element : stored->get_array()) {
    if (const JsonObject* const field = element.if_object()) {
      addField(QNItemField::fieldFromStored(*field));
    } else {
      _foreign.add(place, element);
    }
    ++place;
  }
}

JsonObject QNFieldSection::dictionaryRepresentationExcludingFileFields(bool exclude) const {
  JsonArray written(jsonStorage());
  written.reserve(_fields.size() + _foreign.count());
  _foreign.interleave(
      _fields.size(),
      [&](std::size_t i) {
        if (exclude && _fields[i]->isFileField()) return false;
        written.emplace_back(_fields[i]->storedForm());
        return true;
      },
      [&](const Json& element) { written.emplace_back(element); });
  JsonObject dictionary(_stored, jsonStorage());
  if (!written.empty()) {
    dictionary[kFieldSectionFields] = std::move(written);
  } else if (dictionary.contains(kFieldSectionFields)) {
    dictionary.stable_erase(kFieldSectionFields);
  }
  return dictionary;
}

bool QNFieldSection::isBlank() const {
  const bool hasMembers = _stored.size() > (_stored.contains(kFieldSectionFields) ? 1u : 0u);
  return !hasMembers && _fields.empty() && _foreign.empty();
}

// In place: a save costs the fields that changed, and the rest keeps its form to the byte.
bool QNFieldSection::storeInto(Json& stored) const {
  if (!stored.is_object() || !hasEqualMembers(stored.get_object(), _stored) ||
      !isListOfSize(stored.get_object(), _fields.size() + _foreign.count())) {
    stored = Json(dictionaryRepresentation());
    return true;
  }
  Json* const list = stored.get_object().if_contains(kFieldSectionFields);
  if (list == nullptr) return false;
  bool changed = false;
  auto element = list->get_array().begin();
  _foreign.interleave(
      _fields.size(),
      [&](std::size_t i) {
        changed = replaceUnlessEqual(*element++, _fields[i]->storedForm()) || changed;
        return true;
      },
      [&](const Json& foreign) { changed = replaceUnlessEqual(*element++, foreign) || changed; });
  return changed;
}

}  // namespace quillon
