#include <algorithm>

#include "quillon/files/H9Document.h"
#include "quillon/items/QNTombstone.h"
#include "quillon/items/internal/QNItemState.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/templates/QNCategoryUUID.h"
#include "quillon/vaults/H9UserAccount.h"

namespace quillon {
namespace {

constexpr std::string_view kDocumentAttributes = "documentAttributes";
constexpr std::string_view kCustomIconDetail = "detail";
constexpr std::string_view kSigningKey = "signingKey";

// The sealed forms that an item's archive makes anew. A save doesn't say where it can't make them,
// for instance of a text that isn't UTF-8, and leaves the former ones.
class StaleForms {
 public:
  explicit StaleForms(QNItem& item) : _item(item) {
    if (item.dirtyRow()) {
      _overviews.emplace_back(&item, item.overviewData());
      _details = item.detailsData();
    }
    for (const auto& url : item.URLs()) {
      if (url->dirtyRow()) _overviews.emplace_back(url.get(), url->overviewData());
    }
  }
  bool none() const { return _overviews.empty(); }
  bool areReplaced() const {
    return (!_item.dirtyRow() || isAnew(_item.detailsData(), _details)) &&
           std::all_of(_overviews.begin(), _overviews.end(), [](const auto& form) {
             return isAnew(form.first->overviewData(), form.second);
           });
  }

 private:
  using Sealed = std::optional<Bytes>;
  // Two sealings of one text differ.
  static bool isAnew(const Sealed& present, const Sealed& former) {
    return present && present != former;
  }

  QNItem& _item;
  std::vector<std::pair<const QNDatabaseObjectWithOverview*, Sealed>> _overviews;
  Sealed _details;
};

// Nothing if what changed can't be sealed anew. A change to a field dirties nothing until the
// sections are written into the details.
std::optional<Bytes> freshArchiveOf(QNItem& item) {
  const std::lock_guard lock(item.monitor());
  item.saveFieldSections();
  const StaleForms stale(item);
  const auto vault = item.profile();
  // A locked vault would take the sealed overview away from the item itself.
  if (!stale.none() && (vault == nullptr || vault->isLocked())) return std::nullopt;
  auto archive = QNKeyedArchiver::archivedDataWithRootObject(item);
  if (!archive.ok() || !stale.areReplaced()) return std::nullopt;
  return std::move(archive).value();
}

std::shared_ptr<QNItem> copyThroughArchive(QNItem& item) {
  const auto archive = freshArchiveOf(item);
  if (!archive) return nullptr;
  const auto read =
      QNKeyedUnarchiver::unarchivedObjectOfClasses(QNItem::decodableClasses(), *archive);
  return read.ok() ? std::dynamic_pointer_cast<QNItem>(read.value()) : nullptr;
}

std::shared_ptr<QNServerProfile> accountVault(const std::shared_ptr<QNGenericProfile>& vault) {
  return vault != nullptr && vault->profileType() == kProfileTypeAccountVault
             ? std::dynamic_pointer_cast<QNServerProfile>(vault)
             : nullptr;
}

// An account that isn't known is no other account's equal.
bool areOfOneAccount(const QNServerProfile& a, const QNServerProfile& b) {
  return a.accountUUID() && a.accountUUID() == b.accountUUID();
}

bool areOnOneServer(const QNServerProfile& a, const QNServerProfile& b) {
  const auto serverOf = [](const QNServerProfile& vault) {
    const auto account = vault.userAccount();
    return account == nullptr ? std::string() : account->server();
  };
  return H9UserAccount::isServerURLOnSameServerAsServerURL(serverOf(a), serverOf(b));
}

// Files that can't be seen must not be lost on a guess.
bool mayHideFiles(QNItem& item, const QNGenericProfile& from) {
  return from.profileType() == kProfileTypeAccountVault && item.mutableDetails() == nullptr;
}

// The same of an icon's file. A locked vault's item shows none.
bool mayHideIcon(QNItem& item, const QNGenericProfile& from) {
  const auto vault = item.profile();
  const bool isLocked = vault != nullptr && vault->isLocked();
  return from.profileType() == kProfileTypeAccountVault &&
         (isLocked || item.mutableOverview() == nullptr);
}

const JsonObject* objectIn(const Json* holder, std::string_view key) {
  const JsonObject* const object = holder == nullptr ? nullptr : holder->if_object();
  const Json* const found =
      object == nullptr ? nullptr : mr_objectForKey(*object, key, JsonKind::object);
  return found == nullptr ? nullptr : &found->get_object();
}

}  // namespace

// Through an archive, which keeps the sealed forms: nothing is opened for a copy.
std::shared_ptr<QNItem> QNItem::makeCopyWithAttachments(bool /*attachments*/) {
  if (!loaded()) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Attempt to duplicate an item which is not loaded.");
    return nullptr;
  }
  const auto copy = copyThroughArchive(*this);
  if (copy == nullptr) return nullptr;
  copy->setProfile(profile());
  copy->_setOid(0);
  // Attachments travel in no archive yet: there are none to leave out.
  copy->openState().deletedURLs.clear();
  for (const auto& url : copy->URLs()) {
    url->markRowDirty();
    url->_setOid(0);
  }
  copy->setCategoryUUID(_categoryUUID);
  copy->setFolderId(_folderId);
  copy->setFolderUUID(folderUUID());
  copy->setFaveIndex(_faveIndex);
  copy->setCreatedAt(_createdAt);
  copy->setUpdatedAt(_updatedAt);
  if (copy->_rare != nullptr) copy->_rare->h9ItemProperties.reset();
  return copy;
}

