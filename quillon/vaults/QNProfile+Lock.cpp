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

std::optional<QNKeyBytes> keyBytes(std::optional<ByteView> key) {
  if (!key) return std::nullopt;
  return QNKeyBytes(key->begin(), key->end());
}

QNAESKeyRef keyObject(const std::optional<QNKeyBytes>& key) {
  return key ? QNAESKey::initWithKeyData(*key) : nullptr;
}

std::optional<Bytes> opened(const QNAESKey& key, const std::optional<Bytes>& sealed) {
  return sealed ? key.decrypt(*sealed) : std::nullopt;
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
  postNotificationName(QNProfileWillLockNotification);
  setProfilePassword(std::nullopt);
  setOverviewKey(std::nullopt);
  setMasterKey(std::nullopt);
  QNItem::clearCaches();
  postNotificationName(QNProfileDidLockNotification);
}

bool QNProfile::_unlockWithPassword(std::optional<std::string_view> password) {
  if (!password) return false;
  MRLogger& logger = MRLogger::sharedLogger();
  const double start = steadySeconds();
  logger.enter(DEBUG_DATABASE, descriptionForLogging(), "");
  const bool unlocked = openKeys(*password);
  logger.exit(DEBUG_DATABASE, descriptionForLogging(), steadySeconds() - start, "");
  return unlocked;
}

// Both keys are in hand before anything changes or anybody is told: only their decryption tells a
// right password from a wrong one.
bool QNProfile::openKeys(std::string_view password) {
  const auto key = QNAESKey::initWithPassword(password, salt().value_or(Bytes()), iterations());
  if (key == nullptr) return false;
  const auto masterKey = opened(*key, encryptedMasterKey());
  if (!masterKey) return false;
  const auto overviewKey = opened(*key, encryptedOverviewKey());
  if (!overviewKey) return false;
  postNotificationName(QNProfileWillUnlockNotification);
  setOverviewKey(*overviewKey);
  setMasterKey(*masterKey);
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
  return sealKeys(*password);
}

bool QNProfile::sealKeys(std::string_view password) {
  Bytes salt = mr_randomData(QNAESKey::kSaltSize);
  const std::uint32_t iterations =
      password == DEMO_PASSWORD ? kDemoIterations : QNAESKey::calibrateForPassword(password, salt);
  const auto key = QNAESKey::initWithPassword(password, salt, iterations);
  if (key == nullptr) return false;  // too little memory
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
