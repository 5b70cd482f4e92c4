#include <algorithm>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/items/internal/QNItemState.h"
#include "quillon/platform/json/QNJsonEquality.h"
#include "quillon/platform/text/QNLocalization.h"

// Stored form, details "sections": a list of section objects. Its elements of any other kind stay
// where they are, and so does a "sections" that is no list.

namespace quillon {

JsonArray QNItem::jsonFromFieldSections(const FieldSections& sections, bool excludingFileFields) {
  JsonArray list(jsonStorage());
  for (const auto& section : sections) {
    JsonObject stored = section->dictionaryRepresentationExcludingFileFields(excludingFileFields);
    if (!stored.empty()) list.emplace_back(std::move(stored));
  }
  return list;
}

QNItem::FieldSections QNItem::fieldSectionsFromJSON(const Json* sections) {
  FieldSections made;
  if (sections == nullptr || !sections->is_array()) return made;
  made.reserve(sections->get_array().size());
  for (const Json& element : sections->get_array()) {
    const JsonObject* const stored = element.if_object();
    if (stored == nullptr) continue;
    made.push_back(std::make_shared<QNFieldSection>());
    made.back()->loadDictionary(*stored);
  }
  return made;
}

// The first parse of the details asks for the password, and so may come here and build the list.
QNItem::FieldSections* QNItem::mutableFieldSections() {
  const std::lock_guard lock(monitor());
  const JsonObject* const live = details();
  auto& list = openState().fieldSections;
  // A list built without the details would replace theirs at the next save.
  if (live == nullptr || list) return list ? &*list : nullptr;
  const Json* const stored = live->if_contains(kDetailsSections);
  list = fieldSectionsFromJSON(stored);
  if (stored == nullptr || !stored->is_array()) return &*list;
  const JsonArray& elements = stored->get_array();
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (!elements[i].is_object()) openState().foreignSections.add(i, elements[i]);
  }
  return &*list;
}

QNItem::FieldSections QNItem::fieldSections() {
  const std::lock_guard lock(monitor());
  const FieldSections* const list = mutableFieldSections();
  return list == nullptr ? FieldSections() : *list;
}

void QNItem::_setFieldSections(std::optional<FieldSections> sections) {
  const std::lock_guard lock(monitor());
  FieldSections* const list = mutableFieldSections();
  if (list == nullptr) return;
  *list = std::move(sections).value_or(FieldSections());
  list->erase(std::remove(list->begin(), list->end(), nullptr), list->end());
}

std::size_t QNItem::numberOfFieldSections() {
  return fieldSections().size();
}

std::shared_ptr<QNFieldSection> QNItem::fieldSectionAtIndex(std::size_t index) {
  const FieldSections list = fieldSections();
  return index < list.size() ? list[index] : nullptr;
}

void QNItem::addFieldSection(const std::shared_ptr<QNFieldSection>& section) {
  const std::lock_guard lock(monitor());
  FieldSections* const list = section == nullptr ? nullptr : mutableFieldSections();
  if (list != nullptr) list->push_back(section);
}

void QNItem::removeFieldSection(const std::shared_ptr<QNFieldSection>& section) {
  const std::lock_guard lock(monitor());
  FieldSections* const list = mutableFieldSections();
  if (list == nullptr) return;
  const auto removed = section;  // the argument may be an element
  list->erase(std::remove(list->begin(), list->end(), removed), list->end());
}

void QNItem::removeFieldSectionAtIndex(std::size_t index) {
  const std::lock_guard lock(monitor());
  FieldSections* const list = mutableFieldSections();
  if (list == nullptr || index >= list->size()) return;
  list->erase(list->begin() + static_cast<std::ptrdiff_t>(index));
}

void QNItem::addFieldSections(const FieldSections& sections) {
  const std::lock_guard lock(monitor());
  for (const auto& section : FieldSections(sections)) {
    if (section == nullptr) continue;
    if (const auto mine = findSectionWithName(section->name())) {
      mine->addFieldsFromSection(*section);
    } else {
      addFieldSection(section);
    }
  }
}

// Compared in place, so that a save without a change dirties nothing and copies nothing.
void QNItem::saveFieldSections() {
  const std::lock_guard lock(monitor());
  const OpenState& open = openState();
  JsonObject* const live = open.fieldSections ? mutableDetails() : nullptr;
  if (live == nullptr) return;
  Json* const stored = live->if_contains(kDetailsSections);
  const auto isBlank = [](const auto& section) { return section->isBlank(); };
  if (open.foreignSections.empty() &&
      std::all_of(open.fieldSections->begin(), open.fieldSections->end(), isBlank)) {
    const bool isList = stored != nullptr && stored->is_array();
    return isList ? setDetailsObject(std::nullopt, kDetailsSections) : void();
  }
  if (stored != nullptr) return storeFieldSections(*stored);
  Json made(boost::json::array_kind, jsonStorage());
  storeFieldSections(made);
  setDetailsObject(std::move(made), kDetailsSections);
}

void QNItem::storeFieldSections(Json& stored) {
  const OpenState& open = openState();
  if (!stored.is_array()) stored = JsonArray(jsonStorage());
  JsonArray& list = stored.get_array();
  std::size_t place = 0;
  bool changed = false;
  const auto next = [&]() -> Json& {
    if (place == list.size()) list.emplace_back(nullptr);
    return list[place++];
  };
  open.foreignSections.interleave(
      open.fieldSections->size(),
      [&](std::size_t i) {
        const QNFieldSection& section = *(*open.fieldSections)[i];
        if (section.isBlank()) return false;
        changed = section.storeInto(next()) || changed;
        return true;
      },
      [&](const Json& foreign) {
        Json& element = next();
        if (equalJson(element, foreign)) return;
        element = Json(foreign, jsonStorage());
        changed = true;
      });
  if (place < list.size()) {
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(place), list.end());
    changed = true;
  }
  if (changed) markRowDirty();
}

// Names

std::shared_ptr<QNFieldSection> QNItem::findSectionWithName(std::optional<std::string_view> name) {
  if (!name) return nullptr;
  for (const auto& section : fieldSections()) {
    if (section->name() == name) return section;
  }
  return nullptr;
}

std::shared_ptr<QNFieldSection> QNItem::findSectionWithTitle(
    std::optional<std::string_view> title) {
  if (!title) return nullptr;
  for (const auto& section : fieldSections()) {
    if (section->title() == title) return section;
  }
  return nullptr;
}

std::shared_ptr<QNFieldSection> QNItem::fieldSectionWithName(std::string_view name,
                                                             std::string_view title) {
  const std::lock_guard lock(monitor());
  if (auto found = findSectionWithName(name)) return found;
  auto made = std::make_shared<QNFieldSection>();
  made->setName(name);
  made->setTitle(title);
  addFieldSection(made);
  return made;
}

std::shared_ptr<QNFieldSection> QNItem::sectionForConflictsCreatedIfNeeded() {
  return fieldSectionWithName(kConflictsSectionName, QNLocalizedString("Conflicts"));
}

std::shared_ptr<QNFieldSection> QNItem::sectionForReferencesCreatedIfNeeded() {
  return fieldSectionWithName(kReferencesSectionName, QNLocalizedString("Related Items"));
}

std::shared_ptr<QNFieldSection> QNItem::sectionForFileCreatedIfNeeded() {
  return fieldSectionWithName(kFileSectionName, "");
}

bool QNItem::hasSectionForConflicts() {
  const std::lock_guard lock(monitor());
  const auto found = findSectionWithName(kConflictsSectionName);
  return found != nullptr && found->numberOfFields() > 0;
}

}  // namespace quillon
