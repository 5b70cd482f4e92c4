#include "quillon/items/QNTombstone.h"
#include "quillon/items/internal/QNItemState.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {

std::shared_ptr<QNTombstone> QNItem::makeTombstone() {
  if (!loaded()) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Item must be loaded before it is made a tombstone.");
  }
  if (profileType() != kProfileTypeLocalVault) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Tombstones are an QN4 concept only.");
  }
  auto tombstone = std::make_shared<QNTombstone>(QNExisting{oid()});
  tombstone->setProfile(profile());
  tombstone->updateUuid(_uuid, kProfileTypeLocalVault);
  tombstone->setCreatedAt(_createdAt);
  tombstone->setUpdatedAt(_updatedAt);
  tombstone->setTxTimestamp(_txTimestamp);  // the revision of the row that it takes the place of
  tombstone->setEncryptedKey(encryptedKey());
  tombstone->markDetailsLoaded();
  tombstone->markAttachmentsLoaded();
  tombstone->buryURLsOf(*this);
  return tombstone;
}

// Removed ones that wait for a save too: it is the tombstone that will be saved.
void QNItem::buryURLsOf(QNItem& item) {
  auto& buried = openState().deletedURLs;
  for (const auto& urls : {item.URLs(), item.deletedURLs()}) {
    for (const auto& url : urls) {
      if (url->hasOid()) buried.push_back(url);
    }
  }
}

}  // namespace quillon
