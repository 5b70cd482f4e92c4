#include "store/internal/QNMergeRest.h"

#include <algorithm>
#include <array>
#include <optional>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/items/QNItemMerge.h"
#include "quillon/platform/json/QNJson.h"
#include "quillon/platform/text/QNLocalization.h"
#include "store/QNMergeReport.h"

namespace quillon {

namespace {

static_assert(kTitleConflictPrefix.starts_with(kTitlePart) &&
              kTitleConflictPrefix.substr(kTitlePart.size()) == kConflictIdentifierSeparator);

/// Made at each save of what the joined item has.
constexpr std::array kDerived = {
    kOverviewAdditionalInformation, kOverviewURLString, QNItemOverviewPasswordStrengthKey,
    QNItemOverviewPasswordBitsEntropyKey, QNItemOverviewPasswordPasswordGeneratedByRNGKey};

bool isDerived(std::string_view key) {
  return std::find(kDerived.begin(), kDerived.end(), key) != kDerived.end();
}

JsonObject emptyIfNone(std::optional<JsonObject> object) {
  return object ? *std::move(object) : JsonObject(jsonStorage());
}

}  // namespace

QNMergeRest::QNMergeRest(QNItem& item)
    : _overview(emptyIfNone(item.overviewCopy())), _details(emptyIfNone(item.detailsCopy())) {}

void QNMergeRest::addTo(QNItem& joined) const {
  joined.willSerialize();  // so that both objects have what the merge has made
  for (const auto& [key, value] : _overview) {
    if (isDerived(key) || joined.overviewObjectForKey(key) != nullptr) continue;
    joined.setOverviewObject(Json(value, jsonStorage()), key);
  }
  for (const auto& [key, value] : _details) {
    // A generated password is in the history already.
    if (key == kDetailsPassword || joined.detailsObjectForKey(key) != nullptr) continue;
    joined.setDetailsObject(Json(value, jsonStorage()), key);
  }
  const auto title = mr_validStringValueForKey(_overview, kOverviewTitle).value_or("");
  if (!title.empty() && joined.overviewTextForKey(kOverviewTitle) != title) {
    addTitleTo(joined, title);
  }
}

void QNMergeRest::addTitleTo(QNItem& joined, std::string_view title) {
  const auto lost = QNItemStringField::fieldWithIdentifier(kTitlePart);
  lost->setTitle(QNLocalizedString("Title"));
  lost->setValue(title);
  const auto conflicts = joined.sectionForConflictsCreatedIfNeeded();
  if (conflicts->hasConflictForField(*lost)) return;
  conflicts->addField(QNItem::newConflictFieldBasedOnField(*lost, *conflicts));
}

}  // namespace quillon
