#include <algorithm>
#include <array>

#include "quillon/fields/QNItemDateField.h"
#include "quillon/fields/QNItemMonthYearField.h"
#include "quillon/items/QNMetadataConstants.h"
#include "quillon/items/internal/QNItemState.h"
#include "quillon/items/internal/QNItemVault.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/templates/QNGenericCategory.h"

namespace quillon {
namespace {

enum class DayOfMonth { first, last };

// Which field tells when an item of a category expires, and the day of a month that has none.
struct Expiry {
  std::string_view categoryUUID;
  std::string_view identifier;
  DayOfMonth day;
};
constexpr std::array<Expiry, 5> kExpiries = {{
    {QNCategoryUUIDCreditCard, "expiry", DayOfMonth::last},
    {QNCategoryUUIDPassport, "expiry_date", DayOfMonth::first},
    {QNCategoryUUIDDriverLicense, "expiry_date", DayOfMonth::first},
    {QNCategoryUUIDOutdoorLicense, "expires", DayOfMonth::first},
    {QNCategoryUUIDMembership, "expiry_date", DayOfMonth::first},
}};

std::optional<std::chrono::sys_seconds> dateAt(std::int64_t seconds) {
  return std::chrono::sys_seconds(std::chrono::seconds(seconds));
}

std::optional<std::chrono::sys_seconds> dateOf(const QNItemMonthYearField& field, DayOfMonth day) {
  if (field.month() <= 0 || field.year() <= 0) return std::nullopt;
  const auto days = qn_daysOfMonth(field.month(), field.fullYear());
  if (!days) return std::nullopt;
  return dateAt(day == DayOfMonth::last ? days->last : days->first);
}

std::string textOf(const QNSharedString& text) {
  return text == nullptr ? std::string() : *text;
}

JsonArray textsOf(const std::vector<std::shared_ptr<QNItemURL>>& urls) {
  JsonArray texts(jsonStorage());
  for (const auto& url : urls) {
    if (const auto text = url->URLString()) texts.emplace_back(*text);
  }
  return texts;
}

}  // namespace

// Not under the monitor as a whole: the vault's registries have a lock of their own.
JsonObject QNItem::spotlightMetadata() {
  const auto vault = profile();
  const auto kind = category();
  const std::string vaultUUID = vault == nullptr ? "" : textOf(vault->uuid());
  const std::string vaultName = vault == nullptr ? "" : vault->displayedProfileName();
  const std::string singular = kind == nullptr ? "" : kind->singularName().value_or("");
  JsonObject made(jsonStorage());
  setJsonText(made, QNMetadataItemUUID, textOf(_uuid));
  setJsonText(made, QNMetadataItemProfileUUID, vaultUUID);
  setJsonText(made, QNMetadataItemVaultUUID, vaultUUID);
  setJsonText(made, QNMetadataItemVaultName, vaultName);
  setJsonText(made, QNMetadataItemCategorySingularName, singular);
  setJsonText(made, QNMetadataItemCategoryPluralName,
              kind == nullptr ? "" : kind->pluralName().value_or(""));
  setJsonText(made, QNMetadataItemCategoryUUID, _categoryUUID.value_or(""));
  setJsonText(made, QNMetadataItemTitle, title());
  setJsonText(made, QNMetadataItemDescription, localizedFormat("%@ from %@", singular, vaultName));
  made[QNMetadataItemCreatedAt] = _createdAt;
  made[QNMetadataItemModifiedAt] = _updatedAt;
  if (auto urls = textsOf(URLs()); !urls.empty()) {
    made[QNMetadataItemWebsiteURLs] = std::move(urls);
  }
  const auto account = profileType() == kProfileTypeAccountVault ? accountVaultOf(*this) : nullptr;
  const auto accountName = account == nullptr ? std::nullopt : account->accountName();
  if (accountName && !accountName->empty()) {
    setJsonText(made, QNMetadataItemAccountName, *accountName);
  }
  return made;
}

std::optional<std::chrono::sys_seconds> QNItem::expirationDate() {
  const auto* const chosen =
      std::find_if(kExpiries.begin(), kExpiries.end(),
                   [this](const Expiry& each) { return each.categoryUUID == _categoryUUID; });
  if (chosen == kExpiries.end()) return std::nullopt;
  const std::lock_guard lock(monitor());
  const auto found = findFieldWithIdentifier(chosen->identifier);
  if (const auto* const month = dynamic_cast<const QNItemMonthYearField*>(found.get())) {
    return dateOf(*month, chosen->day);
  }
  const auto* const date = dynamic_cast<const QNItemDateField*>(found.get());
  return date != nullptr && date->value() > 0 ? dateAt(date->value()) : std::nullopt;
}

std::optional<std::string> QNItem::fillableUsername() {
  auto name = username();
  return name && !name->empty() ? std::move(name) : fastmailAlias();
}

}  // namespace quillon
