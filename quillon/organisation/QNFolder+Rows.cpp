#include "quillon/organisation/QNFolder.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/json/QNJsonReading.h"

// A row dictionary, in clear, behind "overview"; in this order, whole in docs/formats.md:
//
//   key              type                         left out when
//   "uuid"           text                         absent
//   "parentUUID"     text                         absent
//   "updatedAt"      whole number                 0
//   "createdAt"      whole number                 0
//   "isSmartFolder"  boolean                      false
//   "iconData"       text, base64                 absent; never read
//   "loaded"         boolean, true                never; never read
//
// An archive, behind the keys of the base classes:
//
//   "uuid"                                  text                      absent
//   "createdAt" "updatedAt" "txTimestamp"   64-bit integers           never
//   "parentId"                              64-bit integer            0
//   "parentUUID"                            text                      absent
//   "smartFolder"                           bool                      false
//   "numberOfChildren" "numberOfItems"      32-bit integers           0

namespace quillon {
namespace {

constexpr std::string_view kUuid = "uuid";
constexpr std::string_view kParentUUID = "parentUUID";
constexpr std::string_view kUpdatedAt = "updatedAt";
constexpr std::string_view kCreatedAt = "createdAt";
constexpr std::string_view kIsSmartFolder = "isSmartFolder";
constexpr std::string_view kIconData = "iconData";
constexpr std::string_view kLoaded = "loaded";
constexpr std::string_view kTxTimestamp = "txTimestamp";
constexpr std::string_view kParentId = "parentId";
constexpr std::string_view kSmartFolder = "smartFolder";
constexpr std::string_view kNumberOfChildren = "numberOfChildren";
constexpr std::string_view kNumberOfItems = "numberOfItems";

// A number, or a text that is one; all 64 bits of what was written as an unsigned one.
std::uint64_t numberOfRow(const JsonObject& attributes, std::string_view key) {
  const Json* const stored = attributes.if_contains(key);
  if (stored == nullptr) return 0;
  if (const auto* const number = stored->if_uint64()) return *number;
  return static_cast<std::uint64_t>(integerOfJson(*stored).value_or(0));
}

// Does a text say yes, in whichever way it was written? Blanks before it count as little as they do
// before a number.
bool saysYes(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
  return start != std::string_view::npos && std::string_view("YyTt").find(text[start]) != text.npos;
}

bool truthOfRow(const JsonObject& attributes, std::string_view key) {
  const Json* const stored = attributes.if_contains(key);
  if (stored == nullptr) return false;
  if (const auto* const truth = stored->if_bool()) return *truth;
  if (const auto* const number = stored->if_double()) return *number != 0;
  if (const auto* const text = stored->if_string(); text != nullptr && saysYes(*text)) return true;
  return numberOfRow(attributes, key) != 0;
}

void encodeCount(QNEncoder& coder, std::uint64_t count, std::string_view key) {
  if (count != 0)
    coder.encodeInt32(static_cast<std::int32_t>(static_cast<std::uint32_t>(count)), key);
}

std::uint64_t decodedCount(QNDecoder& coder, std::string_view key) {
  return static_cast<std::uint32_t>(coder.decodeInt32(key).value_or(0));
}

}  // namespace

void QNFolder::saveAllAttributes(JsonObject& attributes) {
  QNDatabaseObjectWithOverview::saveAllAttributes(attributes);
  if (_uuid != nullptr) setJsonText(attributes, kUuid, *_uuid);
  if (_parentUUID) setJsonText(attributes, kParentUUID, *_parentUUID);
  if (_updatedAt != 0) attributes[kUpdatedAt] = _updatedAt;
  if (_createdAt != 0) attributes[kCreatedAt] = _createdAt;
  if (_smartFolder) attributes[kIsSmartFolder] = true;
  if (_iconData) setJsonText(attributes, kIconData, mr_base64encode(*_iconData));
  attributes[kLoaded] = true;
}

void QNFolder::restoreAllAttributes(const JsonObject& attributes) {
  QNDatabaseObjectWithOverview::restoreAllAttributes(attributes);
  if (auto uuid = ownedStringForKey(attributes, kUuid)) setUuid(sharedString(std::move(*uuid)));
  setParentUUID(ownedStringForKey(attributes, kParentUUID));
  setUpdatedAt(numberOfRow(attributes, kUpdatedAt));
  setCreatedAt(numberOfRow(attributes, kCreatedAt));
  setSmartFolder(truthOfRow(attributes, kIsSmartFolder));
  setIcon(nullptr);  // bytes aren't accepted here, and a dictionary holds no picture
}

QNFolder::QNFolder(QNDecoder& coder)
    : QNDatabaseObjectWithOverview(coder),
      _smartFolder(coder.decodeBool(kSmartFolder).value_or(false)),
      _txTimestamp(coder.decodeInt64(kTxTimestamp).value_or(0)),
      _createdAt(coder.decodeInt64(kCreatedAt).value_or(0)),
      _updatedAt(coder.decodeInt64(kUpdatedAt).value_or(0)),
      _parentId(coder.decodeInt64(kParentId).value_or(0)),
      _parentUUID(coder.decodeString(kParentUUID)),
      _numberOfChildren(decodedCount(coder, kNumberOfChildren)),
      _numberOfItems(decodedCount(coder, kNumberOfItems)) {
  if (auto uuid = coder.decodeString(kUuid)) _uuid = sharedString(std::move(*uuid));
}

void QNFolder::encodeWithCoder(QNEncoder& coder) {
  const std::lock_guard lock(monitor());
  QNDatabaseObjectWithOverview::encodeWithCoder(coder);
  if (_uuid != nullptr) coder.encodeString(*_uuid, kUuid);
  coder.encodeInt64(_createdAt, kCreatedAt);
  coder.encodeInt64(_updatedAt, kUpdatedAt);
  coder.encodeInt64(_txTimestamp, kTxTimestamp);
  if (_parentId != 0) coder.encodeInt64(_parentId, kParentId);
  encodeIfPresent(coder, _parentUUID, kParentUUID);
  if (_smartFolder) coder.encodeBool(true, kSmartFolder);
  encodeCount(coder, _numberOfChildren, kNumberOfChildren);
  encodeCount(coder, _numberOfItems, kNumberOfItems);
}

}  // namespace quillon
