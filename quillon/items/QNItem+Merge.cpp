#include <algorithm>

#include "quillon/items/QNItemMerge.h"
#include "quillon/items/internal/QNItemState.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

/// Between two notes that became one.
constexpr std::string_view kNotesSeparator = "\n\n===\n\n";

// A report names the operation that was called, whichever helper finds the fault.
MRLogText whileMerging(std::string_view text, int line = __builtin_LINE()) {
  return {text, __builtin_FILE(), line, "mergeWithConflict"};
}

bool opens(QNItem& item) {
  return item.mutableOverview() != nullptr && item.mutableDetails() != nullptr;
}

}  // namespace

bool openToMerge(QNItem& theirs, QNItem& into) {
  if (&theirs == &into || (opens(theirs) && opens(into))) return true;
  MRLogger::sharedLogger().error(
      DEBUG_DATABASE, into.descriptionForLogging(),
      whileMerging("Attempted to merge {} into {}, which don't both open"), theirs.description(),
      into.description());
  return false;
}

std::shared_ptr<QNItem> QNItem::itemToMerge(const std::shared_ptr<QNDatabaseObject>& other) const {
  auto item = std::dynamic_pointer_cast<QNItem>(other);
  if (item == nullptr) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   whileMerging("Attempted to merge {} into {}. Avoiding that as "
                                                "it doesn't make sense to do so."),
                                   other == nullptr ? "(null)" : other->description(),
                                   description());
  }
  return item;
}

void QNItem::reportForeignCategory(MRLogText text, const QNItem& other) const {
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(), text, description(),
                                     _categoryUUID.value_or("(null)"), other.description(),
                                     other._categoryUUID.value_or("(null)"));
}

// A live item beats a tombstone.
std::shared_ptr<QNDatabaseObject> QNItem::mergeWithConflict(
    const std::shared_ptr<QNDatabaseObject>& other) {
  const auto item = itemToMerge(other);
  if (item == nullptr) return shared_from_this();
  if (item->isTombstone()) {
    if (!isTombstone()) markRowDirty();
  } else if (_categoryUUID != item->_categoryUUID) {
    reportForeignCategory("Attempt to merge item {} ({}) with item from different category {} ({})",
                          *item);
    return nullptr;
  } else if (!openToMerge(*item, *this)) {
    return nullptr;
  } else if (item.get() != this) {
    mergeContentOf(*item);
  }
  if (!hasOid()) copyOidFrom(item);
  return shared_from_this();
}

// What differs and isn't joined stays as it is here; the row is dirty all the same, since what is
// stored elsewhere is another.
void QNItem::mergeContentOf(QNItem& other) {
  if (title() != other.title()) markRowDirty();
  const auto notes = other.notesSecret();
  mergeNotesWithConflict(notes ? std::optional(notes->reveal()) : std::nullopt);
  removeDuplicateURLs();
  other.removeDuplicateURLs();
  mergeURLsWithConflict(other.URLs());
  if (_createdAt != other._createdAt || _updatedAt != other._updatedAt ||
      folderUUID() != other.folderUUID() || scope() != other.scope() ||
      trashed() != other.trashed()) {
    markRowDirty();
  }
  mergeSectionsWithConflict(other.fieldSections());
  mergePreviouslyUsedPasswordsWithConflict(other.previouslyUsedPasswords());
  mergeBackupKeysWithConflict(other);
}

// Notes that stand within the others are there already: the same merge again adds nothing.
void QNItem::mergeNotesWithConflict(std::optional<std::string_view> theirs) {
  const auto secret = notesSecret();
  const std::string_view mine = secret ? secret->reveal() : std::string_view();
  const bool areTheSame = secret.has_value() == theirs.has_value() && mine == theirs.value_or("");
  if (!areTheSame) markRowDirty();
  if (mine.empty()) return setNotesPlain(theirs);
  if (!theirs || mine.find(*theirs) != std::string_view::npos) return;
  if (theirs->find(mine) != std::string_view::npos) return setNotesPlain(theirs);
  QNSecret both = secret->clone();
  both.append(kNotesSeparator);
  both.append(*theirs);
  setNotesPlain(both.reveal());  // into the wiping resource
}

// In order of arrival: nothing sorts a history.
void QNItem::mergePreviouslyUsedPasswordsWithConflict(
    const std::vector<QNPreviouslyUsedPassword>& theirs) {
  const std::lock_guard lock(monitor());
  auto* const mine = mutablePreviouslyUsedPasswords();
  if (mine == nullptr) return;
  if (mine->size() != theirs.size()) markRowDirty();
  for (const QNPreviouslyUsedPassword& entry : theirs) {
    const bool isKnown = std::any_of(mine->begin(), mine->end(),
                                     [&entry](const auto& known) { return known.isEqual(entry); });
    if (isKnown) continue;
    mine->push_back(entry.clone());
    markRowDirty();
  }
}

}  // namespace quillon
