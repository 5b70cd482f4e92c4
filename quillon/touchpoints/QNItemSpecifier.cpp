#include "quillon/touchpoints/QNItemSpecifier.h"

#include <functional>
#include <utility>

#include "quillon/items/QNItem.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

std::optional<std::string_view> contentOf(const QNSharedString& text) {
  return text == nullptr ? std::nullopt : std::optional<std::string_view>(*text);
}

}  // namespace

QNItemSpecifier::QNItemSpecifier(std::string uuid, std::string profileUUID)
    : _uuid(std::move(uuid)), _profileUUID(std::move(profileUUID)) {}

std::shared_ptr<const QNItemSpecifier> QNItemSpecifier::specifierWithItem(const QNItem& item) {
  const QNSharedString uuid = item.uuid();
  const auto profile = item.profile();
  const QNSharedString profileUUID = profile == nullptr ? nullptr : profile->uuid();
  return specifierWithItemUUID(contentOf(uuid), contentOf(profileUUID));
}

std::shared_ptr<const QNItemSpecifier> QNItemSpecifier::specifierWithItemUUID(
    std::optional<std::string_view> uuid, std::optional<std::string_view> profileUUID) {
  if (!uuid) {
    MRLogger::sharedLogger().assertion(DEBUG_XPC, {}, "UUID ({}) is required", "(null)");
    return nullptr;
  }
  std::string profile = profileUUID ? std::string(*profileUUID) : "unknown" + mr_uuid();
  return std::shared_ptr<const QNItemSpecifier>(
      new QNItemSpecifier(std::string(*uuid), std::move(profile)));
}

std::size_t QNItemSpecifier::hash() const {
  return std::hash<std::string>{}(_uuid) + std::hash<std::string>{}(_profileUUID);
}

std::string QNItemSpecifier::stringRepresentation() const {
  return _profileUUID + "_" + _uuid;
}

std::string QNItemSpecifier::coreStringRepresentation() const {
  return ":" + _profileUUID + ":" + _uuid;
}

std::string QNItemSpecifier::debugDescription() const {
  return "itemUUID: " + _uuid + ", profileUUID: " + _profileUUID;
}

}  // namespace quillon
