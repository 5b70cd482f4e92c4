#include "quillon/items/QNItem.h"

#include <algorithm>
#include <utility>

#include "quillon/items/internal/QNItemSearchTexts.h"
#include "quillon/items/internal/QNItemState.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/touchpoints/QNItemSpecifier.h"

namespace quillon {
namespace {

std::size_t sizeInJson(const Json& value) {
  const auto bytes = mr_JSONDataWithError(value);
  return bytes ? bytes->size() : 0;
}

// Names of members and their sizes in bytes; never a value.
std::string sizeDetails(const JsonObject* object) {
  if (object == nullptr) return "(null)";
  std::string text;
  for (const auto& member : *object) {
    if (!text.empty()) text += ", ";
    text += std::string_view(member.key());
    text += ' ';
    text += std::to_string(sizeInJson(member.value()));
  }
  return text;
}

std::string sizeDetails(const std::vector<std::shared_ptr<QNItemURL>>& urls) {
  std::string text;
  for (const auto& url : urls) {
    if (!text.empty()) text += ", ";
    text += std::to_string(url->URLString().value_or("").size());
  }
  return text;
}

}  // namespace

QNItem::QNItem(QNNew) : QNDatabaseObjectWithOverview(initNew) {
  // Made whatever the vault will be: in an account vault it stays without use.
  OpenState& open = openState();
  open.key = QNAESKey::initWithRandomKey();
  _createdAt = secondsNow();
  open.details.emplace(jsonStorage());
  QNSecretSet first = backupKeyOf(open.key);
  if (first.empty()) {  // not while a random key has raw bytes
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, QNItem::descriptionForLogging(),
                                       "Failed to create backup key from the new item's key.");
  }
  addBackupKeysBase64Encoded(std::move(first));
}

QNItem::QNItem(QNExisting existing) : QNDatabaseObjectWithOverview(existing) {}

QNItem::~QNItem() {
  dropSearchTexts();
}

// Identity

QNSharedString QNItem::uuidForProfileType(std::uint64_t type) {
  if (type == kProfileTypeAccountVault) return sharedString(mr_shortUUID());
  if (type == kProfileTypeLocalVault) return sharedString(mr_uuid());
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, "QNItem", "Unknown profile type: {}", type);
  return nullptr;
}

std::string_view QNItem::uuidForLogging(const QNSharedString& uuid) {
  return uuid == nullptr ? std::string_view("(null)") : std::string_view(*uuid);
}

void QNItem::setUuid(QNSharedString uuid) {
  const std::lock_guard lock(monitor());
  if (equalContent(_uuid, uuid)) return;
  if (profileType() == 0) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Can't set uuid without first setting profile(Type)");
  }
  _uuid = std::move(uuid);
  _itemSpecifier.reset();
  // A block that others may read isn't written to: the next one gets the new size.
  const SearchTexts* const texts = _search.load(std::memory_order_relaxed);
  if (texts != nullptr) keepSearchTexts(texts->copy());
}

void QNItem::updateUuid(QNSharedString uuid, std::uint64_t ifProfileTypeMatches) {
  if (profileType() == ifProfileTypeMatches) {
    setUuid(std::move(uuid));
    return;
  }
  MRLogger::sharedLogger().status(
      DEBUG_DATABASE, descriptionForLogging(),
      "Rejecting update of uuid from '{}' to '{}' as profile type ({}) did not match check value "
      "of ({})",
      uuidForLogging(_uuid), uuidForLogging(uuid), profileType(), ifProfileTypeMatches);
}

void QNItem::regenerateUuid() {
  updateUuid(uuidForProfileType(profileType()), profileType());
}

bool QNItem::isEqual(const QNItem& other) const {
  return equalContent(_uuid, other._uuid);
}

std::size_t QNItem::hash() const {
  return _uuid == nullptr ? 0 : std::hash<std::string>()(*_uuid);
}

bool QNItem::isEqualToItem(const QNItem& other) const {
  const auto uuidOf = [](const std::shared_ptr<QNGenericProfile>& vault) {
    return vault == nullptr ? nullptr : vault->uuid();
  };
  return _uuid == other._uuid && _updatedAt == other._updatedAt &&
         uuidOf(profile()) == uuidOf(other.profile());
}

bool QNItem::isSameRevisionAsItem(const QNItem& other) const {
  if (profileType() != other.profileType()) return false;
  if (profileType() == kProfileTypeLocalVault) return _txTimestamp == other._txTimestamp;
  if (profileType() != kProfileTypeAccountVault) return true;
  const auto propertiesOf = [](const QNItem& item) {
    const bool any = item._rare != nullptr && item._rare->h9ItemProperties;
    return any ? *item._rare->h9ItemProperties : H9ItemProperties();
  };
  const H9ItemProperties mine = propertiesOf(*this);
  const H9ItemProperties theirs = propertiesOf(other);
  return mine.itemVersion() == theirs.itemVersion() &&
         mine.localEditCount() == theirs.localEditCount();
}

