#pragma once

#include <array>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>

#include "quillon/objects/QNDatabaseObjectWithOverview.h"
#include "quillon/platform/crypto/QNAESKey.h"
#include "quillon/platform/crypto/QNEncryptedString.h"
#include "quillon/vaults/QNGenericProfile.h"

namespace quillon {

struct MRLogText;
struct QNItemClass;

/// Bytes of a local vault's master key and overview key.
inline constexpr std::int32_t MASTER_KEY_SIZE = 256;
inline constexpr std::int32_t OVERVIEW_KEY_SIZE = 64;
/// Longest encoded icon of an item in a local vault, in bytes. A vault's own icon may be longer.
inline constexpr std::int32_t kMaxCustomQN4IconSize = 32768;

/// Posted by a vault, itself the object, unless it was opened for import. The address is that of
/// the whole object: from a QNGenericProfile, dynamic_cast<const void*> gives it.
inline constexpr std::string_view QNProfileWillLockNotification = "QNProfileWillLockNotification";
inline constexpr std::string_view QNProfileDidLockNotification = "QNProfileDidLockNotification";
inline constexpr std::string_view QNProfileWillUnlockNotification =
    "QNProfileWillUnlockNotification";
inline constexpr std::string_view QNProfileDidUnlockNotification = "QNProfileDidUnlockNotification";

/// The name as it stands if it says "vault" in the user's language already, else "NAME Vault".
std::string QNDisplayedProfileNameWithVaultAppendedAsNeeded(std::string_view name);

/// The categories that a local vault offers.
const std::set<std::string, std::less<>>& QNProfileSupportedCategoryUUIDs();

/// A local vault: it holds its own keys, and one password opens it. An overview key encrypts what
/// lists need; a master key wraps the key of each item. A password change encrypts these two
/// anew and touches no item. Made through the static operations, held by shared_ptr.
class QNProfile final : public QNDatabaseObjectWithOverview,
                        public QNGenericProfile,
                        public std::enable_shared_from_this<QNProfile> {
  struct Passkey {
    explicit Passkey() = default;  // so that {} is no way round it
  };

 public:
  // Making: QNProfile.cpp
  /// An unlocked new vault. One made without a password has keys, but none that can be stored; so
  /// has one where changePasswordTo() fails.
  static std::shared_ptr<QNProfile> initNewWithPassword(std::optional<std::string_view> password);
  static std::shared_ptr<QNProfile> profileWithName(std::string_view name,
                                                    std::optional<std::string_view> password,
                                                    std::optional<std::string> hint);
  /// A locked shell, for the caller to fill and unlock.
  static std::shared_ptr<QNProfile> initExistingWithID(std::uint64_t oid);
  QNProfile(Passkey, QNNew);
  QNProfile(Passkey, QNExisting existing);
  QNProfile(Passkey, QNDecoder& coder);

  static std::string primaryProfileName() { return "default"; }
  static std::string demoProfileName() { return "demo"; }
  static std::string displayedProfileNameForName(std::string_view name);

  // Lock: QNProfile+Lock.cpp
  /// Posts again on a locked vault. Observers are called synchronously. An item's own key that was
  /// handed out before lives on with whoever holds it.
  void lock() override;
  /// True only when the password and both keys are absent: an unlocked vault may lack a key, and
  /// what needs that key then fails by itself.
  [[nodiscard]] bool isLocked() const override;
  [[nodiscard]] bool isUnlocked() const override { return !isLocked(); }
  /// False, with nothing changed and nothing posted, for a wrong password. One key derivation.
  /// False with an error log if no key can be made of the password: memory is short, it isn't
  /// UTF-8, or the row's salt or count is none.
  bool _unlockWithPassword(std::optional<std::string_view> password);
  /// Seals both keys anew. False, with nothing changed and a report, without a password or a key,
  /// for a password that isn't UTF-8, or if memory is short.
  bool changePasswordTo(std::optional<std::string_view> password);
  /// Each also makes the key object; absent or empty bytes clear both. They post nothing.
  void setOverviewKey(std::optional<ByteView> key);
  void setMasterKey(std::optional<ByteView> key);
  [[nodiscard]] const std::optional<QNKeyBytes>& overviewKey() const { return _overviewKey; }
  [[nodiscard]] const std::optional<QNKeyBytes>& masterKey() const { return _masterKey; }
  /// The password, while the vault is open. An empty one isn't kept.
  [[nodiscard]] std::optional<QNSecret> profilePassword() const;
  void setProfilePassword(std::optional<std::string_view> password);

  // Encryption: QNProfile+Encryption.cpp. A locked vault logs an assertion and gives nothing.
  std::optional<Bytes> encryptItemKey(const QNAESKeyRef& key);
  QNAESKeyRef decryptItemKey(ByteView wrapped);
  std::optional<Bytes> encryptOverview(ByteView clear) override;
  std::optional<Bytes> decryptOverview(ByteView sealed) override;
  std::optional<Bytes> encryptWithMaster(ByteView clear) override;
  std::optional<Bytes> decryptWithMaster(ByteView sealed) override;
  /// HMAC-SHA256 under bytes 32 to 63 of the overview key's raw key. Stable for the vault's life.
  /// Nothing, without a report, if the vault is unlocked and lacks the overview key.
  [[nodiscard]] std::optional<std::array<std::uint8_t, 32>> hmacForData(
      std::optional<ByteView> data) const;
  /// The hexadecimal SHA-256 of the text's HMAC.
  [[nodiscard]] std::optional<std::string> hmacForString(
      std::optional<std::string_view> text) const;
  /// Item keys unwrapped by this vault object so far: a list that stays cheap leaves it alone.
  [[nodiscard]] std::uint64_t numberOfItemKeysUnwrapped() const { return _itemKeysUnwrapped; }

  // Shared questions: QNProfile.cpp
  [[nodiscard]] std::string_view className() const override { return "QNProfile"; }
  /// The vault itself, which no other profile can replace.
  [[nodiscard]] std::shared_ptr<QNGenericProfile> profile() const override;
  void setProfile(const std::shared_ptr<QNGenericProfile>& profile) override;
  [[nodiscard]] bool isEqual(const QNGenericProfile& other) const override;
  [[nodiscard]] std::size_t hash() const override;
  [[nodiscard]] std::string description() const override;
  [[nodiscard]] std::uint64_t profileType() const override { return kProfileTypeLocalVault; }
  [[nodiscard]] std::uint64_t oid() const override { return QNDatabaseObject::oid(); }
  [[nodiscard]] bool supportsFeature(std::uint32_t feature) const override;
  [[nodiscard]] bool hasPermission(std::uint64_t mask) const override;
  [[nodiscard]] bool hasPermissionToPerformAction(std::uint32_t action) const override;
  [[nodiscard]] bool isPrimaryProfile() const override;
  [[nodiscard]] bool isDemoProfile() const override;
  [[nodiscard]] bool isVisible() const override { return true; }
  [[nodiscard]] bool includeUnknownItems() const override { return false; }
  [[nodiscard]] bool isAllVaultsVault() const override { return false; }
  [[nodiscard]] std::vector<std::shared_ptr<QNGenericProfile>> vaults() const override;
  [[nodiscard]] std::set<std::string> vaultUUIDs() const override;
  [[nodiscard]] std::string displayedProfileName() const override;
  [[nodiscard]] std::string displayedProfileNameWithVaultAppendedAsNeeded() const override;
  /// "Quillon" for the primary vault, the profile's name otherwise.
  [[nodiscard]] std::string keychainFileName() const;
  void postNotificationName(std::string_view name);

  // Plain accessors: they compare nothing and dirty nothing
  [[nodiscard]] QNSharedString uuid() const override { return _uuid; }
  /// For the database layer, on a shell: a uuid that is there stays, with an assertion log if
  /// another is given. Rows are sealed with it.
  void setUuid(QNSharedString uuid);
  [[nodiscard]] std::uint64_t createdAt() const { return _createdAt; }
  void setCreatedAt(std::uint64_t seconds) { _createdAt = seconds; }
  [[nodiscard]] std::uint64_t updatedAt() const { return _updatedAt; }
  void setUpdatedAt(std::uint64_t seconds) { _updatedAt = seconds; }
  [[nodiscard]] const std::optional<Bytes>& encryptedMasterKey() const {
    return _encryptedMasterKey;
  }
  void setEncryptedMasterKey(std::optional<Bytes> data) { _encryptedMasterKey = std::move(data); }
  [[nodiscard]] const std::optional<Bytes>& encryptedOverviewKey() const {
    return _encryptedOverviewKey;
  }
  void setEncryptedOverviewKey(std::optional<Bytes> data) {
    _encryptedOverviewKey = std::move(data);
  }
  [[nodiscard]] const std::optional<Bytes>& salt() const { return _salt; }
  void setSalt(std::optional<Bytes> salt) { _salt = std::move(salt); }
  [[nodiscard]] std::uint32_t iterations() const { return _iterations; }
  void setIterations(std::uint32_t count) { _iterations = count; }
  [[nodiscard]] const std::optional<Bytes>& attributesData() const { return _attributesData; }
  void setAttributesData(std::optional<Bytes> data) { _attributesData = std::move(data); }
  [[nodiscard]] bool openedForImport() const { return _openedForImport; }
  void setOpenedForImport(bool opened) { _openedForImport = opened; }
  [[nodiscard]] std::optional<std::string> passwordHint() const override { return _passwordHint; }
  void setPasswordHint(std::optional<std::string> hint) override {
    _passwordHint = std::move(hint);
  }
  [[nodiscard]] std::optional<std::string> lastUpdatedBy() const override { return _lastUpdatedBy; }
  void setLastUpdatedBy(std::optional<std::string> host) override {
    _lastUpdatedBy = std::move(host);
  }
  [[nodiscard]] std::optional<std::string> profileName() const override { return _profileName; }
  void setProfileName(std::optional<std::string> name) override { _profileName = std::move(name); }
  [[nodiscard]] bool tagsLoaded() const override { return _tagsLoaded; }
  void setTagsLoaded(bool loaded) override { _tagsLoaded = loaded; }

  // Icon and colour: QNProfile+Appearance.cpp
  [[nodiscard]] std::shared_ptr<const QNImage> customIcon() const override;
  /// Kept as PNG within 300 by 300 pixels, as JPEG where that is too long (error logs say so). A
  /// square icon that is smaller isn't blown up. An absent icon clears. An icon that can't be drawn
  /// or stays too long changes nothing, and the row stays as it was.
  void setCustomIcon(const std::shared_ptr<const QNImage>& icon) override;
  /// The icon itself unless it is wider or taller than 300 points. Null if it can't be drawn.
  static std::shared_ptr<const QNImage> downscaleCustomIcon(
      const std::shared_ptr<const QNImage>& icon);
  [[nodiscard]] std::optional<Bytes> iconData() const override { return _iconData; }
  void setIconData(std::optional<Bytes> data) override { _iconData = std::move(data); }
  [[nodiscard]] std::optional<QNColor> profileColor() const override { return _profileColor; }
  /// Components are kept within 0 to 1, one that isn't finite as 0.
  void setProfileColor(std::optional<QNColor> color) override;
  [[nodiscard]] std::optional<std::string> profileColorText() const override;
  void setProfileColorText(std::optional<std::string> text) override;

  // Stored forms: QNProfile+Blob.cpp
  /// The JSON object in which a database layer may store the vault: its keys sealed, its name and
  /// hint in clear. Nothing, with an error log, where any text in it isn't UTF-8.
  std::optional<Bytes> blob();
  /// Takes the fields over from a blob. DANGER: bytes that aren't one clear every field but the
  /// sealed keys, with an error log; check them first.
  void setBlob(ByteView blob);
  /// The plain keys are in it: for the moment, never for a disk.
  void saveAllAttributes(JsonObject& attributes) override;
  void restoreAllAttributes(const JsonObject& attributes) override;

  // Archive: QNProfile+Archive.cpp
  /// With the keys in clear if the vault is unlocked. Never written to disk unsealed.
  void encodeWithCoder(QNEncoder& coder) override;
  /// Unlocked if and only if the encoded one was.
  static std::shared_ptr<QNProfile> initWithCoder(QNDecoder& coder);
  /// Seals this vault, keys and password included, under the primary vault's overview key into
  /// attributesData(): the twin archive. False, with nothing changed, if it can't be made; the
  /// error slot isn't written, the log says why. It holds the password of this moment: make it
  /// anew after each change.
  [[nodiscard]] bool encryptAttributesWithPrimaryProfile(const std::shared_ptr<QNProfile>& primary,
                                                         QNError* error = nullptr);
  /// Unlocks this vault with the keys and the password of its twin archive. False, with the vault
  /// untouched, and error 103 of QNErrorDomain, whose message tells why. The archive of a vault
  /// with another uuid is refused as one that can't be read, and a key that isn't of its size is
  /// missing.
  [[nodiscard]] bool decryptAttributesWithPrimaryProfile(const std::shared_ptr<QNProfile>& primary,
                                                         QNError* error = nullptr);

  // Tags, categories, items: QNProfile+Registries.cpp
  [[nodiscard]] std::optional<std::string> tagWithId(std::uint64_t id) const override;
  [[nodiscard]] std::uint64_t tagId(std::optional<std::string_view> tag) const override;
  void addTag(std::string_view tag, std::uint64_t withId) override;
  void removeTag(std::optional<std::string_view> tag) override;
  [[nodiscard]] std::set<std::string> allTags() const override;
  [[nodiscard]] std::vector<std::shared_ptr<QNGenericCategory>> allCategories() const override;
  [[nodiscard]] std::vector<std::shared_ptr<QNGenericCategory>> allDisplayedCategories()
      const override;
  [[nodiscard]] std::shared_ptr<QNGenericCategory> categoryWithUUID(
      std::optional<std::string_view> uuid) const override;
  /// The vault holds its categories; a category with this vault as its profile doesn't hold it.
  void addCategory(const std::shared_ptr<QNGenericCategory>& category) override;
  void removeAllCategories() override;
  [[nodiscard]] bool supportsCategoryUUID(std::optional<std::string_view> uuid) const override;
  std::shared_ptr<QNGenericCategory> newLegacyCategoryWithUUID(
      std::optional<std::string_view> uuid) override;
  std::shared_ptr<QNGenericCategory> newCategoryFromTemplate(
      const std::shared_ptr<QNTemplate>& from) override;
  std::shared_ptr<QNGenericCategory> newSystemCategoryWithUUID(
      std::optional<std::string_view> uuid) override;
  /// Null for an absent identifier. QNUnknownItem, with an error log, where no class serves.
  [[nodiscard]] const QNItemClass* itemClassForCategoryUUID(
      std::optional<std::string_view> uuid) const;
  /// Null for an absent identifier, and for a category whose class needs a template where there is
  /// none ("002", "004", and those of QNTemplateItem).
  std::shared_ptr<QNItem> newItemForCategoryUUID(std::optional<std::string_view> uuid) override;
  /// Null for an absent identifier only.
  std::shared_ptr<QNItem> existingItemWithID(
      std::uint64_t oid, std::optional<std::string_view> forCategoryUUID) override;
  [[nodiscard]] std::shared_ptr<QNTemplate> templateForCategoryUUID(
      std::optional<std::string_view> uuid) const override;
  [[nodiscard]] std::vector<std::shared_ptr<QNTemplate>> allTemplates() const override;

 private:
  bool openKeys(std::string_view password, const MRLogText& withoutKey);
  bool sealKeys(std::string_view password);
  void encodeRegistries(QNEncoder& coder);
  static std::shared_ptr<QNProfile> twinInArchive(ByteView archive);
  [[nodiscard]] bool hasUUIDOf(const QNProfile& twin) const;
  std::string takeKeysOfTwin(const QNProfile& twin);
  [[nodiscard]] std::optional<Bytes> encodedIcon(std::shared_ptr<const QNImage> icon) const;
  [[nodiscard]] std::optional<Bytes> encodedIconAsJPEG(const std::shared_ptr<const QNImage>& icon,
                                                       std::size_t pngBytes) const;
  bool refusesWhileLocked(const MRLogText& text) const;
  QNAESKeyRef masterAESKey();
  std::optional<Bytes> encryptUnder(const QNAESKeyRef& key, ByteView clear,
                                    const MRLogText& withoutKey) const;
  std::optional<Bytes> decryptUnder(const QNAESKeyRef& key, ByteView sealed,
                                    const MRLogText& withoutKey) const;

  bool _tagsLoaded = false;
  bool _openedForImport = false;
  std::optional<QNKeyBytes> _overviewKey;
  std::optional<QNKeyBytes> _masterKey;
  std::optional<QNColor> _profileColor;
  QNSharedString _uuid;
  std::uint64_t _createdAt = 0;
  std::uint64_t _updatedAt = 0;
  std::optional<Bytes> _encryptedMasterKey;
  std::optional<Bytes> _encryptedOverviewKey;
  std::optional<Bytes> _salt;
  std::uint32_t _iterations = 0;
  QNAESKeyRef _masterAESKey;
  std::optional<std::string> _passwordHint;
  std::optional<Bytes> _iconData;
  std::optional<std::string> _lastUpdatedBy;
  std::optional<std::string> _profileName;
  std::optional<Bytes> _attributesData;
  QNAESKeyRef _overviewAESKey;
  mutable std::recursive_mutex _tagsLock;  // guards both tag maps
  std::map<std::uint64_t, std::string> _tagsById;
  std::map<std::string, std::uint64_t, std::less<>> _idsByTag;
  mutable std::recursive_mutex _categoriesLock;
  std::map<std::string, std::shared_ptr<QNGenericCategory>, std::less<>> _categoriesByUUID;
  std::unique_ptr<QNEncryptedString> _secureProfilePassword;
  std::atomic<std::uint64_t> _itemKeysUnwrapped{0};  // items open on several threads
};

}  // namespace quillon