std::shared_ptr<QNItem> QNItem::makeDuplicateWithoutAttachments() {
  const auto duplicate = makeCopyWithoutAttachments();
  if (duplicate == nullptr) return nullptr;
  // In a locked vault it would keep the title and the history.
  if (duplicate->mutableOverview() == nullptr || duplicate->mutableDetails() == nullptr) {
    return nullptr;
  }
  duplicate->regenerateUuid();
  duplicate->setTitle(localizedFormat("%@ - Copy", title()));
  duplicate->setCreatedAt(secondsNow());
  duplicate->setDetailsObject(std::nullopt, kDetailsPasswordHistory);
  return duplicate;
}

QNCopyRequirement QNItem::requirementForCopyingFromProfile(
    const std::shared_ptr<QNGenericProfile>& from,
    const std::shared_ptr<QNGenericProfile>& toProfile) {
  if (from == nullptr || toProfile == nullptr) return QNCopyRequirement::nothing;
  if (from->profileType() == kProfileTypeLocalVault) return QNCopyRequirement::nothing;
  const bool isDocument = _categoryUUID == QNCategoryUUIDDocument;
  const bool isRefused = isDocument ? !toProfile->supportsFeature(kFeatureDocuments)
                                    : toProfile->profileType() == kProfileTypeLocalVault &&
                                          (mayHideFiles(*this, *from) || hasFileFields());
  if (isRefused) return QNCopyRequirement::vaultForFiles;
  const auto source = accountVault(from);
  const auto target = accountVault(toProfile);
  if (source == nullptr || target == nullptr || areOfOneAccount(*source, *target)) {
    return QNCopyRequirement::nothing;
  }
  if (areOnOneServer(*source, *target)) {
    const bool mayHideSome = mayHideFiles(*this, *from) || mayHideIcon(*this, *from);
    return mayHideSome || hasFileReferencesWithoutSigningKeys() ? QNCopyRequirement::signingKeys
                                                                : QNCopyRequirement::nothing;
  }
  return isDocument || mayHideFiles(*this, *from) || hasFileFields() ? QNCopyRequirement::sameServer
                                                                     : QNCopyRequirement::nothing;
}

bool QNItem::hasFileReferencesWithoutSigningKeys() {
  if (profileType() == kProfileTypeLocalVault) return false;
  const std::lock_guard lock(monitor());
  const JsonObject* const document = documentRecord();
  const JsonObject* const icon = customIconRecord();
  return (document != nullptr && !hasSigningKey(*document)) ||
         (icon != nullptr && !hasSigningKey(*icon));
}

bool QNItem::hasSigningKey(const JsonObject& fileRecord) {
  return mr_objectForKey(fileRecord, kSigningKey, JsonKind::object) != nullptr;
}

// What is stored of the file of a document; null of any other item.
const JsonObject* QNItem::documentRecord() {
  if (dynamic_cast<const H9Document*>(this) == nullptr) return nullptr;
  const Json* const stored = detailsObjectForKey(kDocumentAttributes);
  return stored == nullptr ? nullptr : stored->if_object();
}

// What is stored of the file of an icon. A locked vault's item shows none.
const JsonObject* QNItem::customIconRecord() {
  const auto vault = profile();
  if (vault != nullptr && vault->isLocked()) return nullptr;
  return objectIn(overviewObjectForKey(kCustomIconAttributes), kCustomIconDetail);
}

}  // namespace quillon
