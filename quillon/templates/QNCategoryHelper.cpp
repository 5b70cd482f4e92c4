#include "quillon/templates/QNCategoryHelper.h"

#include <array>
#include <map>

#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

// Names of one category, in the language of the table's first use.
struct QNCategoryInfo {
  std::string iconName;  // middle part of its icon names; empty for tombstones
  std::string singularName;
  std::string pluralName;
};

struct Row {
  std::string_view uuid;
  std::string_view iconName;
  std::string_view singularName;
  std::string_view pluralName;
};

constexpr std::array<Row, 14> kRows = {{
    {QNCategoryUUIDLogin, "login", "Login", "Logins"},
    {QNCategoryUUIDSecureNote, "secure-note", "Secure Note", "Secure Notes"},
    {QNCategoryUUIDCreditCard, "credit-card", "Credit Card", "Credit Cards"},
    {QNCategoryUUIDIdentity, "identity", "Identity", "Identities"},
    {QNCategoryUUIDPassword, "password", "Password", "Passwords"},
    {QNCategoryUUIDRouter, "router", "Router", "Routers"},
    {QNCategoryUUIDServer, "server", "Server", "Servers"},
    {QNCategoryUUIDEmail, "email", "Email", "Emails"},
    {QNCategoryUUIDDocument, "document", "Document", "Documents"},
    {QNCategoryUUIDAPICredential, "api-credential", "API Credential", "API Credentials"},
    {QNCategoryUUIDMedicalRecord, "medical-record", "Medical Record", "Medical Records"},
    {QNCategoryUUIDCryptoWallet, "crypto-wallet", "Crypto Wallet", "Crypto Wallets"},
    {QNCategoryUUIDSSHKey, "ssh-key", "SSH Key", "SSH Keys"},
    // No icon: the names come out with a double dash, and stored rows hold them so.
    {QNCategoryUUIDTombstone, "", "Tombstone", "Tombstones"},
}};

using Table = std::map<std::string_view, QNCategoryInfo>;

// All names in one language, whoever changes it meanwhile: the table stays.
Table localizedTable() {
  const QNLocalization& texts = QNLocalization::sharedLocalization();
  const std::string language = texts.language();
  Table table;
  for (const Row& row : kRows) {
    table[row.uuid] = {
        std::string(row.iconName),
        texts.localizedStringForKey(row.singularName, "category name, singular", language),
        texts.localizedStringForKey(row.pluralName, "category name, plural", language),
    };
  }
  return table;
}

const QNCategoryInfo* infoFor(QNOptionalUUID uuid) {
  if (!uuid) return nullptr;
  static const Table table = localizedTable();
  const auto found = table.find(*uuid);
  return found == table.end() ? nullptr : &found->second;
}

std::string replacingAll(std::string text, std::string_view part, std::string_view with) {
  for (std::size_t at = text.find(part); at != std::string::npos;
       at = text.find(part, at + with.size())) {
    text.replace(at, part.size(), with);
  }
  return text;
}

}  // namespace

std::optional<std::string> QNCategoryHelper::defaultSingularNameFor(QNOptionalUUID uuid) {
  if (!uuid) return "";
  const QNCategoryInfo* const info = infoFor(uuid);
  return info == nullptr ? std::nullopt : std::optional(info->singularName);
}

std::optional<std::string> QNCategoryHelper::defaultPluralNameFor(QNOptionalUUID uuid) {
  if (!uuid) return QNLocalizedString("All Items");
  const QNCategoryInfo* const info = infoFor(uuid);
  return info == nullptr ? std::nullopt : std::optional(info->pluralName);
}

std::string QNCategoryHelper::defaultListIconNameFor(QNOptionalUUID uuid) {
  if (!uuid) return "type-allitems-list";
  const QNCategoryInfo* const info = infoFor(uuid);
  return info == nullptr ? "type-generic-list" : "type-" + info->iconName + "-list";
}

// "-details" for the known, "-detail" for the rest: the image files are named so.
std::string QNCategoryHelper::defaultDetailIconNameFor(QNOptionalUUID uuid) {
  const QNCategoryInfo* const info = infoFor(uuid);
  return info == nullptr ? "type-generic-detail" : "type-" + info->iconName + "-details";
}

std::string QNCategoryHelper::sourceIconNameWith(std::optional<std::string_view> listIconName,
                                                 int style) {
  if (!listIconName) return "type-generic-source";
  return replacingAll(replacingAll(std::string(*listIconName), "type-", "sidebar-"), "-list",
                      style == 0 ? "-light-background" : "");
}

std::string QNCategoryHelper::menuIconNameWith(std::optional<std::string_view> listIconName) {
  if (!listIconName) return "type-generic-source";
  return replacingAll(std::string(*listIconName), "-list", "-source");
}

std::string QNCategoryHelper::touchbarIconNameWith(std::optional<std::string_view> listIconName) {
  if (!listIconName) return "type-allitems-dark-color";
  return replacingAll(std::string(*listIconName), "-list", "-dark-color");
}

}  // namespace quillon
