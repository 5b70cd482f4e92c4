#include "quillon/templates/QNPlaceholderCategory.h"

#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

constexpr std::uint64_t kBehindAllStored = 2147483647;

std::shared_ptr<QNPlaceholderCategory> placeholderWithIcon(std::string_view name,
                                                           QNPlaceholderCategory::Type type,
                                                           std::string_view listIconName) {
  auto category = QNPlaceholderCategory::placeholderCategoryWithName(name, type);
  category->setListIconName(std::string(listIconName));
  return category;
}

}  // namespace

std::shared_ptr<QNPlaceholderCategory> QNPlaceholderCategory::placeholderCategoryWithName(
    std::string_view name, Type placeholderType) {
  auto category = std::make_shared<QNPlaceholderCategory>(placeholderType);
  category->setUuid(std::string(QNCategoryUUIDPlaceholder));
  category->setSingularName(std::string(name));
  category->setPluralName(std::string(name));
  category->setListIconName("");
  category->setDetailIconName("");
  category->setDisplayOrder(kBehindAllStored);
  return category;
}

std::shared_ptr<QNPlaceholderCategory> QNPlaceholderCategory::hintRowCategory() {
  return placeholderCategoryWithName("hint row", Type::hintRow);
}

std::shared_ptr<QNPlaceholderCategory> QNPlaceholderCategory::allItemsCategory() {
  return placeholderWithIcon(QNLocalizedString("All Items"), Type::allItems, "type-allitems-list");
}

std::shared_ptr<QNPlaceholderCategory> QNPlaceholderCategory::trashCategory() {
  return placeholderWithIcon(QNLocalizedString("Archive"), Type::trash, "type-archive-list");
}

std::shared_ptr<QNPlaceholderCategory> QNPlaceholderCategory::compromisedWebsitesCategory() {
  return placeholderWithIcon(QNLocalizedString("Compromised Websites"), Type::compromisedWebsites,
                             "type-compromisedsites-list");
}

}  // namespace quillon
