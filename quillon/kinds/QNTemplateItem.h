#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

class QNTemplate;

/// An item of a category that has a template and no class of its own.
class QNTemplateItem final : public QNItem {
 public:
  /// A new item of the template's category.
  QNTemplateItem(QNNew, const QNTemplate& initNewWithTemplate);
  explicit QNTemplateItem(QNExisting existing) : QNItem(existing) {}
  [[nodiscard]] std::string_view className() const override { return "QNTemplateItem"; }
};

}  // namespace quillon
