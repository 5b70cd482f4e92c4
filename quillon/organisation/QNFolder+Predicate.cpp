#include <cstdlib>

#include "quillon/organisation/QNFolder.h"
#include "quillon/organisation/internal/QNPredicateUpgrade.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

constexpr std::string_view kVersion = "sfVersion";
constexpr std::string_view kPredicate = "predicate_b64_v4";
constexpr std::uint64_t kPresentVersion = 4;

}  // namespace

std::uint64_t QNFolder::smartFolderVersion() {
  const std::lock_guard lock(monitor());
  const JsonObject* const overview = mutableOverview();
  return overview == nullptr ? 0 : mr_unsignedValueForKey(*overview, kVersion).value_or(0);
}

void QNFolder::setSmartFolderVersion(std::uint64_t version) {
  setOverviewObject(Json(version), kVersion);
}

bool QNFolder::setSmartFolderPredicate(const QNPredicateRef& predicate) {
  const auto archive =
      predicate != nullptr ? predicate->archivedData() : QNError::unreadable("no predicate");
  if (!archive.ok()) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   "Failed to archive smart folder predicate: {}",
                                   archive.error().domainCodeString());
    return false;
  }
  const std::lock_guard lock(monitor());  // nobody sees the question without its version
  if (mutableOverview() == nullptr) return false;
  std::string text = mr_base64encode(archive.value());
  setOverviewText(text, kPredicate);
  wipe(text.data(), text.size());
  setSmartFolderVersion(kPresentVersion);
  return true;
}

// Null if the key isn't there, or its archive holds none.
QNResult<QNPredicateRef> QNFolder::storedPredicateForKey(std::string_view key) {
  const std::lock_guard lock(monitor());
  const auto text = overviewTextForKey(key);
  if (!text) return QNPredicateRef();
  const auto archive = mr_base64decode(*text);
  if (!archive) return QNError::unreadable("no base64");
  return QNPredicate::predicateWithArchivedData(*archive);
}

QNResult<QNPredicateRef> QNFolder::storedPredicate() {
  auto present = storedPredicateForKey(kPredicate);
  if (!present.ok() || present.value() != nullptr) return present;
  return storedPredicateForKey(kOldPredicate);
}

QNPredicateRef QNFolder::smartFolderPredicate() {
  if (!_smartFolder) return nullptr;
  const std::lock_guard lock(monitor());
  auto stored = storedPredicate();
  if (!stored.ok()) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   "Error creating smart folder. Predicate format invalid.");
    return QNPredicate::predicateWithValue(false);
  }
  QNPredicateRef predicate = std::move(stored).value();
  if (smartFolderVersion() < kPresentVersion) {
    predicate = upgradeSmartFolderPredicateFormat(predicate);
  }
  return predicate != nullptr ? predicate : QNPredicate::predicateWithValue(false);
}

std::optional<QNError> QNFolder::smartFolderFault() {
  const std::lock_guard lock(monitor());
  if (!_smartFolder || smartFolderVersion() >= kPresentVersion) return std::nullopt;
  const auto stored = storedPredicate();
  if (!stored.ok() || stored.value() == nullptr) return std::nullopt;
  const auto upgraded = QNPredicateUpgrade(std::nullopt).upgraded(stored.value());
  return upgraded.ok() ? std::nullopt : std::optional(upgraded.error());
}

QNPredicateRef QNFolder::upgradeSmartFolderPredicateFormat(const QNPredicateRef& predicate) const {
  auto upgraded = QNPredicateUpgrade(descriptionForLogging()).upgraded(predicate);
  if (!upgraded.ok()) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "subpredicates.count == 1");
    std::abort();  // as the format demands: a dropped condition would turn the question around
  }
  return std::move(upgraded).value();
}

std::int64_t QNFolder::passwordStrengthForKeyPath(std::string_view keyPath) {
  return QNPredicateUpgrade::passwordStrengthForKeyPath(keyPath);
}

std::optional<std::string> QNFolder::categoryUUIDForName(std::string_view name) {
  return QNPredicateUpgrade::categoryUUIDForName(name);
}

}  // namespace quillon
