#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

class QNTemplate;

/// The keys of a wallet, category "115". A new one needs a template: there is no plain way.
class QNCryptoWallet final : public QNItem {
 public:
  /// Always of category "115". Without a template it has no sections.
  static std::shared_ptr<QNCryptoWallet> initNewWithTemplate(
      const std::shared_ptr<QNTemplate>& from);
  explicit QNCryptoWallet(QNExisting existing) : QNItem(existing) {}
  explicit QNCryptoWallet(QNDecoder& coder) : QNItem(coder) {}
  [[nodiscard]] std::string_view className() const override { return "QNCryptoWallet"; }

 private:
  explicit QNCryptoWallet(QNNew) : QNItem(initNew) {}
};

}  // namespace quillon
