#include "quillon/vaults/QNProfile.h"

#include <algorithm>

#include "quillon/platform/data/MRData.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/notifications/MRNotificationCenter.h"
#include "quillon/platform/text/QNFormat.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/vaults/internal/QNActionTable.h"

namespace quillon {
namespace {

constexpr std::string_view kPrimaryKeychainFileName = "Quillon";

// Of the features that applications ask about, 6 and those of a hosted account are missing here.
constexpr std::uint32_t kSupportedFeatures[] = {1, 2, 3, 4, 5, kFeatureLocalIcons};

}  // namespace

std::string QNDisplayedProfileNameWithVaultAppendedAsNeeded(std::string_view name) {
  const std::string vault = QNLocalizedString("vault");
  if (containsIgnoringCaseAndWidth(name, " " + vault) ||
      containsIgnoringCaseAndWidth(name, vault + " ")) {
    return std::string(name);
  }
  return localizedFormat("%@ Vault", name);
}

QNProfile::QNProfile(Passkey /*key*/, QNNew) : QNDatabaseObjectWithOverview(initNew) {}
QNProfile::QNProfile(Passkey /*key*/, QNExisting existing)
    : QNDatabaseObjectWithOverview(existing) {}

std::shared_ptr<QNProfile> QNProfile::initNewWithPassword(
    std::optional<std::string_view> password) {
  const auto vault = std::make_shared<QNProfile>(Passkey(), initNew);
  vault->_createdAt = secondsNow();
  vault->_uuid = sharedString(mr_uuid());
  QNKeyBytes overviewKey(OVERVIEW_KEY_SIZE);
  fillRandomKey(overviewKey);
  vault->setOverviewKey(overviewKey);
  QNKeyBytes masterKey(MASTER_KEY_SIZE);
  fillRandomKey(masterKey);
  vault->setMasterKey(masterKey);
  vault->changePasswordTo(password);
  return vault;
}

std::shared_ptr<QNProfile> QNProfile::profileWithName(std::string_view name,
                                                      std::optional<std::string_view> password,
                                                      std::optional<std::string> hint) {
  const auto vault = initNewWithPassword(password);
  vault->setProfileName(std::string(name));
  vault->setPasswordHint(std::move(hint));
  return vault;
}

std::shared_ptr<QNProfile> QNProfile::initExistingWithID(std::uint64_t oid) {
  return std::make_shared<QNProfile>(Passkey(), QNExisting{oid});
}

std::string QNProfile::displayedProfileNameForName(std::string_view name) {
  if (name == primaryProfileName()) return QNLocalizedString("Primary");
  if (name == demoProfileName()) return QNLocalizedString("Demo");
  return std::string(name);
}

std::shared_ptr<QNGenericProfile> QNProfile::profile() const {
  return std::const_pointer_cast<QNProfile>(weak_from_this().lock());
}

void QNProfile::setProfile(const std::shared_ptr<QNGenericProfile>& profile) {
  if (profile.get() == this) return;
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                     "A vault is its own profile");
}

void QNProfile::setUuid(QNSharedString uuid) {
  if (_uuid != nullptr && !equalContent(_uuid, uuid)) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "A vault's uuid can't be replaced");
    return;
  }
  _uuid = std::move(uuid);
}

bool QNProfile::isEqual(const QNGenericProfile& other) const {
  const auto* const vault = dynamic_cast<const QNProfile*>(&other);
  return vault != nullptr && _uuid != nullptr && equalContent(_uuid, vault->_uuid);
}

std::size_t QNProfile::hash() const {
  return _uuid == nullptr ? 0 : std::hash<std::string>()(*_uuid);
}

std::string QNProfile::description() const {
  return formatted("<{}-{}-{} '{}' {}>", className(), _uuid != nullptr ? *_uuid : "(null)",
                   static_cast<std::int64_t>(oid()), _profileName.value_or("(null)"),
                   static_cast<const void*>(this));
}

bool QNProfile::supportsFeature(std::uint32_t feature) const {
  return std::find(std::begin(kSupportedFeatures), std::end(kSupportedFeatures), feature) !=
         std::end(kSupportedFeatures);
}

bool QNProfile::hasPermission(std::uint64_t mask) const {
  return (mask & (1 | kPermissionManageVault)) == 0;
}

bool QNProfile::hasPermissionToPerformAction(std::uint32_t action) const {
  return !isLocked() && permitsAction(kLocalVaultActions, action,
                                      [this](std::uint64_t mask) { return hasPermission(mask); });
}

bool QNProfile::isPrimaryProfile() const {
  return _profileName == primaryProfileName();
}
bool QNProfile::isDemoProfile() const {
  return _profileName == demoProfileName();
}

std::vector<std::shared_ptr<QNGenericProfile>> QNProfile::vaults() const {
  return {profile()};
}

std::set<std::string> QNProfile::vaultUUIDs() const {
  if (_uuid == nullptr) return {};
  return {*_uuid};
}

std::string QNProfile::displayedProfileName() const {
  return displayedProfileNameForName(_profileName.value_or(""));
}

std::string QNProfile::displayedProfileNameWithVaultAppendedAsNeeded() const {
  return QNDisplayedProfileNameWithVaultAppendedAsNeeded(displayedProfileName());
}

std::string QNProfile::keychainFileName() const {
  return isPrimaryProfile() ? std::string(kPrimaryKeychainFileName) : _profileName.value_or("");
}

void QNProfile::postNotificationName(std::string_view name) {
  if (_openedForImport) return;
  MRNotificationCenter::defaultCenter().postNotificationName(name, this);
}

}  // namespace quillon
