#include "store/internal/QNItemParts.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "quillon/items/QNFingerprintConstants.h"
#include "quillon/platform/json/QNJsonEquality.h"

// A part's name    of the content
// templateUUID...  each member of the content itself: tags, folder too
// overview.KEY     each member of its overview
// KEY              each other member of its details
// username, ...    an entry of the login form that is designated so; the others: form.NUMBER
// SECTION          each section, without its fields: its title above all
// SECTION.FIELD    each field of a section
//
// Sections and fields without a name have their place, from 1.

namespace quillon {

namespace {

constexpr std::string_view kConflictsPrefix = "conflicts.";
constexpr std::string_view kPassword = "password";
constexpr std::string_view kContentTags = "tags";
constexpr std::string_view kContentFolder = "folder";

void add(QNItemParts& parts, std::string name, const Json& value) {
  // Two fields of one name are two parts.
  while (parts.contains(name)) name += '\'';
  parts.emplace(std::move(name), mr_deepMutableCopy(value));
}

std::string textOr(const Json& element, std::string_view key, std::size_t place) {
  const auto text = element.is_object() ? mr_validStringValueForKey(element.get_object(), key)
                                        : std::optional<std::string_view>();
  return text && !text->empty() ? std::string(*text) : std::to_string(place);
}

void addForm(QNItemParts& parts, const JsonArray& entries) {
  std::size_t place = 0;
  for (const Json& entry : entries) {
    ++place;
    const auto designation = entry.is_object()
                                 ? mr_validStringValueForKey(entry.get_object(), "designation")
                                 : std::optional<std::string_view>();
    const bool isNamed = designation && !designation->empty();
    add(parts, isNamed ? std::string(*designation) : fmt::format("form.{}", place), entry);
  }
}

void addSectionItself(QNItemParts& parts, const std::string& name, const Json& section,
                      bool hasFields) {
  if (!hasFields) return add(parts, name, section);
  JsonObject itself(section.get_object(), jsonStorage());
  itself.stable_erase(FingerprintDetailsSectionFields);
  add(parts, name, std::move(itself));
}

void addSections(QNItemParts& parts, const JsonArray& sections) {
  std::size_t sectionPlace = 0;
  for (const Json& section : sections) {
    const std::string name = textOr(section, "name", ++sectionPlace);
    const Json* const fields =
        section.is_object() ? mr_objectForKey(section.get_object(), FingerprintDetailsSectionFields,
                                              JsonKind::array)
                            : nullptr;
    addSectionItself(parts, name, section, fields != nullptr);
    if (fields == nullptr) continue;
    std::size_t place = 0;
    for (const Json& field : fields->get_array()) {
      add(parts, name + "." + textOr(field, "n", ++place), field);
    }
  }
}

void addDetails(QNItemParts& parts, const JsonObject& details) {
  for (const auto& [key, value] : details) {
    if (key == FingerprintDetailsLoginFields && value.is_array()) {
      addForm(parts, value.get_array());
    } else if (key == FingerprintDetailsSections && value.is_array()) {
      addSections(parts, value.get_array());
    } else {
      add(parts, std::string(key), value);
    }
  }
}

Json tagsOf(QNItem& item) {
  JsonArray tags(jsonStorage());
  for (const std::string& tag : item.tags()) tags.emplace_back(tag);
  return tags;
}

const Json* partNamed(const QNItemParts& parts, const std::string& name) {
  const auto found = parts.find(name);
  return found == parts.end() ? nullptr : &found->second;
}

bool equalParts(const Json* a, const Json* b) {
  return a == b || (a != nullptr && b != nullptr && equalJson(*a, *b));
}

/// What a field, an entry of a form or of the history, or a plain member has for a value.
const Json* valueOf(const Json& part) {
  if (!part.is_object()) return &part;
  for (const std::string_view key : {"v", "value"}) {
    if (const Json* const value = part.get_object().if_contains(key)) return value;
  }
  return nullptr;
}

bool hasValueOf(const Json& part, const Json& other) {
  const Json* const value = valueOf(part);
  const Json* const wanted = valueOf(other);
  return value != nullptr && wanted != nullptr && equalJson(*value, *wanted);
}

bool isInHistory(const Json& value, const QNItemParts& result) {
  const Json* const history = partNamed(result, std::string(kDetailsPasswordHistory));
  if (history == nullptr || !history->is_array()) return false;
  const JsonArray& entries = history->get_array();
  return std::any_of(entries.begin(), entries.end(),
                     [&](const Json& entry) { return hasValueOf(entry, value); });
}

/// Has the other side's value come into the section of conflicts, or into the history?
bool isKeptElsewhere(const std::string& name, const Json& theirs, const QNItemParts& mine,
                     const QNItemParts& result) {
  if (name == kPassword && isInHistory(theirs, result)) return true;
  return std::any_of(result.begin(), result.end(), [&](const auto& part) {
    return part.first.starts_with(kConflictsPrefix) && !mine.contains(part.first) &&
           hasValueOf(part.second, theirs);
  });
}

}  // namespace

std::optional<JsonObject> contentOf(QNItem& item) {
  // A document's own fingerprint never equals another.
  auto content = item.fingerprint_jsonDictionaryIgnoringDocumentFingerprint(true);
  if (!content) return std::nullopt;
  if (!item.tags().empty()) (*content)[kContentTags] = tagsOf(item);
  if (const auto folder = item.folderUUID()) setJsonText(*content, kContentFolder, *folder);
  return content;
}

QNItemParts partsOf(const JsonObject& content) {
  QNItemParts parts;
  for (const auto& [key, value] : content) {
    if (key == FingerprintOverview && value.is_object()) {
      for (const auto& [name, part] : value.get_object()) {
        add(parts, fmt::format("overview.{}", std::string_view(name)), part);
      }
    } else if (key == FingerprintDetails && value.is_object()) {
      addDetails(parts, value.get_object());
    } else {
      add(parts, std::string(key), value);
    }
  }
  return parts;
}

std::vector<QNMergedField> outcomes(const QNItemParts& mine, const QNItemParts& theirs,
                                    const QNItemParts& result) {
  using Outcome = QNMergedField::Outcome;
  std::vector<QNMergedField> fields;
  // A copy of a part wouldn't lie in the wiping resource.
  std::set<std::string> names;
  for (const QNItemParts* parts : {&mine, &theirs}) {
    for (const auto& [name, part] : *parts) names.insert(name);
  }
  for (const std::string& name : names) {
    const Json* const own = partNamed(mine, name);
    const Json* const other = partNamed(theirs, name);
    const Json* const left = partNamed(result, name);
    if (equalParts(own, other)) continue;
    if (equalParts(left, other)) {
      fields.push_back({name, Outcome::taken});
    } else if (!equalParts(left, own)) {
      fields.push_back({name, Outcome::joined});
    } else {
      const bool isCopied = other != nullptr && isKeptElsewhere(name, *other, mine, result);
      fields.push_back({name, isCopied ? Outcome::conflictCopy : Outcome::kept});
    }
  }
  return fields;
}

}  // namespace quillon
