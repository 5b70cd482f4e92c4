#pragma once
// What every item, folder, category and list asks of its vault. A pure interface over forward
// declarations: any folder may include it.

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/objects/QNTags.h"
#include "quillon/platform/images/QNImage.h"
#include "quillon/platform/json/QNJson.h"

namespace quillon {

class H9UserAccount;
class QNGenericCategory;
class QNItem;
class QNTemplate;
class QNUnionProfileFacade;

/// What `profileType` answers. 0 stands for "no profile yet" in an object.
inline constexpr std::uint64_t kProfileTypeUnion = 1;
inline constexpr std::uint64_t kProfileTypeLocalVault = 2;
inline constexpr std::uint64_t kProfileTypeAccountVault = 3;
inline constexpr std::uint64_t kProfileTypeMasterUnlock = 4;

/// Row id of a profile that has no row.
inline constexpr std::uint64_t kPseudoProfileOid = std::numeric_limits<std::uint64_t>::max();

/// Permission bits that this library tests. Masks may hold others. What an application alone gives
/// a meaning to is named after the actions that need it.
inline constexpr std::uint64_t kPermissionManageVault = 0x2;
inline constexpr std::uint64_t kPermissionReveal = 0x10;
inline constexpr std::uint64_t kPermissionEdit = 0x40;
inline constexpr std::uint64_t kPermissionCreateItems = 0x80;
inline constexpr std::uint64_t kPermissionAction5 = 0x100;
/// The one permission that a union of vaults has.
inline constexpr std::uint64_t kPermissionAction7 = 0x200;
inline constexpr std::uint64_t kPermissionActions12To15 = 0x400;
/// Of actions 3 and 13 to 15 as well.
inline constexpr std::uint64_t kPermissionAction1 = 0x100000;
inline constexpr std::uint64_t kPermissionImplyingCreateItems = 0x200000;
inline constexpr std::uint64_t kPermissionExportAttributes = 0x400000;
inline constexpr std::uint64_t kPermissionAction14 = 0x800000;

/// Feature numbers that this library asks; 1 to 6 belong to applications.
inline constexpr std::uint32_t kFeatureDocuments = 7;
inline constexpr std::uint32_t kFeatureLocalIcons = 8;
inline constexpr std::uint32_t kFeatureServerIcons = 9;

/// A vault, or something that answers as one. No thread safety beyond the registries of tags and
/// categories; lock and unlock must not run beside encryption on another thread. An operation
/// that a kind doesn't support logs an assertion and gives the empty result of its type.
class QNGenericProfile {
 public:
  virtual ~QNGenericProfile() = default;
  [[nodiscard]] virtual bool isEqual(const QNGenericProfile& other) const = 0;
  [[nodiscard]] virtual std::size_t hash() const = 0;
  [[nodiscard]] virtual std::string description() const = 0;

  virtual void lock() = 0;
  virtual std::optional<Bytes> encryptOverview(ByteView clear) = 0;
  virtual std::optional<Bytes> decryptOverview(ByteView sealed) = 0;
  virtual std::optional<Bytes> encryptWithMaster(ByteView clear) = 0;
  virtual std::optional<Bytes> decryptWithMaster(ByteView sealed) = 0;

  [[nodiscard]] virtual bool supportsFeature(std::uint32_t feature) const = 0;
  /// A mask of several bits is granted as a whole: one that is missing refuses it.
  [[nodiscard]] virtual bool hasPermission(std::uint64_t mask) const = 0;
  /// False for a locked profile and for numbers outside 1 to 15.
  [[nodiscard]] virtual bool hasPermissionToPerformAction(std::uint32_t action) const = 0;

  [[nodiscard]] virtual std::optional<std::string> tagWithId(std::uint64_t id) const = 0;
  /// 0 for an absent or unknown tag.
  [[nodiscard]] virtual std::uint64_t tagId(std::optional<std::string_view> tag) const = 0;
  virtual void addTag(std::string_view tag, std::uint64_t withId) = 0;
  virtual void removeTag(std::optional<std::string_view> tag) = 0;

  [[nodiscard]] virtual std::vector<std::shared_ptr<QNGenericCategory>> allCategories() const = 0;
  [[nodiscard]] virtual std::vector<std::shared_ptr<QNGenericCategory>> allDisplayedCategories()
      const = 0;
  [[nodiscard]] virtual std::shared_ptr<QNGenericCategory> categoryWithUUID(
      std::optional<std::string_view> uuid) const = 0;
  virtual void addCategory(const std::shared_ptr<QNGenericCategory>& category) = 0;
  virtual void removeAllCategories() = 0;
  [[nodiscard]] virtual bool supportsCategoryUUID(std::optional<std::string_view> uuid) const = 0;
  virtual std::shared_ptr<QNGenericCategory> newLegacyCategoryWithUUID(
      std::optional<std::string_view> uuid) = 0;
  virtual std::shared_ptr<QNGenericCategory> newCategoryFromTemplate(
      const std::shared_ptr<QNTemplate>& from) = 0;
  virtual std::shared_ptr<QNGenericCategory> newSystemCategoryWithUUID(
      std::optional<std::string_view> uuid) = 0;

