#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

/// The keys of a wallet, category "115".
class QNCryptoWallet final : public QNItem {
 public:
  explicit QNCryptoWallet(QNNew);
  explicit QNCryptoWallet(QNExisting existing);
  [[nodiscard]] std::string_view className() const override { return "QNCryptoWallet"; }
};

}  // namespace quillon
