#pragma once
// For tests: a database layer in a few lines. It keeps what a row keeps, and plays the life of an
// item from willSave to didLoad.

#include <memory>
#include <string>
#include <vector>

#include "quillon/items/QNItem.h"
#include "quillon/logins/QNItemURL.h"

namespace quillon {

struct QNTestURLRow {
  std::uint64_t oid = 0;
  std::optional<Bytes> overview;
  std::optional<std::string> nakedHash;
  std::optional<std::string> derivedHash;
  std::uint64_t hashVersion = 0;
  std::uint64_t displayOrder = 0;
};

struct QNTestItemRow {
  std::uint64_t oid = 0;
  std::string uuid;
  std::string categoryUUID;
  std::uint64_t createdAt = 0;
  std::optional<Bytes> overview;
  Bytes key;
  std::optional<Bytes> details;
  std::vector<QNTestURLRow> urls;
};

/// Saves the item and its addresses; objects without a row get one with the next free number.
inline QNTestItemRow saveInTestRow(QNItem& item) {
  static std::uint64_t lastOid = 0;
  item.willSave();
  for (const auto& url : item.URLs()) url->willSave();
  if (!item.hasOid()) item._setOid(++lastOid);
  QNTestItemRow row{item.oid(),
                    *item.uuid(),
                    item.categoryUUID().value_or(""),
                    item.createdAt(),
                    item.overviewData(),
                    toBytes(item.encryptedKey()),
                    item.detailsData(),
                    {}};
  for (const auto& url : item.URLs()) {
    if (!url->hasOid()) url->_setOid(++lastOid);
    row.urls.push_back({url->oid(), url->overviewData(), url->nakedHash(), url->derivedHash(),
                        url->hashVersion(), url->displayOrder()});
    url->didSave();
  }
  item.didSave();
  return row;
}

/// What a list makes of a row: identity and overview.
inline std::shared_ptr<QNItem> shellFromTestRow(const QNTestItemRow& row,
                                                const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = vault->existingItemWithID(row.oid, row.categoryUUID);
  item->setProfile(vault);
  item->setUuid(sharedString(row.uuid));
  item->setCreatedAt(row.createdAt);
  item->setOverviewData(row.overview);
  item->didLoad();
  return item;
}

/// A whole item, its details still sealed.
inline std::shared_ptr<QNItem> itemFromTestRow(const QNTestItemRow& row,
                                               const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = shellFromTestRow(row, vault);
  item->markLoadingDetails();
  item->setEncryptedKey(row.key);
  item->setDetailsData(row.details);
  for (const QNTestURLRow& stored : row.urls) {
    auto url = std::make_shared<QNItemURL>(QNExisting{stored.oid});
    url->setProfile(vault);
    url->setOverviewData(stored.overview);
    url->setNakedHash(stored.nakedHash);
    url->setDerivedHash(stored.derivedHash);
    url->setHashVersion(stored.hashVersion);
    url->setDisplayOrder(stored.displayOrder);
    url->didLoad();
    item->addURL(url);
  }
  item->markDetailsLoaded();
  item->markAttachmentsLoaded();
  item->didLoad();
  return item;
}

}  // namespace quillon
