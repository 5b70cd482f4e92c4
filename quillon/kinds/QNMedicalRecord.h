#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

class QNTemplate;

/// What was found and done at a visit, category "113". A new one needs a template: there is no
/// plain way.
class QNMedicalRecord final : public QNItem {
 public:
  /// Always of category "113". Without a template it has no sections.
  static std::shared_ptr<QNMedicalRecord> initNewWithTemplate(
      const std::shared_ptr<QNTemplate>& from);
  explicit QNMedicalRecord(QNExisting existing) : QNItem(existing) {}
  explicit QNMedicalRecord(QNDecoder& coder) : QNItem(coder) {}
  [[nodiscard]] std::string_view className() const override { return "QNMedicalRecord"; }
  /// The day in field "date", or of the item's creation: that too where the field's day lies before
  /// 1970, or the field is of another kind.
  [[nodiscard]] std::optional<std::string> _additionalInformation() override;

 private:
  explicit QNMedicalRecord(QNNew) : QNItem(initNew) {}
};

}  // namespace quillon
