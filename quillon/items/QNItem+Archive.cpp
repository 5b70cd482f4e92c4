#include <algorithm>

#include "quillon/files/H9Document.h"
#include "quillon/items/QNTombstone.h"
#include "quillon/items/internal/QNItemState.h"
#include "quillon/kinds/QNCreditCard.h"
#include "quillon/kinds/QNCryptoWallet.h"
#include "quillon/kinds/QNIdentity.h"
#include "quillon/kinds/QNMedicalRecord.h"
#include "quillon/kinds/QNSecureNote.h"
#include "quillon/kinds/QNTemplateItem.h"
#include "quillon/kinds/QNUnknownItem.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"

// An item in a keyed archive, behind the keys of its base classes, in this order; whole in
// docs/formats.md. "details" are the sealed bytes here, and never the object.
//
//   key               kind                         left out when
//   "uuid"            text                         absent
//   "key"             bytes, 112, wrapped          not of a local vault
//   "createdAt" "updatedAt" "txTimestamp"          64-bit integers
//   "folderId"        64-bit integer               0
//   "folderUUID" "categoryUUID" "sectionName" "scope"   texts; absent
//   "faveIndex"       64-bit integer               0
//   "nAttachments" "nUsed"   32-bit integers       0
//   "lastUsed"        64-bit integer               0
//   "h9ItemProperties"   H9ItemProperties          absent
//   "details"         bytes, sealed                details aren't loaded, or there are none
//   "URLs" "deletedURLs"   lists of QNItemURL      the same
//
// "attachments" and "deletedAttachments", lists under the condition of loaded attachments, come
// behind these as soon as an attachment has a class.

