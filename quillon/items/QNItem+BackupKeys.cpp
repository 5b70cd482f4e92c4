#include "quillon/items/QNItem.h"
#include "quillon/platform/data/MRData.h"

// Every key that an item of a local vault ever had, base64, in details "backupKeys": attachments
// may be sealed under an old one. The list lies under the present key itself.

namespace quillon {

/// Empty for no key, and for one that has no raw bytes.
QNSecretSet QNItem::backupKeyOf(const QNAESKeyRef& key) {
  QNSecretSet keys;
  if (key == nullptr || key->rawKey() == nullptr) return keys;
  std::string text = mr_base64encode(key->rawKeyData());
  keys.emplace(text);
  wipe(text.data(), text.size());
  return keys;
}

QNSecretSet QNItem::backupKeysBase64Encoded() {
  QNSecretSet keys;
  if (profileType() != kProfileTypeLocalVault || _test_only_isBackupKeysCompletelyDisabled) {
    return keys;
  }
  const std::lock_guard lock(monitor());
  const Json* const stored = detailsObjectForKey(kDetailsBackupKeys);
  if (stored == nullptr || !stored->is_array()) return keys;
  for (const Json& key : stored->get_array()) {
    if (const auto* const text = key.if_string()) keys.emplace(std::string_view(*text));
  }
  return keys;
}

// Without a profile the present set reads as empty: a second call overwrites the first.
void QNItem::addBackupKeysBase64Encoded(QNSecretSet keys) {
  if (keys.empty() || _test_only_isBackupKeysCompletelyDisabled ||
      profileType() == kProfileTypeAccountVault) {
    return;
  }
  const std::lock_guard lock(monitor());
  QNSecretSet all = backupKeysBase64Encoded();
  const std::size_t before = all.size();
  all.merge(keys);
  if (all.size() > before) writeBackupKeys(all);
}

void QNItem::writeBackupKeys(const QNSecretSet& keys) {
  JsonArray list(jsonStorage());
  for (const QNSecret& key : keys) {
    list.emplace_back(boost::json::string_kind);
    list.back().get_string().assign(key.reveal());  // into the wiping resource
  }
  setDetailsObject(list.empty() ? std::nullopt : std::optional<Json>(std::move(list)),
                   kDetailsBackupKeys);
}

std::vector<QNAESKeyRef> QNItem::backupAESKeys() {
  std::vector<QNAESKeyRef> keys;
  for (const QNSecret& text : backupKeysBase64Encoded()) {
    const auto raw = mr_base64decode(text.reveal());
    if (!raw) continue;
    if (auto key = QNAESKey::initWithRawKey(*raw)) keys.push_back(std::move(key));
  }
  return keys;
}

void QNItem::disableBackupKeys() {
  setBackupKeysDisabled(true);
  if (profileType() != kProfileTypeLocalVault) return;
  const std::lock_guard lock(monitor());
  QNSecretSet keys = backupKeysBase64Encoded();
  std::size_t removed = 0;
  for (const QNSecret& present : backupKeyOf(key())) removed += keys.erase(present);
  const bool nothingLeft = keys.empty() && !_test_only_isBackupKeysCompletelyDisabled;
  if (removed > 0 || nothingLeft) writeBackupKeys(keys);
}

// At a save: a local vault's item has its present key in the list, an account vault's has none.
void QNItem::updateBackupKeys() {
  if (profileType() == kProfileTypeAccountVault) return clearBackupKeys();
  if (profileType() == kProfileTypeLocalVault && !_backupKeysDisabled) {
    addBackupKeysBase64Encoded(backupKeyOf(key()));
  }
}

// Only one key stays an item's own after a merge; both must still open attachments.
void QNItem::mergeBackupKeysWithConflict(QNItem& other) {
  if (profileType() != kProfileTypeLocalVault || other.profileType() != kProfileTypeLocalVault) {
    return;
  }
  QNSecretSet keys = other.backupKeysBase64Encoded();
  for (QNItem* const item : {this, &other}) {
    if (!item->isBackupKeysDisabled()) keys.merge(backupKeyOf(item->key()));
  }
  addBackupKeysBase64Encoded(std::move(keys));
}

}  // namespace quillon
