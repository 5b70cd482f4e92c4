#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

class QNTemplate;

/// An item of a category that has a template and no class of its own.
class QNTemplateItem final : public QNItem {
 public:
  /// A new item of the template's category, with its sections. Null for none.
  static std::shared_ptr<QNTemplateItem> initNewWithTemplate(
      const std::shared_ptr<QNTemplate>& from);
  explicit QNTemplateItem(QNExisting existing) : QNItem(existing) {}
  explicit QNTemplateItem(QNDecoder& coder) : QNItem(coder) {}
  [[nodiscard]] std::string_view className() const override { return "QNTemplateItem"; }

  /// The first line of the field that the template names, of at most 80 characters; "" where the
  /// template names none.
  [[nodiscard]] std::optional<std::string> _additionalInformation() override;
  [[nodiscard]] bool isSoftwareLicense() const;
  /// A license shows the icon of its program as it is.
  [[nodiscard]] bool useOverlayInCustomIcon() const override { return !isSoftwareLicense(); }

 private:
  explicit QNTemplateItem(QNNew) : QNItem(initNew) {}
  [[nodiscard]] std::shared_ptr<QNTemplate> templateOfCategory() const;
};

}  // namespace quillon
