#include "quillon/kinds/QNCryptoWallet.h"

#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {

QNCryptoWallet::QNCryptoWallet(QNNew) : QNItem(initNew) {
  setCategoryUUID(std::string(QNCategoryUUIDCryptoWallet));
}

QNCryptoWallet::QNCryptoWallet(QNExisting existing) : QNItem(existing) {
  setCategoryUUID(std::string(QNCategoryUUIDCryptoWallet));
}

}  // namespace quillon
