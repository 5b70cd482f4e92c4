#include <algorithm>
#include <array>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/items/QNQuickAccessShortcut.h"
#include "quillon/items/internal/QNItemState.h"
#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {
namespace {

struct CopiedField {
  std::string_view identifier;
  std::uint64_t command = 0;
};

constexpr std::size_t kMostFields = 11;

// What an item of that category offers, in order; up to the first without an identifier.
struct CopiedFields {
  std::string_view categoryUUID;
  std::array<CopiedField, kMostFields> fields;
};

constexpr std::array<CopiedFields, 12> kCopiedFields = {{
    {QNCategoryUUIDPassport,
     {{{"fullname"},
       {"number"},
       {"expiry_date"},
       {"issuing_country"},
       {"sex"},
       {"nationality"},
       {"issuing_authority"},
       {"birthplace"},
       {"issue_date"},
       {"birthdate"},
       {"type"}}}},
    {QNCategoryUUIDSocialSecurityNumber, {{{"name"}, {"number"}}}},
    {QNCategoryUUIDDriverLicense, {{{"fullname"}, {"number"}, {"expiry_date"}}}},
    {QNCategoryUUIDRouter, {{{"wireless_password", 1}, {"password", 2}}}},
    {QNCategoryUUIDBankAccount,
     {{{"routingNo"}, {"accountNo"}, {"swift"}, {"iban"}, {"telephonePin"}}}},
    {QNCategoryUUIDServer, {{{"username", 2}, {"password", 1}, {"url", 3}}}},
    {QNCategoryUUIDEmail, {{{"pop_username", 2}, {"pop_password", 1}, {"pop_server", 3}}}},
    {QNCategoryUUIDDatabase, {{{"username", 2}, {"password", 1}, {"hostname", 3}}}},
    {QNCategoryUUIDSoftwareLicense, {{{"reg_name", 2}, {"reg_code", 1}, {"reg_email", 3}}}},
    {QNCategoryUUIDRewards, {{{"membership_no", 2}, {"pin", 1}, {"member_name", 3}}}},
    {QNCategoryUUIDMembership, {{{"membership_no", 2}, {"pin", 1}, {"expiry_date", 3}}}},
    {QNCategoryUUIDIdentity, {{{"email", 2}, {"address", 3}}}},
}};

// Of the first fields of a section, by their place in it; 0 beyond.
constexpr std::array<std::uint64_t, 3> kCommandsByPlace = {2, 1, 3};

bool isOffered(const QNItemField& field, bool reveals) {
  return !field.rawValue().isNothing() && (reveals || !field.isConcealedField());
}

}  // namespace

bool QNItem::mayReveal() const {
  const auto vault = profile();
  return vault != nullptr && vault->hasPermission(kPermissionReveal);
}

std::vector<QNQuickAccessShortcut> QNItem::quickAccessFields() {
  return createQuickAccessFields();
}

std::vector<QNQuickAccessShortcut> QNItem::createQuickAccessFields() {
  const auto* const chosen =
      std::find_if(kCopiedFields.begin(), kCopiedFields.end(),
                   [this](const CopiedFields& each) { return each.categoryUUID == _categoryUUID; });
  if (chosen == kCopiedFields.end()) return createQuickAccessFieldsFromFirstSection();
  const std::lock_guard lock(monitor());
  std::vector<QNQuickAccessShortcut> shortcuts;
  for (const CopiedField& field : chosen->fields) {
    if (!field.identifier.empty()) {
      addFieldWithIdentifier(field.identifier, field.command, shortcuts);
    }
  }
  return shortcuts;
}

// A field that is left out keeps its place: the others' keys don't move.
std::vector<QNQuickAccessShortcut> QNItem::createQuickAccessFieldsFromFirstSection() {
  const std::lock_guard lock(monitor());
  std::vector<QNQuickAccessShortcut> shortcuts;
  const auto section = fieldSectionAtIndex(0);
  if (section == nullptr) return shortcuts;
  const bool reveals = mayReveal();
  for (std::size_t place = 0; place < section->numberOfFields(); ++place) {
    auto field = section->fieldAtIndex(place);
    if (!isOffered(*field, reveals)) continue;
    const std::uint64_t command = place < kCommandsByPlace.size() ? kCommandsByPlace.at(place) : 0;
    shortcuts.emplace_back(std::move(field), command);
  }
  return shortcuts;
}

void QNItem::addFieldWithIdentifier(std::string_view identifier, std::uint64_t requestedCopyKey,
                                    std::vector<QNQuickAccessShortcut>& ifPossibleToArray) {
  const std::lock_guard lock(monitor());
  auto field = findFieldWithIdentifier(identifier);
  if (field == nullptr || !isOffered(*field, mayReveal())) return;
  ifPossibleToArray.emplace_back(std::move(field), requestedCopyKey);
}

// The first one, with a value or without: what it is worth is told when a code is asked for.
void QNItem::addOneTimePasswordFieldRequestingCopyKey(
    std::uint64_t copyKey, std::vector<QNQuickAccessShortcut>& ifPossibleToArray) {
  const std::lock_guard lock(monitor());
  for (const auto& section : fieldSections()) {
    for (const auto& field : section->fields()) {
      if (!field->isTOTPField()) continue;
      ifPossibleToArray.emplace_back(field, copyKey);
      return;
    }
  }
}

}  // namespace quillon
