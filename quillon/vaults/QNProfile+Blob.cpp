#include "quillon/platform/data/MRData.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/vaults/QNProfile.h"
#include "quillon/vaults/internal/QNColorJson.h"

// Two JSON objects of a vault's fields. Bytes are base64. A field that is absent has no member.
//
//   the blob, in which a database layer stores the vault: keys in their sealed form
//     uuid name createdAt updatedAt master overview hint iterations icon color lastUpdatedBy salt
//     trashed (the number 1)
//   the snapshot of the attributes, in clear, with the plain keys in it
//     uuid profileName createdAt updatedAt overviewKey masterKey passwordHint iterations iconData
//     color lastUpdatedBy salt

namespace quillon {
namespace {

using OptionalText = std::optional<std::string>;

void put(JsonObject& object, std::string_view key, const OptionalText& text) {
  if (text) setJsonText(object, key, *text);
}

void put(JsonObject& object, std::string_view key, std::optional<ByteView> bytes) {
  if (!bytes) return;
  std::string encoded = mr_base64encode(*bytes);
  setJsonText(object, key, encoded);
  wipe(encoded.data(), encoded.size());
}

void put(JsonObject& object, std::string_view key, const std::optional<QNColor>& color) {
  if (color) object[key] = jsonOfColor(*color);
}

template <class Data>
std::optional<ByteView> viewOf(const std::optional<Data>& data) {
  return data ? std::optional<ByteView>(*data) : std::nullopt;
}

std::optional<Bytes> bytesIn(const JsonObject& object, std::string_view key) {
  const auto text = mr_validStringValueForKey(object, key);
  return text ? mr_base64decode(*text) : std::nullopt;
}

std::uint64_t numberIn(const JsonObject& object, std::string_view key) {
  return mr_unsignedValueForKey(object, key).value_or(0);
}

std::uint32_t countIn(const JsonObject& object, std::string_view key) {
  const std::uint64_t count = numberIn(object, key);
  // A count that doesn't fit makes no key, and neither does 0.
  return count > std::numeric_limits<std::uint32_t>::max() ? 0 : static_cast<std::uint32_t>(count);
}

std::optional<QNColor> colorIn(const JsonObject& object, std::string_view key) {
  const Json* const color = mr_objectForKey(object, key, JsonKind::object);
  return colorOfJson(color == nullptr ? nullptr : &color->get_object());
}

QNSharedString uuidIn(const JsonObject& object) {
  auto text = ownedStringForKey(object, "uuid");
  return text ? sharedString(std::move(*text)) : nullptr;
}

// Read more widely than it is written: older programs wrote numbers and letters.
void restoreStatus(QNProfile& vault, const Json* stored) {
  const bool isNumber = stored != nullptr && stored->is_number();
  if (!isNumber && (stored == nullptr || !stored->is_string())) return;
  const auto number = isNumber ? stored->to_number<double>() : 0;
  const std::string_view letter = isNumber ? std::string_view() : stored->get_string();
  if (number == 2 || letter == "D") return vault.markDeleted();
  vault.setTrashed(number == 1 || letter == "Y");
}

}  // namespace

std::optional<Bytes> QNProfile::blob() {
  JsonObject object(jsonStorage());
  put(object, "uuid", _uuid == nullptr ? std::nullopt : OptionalText(*_uuid));
  put(object, "name", _profileName);
  object["createdAt"] = _createdAt;
  object["updatedAt"] = _updatedAt;
  put(object, "master", viewOf(_encryptedMasterKey));
  put(object, "overview", viewOf(_encryptedOverviewKey));
  put(object, "hint", _passwordHint);
  object["iterations"] = _iterations;
  put(object, "icon", viewOf(_iconData));
  put(object, "color", _profileColor);
  put(object, "lastUpdatedBy", _lastUpdatedBy);
  put(object, "salt", viewOf(_salt));
  if (trashed()) object["trashed"] = 1;
  QNError error;
  auto bytes = mr_JSONDataWithError(object, &error);
  if (!bytes) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   "Error serializing profile: {}", error.domainCodeString());
  }
  return bytes;
}

// Goes on with no members at all where the bytes are none: whoever wants otherwise checks first.
void QNProfile::setBlob(ByteView blob) {
  QNError error;
  auto object = mr_objectFromJSONDataWithError(blob, &error);
  if (!object) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   "Unable to parse JSON: {}", error.domainCodeString());
    object.emplace(jsonStorage());
  }
  _uuid = uuidIn(*object);
  _profileName = ownedStringForKey(*object, "name");
  _createdAt = numberIn(*object, "createdAt");
  _updatedAt = numberIn(*object, "updatedAt");
  if (auto master = bytesIn(*object, "master")) _encryptedMasterKey = std::move(master);
  if (auto overview = bytesIn(*object, "overview")) _encryptedOverviewKey = std::move(overview);
  _passwordHint = ownedStringForKey(*object, "hint");
  _iterations = countIn(*object, "iterations");
  _iconData = bytesIn(*object, "icon");
  setProfileColor(colorIn(*object, "color"));
  _lastUpdatedBy = ownedStringForKey(*object, "lastUpdatedBy");
  _salt = bytesIn(*object, "salt");
  restoreStatus(*this, object->if_contains("trashed"));
}

void QNProfile::saveAllAttributes(JsonObject& attributes) {
  QNDatabaseObjectWithOverview::saveAllAttributes(attributes);
  put(attributes, "uuid", _uuid == nullptr ? std::nullopt : OptionalText(*_uuid));
  put(attributes, "profileName", _profileName);
  attributes["createdAt"] = _createdAt;
  attributes["updatedAt"] = _updatedAt;
  put(attributes, "overviewKey", viewOf(_overviewKey));
  put(attributes, "masterKey", viewOf(_masterKey));
  put(attributes, "passwordHint", _passwordHint);
  attributes["iterations"] = _iterations;
  put(attributes, "iconData", viewOf(_iconData));
  put(attributes, "color", _profileColor);
  put(attributes, "lastUpdatedBy", _lastUpdatedBy);
  put(attributes, "salt", viewOf(_salt));
}

void QNProfile::restoreAllAttributes(const JsonObject& attributes) {
  QNDatabaseObjectWithOverview::restoreAllAttributes(attributes);
  _uuid = uuidIn(attributes);
  setProfileName(ownedStringForKey(attributes, "profileName"));
  setCreatedAt(numberIn(attributes, "createdAt"));
  setUpdatedAt(numberIn(attributes, "updatedAt"));
  const auto overviewKey = bytesIn(attributes, "overviewKey");
  const auto masterKey = bytesIn(attributes, "masterKey");
  setOverviewKey(viewOf(overviewKey));
  setMasterKey(viewOf(masterKey));
  setPasswordHint(ownedStringForKey(attributes, "passwordHint"));
  setIterations(countIn(attributes, "iterations"));
  setIconData(bytesIn(attributes, "iconData"));
  setProfileColor(colorIn(attributes, "color"));
  setLastUpdatedBy(ownedStringForKey(attributes, "lastUpdatedBy"));
  setSalt(bytesIn(attributes, "salt"));
}

}  // namespace quillon
