#include "quillon/kinds/QNCryptoWallet.h"

#include "quillon/templates/QNCategoryUUID.h"
#include "quillon/templates/QNTemplate.h"

namespace quillon {

std::shared_ptr<QNCryptoWallet> QNCryptoWallet::initNewWithTemplate(
    const std::shared_ptr<QNTemplate>& from) {
  const std::shared_ptr<QNCryptoWallet> wallet(new QNCryptoWallet(initNew));
  wallet->setCategoryUUID(std::string(QNCategoryUUIDCryptoWallet));
  if (from != nullptr) wallet->_setFieldSections(from->instantiateFieldSections());
  return wallet;
}

}  // namespace quillon
