#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/QNToolError.h"
#include "cli/arguments/QNArguments.h"
#include "cli/fields/QNFieldTexts.h"
#include "quillon/items/QNItem.h"
#include "quillon/logins/QNLoginField.h"

namespace quillon {

/// A value that a merge put aside in the section of conflicts, and the place that it lost.
struct QNConflict {
  QNItemFieldRef copy;
  /// One of these, or none if the place isn't there any more.
  QNItemFieldRef field;
  std::shared_ptr<QNLoginField> entry;  // of a login's form
  bool isUsername = false;
  bool isTitle = false;  // the item's own
  /// As `resolve` takes it: the place's, or the copy's own if another one lost it, too.
  std::string name;

  [[nodiscard]] bool hasPlace() const {
    return field != nullptr || entry != nullptr || isUsername || isTitle;
  }
  [[nodiscard]] bool isSecret() const;
};

/// In the order of the section; none if there is no section. They share its fields.
std::vector<QNConflict> conflictsOf(QNItem& item);

/// What the item has in that place, and what was put aside, for a person. Secrets in clear.
QNSecret mineOf(QNItem& item, const QNConflict& conflict, const QNFieldTexts& texts);
QNSecret theirsOf(const QNConflict& conflict, const QNFieldTexts& texts);

/// All that lost the same place as this one, itself among them.
std::vector<QNConflict> rivalsOf(const std::vector<QNConflict>& conflicts,
                                 const QNConflict& conflict);

/// Did all of them lose the same place? True for one alone.
bool areOfOnePlace(const std::vector<QNConflict>& conflicts);

/// Those that a name means: one copy by its identifier, all of one place, or else by title.
std::vector<QNConflict> conflictsNamed(const std::vector<QNConflict>& conflicts,
                                       std::string_view name);

/// Gives the place that side's value and takes the copy away; a password that goes is in the
/// history when the item is saved. Errors: exit code 1 for a value that fits no place.
QNResult<QNDone> settle(QNItem& item, const QNConflict& conflict, QNConflictSide side);

}  // namespace quillon
