#include <algorithm>

#include "quillon/kinds/QNUnknownItem.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/QNCategory.h"
#include "quillon/templates/QNCategoryHelper.h"
#include "quillon/templates/QNTemplateManager.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {
namespace {

std::optional<std::string> textOrNothing(std::optional<std::string_view> text) {
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

}  // namespace

const std::set<std::string, std::less<>>& QNProfileSupportedCategoryUUIDs() {
  static const std::set<std::string, std::less<>> supported = [] {
    std::set<std::string, std::less<>> uuids;
    for (const std::string_view uuid :
         {QNCategoryUUIDLogin, QNCategoryUUIDCreditCard, QNCategoryUUIDSecureNote,
          QNCategoryUUIDIdentity, QNCategoryUUIDMembership, QNCategoryUUIDPassport,
          QNCategoryUUIDRewards, QNCategoryUUIDSocialSecurityNumber, QNCategoryUUIDRouter,
          QNCategoryUUIDServer, QNCategoryUUIDEmail, QNCategoryUUIDOutdoorLicense,
          QNCategoryUUIDDriverLicense, QNCategoryUUIDDatabase, QNCategoryUUIDBankAccount,
          QNCategoryUUIDSoftwareLicense, QNCategoryUUIDTombstone, QNCategoryUUIDPassword}) {
      uuids.emplace(uuid);
    }
    return uuids;
  }();
  return supported;
}

// Tags

std::optional<std::string> QNProfile::tagWithId(std::uint64_t id) const {
  const std::lock_guard lock(_tagsLock);
  const auto found = _tagsById.find(id);
  return found == _tagsById.end() ? std::nullopt : std::optional(found->second);
}

// For a tag that is present the lock is taken: a reader without it could run into an addTag() that
// is rebuilding the map.
std::uint64_t QNProfile::tagId(std::optional<std::string_view> tag) const {
  if (!tag) return 0;
  const std::lock_guard lock(_tagsLock);
  const auto found = _idsByTag.find(*tag);
  return found == _idsByTag.end() ? 0 : found->second;
}

// An older entry of the same id or text stays in the other map.
void QNProfile::addTag(std::string_view tag, std::uint64_t withId) {
  const std::lock_guard lock(_tagsLock);
  _tagsById[withId] = tag;
  _idsByTag.insert_or_assign(std::string(tag), withId);
}

void QNProfile::removeTag(std::optional<std::string_view> tag) {
  if (!tag) return;
  const std::lock_guard lock(_tagsLock);
  _tagsById.erase(tagId(tag));
  _idsByTag.erase(std::string(*tag));
}

std::set<std::string> QNProfile::allTags() const {
  const std::lock_guard lock(_tagsLock);
  std::set<std::string> tags;
  for (const auto& entry : _tagsById) tags.insert(entry.second);
  return tags;
}

// Categories

std::vector<std::shared_ptr<QNGenericCategory>> QNProfile::allCategories() const {
  const std::lock_guard lock(_categoriesLock);
  std::vector<std::shared_ptr<QNGenericCategory>> categories;
  for (const auto& entry : _categoriesByUUID) categories.push_back(entry.second);
  return categories;
}

std::vector<std::shared_ptr<QNGenericCategory>> QNProfile::allDisplayedCategories() const {
  auto categories = allCategories();
  categories.erase(std::remove_if(categories.begin(), categories.end(),
                                  [](const auto& category) {
                                    return category->uuid() == QNCategoryUUIDTombstone;
                                  }),
                   categories.end());
  std::stable_sort(categories.begin(), categories.end(), [](const auto& a, const auto& b) {
    return QNGenericCategoryDisplayOrder(*a) < QNGenericCategoryDisplayOrder(*b);
  });
  return categories;
}

std::shared_ptr<QNGenericCategory> QNProfile::categoryWithUUID(
    std::optional<std::string_view> uuid) const {
  if (!uuid) return nullptr;
  const std::lock_guard lock(_categoriesLock);
  const auto found = _categoriesByUUID.find(*uuid);
  return found == _categoriesByUUID.end() ? nullptr : found->second;
}

void QNProfile::addCategory(const std::shared_ptr<QNGenericCategory>& category) {
  const auto uuid = category != nullptr ? category->uuid() : std::nullopt;
  if (!uuid) return;
  const std::lock_guard lock(_categoriesLock);
  _categoriesByUUID.insert_or_assign(*uuid, category);
}

void QNProfile::removeAllCategories() {
  const std::lock_guard lock(_categoriesLock);
  _categoriesByUUID.clear();
}

bool QNProfile::supportsCategoryUUID(std::optional<std::string_view> uuid) const {
  return uuid && QNProfileSupportedCategoryUUIDs().count(*uuid) != 0;
}

std::shared_ptr<QNGenericCategory> QNProfile::newLegacyCategoryWithUUID(
    std::optional<std::string_view> uuid) {
  return newCategoryFromTemplate(templateForCategoryUUID(uuid));
}

std::shared_ptr<QNGenericCategory> QNProfile::newCategoryFromTemplate(
    const std::shared_ptr<QNTemplate>& from) {
  if (from == nullptr) return nullptr;
  auto category = std::make_shared<QNCategory>(initNew);
  category->setProfile(profile());
  category->setUuid(from->uuid());
  category->setSingularName(from->localizedTitle());
  category->setPluralName(from->localizedPluralTitle());
  category->setListIconName(from->listIconName());
  category->setDetailIconName(from->detailIconName());
  category->setDisplayOrder(QNGenericCategoryDefaultDisplayOrder(from->uuid()));
  return category;
}

std::shared_ptr<QNGenericCategory> QNProfile::newSystemCategoryWithUUID(
    std::optional<std::string_view> uuid) {
  auto category = std::make_shared<QNCategory>(initNew);
  category->setProfile(profile());
  category->setUuid(textOrNothing(uuid));
  category->setSingularName(QNCategoryHelper::defaultSingularNameFor(uuid));
  category->setPluralName(QNCategoryHelper::defaultPluralNameFor(uuid));
  category->setListIconName(QNCategoryHelper::defaultListIconNameFor(uuid));
  category->setDetailIconName(QNCategoryHelper::defaultDetailIconNameFor(uuid));
  category->setDisplayOrder(QNGenericCategoryDefaultDisplayOrder(uuid));
  return category;
}

// Items

const QNItemClass* QNProfile::itemClassForCategoryUUID(std::optional<std::string_view> uuid) const {
  if (!uuid) return nullptr;
  if (const auto* const found = QNGenericCategoryItemClassForCategoryUUID(uuid)) return found;
  log_error(DEBUG_DATABASE, "Failed to find subclass for categoryUUID '{}', will use QNUnknownItem",
            *uuid);
  static const QNItemClass unknown = itemClassNamed<QNUnknownItem>("QNUnknownItem");
  return &unknown;
}

std::shared_ptr<QNItem> QNProfile::newItemForCategoryUUID(std::optional<std::string_view> uuid) {
  const QNItemClass* const itemClass = itemClassForCategoryUUID(uuid);
  if (itemClass == nullptr) return nullptr;
  if (itemClass->initNewWithTemplate != nullptr) {
    return itemClass->initNewWithTemplate(templateForCategoryUUID(uuid));
  }
  auto item = itemClass->initNew();
  item->setCategoryUUID(textOrNothing(uuid));
  return item;
}

std::shared_ptr<QNItem> QNProfile::existingItemWithID(
    std::uint64_t oid, std::optional<std::string_view> forCategoryUUID) {
  const QNItemClass* const itemClass = itemClassForCategoryUUID(forCategoryUUID);
  if (itemClass == nullptr) return nullptr;
  auto item = itemClass->initExistingWithID(oid);
  item->setCategoryUUID(textOrNothing(forCategoryUUID));
  return item;
}

std::shared_ptr<QNTemplate> QNProfile::templateForCategoryUUID(
    std::optional<std::string_view> uuid) const {
  return QNTemplateManager::sharedManager().findTemplateWithUUID(uuid);
}

std::vector<std::shared_ptr<QNTemplate>> QNProfile::allTemplates() const {
  return QNTemplateManager::sharedManager().templates();
}

}  // namespace quillon
