#pragma once

#include <string_view>

#include "cli/QNToolError.h"
#include "cli/fields/QNFieldTexts.h"
#include "quillon/items/QNItem.h"

namespace quillon {

/// A field of an item, or one part of an address in it.
struct QNChosenField {
  QNFieldSectionRef section;
  QNItemFieldRef field;
  /// "street", "city", "zip", "region", "state" or "country"; empty for the whole field.
  std::string part;
};

/// The fields that a name fits best: by identifier, else by title, else by either with case and
/// accents apart. A name is FIELD, or SECTION.FIELD with an identifier or title of the section,
/// which is empty for one without a name; and behind each perhaps ".street" or another part of an
/// address.
std::vector<QNChosenField> fieldsNamed(QNItem& item, const QNFieldTexts& texts,
                                       std::string_view name);

/// The one that the user means. Errors: exit code 4 for none, 5 for several, which are listed on
/// standard error.
QNResult<QNChosenField> chooseField(QNItem& item, const QNFieldTexts& texts, std::string_view name);

/// "SECTION.IDENTIFIER": names it as exactly as a name can.
std::string pathOf(const QNFieldSection& section, const QNItemField& field);

/// The first section of that identifier or title, chosen in the same way; null for none.
QNFieldSectionRef sectionNamed(QNItem& item, const QNFieldTexts& texts, std::string_view name);

}  // namespace quillon
