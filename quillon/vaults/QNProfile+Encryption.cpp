#include "quillon/platform/data/MRData.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {
namespace {

constexpr std::string_view kMustBeUnlocked = "profile must be unlocked";

// Under the master key too: the words have gone into logs that people search.
constexpr std::string_view kEncryptionKeyMissing =
    "Encryption failed: overviewAESKey is not available";
constexpr std::string_view kDecryptionKeyMissing =
    "Decryption failed: overviewAESKey is not available";

}  // namespace

bool QNProfile::refusesWhileLocked(const MRLogText& text) const {
  if (!isLocked()) return false;
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(), text);
  return true;
}

QNAESKeyRef QNProfile::masterAESKey() {
  if (_masterAESKey == nullptr && _masterKey) {
    _masterAESKey = QNAESKey::initWithKeyData(*_masterKey);
  }
  return _masterAESKey;
}

std::optional<Bytes> QNProfile::encryptItemKey(const QNAESKeyRef& key) {
  if (refusesWhileLocked(kMustBeUnlocked)) return std::nullopt;
  const QNAESKeyRef master = masterAESKey();
  if (master == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Item key encryption failed, master key not available");
    return std::nullopt;
  }
  return key != nullptr ? master->encryptKey(*key) : std::nullopt;
}

QNAESKeyRef QNProfile::decryptItemKey(ByteView wrapped) {
  if (refusesWhileLocked(kMustBeUnlocked)) return nullptr;
  const QNAESKeyRef master = masterAESKey();
  if (master == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Item key decryption failed, master key not available");
    return nullptr;
  }
  auto key = master->decryptKey(wrapped);
  if (key != nullptr) _itemKeysUnwrapped.fetch_add(1, std::memory_order_relaxed);
  return key;
}

std::optional<Bytes> QNProfile::encryptUnder(const QNAESKeyRef& key, ByteView clear,
                                             const MRLogText& withoutKey) const {
  if (key != nullptr) return key->encrypt(clear);
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(), withoutKey);
  return std::nullopt;
}

std::optional<Bytes> QNProfile::decryptUnder(const QNAESKeyRef& key, ByteView sealed,
                                             const MRLogText& withoutKey) const {
  if (key != nullptr) return key->decrypt(sealed);
  MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(), withoutKey);
  return std::nullopt;
}

std::optional<Bytes> QNProfile::encryptOverview(ByteView clear) {
  if (refusesWhileLocked(kMustBeUnlocked)) return std::nullopt;
  return encryptUnder(_overviewAESKey, clear, kEncryptionKeyMissing);
}
std::optional<Bytes> QNProfile::decryptOverview(ByteView sealed) {
  if (refusesWhileLocked(kMustBeUnlocked)) return std::nullopt;
  return decryptUnder(_overviewAESKey, sealed, kDecryptionKeyMissing);
}
std::optional<Bytes> QNProfile::encryptWithMaster(ByteView clear) {
  if (refusesWhileLocked(kMustBeUnlocked)) return std::nullopt;
  return encryptUnder(_masterAESKey, clear, kEncryptionKeyMissing);
}
std::optional<Bytes> QNProfile::decryptWithMaster(ByteView sealed) {
  if (refusesWhileLocked(kMustBeUnlocked)) return std::nullopt;
  return decryptUnder(_masterAESKey, sealed, kDecryptionKeyMissing);
}

std::optional<std::array<std::uint8_t, 32>> QNProfile::hmacForData(
    std::optional<ByteView> data) const {
  if (refusesWhileLocked(kMustBeUnlocked) || !data || _overviewAESKey == nullptr) {
    return std::nullopt;
  }
  return _overviewAESKey->hmac(*data);
}

std::optional<std::string> QNProfile::hmacForString(std::optional<std::string_view> text) const {
  const auto hmac = hmacForData(text ? std::optional(bytesOf(*text)) : std::nullopt);
  if (!hmac) return std::nullopt;
  return mr_SHA256hex(*hmac);
}

}  // namespace quillon
