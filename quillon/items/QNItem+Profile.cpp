#include "quillon/items/internal/QNItemState.h"
#include "quillon/items/internal/QNItemVault.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/QNGenericCategory.h"

namespace quillon {
namespace {

std::uint64_t typeOf(const std::shared_ptr<QNGenericProfile>& profile) {
  return profile == nullptr ? 0 : profile->profileType();
}

}  // namespace

// Everything that needs the old vault's keys comes before the base takes the new vault.
void QNItem::setProfile(const std::shared_ptr<QNGenericProfile>& profile) {
  const auto before = this->profile();
  if (profile == before) return;
  const std::uint64_t newType = typeOf(profile);
  if (newType == kProfileTypeUnion) {
    MRLogger::sharedLogger().assertion(
        DEBUG_DATABASE, descriptionForLogging(),
        "Attempting to move an item to the union profile. That's not supported!");
    return;
  }
  if (typeOf(before) == kProfileTypeLocalVault) unwrapKeyIfNeeded();
  const bool crossing =
      profileType() == kProfileTypeAccountVault || newType == kProfileTypeAccountVault;
  if (crossing && before != nullptr) {
    decryptDetailsDataIfNeeded();
    if (newType == kProfileTypeLocalVault) setKey(QNAESKey::initWithRandomKey());
  }
  const bool regenerate = shouldRegenerateUUIDMovingFromProfile(before, profileType(), profile);
  QNDatabaseObjectWithOverview::setProfile(profile);
  if (regenerate) regenerateUuid();
  std::vector<std::shared_ptr<QNItemURL>> urls;
  {
    const std::lock_guard lock(monitor());
    _itemSpecifier.reset();
    if (_open == nullptr) return;
    if (_open->URLs) urls = *_open->URLs;
    urls.insert(urls.end(), _open->deletedURLs.begin(), _open->deletedURLs.end());
  }
  for (const auto& url : urls) url->setProfile(profile);
}

// An item that comes out of an archive has a profile type and no profile: the first profile of
// that type leaves it its uuid.
bool QNItem::shouldRegenerateUUIDMovingFromProfile(
    const std::shared_ptr<QNGenericProfile>& from, std::uint64_t profileType,
    const std::shared_ptr<QNGenericProfile>& toProfile) const {
  const bool sameType = profileType == typeOf(toProfile);
  if (from == nullptr || !sameType) return !sameType;
  return toProfile == nullptr || from->uuid() == nullptr ||
         !equalContent(from->uuid(), toProfile->uuid());
}

std::shared_ptr<QNGenericCategory> QNItem::category() const {
  const auto vault = profile();
  if (vault == nullptr) return nullptr;
  if (auto known = vault->categoryWithUUID(_categoryUUID)) return known;
  return vault->newLegacyCategoryWithUUID(_categoryUUID);
}

bool QNItem::isUIEditable() const {
  const auto vault = profile();
  return vault != nullptr && vault->hasPermission(kPermissionEdit) &&
         QNGenericCategoryIsItemEditable(_categoryUUID);
}

}  // namespace quillon
