#include "quillon/touchpoints/QNItemSpecifier.h"

#include <map>
#include <unordered_map>
#include <utility>

#include "quillon/items/QNItem.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNText.h"

// Archive and JSON:
//
//   key            kind
//   "uuid"         text: the item's
//   "profileUUID"  text: its vault's; an archive without it gives an unknown one

namespace quillon {
namespace {

constexpr std::string_view kUUID = "uuid";
constexpr std::string_view kProfileUUID = "profileUUID";

QNSharedString sharedTextOf(std::optional<std::string_view> text) {
  return text ? sharedString(std::string(*text)) : nullptr;
}

QNSharedString profileUUIDOf(const QNItem& item) {
  const auto profile = item.profile();
  return profile == nullptr ? nullptr : profile->uuid();
}

struct HashOfContent {
  std::size_t operator()(const QNItemSpecifier::Ref& it) const { return it->hash(); }
};
struct EqualContent {
  bool operator()(const QNItemSpecifier::Ref& a, const QNItemSpecifier::Ref& b) const {
    return *a == *b;
  }
};
using ItemsBySpecifier =
    std::unordered_map<QNItemSpecifier::Ref, std::shared_ptr<QNItem>, HashOfContent, EqualContent>;

}  // namespace

QNItemSpecifier::QNItemSpecifier(QNSharedString uuid, QNSharedString profileUUID)
    : _uuid(std::move(uuid)), _profileUUID(std::move(profileUUID)) {}

// Making

std::shared_ptr<QNItemSpecifier> QNItemSpecifier::initWithTexts(QNSharedString uuid,
                                                                QNSharedString profileUUID) {
  if (uuid == nullptr) {
    MRLogger::sharedLogger().assertion(
        DEBUG_XPC, {}, MRLogText("UUID ({}) is required", "Mac/QNItemSpecifier"), "(null)");
    return nullptr;
  }
  if (profileUUID == nullptr) profileUUID = sharedString("unknown" + mr_uuid());
  return std::shared_ptr<QNItemSpecifier>(
      new QNItemSpecifier(std::move(uuid), std::move(profileUUID)));
}

std::shared_ptr<QNItemSpecifier> QNItemSpecifier::initWithUUID(
    std::optional<std::string_view> uuid, std::optional<std::string_view> profileUUID) {
  return initWithTexts(sharedTextOf(uuid), sharedTextOf(profileUUID));
}

QNItemSpecifier::Ref QNItemSpecifier::initWithItem(const QNItem& item) {
  return initWithTexts(item.uuid(), profileUUIDOf(item));
}

std::vector<QNItemSpecifier::Ref> QNItemSpecifier::specifiersWithItems(Items items) {
  std::vector<Ref> specifiers;
  for (const auto& item : items) {
    if (item == nullptr) continue;
    if (auto specifier = specifierWithItem(*item)) specifiers.push_back(std::move(specifier));
  }
  return specifiers;
}

std::size_t QNItemSpecifier::hash() const {
  return std::hash<std::string>{}(*_uuid) + std::hash<std::string>{}(*_profileUUID);
}

bool QNItemSpecifier::matchesItem(const QNItem& item) const {
  return equalContent(item.uuid(), _uuid) && equalContent(profileUUIDOf(item), _profileUUID);
}

std::string QNItemSpecifier::debugDescription() const {
  return "itemUUID: " + *_uuid + ", profileUUID: " + *_profileUUID;
}

// Texts

std::string QNItemSpecifier::stringRepresentation() const {
  return *_profileUUID + "_" + *_uuid;
}

std::string QNItemSpecifier::coreStringRepresentation() const {
  return ":" + *_profileUUID + ":" + *_uuid;
}

std::vector<std::string> QNItemSpecifier::stringRepresentationsForItems(Items items) {
  std::vector<std::string> texts;
  for (const auto& item : items) {
    const Ref specifier = item == nullptr ? nullptr : item->itemSpecifier();
    if (specifier != nullptr) texts.push_back(specifier->stringRepresentation());
  }
  return texts;
}

QNItemSpecifier::Ref QNItemSpecifier::specifierWithStringRepresentation(
    std::string_view text, std::string_view separator) {
  const auto parts = componentsSeparatedByString(text, separator);
  if (parts.size() != 2 && parts.size() != 3) return nullptr;
  return initWithUUID(parts.back(), parts[parts.size() - 2]);
}

// Many at once

void QNItemSpecifier::iterateOverProfilesInSpecifiers(
    Refs specifiers,
    const std::function<void(const std::string& profileUUID,
                             const std::vector<std::string>& itemUUIDs)>& withBlock,
    const std::function<void()>& completion) {
  std::map<std::string, std::vector<std::string>> itemsByProfile;
  for (const Ref& specifier : specifiers) {
    if (specifier != nullptr) itemsByProfile[specifier->profileUUID()].push_back(specifier->uuid());
  }
  for (const auto& [profile, items] : itemsByProfile) {
    if (withBlock) withBlock(profile, items);
  }
  if (completion) completion();
}

std::vector<std::shared_ptr<QNItem>> QNItemSpecifier::itemsMatchingSpecifiers(Items items,
                                                                              Refs specifiers) {
  ItemsBySpecifier known;
  for (const auto& item : items) {
    const Ref specifier = item == nullptr ? nullptr : item->itemSpecifier();
    if (specifier != nullptr) known.insert_or_assign(specifier, item);
  }
  std::vector<std::shared_ptr<QNItem>> matching;
  for (const Ref& specifier : specifiers) {
    const auto found = specifier == nullptr ? known.end() : known.find(specifier);
    if (found != known.end()) matching.push_back(found->second);
  }
  return matching;
}

// Stored forms

std::shared_ptr<QNCoding> QNItemSpecifier::initWithCoder(QNDecoder& coder) {
  return initWithUUID(coder.decodeString(kUUID), coder.decodeString(kProfileUUID));
}

void QNItemSpecifier::encodeWithCoder(QNEncoder& coder) {
  coder.encodeString(*_uuid, kUUID);
  coder.encodeString(*_profileUUID, kProfileUUID);
}

JsonObject QNItemSpecifier::json() const {
  JsonObject object(jsonStorage());
  setJsonText(object, kUUID, *_uuid);
  setJsonText(object, kProfileUUID, *_profileUUID);
  return object;
}

QNResult<QNItemSpecifier::Ref> QNItemSpecifier::specifierWithJson(const Json& json) {
  const JsonObject* const object = json.if_object();
  if (object == nullptr) return QNError::unreadable("a specifier is an object");
  const auto uuid = mr_validStringValueForKey(*object, kUUID);
  if (!uuid) return QNError::unreadable("a specifier without uuid");
  const auto profileUUID = mr_validStringValueForKey(*object, kProfileUUID);
  if (!profileUUID) return QNError::unreadable("a specifier without profileUUID");
  return specifierWithItemUUID(uuid, profileUUID);
}

}  // namespace quillon
