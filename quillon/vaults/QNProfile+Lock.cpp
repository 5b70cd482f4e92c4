// Keys come into a vault's memory and leave it here, and nowhere else.

#include "quillon/items/QNItem.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {
namespace {

// What a demonstration vault's key is derived with: it opens at once, and protects nothing.
constexpr std::uint32_t kDemoIterations = 100;

// Empty bytes would make a key that everybody knows: they count as absent.
std::optional<QNKeyBytes> keyBytes(std::optional<ByteView> key) {
  if (!key || key->empty()) return std::nullopt;
  return QNKeyBytes(key->begin(), key->end());
}

QNAESKeyRef keyObject(const std::optional<QNKeyBytes>& key) {
  return key ? QNAESKey::initWithKeyData(*key) : nullptr;
}

// What decrypt() gives goes into locked memory, and is released here. The two keys differ in size:
// one that stands in the other's column isn't taken for it.
std::optional<QNKeyBytes> opened(const QNAESKey& key, const std::optional<Bytes>& sealed,
                                 std::int32_t size) {
  if (!sealed) return std::nullopt;
  auto bytes = keyBytes(key.decrypt(*sealed));
  if (!bytes || bytes->size() != static_cast<std::size_t>(size)) return std::nullopt;
  return bytes;
}

struct OpenedKeys {
  QNKeyBytes master;
  QNKeyBytes overview;
};

// Both keys, or nothing: only their decryption tells a right password from a wrong one.
std::optional<OpenedKeys> openedKeys(const QNProfile& vault, const QNAESKey& key) {
  auto master = opened(key, vault.encryptedMasterKey(), MASTER_KEY_SIZE);
  if (!master) return std::nullopt;
  auto overview = opened(key, vault.encryptedOverviewKey(), OVERVIEW_KEY_SIZE);
  if (!overview) return std::nullopt;
  return OpenedKeys{std::move(*master), std::move(*overview)};
}

}  // namespace

void QNProfile::setOverviewKey(std::optional<ByteView> key) {
  _overviewKey = keyBytes(key);
  _overviewAESKey = keyObject(_overviewKey);
}

void QNProfile::setMasterKey(std::optional<ByteView> key) {
  _masterKey = keyBytes(key);
  _masterAESKey = keyObject(_masterKey);
}

std::optional<QNSecret> QNProfile::profilePassword() const {
  if (_secureProfilePassword == nullptr) return std::nullopt;
  return _secureProfilePassword->stringValue();
}

void QNProfile::setProfilePassword(std::optional<std::string_view> password) {
  const bool present = password && !password->empty();
  _secureProfilePassword =
      present ? QNEncryptedString::encryptedStringWithString(*password) : nullptr;
}

bool QNProfile::isLocked() const {
  return _secureProfilePassword == nullptr && !_overviewKey && !_masterKey;
}

void QNProfile::lock() {
  const auto self = shared_from_this();  // an observer may drop the last reference
  postNotificationName(QNProfileWillLockNotification);
  setProfilePassword(std::nullopt);
  setOverviewKey(std::nullopt);
  setMasterKey(std::nullopt);
  QNItem::clearCaches();
  postNotificationName(QNProfileDidLockNotification);
}

bool QNProfile::_unlockWithPassword(std::optional<std::string_view> password) {
  const auto self = shared_from_this();  // an observer may drop the last reference
  MRLogger& logger = MRLogger::sharedLogger();
  const double start = steadySeconds();
  logger.enter(DEBUG_DATABASE, descriptionForLogging(), "");
  const bool unlocked = password && openKeys(*password, "No key can be made of the password");
  logger.exit(DEBUG_DATABASE, descriptionForLogging(), steadySeconds() - start, "");
  return unlocked;
}

// Both keys are in hand before anything changes or anybody is told.
bool QNProfile::openKeys(std::string_view password, const MRLogText& withoutKey) {
  auto key = QNAESKey::initWithPassword(password, _salt.value_or(Bytes()), _iterations);
  if (key == nullptr) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(), withoutKey);
    return false;
  }
  auto keys = openedKeys(*this, *key);
  if (!keys) return false;
  key.reset();
  postNotificationName(QNProfileWillUnlockNotification);
  setOverviewKey(keys->overview);
  setMasterKey(keys->master);
  keys.reset();  // an observer may take its time
  setProfilePassword(password);
  postNotificationName(QNProfileDidUnlockNotification);
  return true;
}

bool QNProfile::changePasswordTo(std::optional<std::string_view> password) {
  MRLogger& logger = MRLogger::sharedLogger();
  if (!password) {
    logger.assertion(DEBUG_DATABASE, descriptionForLogging(), "Password cannot be nil");
    return false;
  }
  if (!_overviewKey) {
    logger.assertion(DEBUG_DATABASE, descriptionForLogging(),
                     "Cannot change password, overviewKey is not available");
    return false;
  }
  if (!_masterKey) {
    logger.assertion(DEBUG_DATABASE, descriptionForLogging(),
                     "Cannot change password, masterKey is not available");
    return false;
  }
  if (sealKeys(*password)) return true;
  logger.error(DEBUG_DATABASE, descriptionForLogging(),
               "Failed to encrypt the vault's keys under the new password");
  return false;
}

bool QNProfile::sealKeys(std::string_view password) {
  Bytes salt = mr_randomData(QNAESKey::kSaltSize);
  const std::uint32_t iterations =
      password == DEMO_PASSWORD ? kDemoIterations : QNAESKey::calibrateForPassword(password, salt);
  const auto key = QNAESKey::initWithPassword(password, salt, iterations);
  if (key == nullptr) return false;
  auto overviewKey = key->encrypt(*_overviewKey);
  auto masterKey = key->encrypt(*_masterKey);
  if (!overviewKey || !masterKey) return false;
  markRowDirty();
  _salt = std::move(salt);
  _iterations = iterations;
  _encryptedOverviewKey = std::move(overviewKey);
  _encryptedMasterKey = std::move(masterKey);
  _lastUpdatedBy = localHostName();
  _updatedAt = secondsNow();
  setProfilePassword(password);
  return true;
}

}  // namespace quillon
