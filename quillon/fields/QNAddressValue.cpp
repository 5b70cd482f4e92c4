#include "quillon/fields/QNAddressValue.h"

#include <algorithm>
#include <array>

#include "quillon/fields/QNAddressFormat.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNText.h"

// Stored form, the "v" of an address field: an object of these texts, each left out when it is
// nothing. Other members stay where they are.

namespace quillon {
namespace {

constexpr std::array<std::string_view, 6> kParts{"country", "zip",  "region",
                                                 "state",   "city", "street"};

bool isPart(std::string_view key) {
  return std::find(kParts.begin(), kParts.end(), key) != kParts.end();
}

}  // namespace

QNAddressValue::QNAddressValue() : _members(jsonStorage()) {
  setCountry(currentCountryCode());
}

QNAddressValue::QNAddressValue(const JsonObject& dictionaryRepresentation)
    : _members(jsonStorage()) {
  setDictionaryRepresentation(dictionaryRepresentation);
}

// A plain copy of a JSON object would leave the wiping resource.
QNAddressValue::QNAddressValue(const QNAddressValue& other)
    : _members(other._members, jsonStorage()) {}

QNAddressValue& QNAddressValue::operator=(const QNAddressValue& other) {
  if (this != &other) _members = JsonObject(other._members, jsonStorage());
  return *this;
}

std::optional<std::string_view> QNAddressValue::part(std::string_view key) const {
  return mr_validStringValueForKey(_members, key);
}

void QNAddressValue::setPart(std::string_view key, std::optional<std::string_view> text) {
  const auto present = _members.find(key);
  if (text) {
    setJsonText(_members, key, *text);
  } else if (present != _members.end()) {
    _members.stable_erase(present);
  }
}

std::optional<JsonObject> QNAddressValue::dictionaryRepresentation() const {
  JsonObject dictionary(jsonStorage());
  for (const std::string_view key : kParts) {
    if (const auto text = part(key)) setJsonText(dictionary, key, *text);
  }
  return dictionary.empty() ? std::nullopt : std::optional<JsonObject>(std::move(dictionary));
}

void QNAddressValue::setDictionaryRepresentation(const JsonObject& dictionary) {
  JsonObject read(jsonStorage());
  for (const auto& member : dictionary) {
    if (isPart(member.key()) && !member.value().is_string()) continue;
    read.emplace(member.key(), Json(member.value(), jsonStorage()));
  }
  _members = std::move(read);
}

bool QNAddressValue::isEqual(const QNAddressValue& other) const {
  return std::all_of(kParts.begin(), kParts.end(),
                     [this, &other](std::string_view key) { return part(key) == other.part(key); });
}

std::size_t QNAddressValue::hash() const {
  std::size_t mixed = 0;
  for (const std::string_view key : kParts) {
    const auto text = part(key);
    mixed = mixed * 31 + (text ? std::hash<std::string_view>()(*text) : 0);
  }
  return mixed;
}

QNSecret QNAddressValue::stringValue() const {
  return QNAddressFormat::displayTextOf(*this);
}

bool QNAddressValue::isEmpty() const {
  return std::all_of(kParts.begin(), kParts.end(),
                     [this](std::string_view key) { return isBlankText(part(key).value_or("")); });
}

}  // namespace quillon
