#include "quillon/kinds/QNTemplateItem.h"

#include "quillon/templates/QNTemplateManager.h"

namespace quillon {

QNTemplateItem::QNTemplateItem(QNNew, const QNTemplate& initNewWithTemplate) : QNItem(initNew) {
  setCategoryUUID(initNewWithTemplate.uuid());
}

}  // namespace quillon
