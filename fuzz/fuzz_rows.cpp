// What an item is outside its store, archive and row dictionary: foreign bytes make an item that
// can be used, written and read again, or nothing; and no account's item takes over an identity.
#include <cstdlib>

#include "quillon/items/QNItem.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/vaults/QNProfile.h"
#include "quillon/vaults/internal/QNTestServerProfile.h"

namespace {

using namespace quillon;

void require(bool truth) {
  if (!truth) std::abort();
}

std::shared_ptr<QNProfile> localVault() {
  const auto vault = QNProfile::initExistingWithID(5);
  vault->setUuid(sharedString("VAULT"));
  vault->setOverviewKey(Bytes(OVERVIEW_KEY_SIZE, 1));
  vault->setMasterKey(Bytes(MASTER_KEY_SIZE, 2));
  return vault;
}

std::shared_ptr<QNItem> itemIn(ByteView archive) {
  const auto read =
      QNKeyedUnarchiver::unarchivedObjectOfClasses(QNItem::decodableClasses(), archive);
  require(read.ok() || read.error().domainCodeString() == "QNErrorDomain 114");
  return read.ok() ? std::dynamic_pointer_cast<QNItem>(read.value()) : nullptr;
}

// A reader's and a list's questions.
void lookAt(QNItem& item) {
  static_cast<void>(item.title());
  static_cast<void>(item.tags());
  static_cast<void>(item.password());
  static_cast<void>(item.fieldSections());
  for (const auto& url : item.URLs()) {
    require(url->item().get() == &item && url->profile() == item.profile());
    static_cast<void>(url->URLString());
    static_cast<void>(url->calculatedLabel());
  }
  require(item.encryptedKey().size() == QNAESKey::kWrappedKeySize);
}

// The archive of an item without changes is the same, however often it is read and written.
void archiveTwice(QNItem& item) {
  item.didSave();
  for (const auto& url : item.URLs()) url->didSave();
  const auto once = QNKeyedArchiver::archivedDataWithRootObject(item);
  if (!once.ok()) return;  // a text that isn't UTF-8
  const auto read = itemIn(once.value());
  require(read != nullptr && read->className() == item.className());
  const auto twice = QNKeyedArchiver::archivedDataWithRootObject(*read);
  require(twice.ok() && twice.value() == once.value());
}

void readAsArchive(ByteView archive, const std::shared_ptr<QNGenericProfile>& vault) {
  const auto item = itemIn(archive);
  if (item == nullptr) return;
  const QNSharedString stored = item->uuid();
  const bool isAtHome = item->profileType() == vault->profileType();
  item->setProfile(vault);
  require(isAtHome ? item->uuid() == stored : item->uuid() != stored);
  lookAt(*item);
  archiveTwice(*item);
  if (item->loaded()) {
    if (const auto copy = item->makeCopy())
      require(copy->oid() == 0 && copy->deletedURLs().empty());
  }
}

void takeRow(QNItem& item, const JsonObject& row) {
  item.setAllAttributes(row);
  require(item.detailsLoaded() && !item.loadingDetails());
  lookAt(item);
  item.cleanseDetailsFieldsFromDetails(*item.details());
  require(item.validateAndRepairImportedProperties() == item.categoryUUID().has_value());
}

void readAsRow(const JsonObject& row, const std::shared_ptr<QNGenericProfile>& vault) {
  const auto item = std::make_shared<QNItem>(initNew);
  item->setProfile(vault);
  const std::string own = *item->uuid();
  takeRow(*item, row);
  const bool isAccounts = vault->profileType() == kProfileTypeAccountVault;
  const bool isOwn = item->uuid() != nullptr && *item->uuid() == own;
  require(isOwn || (!isAccounts && *item->uuid() == row.at("uuid").get_string()));

  const JsonObject written = item->allAttributes();
  const auto again = std::make_shared<QNItem>(initNew);
  again->setProfile(vault);
  again->setAllAttributes(written);
  require(item->fingerprint_jsonString() == again->fingerprint_jsonString());
  item->willSave();
  archiveTwice(*item);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto before = MRLogger::sharedLogger().setSink({});  // refusals are logged
  static const QNScopedLocale locale("de");
  static const auto local = localVault();
  static const auto account = std::make_shared<QNTestServerProfile>();
  for (const std::shared_ptr<QNGenericProfile>& vault :
       {std::shared_ptr<QNGenericProfile>(local), std::shared_ptr<QNGenericProfile>(account)}) {
    readAsArchive({data, size}, vault);
    if (const auto row = mr_objectFromJSONDataWithError({data, size})) readAsRow(*row, vault);
  }
  if (const auto row = mr_objectFromJSONDataWithError({data, size})) {
    const auto item = QNItem::itemWithAttributes(*row, local);
    if (item != nullptr) lookAt(*item);
  }
  return 0;
}
