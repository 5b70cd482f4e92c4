#include "cli/fields/QNConflicts.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "cli/output/QNItemJson.h"
#include "cli/output/QNShownText.h"
#include "quillon/fields/QNFieldSection.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNLocalization.h"
#include "store/QNMergeReport.h"

// How a copy tells the place that it lost:
//
//   identifier "BASE_conflict_N"     the field of the identifier BASE, or the item's title
//   title "username", localized      the user name of a login
//   any other title                  the entry of that name in a login's form
//
// A title that fits two places tells none of them.

namespace quillon {
namespace {

QNFieldSectionRef conflictSection(QNItem& item) {
  return item.findSectionWithName(kConflictsSectionName);
}

QNItemFieldRef fieldBefore(QNItem& item, std::string_view copyIdentifier) {
  const std::size_t end = copyIdentifier.find(kConflictIdentifierSeparator);
  if (end == std::string_view::npos) return nullptr;
  for (const auto& section : item.fieldSections()) {
    if (section->name() == kConflictsSectionName) continue;
    if (auto field = section->fieldWithIdentifier(copyIdentifier.substr(0, end))) return field;
  }
  return nullptr;
}

// The title was localized when the merge was made, perhaps in another language than now.
bool isTitleOfUsername(std::string_view title) {
  return title == "username" || title == QNLocalizedString("username");
}

void findPlaceInLogin(QNLogin& login, QNConflict& conflict) {
  const std::string title(conflict.copy->title());
  const auto username = login.loginFields().usernameField();
  auto entries = login.loginFields().loginFieldsWithName(title);
  bool mayBeUsername = isTitleOfUsername(title);
  if (mayBeUsername) {
    std::erase(entries, username);
    // Without a user name of its own, a login takes the other's over and puts nothing aside.
    mayBeUsername = username != nullptr || entries.empty();
  }
  if (entries.size() + (mayBeUsername ? 1 : 0) != 1) return;
  conflict.isUsername = mayBeUsername;
  if (!mayBeUsername) conflict.entry = entries.front();
  conflict.name = mayBeUsername ? "username" : title;
}

QNConflict conflictOf(QNItem& item, const QNItemFieldRef& copy) {
  const std::string identifier(copy->identifier().value_or(""));
  QNConflict conflict{copy, fieldBefore(item, identifier), nullptr, false, false, ""};
  auto* const login = dynamic_cast<QNLogin*>(&item);
  const bool isNumbered = identifier.find(kConflictIdentifierSeparator) != std::string::npos;
  if (conflict.field != nullptr) {
    conflict.name = std::string(conflict.field->identifier().value_or(""));
  } else if (identifier.starts_with(kTitlePart) && isNumbered) {
    conflict.isTitle = true;
    conflict.name = "title";
  } else if (login != nullptr && !isNumbered) {
    findPlaceInLogin(*login, conflict);
  }
  return conflict;
}

std::string identifierOf(const QNConflict& conflict) {
  return std::string(conflict.copy->identifier().value_or(""));
}

bool haveOnePlace(const QNConflict& a, const QNConflict& b) {
  return a.hasPlace() && a.field == b.field && a.entry == b.entry && a.isUsername == b.isUsername &&
         a.isTitle == b.isTitle;
}

template <class Test>
std::vector<QNConflict> those(const std::vector<QNConflict>& conflicts, const Test& isWanted) {
  std::vector<QNConflict> found;
  std::copy_if(conflicts.begin(), conflicts.end(), std::back_inserter(found), isWanted);
  return found;
}

// What `--keep mine` lets go of. What the other side keeps is retired by the save.
void keepInHistory(QNItem& item, const QNConflict& conflict) {
  if (conflict.field == nullptr || !conflict.field->isPasswordField()) return;
  const auto value = conflict.copy->stringValue();
  // Into the item's details, which wipe themselves.
  if (!value || value->empty() || item.containsPasswordValue(value->reveal())) return;
  item.addPreviouslyUsedPassword({value->clone(), secondsNow()});
}

QNResult<QNDone> takeTheirs(QNItem& item, const QNConflict& conflict) {
  const QNItemField& copy = *conflict.copy;
  if (conflict.field != nullptr && conflict.field->type() == copy.type()) {
    conflict.field->setRawValue(copy.rawValue());
    if (conflict.field->isValueEqualTo(copy.rawValue())) return QNDone{};
  }
  const auto value = copy.stringValue();
  const bool isText = value && conflict.field == nullptr && conflict.hasPlace();
  if (!isText) {
    return toolError(QNExit::failed,
                     fmt::format("{}: its field isn't there any more, of another kind, or one of "
                                 "several; set it with quillon edit, and keep mine",
                                 shownText(conflict.name)));
  }
  // Into the item's details, which wipe themselves.
  if (conflict.isUsername) item.setUsername(value->reveal());
  if (conflict.isTitle) item.setTitle(value->reveal());
  if (conflict.entry != nullptr) conflict.entry->setValue(value->reveal());
  return QNDone{};
}

}  // namespace

bool QNConflict::isSecret() const {
  return quillon::isSecret(*copy) || (field != nullptr && quillon::isSecret(*field)) ||
         (entry != nullptr && isHidden(*entry));
}

std::vector<QNConflict> conflictsOf(QNItem& item) {
  std::vector<QNConflict> conflicts;
  const auto section = conflictSection(item);
  if (section == nullptr) return conflicts;
  for (const auto& copy : section->fields()) conflicts.push_back(conflictOf(item, copy));
  std::vector<std::string> names;
  for (const QNConflict& conflict : conflicts) {
    const bool isAlone = conflict.hasPlace() && rivalsOf(conflicts, conflict).size() == 1;
    names.push_back(isAlone ? conflict.name : identifierOf(conflict));
  }
  for (std::size_t i = 0; i < names.size(); ++i) conflicts[i].name = names[i];
  return conflicts;
}

QNSecret mineOf(QNItem& item, const QNConflict& conflict, const QNFieldTexts& texts) {
  if (conflict.field != nullptr) return texts.shownValueOf(*conflict.field);
  if (conflict.isUsername) return QNSecret(item.username().value_or(""));
  if (conflict.isTitle) return QNSecret(item.title());
  auto value = conflict.entry == nullptr ? std::nullopt : conflict.entry->value();
  return value ? std::move(*value) : QNSecret();
}

QNSecret theirsOf(const QNConflict& conflict, const QNFieldTexts& texts) {
  return texts.shownValueOf(*conflict.copy);
}

std::vector<QNConflict> rivalsOf(const std::vector<QNConflict>& conflicts,
                                 const QNConflict& conflict) {
  return those(conflicts, [&](const QNConflict& other) {
    return other.copy == conflict.copy || haveOnePlace(conflict, other);
  });
}

bool areOfOnePlace(const std::vector<QNConflict>& conflicts) {
  return conflicts.empty() || rivalsOf(conflicts, conflicts.front()).size() == conflicts.size();
}

std::vector<QNConflict> conflictsNamed(const std::vector<QNConflict>& conflicts,
                                       std::string_view name) {
  auto found = those(conflicts, [name](const QNConflict& conflict) {
    return name == conflict.name || name == identifierOf(conflict) ||
           (conflict.isUsername && name == "username") || (conflict.isTitle && name == "title") ||
           (conflict.field != nullptr && name == conflict.field->identifier());
  });
  if (!found.empty()) return found;
  return those(conflicts,
               [name](const QNConflict& conflict) { return name == conflict.copy->title(); });
}

QNResult<QNDone> settle(QNItem& item, const QNConflict& conflict, QNConflictSide side) {
  if (side == QNConflictSide::mine) {
    keepInHistory(item, conflict);
  } else if (const auto taken = takeTheirs(item, conflict); !taken) {
    return taken;
  }
  const auto section = conflictSection(item);
  if (section == nullptr) return QNDone{};
  section->removeField(conflict.copy);
  if (section->fields().empty()) item.removeFieldSection(section);
  return QNDone{};
}

}  // namespace quillon
