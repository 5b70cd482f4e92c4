#include "quillon/templates/QNGenericCategory.h"

#include <array>
#include <utility>

#include "quillon/files/H9Document.h"
#include "quillon/items/QNTombstone.h"
#include "quillon/kinds/QNCreditCard.h"
#include "quillon/kinds/QNCryptoWallet.h"
#include "quillon/kinds/QNIdentity.h"
#include "quillon/kinds/QNMedicalRecord.h"
#include "quillon/kinds/QNSecureNote.h"
#include "quillon/kinds/QNTemplateItem.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/templates/QNTemplateManager.h"

namespace quillon {
namespace {

constexpr std::uint64_t kOrderOfOthers = 95000;
constexpr std::array<std::pair<std::string_view, std::uint64_t>, 7> kOrders = {{
    {QNCategoryUUIDLogin, 10000},
    {QNCategoryUUIDSecureNote, 20000},
    {QNCategoryUUIDCreditCard, 30000},
    {QNCategoryUUIDIdentity, 40000},
    {QNCategoryUUIDPassword, 50000},
    {QNCategoryUUIDDocument, 60000},
    {QNCategoryUUIDTombstone, 2147483647},
}};

using Classes = std::vector<std::pair<std::string_view, QNItemClass>>;

const Classes& classesOfFixedCategories() {
  static const Classes classes = {
      {QNCategoryUUIDLogin, itemClassNamed<QNLogin>("QNLogin")},
      {QNCategoryUUIDSecureNote, itemClassNamed<QNSecureNote>("QNSecureNote")},
      {QNCategoryUUIDCreditCard, itemClassOfTemplates<QNCreditCard>("QNCreditCard")},
      {QNCategoryUUIDIdentity, itemClassOfTemplates<QNIdentity>("QNIdentity")},
      {QNCategoryUUIDPassword, itemClassNamed<QNPassword>("QNPassword")},
      {QNCategoryUUIDDocument, itemClassNamed<H9Document>("H9Document")},
      {QNCategoryUUIDTombstone, itemClassNamed<QNTombstone>("QNTombstone")},
      {QNCategoryUUIDPrivacyComLogin, itemClassNamed<QNPrivacyComLogin>("QNPrivacyComLogin")},
      {QNCategoryUUIDMedicalRecord, itemClassOfTemplates<QNMedicalRecord>("QNMedicalRecord")},
      {QNCategoryUUIDCryptoWallet, itemClassOfTemplates<QNCryptoWallet>("QNCryptoWallet")},
  };
  return classes;
}

const QNItemClass& classOfTemplateItems() {
  static const QNItemClass templateItem = itemClassOfTemplates<QNTemplateItem>("QNTemplateItem");
  return templateItem;
}

std::uint64_t defaultOrderOf(const QNGenericCategory& category) {
  return QNGenericCategoryDefaultDisplayOrder(category.uuid());
}

}  // namespace

bool QNGenericCategoryIsSystemCategory(QNOptionalUUID uuid) {
  return uuid && uuid->starts_with("00") && textLength(*uuid) == 3;
}

bool QNGenericCategoryIsItemEditable(QNOptionalUUID uuid) {
  return uuid != QNCategoryUUIDSSHKey && uuid != QNCategoryUUIDTombstone;
}

const std::set<std::string, std::less<>>& QNGenericCategoryStandardCategoryUUIDs() {
  static const std::set<std::string, std::less<>> standard = {
      std::string(QNCategoryUUIDLogin), std::string(QNCategoryUUIDCreditCard),
      std::string(QNCategoryUUIDSecureNote), std::string(QNCategoryUUIDIdentity),
      std::string(QNCategoryUUIDTombstone)};
  return standard;
}

const std::vector<std::string>& QNGenericCategoryAvailableWatchCategories() {
  static const std::vector<std::string> onWatch = {
      std::string(QNCategoryUUIDLogin),         std::string(QNCategoryUUIDPassword),
      std::string(QNCategoryUUIDCreditCard),    std::string(QNCategoryUUIDSecureNote),
      std::string(QNCategoryUUIDPassport),      std::string(QNCategoryUUIDSocialSecurityNumber),
      std::string(QNCategoryUUIDDriverLicense), std::string(QNCategoryUUIDRouter),
      std::string(QNCategoryUUIDBankAccount)};
  return onWatch;
}

std::uint64_t QNGenericCategoryDefaultDisplayOrder(QNOptionalUUID uuid) {
  if (!uuid) return 0;
  for (const auto& [special, order] : kOrders) {
    if (special == *uuid) return order;
  }
  return kOrderOfOthers;
}

const QNItemClass* QNGenericCategoryItemClassForCategoryUUID(QNOptionalUUID uuid) {
  if (!uuid) return nullptr;
  for (const auto& [fixed, itemClass] : classesOfFixedCategories()) {
    if (fixed == *uuid) return &itemClass;
  }
  const bool hasTemplate = QNTemplateManager::sharedManager().findTemplateWithUUID(uuid) != nullptr;
  return hasTemplate ? &classOfTemplateItems() : nullptr;
}

std::uint64_t QNGenericCategoryDisplayOrder(const QNGenericCategory& category) {
  return category.ownDisplayOrder().value_or(defaultOrderOf(category));
}

bool QNGenericCategory::isSystemCategory() const {
  return QNGenericCategoryIsSystemCategory(uuid());
}

std::size_t QNGenericCategory::hash() const {
  const auto identifier = uuid();
  return identifier ? std::hash<std::string>{}(*identifier) : 0;
}

std::strong_ordering QNGenericCategory::compare(const QNGenericCategory& other) const {
  return QNGenericCategoryCompare(*this, other);
}

std::strong_ordering QNGenericCategoryCompare(const QNGenericCategory& a,
                                              const QNGenericCategory& b) {
  const std::uint64_t orderOfA = QNGenericCategoryDisplayOrder(a);
  const std::uint64_t orderOfB = QNGenericCategoryDisplayOrder(b);
  if (orderOfA != orderOfB) return orderOfA <=> orderOfB;
  return a.singularName() <=> b.singularName();
}

// Never by a category's own order: a list over several vaults would mix their orders.
std::weak_ordering QNGenericCategoryH9Compare(const QNGenericCategory& a,
                                              const QNGenericCategory& b) {
  if (defaultOrderOf(a) != defaultOrderOf(b)) return defaultOrderOf(a) <=> defaultOrderOf(b);
  return localizedCaseInsensitiveCompare(a.singularName().value_or(""),
                                         b.singularName().value_or("")) <=> 0;
}

}  // namespace quillon
