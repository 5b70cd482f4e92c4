#include <algorithm>

#include "quillon/items/internal/QNItemState.h"
#include "quillon/items/internal/QNItemVault.h"
#include "quillon/platform/log/MRLogger.h"

// Local vault: the item has a key of its own, wrapped by the vault; details are sealed under it.
// Account vault: no key of its own; details are the JSON text of an envelope of the vault's key.

namespace quillon {

// Two threads may ask at once, and a shared pointer is not theirs to write unguarded.
QNAESKeyRef QNItem::key() {
  const std::lock_guard lock(monitor());
  const OpenState& open = openState();
  if (profileType() != kProfileTypeLocalVault) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(), "Unimplemented");
    return open.key;
  }
  unwrapKeyIfNeeded();
  if (open.key == nullptr) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   "Item key for item UUID {} is nil after decryption.",
                                   uuidForLogging(_uuid));
  }
  return open.key;
}

void QNItem::setKey(QNAESKeyRef key) {
  const std::lock_guard lock(monitor());
  openState().key = std::move(key);
}

// A failure is not kept: the next call tries again.
void QNItem::unwrapKeyIfNeeded() {
  OpenState& open = openState();
  if (open.key != nullptr) return;
  if (const auto vault = localVaultOf(*this)) {
    open.key = vault->decryptItemKey(open.encryptedKeyBuffer);
  }
}

ByteView QNItem::encryptedKey() const {
  return openState().encryptedKeyBuffer;
}

void QNItem::setEncryptedKey(ByteView wrapped) {
  const std::lock_guard lock(monitor());
  auto& buffer = openState().encryptedKeyBuffer;
  if (wrapped.size() != buffer.size()) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Invalid item key size: {}", wrapped.size());
    return;
  }
  std::copy(wrapped.begin(), wrapped.end(), buffer.begin());
}

// The order is a constraint: the base runs willSerialize(), which writes into the details, and
// the backup key enters them, before they are encrypted.
void QNItem::willSave() {
  const std::lock_guard lock(monitor());
  const auto vault = profile();
  if (vault == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Item profile is not available");
    return;
  }
  if (!vault->supportsFeature(kFeatureServerIcons)) {
    removeH9CustomIconData();
    removeH9PendingCustomIconData();
  }
  if (!vault->supportsFeature(kFeatureLocalIcons)) removeQN4CustomIconData();
  QNDatabaseObjectWithOverview::willSave();
  if (profileType() == kProfileTypeLocalVault) wrapKey();
  if (!detailsLoaded()) return;
  updateBackupKeys();
  encryptDetails();
}

// Wrapped afresh at each save. A locked vault gives nothing, and the old wrap stays.
void QNItem::wrapKey() {
  const QNAESKeyRef& present = openState().key;
  if (present == nullptr) return unwrapKeyIfNeeded();
  const auto vault = localVaultOf(*this);
  const auto wrapped = vault == nullptr ? std::nullopt : vault->encryptItemKey(present);
  setEncryptedKey(wrapped ? ByteView(*wrapped) : ByteView());
}

void QNItem::encryptDetails() {
  const JsonObject* const live = details();
  QNError error = QNError::unreadable("no details");
  const auto clear = live == nullptr ? std::nullopt : mr_JSONDataWithError(*live, &error);
  if (!clear) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   "Failed to saveItem: Failed to serialize details: {}",
                                   error.domainCodeString());
    return;
  }
  // Nothing takes the place of stored details but new ones.
  if (auto sealed = encryptedDetails(*clear)) openState().detailsData = std::move(sealed);
}

std::optional<Bytes> QNItem::encryptedDetails(ByteView clear) {
  if (profileType() == kProfileTypeLocalVault) {
    const QNAESKeyRef sealing = key();
    return sealing == nullptr ? std::nullopt : sealing->encrypt(clear);
  }
  if (profileType() != kProfileTypeAccountVault) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Unsupported profile type: {}", profileType());
    return std::nullopt;
  }
  QNError error = QNError::unreadable("the profile is no account vault");
  const auto vault = accountVaultOf(*this);
  const auto envelope =
      vault == nullptr ? std::nullopt : vault->encryptWithMasterSymmetricKey(clear, &error);
  if (auto text = envelope ? mr_JSONDataWithError(*envelope, &error) : std::nullopt) return text;
  MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                 "Failed to encrypt details: {}", error.domainCodeString());
  return std::nullopt;
}

void QNItem::copyOidFrom(const std::shared_ptr<QNDatabaseObject>& other) {
  if (other == nullptr || oid() == other->oid()) return;
  _setOid(other->oid());
  markRowDirty();
  const auto item = std::dynamic_pointer_cast<QNItem>(other);
  if (item == nullptr || item->isTombstone()) return;
  if (profileType() != kProfileTypeLocalVault && item->profileType() != kProfileTypeLocalVault) {
    return;
  }
  auto theirs = item->key();
  if (theirs == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Unexpected encryption key for item <{}>.",
                                       uuidForLogging(item->uuid()));
    return;
  }
  // Details that are still sealed open under the present key alone: without them it must stay.
  const bool isSealed = profileType() == kProfileTypeLocalVault && detailsLoaded() && detailsData();
  if (isSealed && mutableDetails() == nullptr) return;
  setKey(std::move(theirs));
}

}  // namespace quillon
