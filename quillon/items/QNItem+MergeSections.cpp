#include <algorithm>
#include <set>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/items/QNItemMerge.h"
#include "quillon/items/internal/QNItemState.h"

// Identifiers of the copies in the section "conflicts", part of the stored form:
//
//   BASE_conflict_N       BASE: the identifier of the field that lost, up to a "_conflict_" in it;
//                         N: 1 to 99
//   WHOLE_conflict_101    once all of these are taken; WHOLE: that identifier as it is

namespace quillon {
namespace {

constexpr int kLastNumber = 99;
constexpr std::string_view kOverflowNumber = "101";

/// "BASE_conflict_".
std::string conflictPrefixOf(const QNItemField& field) {
  const std::string_view whole = field.identifier().value_or("");
  return std::string(whole.substr(0, whole.find(kConflictIdentifierSeparator)))
      .append(kConflictIdentifierSeparator);
}

// A copy that loses again counts as kept under the first field's name too: two items that merge
// each other's copies to and fro would grow without end.
bool keepsConflict(const QNFieldSection& conflicts, const QNItemField& field) {
  if (conflicts.hasConflictForField(field)) return true;
  const auto kept = conflicts.fieldsWithIdentifierPrefix(conflictPrefixOf(field));
  return std::any_of(kept.begin(), kept.end(), [&field](const QNItemFieldRef& copy) {
    return copy->isValueEqualTo(field.rawValue());
  });
}

}  // namespace

bool hasFieldToKeepValue(QNItem& item, const QNFieldValue& value) {
  for (const auto& section : item.fieldSections()) {
    for (const auto& field : section->fields()) {
      const bool isTitle = field->identifier().value_or("").starts_with(kTitleConflictPrefix);
      if (!isTitle && field->isValueEqualTo(value)) return true;
    }
  }
  return false;
}

bool QNItem::hasFieldSectionsEqualTo(const FieldSections& sections) {
  const FieldSections mine = fieldSections();
  return std::equal(mine.begin(), mine.end(), sections.begin(), sections.end(),
                    [](const auto& a, const auto& b) { return a->isEqualToFieldSection(*b); });
}

void QNItem::mergeSectionsWithConflict(const FieldSections& theirs) {
  if (hasFieldSectionsEqualTo(theirs)) return;
  markRowDirty();
  for (const auto& section : theirs) mergeConflictSection(*section);
}

void QNItem::mergeConflictSection(const QNFieldSection& theirs) {
  for (const auto& field : theirs.fields()) mergeField(field, theirs);
}

// Fields are looked for in the whole item, and new ones go into the section of their own name. No
// field changes its value.
void QNItem::mergeField(const std::shared_ptr<QNItemField>& theirs,
                        const QNFieldSection& ofSection) {
  if (theirs->isEmpty()) return;
  // The identifier of a one-time password is drawn at each reading: it tells nothing.
  const bool isNamed = theirs->identifier() && !theirs->isTOTPField();
  const auto mine = isNamed ? findFieldWithIdentifier(theirs->identifier()) : nullptr;
  if (mine != nullptr && mine->isValueEqualTo(theirs->rawValue())) return;
  if (!isNamed && hasFieldOfSameValue(*theirs)) return;
  markRowDirty();
  if (mine == nullptr) return sectionLike(ofSection)->addField(theirs);
  const auto conflicts = sectionForConflictsCreatedIfNeeded();
  if (keepsConflict(*conflicts, *theirs)) return;
  conflicts->addField(newConflictFieldBasedOnField(*theirs, *conflicts));
}

// The seed of a one-time password in a field of another kind is none yet.
bool QNItem::hasFieldOfSameValue(const QNItemField& theirs) {
  if (!theirs.isTOTPField()) return hasFieldToKeepValue(*this, theirs.rawValue());
  for (const auto& section : fieldSections()) {
    for (const auto& field : section->fields()) {
      if (field->isTOTPField() && field->isValueEqualTo(theirs.rawValue())) return true;
    }
  }
  return false;
}

// The section of that name, or, of those without a name, of that title; made if there is none.
std::shared_ptr<QNFieldSection> QNItem::sectionLike(const QNFieldSection& theirs) {
  for (const auto& mine : fieldSections()) {
    if (mine->name() != theirs.name()) continue;
    if (theirs.name() || mine->title() == theirs.title()) return mine;
  }
  auto made = std::make_shared<QNFieldSection>();
  made->setName(theirs.name());
  made->setTitle(theirs.title());
  addFieldSection(made);
  return made;
}

std::shared_ptr<QNItemField> QNItem::newConflictFieldBasedOnField(const QNItemField& field,
                                                                  const QNFieldSection& inSection) {
  return field.conflictCopyWithUniqueFieldIdentifierForConflict(
      uniqueFieldIdentifierForConflict(field, inSection));
}

std::string QNItem::uniqueFieldIdentifierForConflict(const QNItemField& field,
                                                     const QNFieldSection& inSection) {
  const std::string_view whole = field.identifier().value_or("");
  const std::string prefix = conflictPrefixOf(field);
  std::set<std::string_view> taken;
  for (const auto& copy : inSection.fieldsWithIdentifierPrefix(prefix)) {
    taken.insert(copy->identifier().value_or(""));
  }
  if (whole.starts_with(prefix) && !taken.contains(whole)) return std::string(whole);
  for (int number = 1; number <= kLastNumber; ++number) {
    std::string candidate = prefix + std::to_string(number);
    if (!taken.contains(candidate)) return candidate;
  }
  return std::string(whole).append(kConflictIdentifierSeparator).append(kOverflowNumber);
}

}  // namespace quillon
