#include "cli/fields/QNCategoryNames.h"

#include <algorithm>
#include <array>

#include "quillon/platform/text/QNText.h"
#include "quillon/templates/QNCategoryHelper.h"
#include "quillon/templates/QNTemplateManager.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {
namespace {

struct Row {
  std::string_view uuid;
  std::string_view name;
};

constexpr std::array<Row, 22> kRows{{
    {QNCategoryUUIDLogin, "login"},
    {QNCategoryUUIDCreditCard, "credit-card"},
    {QNCategoryUUIDSecureNote, "secure-note"},
    {QNCategoryUUIDIdentity, "identity"},
    {QNCategoryUUIDPassword, "password"},
    {QNCategoryUUIDDocument, "document"},
    {QNCategoryUUIDSoftwareLicense, "software-license"},
    {QNCategoryUUIDBankAccount, "bank-account"},
    {QNCategoryUUIDDatabase, "database"},
    {QNCategoryUUIDDriverLicense, "driver-license"},
    {QNCategoryUUIDOutdoorLicense, "outdoor-license"},
    {QNCategoryUUIDMembership, "membership"},
    {QNCategoryUUIDPassport, "passport"},
    {QNCategoryUUIDRewards, "reward-program"},
    {QNCategoryUUIDSocialSecurityNumber, "social-security-number"},
    {QNCategoryUUIDRouter, "router"},
    {QNCategoryUUIDServer, "server"},
    {QNCategoryUUIDEmail, "email"},
    {QNCategoryUUIDAPICredential, "api-credential"},
    {QNCategoryUUIDMedicalRecord, "medical-record"},
    {QNCategoryUUIDSSHKey, "ssh-key"},
    {QNCategoryUUIDCryptoWallet, "crypto-wallet"},
}};

// The helper knows the usual categories without reading a template.
template <class HelperName, class TemplateName>
std::string localizedName(std::string_view uuid, const HelperName& helper,
                          const TemplateName& ofTemplate) {
  if (const auto name = helper(uuid)) return *name;
  const auto found = QNTemplateManager::sharedManager().findTemplateWithUUID(uuid);
  return found == nullptr ? std::string(uuid) : ofTemplate(*found);
}

bool isNamed(const Row& row, std::string_view text, const std::string& folded) {
  return row.uuid == text || row.name == folded ||
         foldedForSearch(titleOfCategory(row.uuid)) == folded ||
         foldedForSearch(pluralTitleOfCategory(row.uuid)) == folded;
}

}  // namespace

std::vector<std::string> knownCategoryUUIDs() {
  std::vector<std::string> uuids;
  for (const Row& row : kRows) uuids.emplace_back(row.uuid);
  std::sort(uuids.begin(), uuids.end(), [](const std::string& a, const std::string& b) {
    const auto orderOfA = QNGenericCategoryDefaultDisplayOrder(a);
    const auto orderOfB = QNGenericCategoryDefaultDisplayOrder(b);
    if (orderOfA != orderOfB) return orderOfA < orderOfB;
    return localizedCompare(titleOfCategory(a), titleOfCategory(b)) < 0;
  });
  return uuids;
}

std::string_view nameOfCategory(std::string_view uuid) {
  const auto* const found =
      std::find_if(kRows.begin(), kRows.end(), [uuid](const Row& row) { return row.uuid == uuid; });
  return found == kRows.end() ? std::string_view() : found->name;
}

std::string titleOfCategory(std::string_view uuid) {
  return localizedName(uuid, QNCategoryHelper::defaultSingularNameFor,
                       [](const QNTemplate& from) { return from.localizedTitle(); });
}

std::string pluralTitleOfCategory(std::string_view uuid) {
  return localizedName(uuid, QNCategoryHelper::defaultPluralNameFor,
                       [](const QNTemplate& from) { return from.localizedPluralTitle(); });
}

bool isAvailable(std::string_view uuid) {
  return uuid != QNCategoryUUIDTombstone && QNProfileSupportedCategoryUUIDs().count(uuid) != 0;
}

std::optional<std::string> categoryNamed(std::string_view text) {
  const std::string folded = foldedForSearch(text);
  for (const Row& row : kRows) {
    if (isNamed(row, text, folded)) return std::string(row.uuid);
  }
  return std::nullopt;
}

}  // namespace quillon
