#include "quillon/kinds/QNCreditCard.h"

#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {

QNCreditCard::QNCreditCard(QNNew) : QNItem(initNew) {
  setCategoryUUID(std::string(QNCategoryUUIDCreditCard));
}

QNCreditCard::QNCreditCard(QNExisting existing) : QNItem(existing) {
  setCategoryUUID(std::string(QNCategoryUUIDCreditCard));
}

}  // namespace quillon