bool QNItem::isModifiedCopyOf(QNItem& other) {
  return title() != other.title() || additionalInformation() != other.additionalInformation();
}

std::optional<std::string> QNItem::json() {
  auto text = mr_JSONStringWithError(allAttributes());
  if (!text) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   "Failed to obtain JSON from item: {}", description());
  }
  return text;
}

std::string QNItem::descriptionWithSizeInformation() {
  const std::lock_guard lock(monitor());
  std::string text = description() + " \n\n";
  text += "overview: " + sizeDetails(mutableOverview()) + "\n\n";
  if (!loaded()) return text;
  text += "details: " + sizeDetails(mutableDetails()) + "\n\n";
  const auto urls = URLs();
  return text + "URL count: " + std::to_string(urls.size()) + " " + sizeDetails(urls) + "\n\n";
}

std::shared_ptr<const QNItemSpecifier> QNItem::itemSpecifier() {
  const std::lock_guard lock(monitor());
  if (_itemSpecifier == nullptr) _itemSpecifier = QNItemSpecifier::specifierWithItem(*this);
  return _itemSpecifier;
}

std::string QNItem::identifier() {
  const auto specifier = itemSpecifier();
  return specifier == nullptr ? "" : specifier->stringRepresentation();
}

// Favourites and scope

void QNItem::setFaveIndex(std::uint64_t index) {
  const std::uint64_t capped = std::min(index, kNewItemFaveIndex);
  if (_faveIndex == capped) return;
  markRowDirty();
  _faveIndex = capped;
}

void QNItem::setDisplayOrder(std::uint64_t order) {
  if (_faveIndex == order) return;
  _faveIndex = order;
  markDisplayOrderDirty();
}

std::uint64_t QNItem::favoriteSortDescriptorOrder() const {
  return isFavorite() ? _faveIndex : std::numeric_limits<std::uint64_t>::max();
}

std::optional<std::string> QNItem::scope() const {
  return _rare == nullptr ? std::nullopt : _rare->scope;
}

void QNItem::setScope(std::optional<std::string> scope) {
  if (scope == this->scope()) return;
  markRowDirty();
  rareColumns().scope = std::move(scope);
}

bool QNItem::hasNeverScope() const {
  return _rare != nullptr && _rare->scope == QNItemScopeNever;
}

void QNItem::setShownInBrowser(bool shown) {
  setScope(std::string(shown ? QNItemScopeAlways : QNItemScopeNever));
}

std::string QNItem::localizedScopeDescriptionForValue(std::optional<std::string_view> scope) {
  return QNLocalizedString(scope == QNItemScopeNever ? "Never suggest in browser"
                                                     : "Suggest in browser");
}

std::string QNItem::localizedScopeDescription() const {
  return localizedScopeDescriptionForValue(scope());
}

// Row columns

void QNItem::setCategoryUUID(std::optional<std::string> uuid) {
  if (_categoryUUID == uuid) return;
  markRowDirty();
  _categoryUUID = std::move(uuid);
}

std::optional<std::string> QNItem::folderUUID() const {
  return _rare == nullptr ? std::nullopt : _rare->folderUUID;
}

void QNItem::setFolderUUID(std::optional<std::string> uuid) {
  if (uuid == folderUUID()) return;
  markRowDirty();
  rareColumns().folderUUID = std::move(uuid);
}

void QNItem::clearFolder() {
  setFolderId(0);
  setFolderUUID(std::nullopt);
}

// What a subclass answers

void QNItem::setUsername(std::optional<std::string_view> /*username*/) {
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                     "Must be implemented");
}

void QNItem::setPassword(std::optional<std::string_view> /*password*/) {
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                     "Must be implemented");
}

bool QNItem::hasUsername() {
  const auto name = username();
  return name && !name->empty();
}

bool QNItem::hasPassword() {
  const auto secret = password();
  return secret && !secret->empty();
}

bool QNItem::hasRevealableFields() {
  return hasPassword() || findNonEmptyConcealedField() != nullptr;
}

// State that lives apart

// Locked, since a reader and a save may both be the first to need it.
QNItem::OpenState& QNItem::openState() const {
  const std::lock_guard lock(monitor());
  if (_open == nullptr) _open = std::make_unique<OpenState>();
  return *_open;
}

QNItem::RareColumns& QNItem::rareColumns() {
  if (_rare == nullptr) _rare = std::make_unique<RareColumns>();
  return *_rare;
}

}  // namespace quillon
