#include "quillon/items/internal/QNItemState.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {

// Brings what is derived up to date. The history of passwords grows here and nowhere else: no
// setter of a password touches it, so many changes between two saves leave one entry.
void QNItem::willSerialize() {
  const std::lock_guard lock(monitor());
  setSectionName(firstLetterOfString(title()));
  if (const auto& urls = openState().URLs) {
    // An address that doesn't open tells nothing: the copy that the overview holds stays.
    if (urls->empty()) {
      setOverviewText(std::nullopt, kOverviewURLString);
    } else if (urls->front()->mutableOverview() != nullptr) {
      setOverviewText(urls->front()->URLString(), kOverviewURLString);
    }
  }
  updateStrengthOfGeneratedPassword();
  if (detailsLoaded()) serializeDetails();
  QNDatabaseObjectWithOverview::willSerialize();
}

// Details that don't open tell nothing: what was derived from them before stays.
void QNItem::serializeDetails() {
  if (details() == nullptr) return;
  setAdditionalInformation(_additionalInformation());
  const auto present = password();
  updateStrength(present);
  retireOriginalPassword(present);
  QNItem::saveObjectsOfDetails();  // a subclass has written its own by now
}

void QNItem::saveObjectsOfDetails() {
  _savePreviouslyUsedPasswords();
  saveFieldSections();
}

// An item without a row has no past: its first password doesn't enter the history.
void QNItem::retireOriginalPassword(const std::optional<QNSecret>& present) {
  auto& original = openState().originalPassword;
  if (!hasOid() || !original || original->empty()) return;
  if (present && present->equals(*original)) return;
  addPreviouslyUsedPassword({original->clone(), secondsNow()});
  original = present ? std::optional<QNSecret>(present->clone()) : std::nullopt;
}

void QNItem::didSave() {
  openState().deletedURLs.clear();
  QNDatabaseObjectWithOverview::didSave();
}

// The first change to a row is the last moment at which its former password can be noted.
void QNItem::markRowDirty() {
  QNDatabaseObjectWithOverview::markRowDirty();
  const std::lock_guard lock(monitor());
  if (!detailsLoaded()) return;
  const OpenState& open = openState();
  const bool noted = open.originalPassword && !open.originalPassword->empty();
  if (noted || !(open.details || open.detailsData)) return;
  const JsonObject* const live = details();
  if (live != nullptr && (live->contains(kDetailsFields) || live->contains(kDetailsSections))) {
    noteOriginalPassword();
  }
}

void QNItem::noteOriginalPassword() {
  const std::lock_guard lock(monitor());
  openState().originalPassword = password();
}

}  // namespace quillon
