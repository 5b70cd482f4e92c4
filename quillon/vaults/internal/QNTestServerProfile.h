#pragma once
// For tests: a vault of a hosted account that needs no account. Its envelope is
// {"sealed": BASE64}, the text sealed under a random key that only this object holds.

#include <atomic>
#include <map>

#include "quillon/platform/crypto/QNAESKey.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/templates/QNGenericCategory.h"
#include "quillon/vaults/QNGenericProfile.h"
#include "quillon/vaults/internal/QNActionTable.h"

namespace quillon {

/// Unlocked from the start, with every permission and the features of an account vault. Made with
/// std::make_shared. It makes no items and no categories: a test makes its own, and registers the
/// categories that it wants found.
class QNTestServerProfile final : public QNServerProfile,
                                  public std::enable_shared_from_this<QNTestServerProfile> {
 public:
  explicit QNTestServerProfile(std::uint64_t oid = 7) : _oid(oid) {}

  // What a test sets
  void setOid(std::uint64_t oid) { _oid = oid; }
  void setUuid(QNSharedString uuid) { _uuid = std::move(uuid); }
  /// To stand for a profile of another kind.
  void setProfileType(std::uint64_t type) { _profileType = type; }
  /// "P": the vault refuses action 10. Any but "P", "T", "U" and "E": it isn't visible.
  void setVaultType(std::string type) { _vaultType = std::move(type); }
  void setLocked(bool locked) { _locked = locked; }
  /// While set, an unlocked vault fails to seal and to open, as with a damaged key.
  void setFails(bool fails) { _fails = fails; }
  void setPermissions(std::uint64_t mask) { _permissions = mask; }
  void setFeatures(std::set<std::uint32_t> features) { _features = std::move(features); }
  /// For every category.
  void setTemplate(std::shared_ptr<QNTemplate> known) { _template = std::move(known); }
  void setAccountUUID(std::optional<std::string> uuid) { _accountUUID = std::move(uuid); }
  void setUserAccount(std::shared_ptr<H9UserAccount> account) { _account = std::move(account); }
  void setAccountName(std::optional<std::string> name) { _accountName = std::move(name); }
  void setSuspended(bool suspended) { _suspended = suspended; }
  /// Successful calls so far, by any way.
  [[nodiscard]] std::uint64_t numberOfSealings() const { return _sealings; }
  [[nodiscard]] std::uint64_t numberOfOpenings() const { return _openings; }

  // Keys
  void lock() override { _locked = true; }
  [[nodiscard]] bool isLocked() const override { return _locked; }
  [[nodiscard]] bool isUnlocked() const override { return !_locked; }
  std::optional<JsonObject> encryptWithMasterSymmetricKey(ByteView clear,
                                                          QNError* error = nullptr) override {
    const auto sealed = usable(error) ? _key->encrypt(clear) : std::nullopt;
    if (!sealed) return std::nullopt;
    ++_sealings;
    JsonObject envelope(jsonStorage());
    setJsonText(envelope, kSealed, mr_base64encode(*sealed));
    return envelope;
  }
  std::optional<Bytes> decryptWithMasterSymmetricKey(const JsonObject& envelope,
                                                     QNError* error = nullptr) override {
    if (!usable(error)) return std::nullopt;
    const auto sealed = mr_base64decode(mr_validStringValueForKey(envelope, kSealed).value_or(""));
    auto clear = sealed ? _key->decrypt(*sealed) : std::nullopt;
    if (!clear) {
      setError(error, QNError::unreadable("the envelope doesn't open"));
      return std::nullopt;
    }
    ++_openings;
    return clear;
  }
  std::optional<Bytes> encryptOverview(ByteView clear) override {
    const auto envelope = encryptWithMasterSymmetricKey(clear);
    return envelope ? mr_JSONDataWithError(*envelope) : std::nullopt;
  }
  std::optional<Bytes> decryptOverview(ByteView sealed) override {
    const auto envelope = mr_objectFromJSONDataWithError(sealed);
    return envelope ? decryptWithMasterSymmetricKey(*envelope) : std::nullopt;
  }
  std::optional<Bytes> encryptWithMaster(ByteView clear) override { return encryptOverview(clear); }
  std::optional<Bytes> decryptWithMaster(ByteView sealed) override {
    return decryptOverview(sealed);
  }

  // Answers
  [[nodiscard]] bool isEqual(const QNGenericProfile& other) const override {
    return this == &other;
  }
  [[nodiscard]] std::size_t hash() const override { return std::hash<std::string>()(*_uuid); }
  [[nodiscard]] std::string description() const override { return "<QNTestServerProfile>"; }
  [[nodiscard]] bool supportsFeature(std::uint32_t feature) const override {
    return _features.count(feature) != 0;
  }
  [[nodiscard]] bool hasPermission(std::uint64_t mask) const override {
    return !_suspended && (_permissions & mask) == mask;
  }
  [[nodiscard]] bool hasPermissionToPerformAction(std::uint32_t action) const override {
    const bool isRefused = _locked || (action == kActionRefusedByTypeP && _vaultType == "P");
    return !isRefused && permitsAction(kAccountVaultActions, action,
                                       [this](std::uint64_t mask) { return hasPermission(mask); });
  }
  [[nodiscard]] std::uint64_t profileType() const override { return _profileType; }
  [[nodiscard]] std::uint64_t oid() const override { return _oid; }
  [[nodiscard]] QNSharedString uuid() const override { return _uuid; }
  [[nodiscard]] bool isPrimaryProfile() const override { return false; }
  [[nodiscard]] bool isDemoProfile() const override { return false; }
  [[nodiscard]] bool isVisible() const override {
    return _vaultType == "P" || _vaultType == "T" || _vaultType == "U" || _vaultType == "E";
  }
  [[nodiscard]] bool includeUnknownItems() const override { return true; }
  [[nodiscard]] bool isAllVaultsVault() const override { return false; }
  [[nodiscard]] std::vector<std::shared_ptr<QNGenericProfile>> vaults() const override {
    return {std::const_pointer_cast<QNTestServerProfile>(shared_from_this())};
  }
  [[nodiscard]] std::set<std::string> vaultUUIDs() const override { return {*_uuid}; }
  [[nodiscard]] std::uint64_t accountId() const override { return 1; }
  [[nodiscard]] std::optional<std::string> accountUUID() const override { return _accountUUID; }
  [[nodiscard]] std::shared_ptr<H9UserAccount> userAccount() const override { return _account; }
  [[nodiscard]] std::optional<std::string> accountName() const override { return _accountName; }
  [[nodiscard]] bool isSuspended() const override { return _suspended; }

  // Names and looks: an account vault has no hint
  [[nodiscard]] std::string displayedProfileName() const override {
    return _profileName.value_or("");
  }
  [[nodiscard]] std::string displayedProfileNameWithVaultAppendedAsNeeded() const override {
    return displayedProfileName();
  }
  [[nodiscard]] std::optional<std::string> profileName() const override { return _profileName; }
  void setProfileName(std::optional<std::string> name) override { _profileName = std::move(name); }
  [[nodiscard]] std::optional<std::string> passwordHint() const override { return std::nullopt; }
  void setPasswordHint(std::optional<std::string> /*hint*/) override {}
  [[nodiscard]] std::shared_ptr<const QNImage> customIcon() const override { return _customIcon; }
  void setCustomIcon(const std::shared_ptr<const QNImage>& icon) override { _customIcon = icon; }
  [[nodiscard]] std::optional<Bytes> iconData() const override { return _iconData; }
  void setIconData(std::optional<Bytes> data) override { _iconData = std::move(data); }
  [[nodiscard]] std::optional<QNColor> profileColor() const override { return _profileColor; }
  void setProfileColor(std::optional<QNColor> color) override { _profileColor = color; }
  [[nodiscard]] std::optional<std::string> profileColorText() const override { return _colorText; }
  void setProfileColorText(std::optional<std::string> text) override {
    _colorText = std::move(text);
  }
  [[nodiscard]] std::optional<std::string> lastUpdatedBy() const override { return _lastUpdatedBy; }
  void setLastUpdatedBy(std::optional<std::string> host) override {
    _lastUpdatedBy = std::move(host);
  }

  // Registries
  [[nodiscard]] std::optional<std::string> tagWithId(std::uint64_t id) const override {
    const auto found = _tagsById.find(id);
    return found == _tagsById.end() ? std::nullopt : std::optional(found->second);
  }
  [[nodiscard]] std::uint64_t tagId(std::optional<std::string_view> tag) const override {
    for (const auto& [id, known] : _tagsById) {
      if (tag == known) return id;
    }
    return 0;
  }
  void addTag(std::string_view tag, std::uint64_t withId) override { _tagsById[withId] = tag; }
  void removeTag(std::optional<std::string_view> tag) override { _tagsById.erase(tagId(tag)); }
  [[nodiscard]] std::set<std::string> allTags() const override {
    std::set<std::string> tags;
    for (const auto& entry : _tagsById) tags.insert(entry.second);
    return tags;
  }
  [[nodiscard]] bool tagsLoaded() const override { return _tagsLoaded; }
  void setTagsLoaded(bool loaded) override { _tagsLoaded = loaded; }
  [[nodiscard]] std::vector<std::shared_ptr<QNGenericCategory>> allCategories() const override {
    std::vector<std::shared_ptr<QNGenericCategory>> categories;
    for (const auto& entry : _categories) categories.push_back(entry.second);
    return categories;
  }
  [[nodiscard]] std::vector<std::shared_ptr<QNGenericCategory>> allDisplayedCategories()
      const override {
    return allCategories();
  }
  [[nodiscard]] std::shared_ptr<QNGenericCategory> categoryWithUUID(
      std::optional<std::string_view> uuid) const override {
    const auto found = _categories.find(uuid.value_or(""));
    return found == _categories.end() ? nullptr : found->second;
  }
  void addCategory(const std::shared_ptr<QNGenericCategory>& category) override {
    _categories.insert_or_assign(category->uuid().value_or(""), category);
  }
  void removeAllCategories() override { _categories.clear(); }
  [[nodiscard]] bool supportsCategoryUUID(std::optional<std::string_view> uuid) const override {
    return uuid != QNCategoryUUIDTombstone;
  }
  std::shared_ptr<QNGenericCategory> newLegacyCategoryWithUUID(
      std::optional<std::string_view> /*uuid*/) override {
    return nullptr;
  }
  std::shared_ptr<QNGenericCategory> newCategoryFromTemplate(
      const std::shared_ptr<QNTemplate>& /*from*/) override {
    return nullptr;
  }
  std::shared_ptr<QNGenericCategory> newSystemCategoryWithUUID(
      std::optional<std::string_view> /*uuid*/) override {
    return nullptr;
  }
  std::shared_ptr<QNItem> newItemForCategoryUUID(
      std::optional<std::string_view> /*uuid*/) override {
    return nullptr;
  }
  std::shared_ptr<QNItem> existingItemWithID(
      std::uint64_t /*oid*/, std::optional<std::string_view> /*forCategoryUUID*/) override {
    return nullptr;
  }
  [[nodiscard]] std::shared_ptr<QNTemplate> templateForCategoryUUID(
      std::optional<std::string_view> /*uuid*/) const override {
    return _template;
  }
  [[nodiscard]] std::vector<std::shared_ptr<QNTemplate>> allTemplates() const override {
    return {};
  }

 private:
  static constexpr std::string_view kSealed = "sealed";
  bool usable(QNError* error) const {
    if (!_locked && !_fails) return true;
    setError(error, QNError::unreadable(_locked ? "the vault is locked" : "the key is damaged"));
    return false;
  }

  QNAESKeyRef _key = QNAESKey::initWithRandomKey();
  std::shared_ptr<QNTemplate> _template;
  std::optional<std::string> _accountUUID = "ACCOUNT";
  std::shared_ptr<H9UserAccount> _account;
  std::optional<std::string> _accountName;
  std::uint64_t _oid;
  std::uint64_t _profileType = kProfileTypeAccountVault;
  std::string _vaultType = "U";
  QNSharedString _uuid = sharedString(mr_shortUUID());
  bool _locked = false, _fails = false, _suspended = false, _tagsLoaded = false;
  std::uint64_t _permissions = ~std::uint64_t{0};
  std::set<std::uint32_t> _features = {6, kFeatureDocuments, kFeatureServerIcons};
  std::atomic<std::uint64_t> _sealings{0}, _openings{0};
  std::optional<std::string> _profileName, _colorText, _lastUpdatedBy;
  std::shared_ptr<const QNImage> _customIcon;
  std::optional<Bytes> _iconData;
  std::optional<QNColor> _profileColor;
  std::map<std::uint64_t, std::string> _tagsById;
  std::map<std::string, std::shared_ptr<QNGenericCategory>, std::less<>> _categories;
};

}  // namespace quillon
