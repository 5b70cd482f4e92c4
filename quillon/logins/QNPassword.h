#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

/// A generated password that isn't a login yet, category "005". The password is a text in its
/// details.
class QNPassword final : public QNItem {
 public:
  explicit QNPassword(QNNew);
  explicit QNPassword(QNExisting existing);
  explicit QNPassword(QNDecoder& coder) : QNItem(coder) {}

  [[nodiscard]] std::string_view className() const override { return "QNPassword"; }
  [[nodiscard]] std::optional<QNSecret> password() override;
  void setPassword(std::optional<std::string_view> password) override;
  [[nodiscard]] std::optional<QNSecret> clipboardValue() override { return password(); }
  /// What a fill record made from this item is.
  [[nodiscard]] std::string_view fillObjectContext() const;
};

}  // namespace quillon
