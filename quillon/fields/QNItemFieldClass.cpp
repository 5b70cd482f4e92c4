#include "quillon/fields/QNItemFieldClass.h"

#include "quillon/platform/text/QNLocalization.h"

namespace quillon {

std::string QNItemFieldClass::localizedTypeName() const {
  return QNLocalizedString(localizedTypeNameKey);
}

}  // namespace quillon
