#include "quillon/items/internal/QNItemState.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {

std::shared_ptr<QNLogin> QNItem::convertToLogin() {
  if (mutableOverview() == nullptr || details() == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Item {} doesn't open and can't be made a login",
                                       description());
    return nullptr;
  }
  auto login = std::make_shared<QNLogin>(initNew);
  login->copyOidFrom(shared_from_this());
  login->setProfile(profile());
  login->updateUuid(_uuid, profileType());
  copyColumnsToLogin(*login);
  copyOverviewToLogin(*login);
  moveDetailsToLogin(*login);
  if (!hasOid() && _numberOfAttachments > 0) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Unexpected attachments in unsaved object. Skipping.");
  }
  return login;
}

void QNItem::copyColumnsToLogin(QNLogin& login) const {
  login.setCreatedAt(_createdAt);
  login.setTxTimestamp(_txTimestamp);
  login.setUpdatedAt(_updatedAt);
  login.setLastUsedTimestamp(_lastUsedTimestamp);
  login.setNumberOfTimesUsed(_numberOfTimesUsed);
  if (hasOid()) login.setNumberOfAttachments(_numberOfAttachments);  // they stay with the row
  login.setScope(scope());
  login.setFolderId(_folderId);
  login.setFolderUUID(folderUUID());
  if (_rare != nullptr && profileType() == kProfileTypeAccountVault) {
    login.rareColumns().h9ItemProperties = _rare->h9ItemProperties;
  }
}

void QNItem::copyOverviewToLogin(QNLogin& login) {
  const auto overview = overviewCopy();
  if (!overview) return;
  for (const std::string_view key : {kOverviewTitle, kCustomIcon, kTags}) {
    const Json* const value = overview->if_contains(key);
    if (value != nullptr) login.setOverviewObject(mr_deepMutableCopy(*value), key);
  }
}

// What this item would have retired at its next save, the login retires at its own. The former keys
// go along: attachments stay with the row, and may be sealed under each of them.
void QNItem::moveDetailsToLogin(QNLogin& login) {
  const auto notes = notesSecret();
  login.setNotesPlain(notes ? std::optional(notes->reveal()) : std::nullopt);
  for (const auto& url : URLs()) login.addURL(url);
  login.openState().deletedURLs = deletedURLs();
  for (const auto& section : fieldSections()) login.addFieldSection(section);
  const auto secret = password();
  login.updatePassword(secret ? std::optional(secret->reveal()) : std::nullopt,
                       passwordGeneratedByRandomNumberGenerator(),
                       passwordBitsEntropy().value_or(0));
  login.setUsername(username());
  for (auto& entry : previouslyUsedPasswords()) login.addPreviouslyUsedPassword(entry.clone());
  login.clearBackupKeys();  // the key that it was made with has sealed nothing
  login.addBackupKeysBase64Encoded(backupKeysBase64Encoded());
  const auto& original = openState().originalPassword;
  if (original) login.openState().originalPassword = original->clone();
}

}  // namespace quillon
