#pragma once

#include "quillon/templates/QNCategory.h"

namespace quillon {

/// A row of a list of categories that stands for no category: all items, the archive and so on.
/// It lives in memory alone: never archive one, nothing reads it back.
class QNPlaceholderCategory final : public QNCategory {
 public:
  enum class Type { hintRow = 0, allItems = 1, trash = 2, compromisedWebsites = 3 };

  static std::shared_ptr<QNPlaceholderCategory> hintRowCategory();
  static std::shared_ptr<QNPlaceholderCategory> allItemsCategory();
  static std::shared_ptr<QNPlaceholderCategory> trashCategory();
  static std::shared_ptr<QNPlaceholderCategory> compromisedWebsitesCategory();
  /// Identifier "0??", that name for one and for many, no icon names, and a place behind all
  /// stored categories.
  static std::shared_ptr<QNPlaceholderCategory> placeholderCategoryWithName(std::string_view name,
                                                                            Type placeholderType);

  explicit QNPlaceholderCategory(Type placeholderType)
      : QNCategory(initNew), _placeholderType(placeholderType) {}
  [[nodiscard]] std::string_view className() const override { return "QNPlaceholderCategory"; }
  [[nodiscard]] Type placeholderType() const { return _placeholderType; }

 private:
  Type _placeholderType;
};

}  // namespace quillon