  /// A new item of the category's class, without profile and uuid: setProfile() gives it both.
  virtual std::shared_ptr<QNItem> newItemForCategoryUUID(std::optional<std::string_view> uuid) = 0;
  /// The shell of a stored item, for the database layer to fill.
  virtual std::shared_ptr<QNItem> existingItemWithID(
      std::uint64_t oid, std::optional<std::string_view> forCategoryUUID) = 0;
  [[nodiscard]] virtual std::shared_ptr<QNTemplate> templateForCategoryUUID(
      std::optional<std::string_view> uuid) const = 0;
  [[nodiscard]] virtual std::vector<std::shared_ptr<QNTemplate>> allTemplates() const = 0;

  [[nodiscard]] virtual std::uint64_t profileType() const = 0;
  [[nodiscard]] virtual std::uint64_t oid() const = 0;
  [[nodiscard]] virtual bool isLocked() const = 0;
  [[nodiscard]] virtual bool isUnlocked() const = 0;
  [[nodiscard]] virtual bool isPrimaryProfile() const = 0;
  [[nodiscard]] virtual bool isDemoProfile() const = 0;

  [[nodiscard]] virtual std::shared_ptr<const QNImage> customIcon() const = 0;
  virtual void setCustomIcon(const std::shared_ptr<const QNImage>& icon) = 0;
  [[nodiscard]] virtual std::string displayedProfileName() const = 0;
  [[nodiscard]] virtual std::string displayedProfileNameWithVaultAppendedAsNeeded() const = 0;
  [[nodiscard]] virtual std::optional<QNColor> profileColor() const = 0;
  virtual void setProfileColor(std::optional<QNColor> color) = 0;
  [[nodiscard]] virtual QNSharedString uuid() const = 0;
  [[nodiscard]] virtual std::optional<std::string> passwordHint() const = 0;
  virtual void setPasswordHint(std::optional<std::string> hint) = 0;
  [[nodiscard]] virtual std::optional<Bytes> iconData() const = 0;
  virtual void setIconData(std::optional<Bytes> data) = 0;
  [[nodiscard]] virtual std::optional<std::string> profileColorText() const = 0;
  virtual void setProfileColorText(std::optional<std::string> text) = 0;
  [[nodiscard]] virtual std::optional<std::string> lastUpdatedBy() const = 0;
  virtual void setLastUpdatedBy(std::optional<std::string> host) = 0;
  [[nodiscard]] virtual std::optional<std::string> profileName() const = 0;
  virtual void setProfileName(std::optional<std::string> name) = 0;

  [[nodiscard]] virtual bool isVisible() const = 0;
  [[nodiscard]] virtual bool includeUnknownItems() const = 0;
  [[nodiscard]] virtual bool isAllVaultsVault() const = 0;
  /// No duplicates; the order says nothing.
  [[nodiscard]] virtual std::vector<std::shared_ptr<QNGenericProfile>> vaults() const = 0;
  /// No duplicates; a vault without a uuid is left out.
  [[nodiscard]] virtual std::set<std::string> vaultUUIDs() const = 0;
  [[nodiscard]] virtual std::set<std::string> allTags() const = 0;
  [[nodiscard]] virtual bool tagsLoaded() const = 0;
  virtual void setTagsLoaded(bool loaded) = 0;
};

/// A vault of a hosted account.
class QNServerProfile : public QNGenericProfile {
 public:
  [[nodiscard]] virtual std::uint64_t accountId() const = 0;
  [[nodiscard]] virtual bool isSuspended() const = 0;
  [[nodiscard]] virtual std::optional<std::string> accountUUID() const = 0;
  [[nodiscard]] virtual std::shared_ptr<H9UserAccount> userAccount() const = 0;
  /// The account's name for people, as of the last unlock.
  [[nodiscard]] virtual std::optional<std::string> accountName() const = 0;
  /// The vault key's envelope, a JSON object; what objects of this vault store as JSON text.
  virtual std::optional<JsonObject> encryptWithMasterSymmetricKey(ByteView clear,
                                                                  QNError* error = nullptr) = 0;
  virtual std::optional<Bytes> decryptWithMasterSymmetricKey(const JsonObject& envelope,
                                                             QNError* error = nullptr) = 0;
};

/// A list of profiles for display.
class QNProfileGroup {
 public:
  virtual ~QNProfileGroup() = default;
  /// 0 for local vaults, 1 for the vaults of an account.
  [[nodiscard]] virtual std::uint32_t profileGroupType() const = 0;
  [[nodiscard]] virtual std::string title() const = 0;
  [[nodiscard]] virtual std::vector<std::shared_ptr<QNGenericProfile>> profiles() const = 0;
  [[nodiscard]] virtual std::shared_ptr<QNUnionProfileFacade> unionProfile() const = 0;
  virtual void setUnionProfile(const std::shared_ptr<QNUnionProfileFacade>& facade) = 0;
};

}  // namespace quillon
