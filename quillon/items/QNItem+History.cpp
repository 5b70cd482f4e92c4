#include <algorithm>
#include <charconv>

#include "quillon/items/internal/QNItemState.h"

// Stored form, details "passwordHistory": a list of objects.
//
//   "time"   number, whole seconds since 1970; a numeric text reads as well
//   "value"  text, the password

namespace quillon {
namespace {

constexpr std::string_view kTime = "time";
constexpr std::string_view kValue = "value";

// The number that a text begins with, behind blanks and one plus sign; 0 for none, and for one that
// is no time.
std::uint64_t secondsFromText(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  if (text.starts_with('+')) text.remove_prefix(1);
  double seconds = 0;
  std::from_chars(text.data(), text.data() + text.size(), seconds);
  constexpr double kTwoTo64 = 18446744073709551616.0;
  return seconds >= 1 && seconds < kTwoTo64 ? static_cast<std::uint64_t>(seconds) : 0;
}

std::uint64_t retiredAtOf(const JsonObject& stored) {
  if (const auto text = mr_validStringValueForKey(stored, kTime)) return secondsFromText(*text);
  return mr_unsignedValueForKey(stored, kTime).value_or(0);
}

// A value that isn't a text reads as its JSON text.
std::optional<QNSecret> valueOf(const JsonObject& stored) {
  const Json* const value = stored.if_contains(kValue);
  if (value == nullptr || value->is_null()) return std::nullopt;
  if (const auto* const text = value->if_string()) return QNSecret(*text);
  const auto bytes = mr_JSONDataWithError(*value);
  return bytes ? std::optional<QNSecret>(textOf(*bytes)) : std::nullopt;
}

// Any element makes an entry, so that the list has as many as the JSON.
QNPreviouslyUsedPassword entryFrom(const Json& element) {
  const JsonObject* const stored = element.if_object();
  if (stored == nullptr) return {std::nullopt, 0};
  return {valueOf(*stored), retiredAtOf(*stored)};
}

void appendTo(JsonArray& list, const QNPreviouslyUsedPassword& entry) {
  list.emplace_back(boost::json::object_kind);
  JsonObject& stored = list.back().get_object();
  stored[kTime] = entry.retiredAt();
  setJsonText(stored, kValue, entry.value()->reveal());  // into the wiping resource
}

}  // namespace

std::vector<QNPreviouslyUsedPassword>* QNItem::mutablePreviouslyUsedPasswords() {
  const std::lock_guard lock(monitor());
  auto& list = openState().previouslyUsedPasswords;
  if (list) return &*list;
  // A list built without the details would replace theirs at the next save.
  const JsonObject* const live = details();
  if (live == nullptr) return nullptr;
  list.emplace();
  if (const Json* const stored = mr_objectForKey(*live, kDetailsPasswordHistory, JsonKind::array)) {
    for (const Json& element : stored->get_array()) list->push_back(entryFrom(element));
  }
  return &*list;
}

std::vector<QNPreviouslyUsedPassword> QNItem::previouslyUsedPasswords() {
  const std::lock_guard lock(monitor());
  std::vector<QNPreviouslyUsedPassword> copies;
  const auto* const list = mutablePreviouslyUsedPasswords();
  if (list == nullptr) return copies;
  copies.reserve(list->size());
  for (const QNPreviouslyUsedPassword& entry : *list) copies.push_back(entry.clone());
  return copies;
}

void QNItem::_savePreviouslyUsedPasswords() {
  const auto& entries = openState().previouslyUsedPasswords;
  if (!entries) return;
  JsonArray list(jsonStorage());
  for (const QNPreviouslyUsedPassword& entry : *entries) {
    if (entry.value()) appendTo(list, entry);
  }
  setDetailsObject(list.empty() ? std::nullopt : std::optional<Json>(std::move(list)),
                   kDetailsPasswordHistory);
}

std::size_t QNItem::numberOfPreviouslyUsedPasswords() {
  const std::lock_guard lock(monitor());
  if (const auto& entries = openState().previouslyUsedPasswords) return entries->size();
  const Json* const stored = detailsObjectForKey(kDetailsPasswordHistory);
  return stored == nullptr || !stored->is_array() ? 0 : stored->get_array().size();
}

// Reads the JSON while no list is built: one that is built is written back at the next save.
std::uint64_t QNItem::lastRetirement() {
  std::uint64_t latest = 0;
  if (const auto& entries = openState().previouslyUsedPasswords) {
    for (const auto& entry : *entries) latest = std::max(latest, entry.retiredAt());
    return latest;
  }
  const Json* const stored = detailsObjectForKey(kDetailsPasswordHistory);
  if (stored == nullptr || !stored->is_array()) return 0;
  for (const Json& element : stored->get_array()) {
    if (const auto* const entry = element.if_object())
      latest = std::max(latest, retiredAtOf(*entry));
  }
  return latest;
}

const QNPreviouslyUsedPassword* QNItem::previouslyUsedPasswordAtIndex(std::size_t index) {
  const std::lock_guard lock(monitor());
  const auto* const list = mutablePreviouslyUsedPasswords();
  return list == nullptr || index >= list->size() ? nullptr : &(*list)[index];
}

const QNPreviouslyUsedPassword* QNItem::previouslyUsedPasswordWithValue(std::string_view value) {
  const std::lock_guard lock(monitor());
  const auto* const list = mutablePreviouslyUsedPasswords();
  if (list == nullptr) return nullptr;
  for (const QNPreviouslyUsedPassword& entry : *list) {
    if (entry.value() && entry.value()->equals(value)) return &entry;
  }
  return nullptr;
}

void QNItem::addPreviouslyUsedPassword(QNPreviouslyUsedPassword entry) {
  const std::lock_guard lock(monitor());
  auto* const list = mutablePreviouslyUsedPasswords();
  if (list == nullptr) return;
  list->push_back(std::move(entry));
  markRowDirty();
}

void QNItem::removePreviouslyUsedPasswordAtIndex(std::size_t index) {
  const std::lock_guard lock(monitor());
  auto* const list = mutablePreviouslyUsedPasswords();
  if (list == nullptr || index >= list->size()) return;
  list->erase(list->begin() + static_cast<std::ptrdiff_t>(index));
  markRowDirty();
}

bool QNItem::containsPasswordValue(std::string_view value) {
  const std::lock_guard lock(monitor());
  const auto present = password();
  return (present && present->equals(value)) || previouslyUsedPasswordWithValue(value) != nullptr;
}

}  // namespace quillon