namespace quillon {
namespace {

void encodeText(QNEncoder& coder, const std::optional<std::string>& text, std::string_view key) {
  if (text) coder.encodeString(*text, key);
}

void encodeNumber(QNEncoder& coder, std::uint64_t number, std::string_view key) {
  if (number != 0) coder.encodeInt64(number, key);
}

void encodeCount(QNEncoder& coder, std::int32_t count, std::string_view key) {
  if (count != 0) coder.encodeInt32(count, key);
}

using ItemURLs = std::vector<std::shared_ptr<QNItemURL>>;

void encodeURLs(QNEncoder& coder, const ItemURLs& urls, std::string_view key) {
  const std::vector<std::shared_ptr<QNCoding>> objects(urls.begin(), urls.end());
  coder.encodeObjects(objects, key);
}

ItemURLs decodedURLs(QNDecoder& coder, std::string_view key) {
  ItemURLs urls;
  for (const auto& object : coder.decodeObjects(key)) {
    if (auto url = std::dynamic_pointer_cast<QNItemURL>(object)) urls.push_back(std::move(url));
  }
  return urls;
}

// Compared as a signed number: one of 2^63 or more stays as it is.
std::uint64_t decodedFaveIndex(QNDecoder& coder) {
  const std::uint64_t index = coder.decodeInt64("faveIndex").value_or(0);
  const bool isBeyond =
      static_cast<std::int64_t>(index) > static_cast<std::int64_t>(kNewItemFaveIndex);
  return isBeyond ? kNewItemFaveIndex : index;
}

template <class Object>
std::shared_ptr<QNCoding> plainlyDecoded(QNDecoder& coder) {
  return std::make_shared<Object>(coder);
}

}  // namespace

std::span<const QNDecodableClass> QNItem::decodableClasses() {
  static constexpr QNDecodableClass classes[] = {
      {"QNItem", decodedAs<QNItem>},
      {"QNLogin", decodedAs<QNLogin>},
      {"QNPrivacyComLogin", decodedAs<QNPrivacyComLogin>},
      {"QNPassword", decodedAs<QNPassword>},
      {"QNSecureNote", decodedAs<QNSecureNote>},
      {"QNCreditCard", decodedAs<QNCreditCard>},
      {"QNIdentity", decodedAs<QNIdentity>},
      {"QNMedicalRecord", decodedAs<QNMedicalRecord>},
      {"QNCryptoWallet", decodedAs<QNCryptoWallet>},
      {"QNTemplateItem", decodedAs<QNTemplateItem>},
      {"QNUnknownItem", decodedAs<QNUnknownItem>},
      {"H9Document", decodedAs<H9Document>},
      {"QNTombstone", decodedAs<QNTombstone>},
      {"QNItemURL", plainlyDecoded<QNItemURL>},
      {"H9ItemProperties", plainlyDecoded<H9ItemProperties>},
  };
  return classes;
}

QNItem::QNItem(QNDecoder& coder) : QNDatabaseObjectWithOverview(coder) {
  if (auto uuid = coder.decodeString("uuid")) _uuid = sharedString(std::move(*uuid));
  if (const auto wrapped = coder.decodeBytes("key");
      wrapped && wrapped->size() == QNAESKey::kWrappedKeySize) {
    QNItem::setEncryptedKey(*wrapped);
  }
  _createdAt = coder.decodeInt64("createdAt").value_or(0);
  _updatedAt = coder.decodeInt64("updatedAt").value_or(0);
  _txTimestamp = coder.decodeInt64("txTimestamp").value_or(0);
  _folderId = coder.decodeInt64("folderId").value_or(0);
  if (auto folder = coder.decodeString("folderUUID")) rareColumns().folderUUID = std::move(folder);
  _categoryUUID = coder.decodeString("categoryUUID");
  _sectionName = coder.decodeString("sectionName");
  if (auto scope = coder.decodeString("scope")) rareColumns().scope = std::move(scope);
  _faveIndex = decodedFaveIndex(coder);
  _numberOfAttachments = coder.decodeInt32("nAttachments").value_or(0);
  _numberOfTimesUsed = coder.decodeInt32("nUsed").value_or(0);
  _lastUsedTimestamp = coder.decodeInt64("lastUsed").value_or(0);
  if (const auto properties =
          std::dynamic_pointer_cast<H9ItemProperties>(coder.decodeObject("h9ItemProperties"))) {
    rareColumns().h9ItemProperties = *properties;
  }
  if (detailsLoaded()) decodeDetails(coder);
}

void QNItem::decodeDetails(QNDecoder& coder) {
  OpenState& open = openState();
  open.detailsData = coder.decodeBytes("details");
  if (coder.containsValueForKey("URLs")) open.URLs = decodedURLs(coder, "URLs");
  open.deletedURLs = decodedURLs(coder, "deletedURLs");
}

// A weak pointer to the item can't be had before the item is made.
void QNItem::adoptDecodedURLs() {
  if (_open == nullptr) return;
  const auto self = weak_from_this().lock();
  if (_open->URLs) {
    for (const auto& url : *_open->URLs) url->setItem(self);
  }
  for (const auto& url : _open->deletedURLs) url->setItem(self);
}

// The base saves a dirty item first, which makes every buffer below.
void QNItem::encodeWithCoder(QNEncoder& coder) {
  const std::lock_guard lock(monitor());
  QNDatabaseObjectWithOverview::encodeWithCoder(coder);
  if (_uuid != nullptr) coder.encodeString(*_uuid, "uuid");
  if (profileType() == kProfileTypeLocalVault) coder.encodeBytes(encryptedKey(), "key");
  coder.encodeInt64(_createdAt, "createdAt");
  coder.encodeInt64(_updatedAt, "updatedAt");
  coder.encodeInt64(_txTimestamp, "txTimestamp");
  encodeNumber(coder, _folderId, "folderId");
  encodeText(coder, folderUUID(), "folderUUID");
  encodeText(coder, _categoryUUID, "categoryUUID");
  encodeText(coder, _sectionName, "sectionName");
  encodeText(coder, scope(), "scope");
  encodeNumber(coder, std::min(_faveIndex, kNewItemFaveIndex), "faveIndex");
  encodeCount(coder, _numberOfAttachments, "nAttachments");
  encodeCount(coder, _numberOfTimesUsed, "nUsed");
  encodeNumber(coder, _lastUsedTimestamp, "lastUsed");
  if (_rare != nullptr && _rare->h9ItemProperties) {
    coder.encodeObject(*_rare->h9ItemProperties, "h9ItemProperties");
  }
  if (detailsLoaded()) encodeDetails(coder);
}

void QNItem::encodeDetails(QNEncoder& coder) {
  const OpenState& open = openState();
  if (open.detailsData) coder.encodeBytes(*open.detailsData, "details");
  if (open.URLs) encodeURLs(coder, *open.URLs, "URLs");
  if (!open.deletedURLs.empty()) encodeURLs(coder, open.deletedURLs, "deletedURLs");
}

}  // namespace quillon
