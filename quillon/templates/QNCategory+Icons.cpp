#include "quillon/platform/images/QNImage.h"
#include "quillon/templates/QNCategory.h"
#include "quillon/templates/QNCategoryHelper.h"

namespace quillon {

// The question is the identifier: a category that has one, and no name of a list icon, gets none.
QNImageRef QNCategory::listIcon() const {
  if (!_uuid) _listIconName = QNCategoryHelper::defaultListIconNameFor(std::nullopt);
  return _listIconName ? mr_imageNamed(*_listIconName) : nullptr;
}

QNImageRef QNCategory::detailIcon() const {
  return _detailIconName ? mr_imageNamed(*_detailIconName) : nullptr;
}

QNImageRef QNCategory::menuIcon() const {
  auto icon = mr_imageNamed(QNCategoryHelper::menuIconNameWith(_listIconName));
  return icon != nullptr ? icon : listIcon();
}

QNImageRef QNCategory::touchBarIcon() const {
  auto icon = mr_imageNamed(QNCategoryHelper::touchbarIconNameWith(_listIconName));
  return icon != nullptr ? icon : listIcon();
}

QNImageRef QNCategory::sourceIconForBackgroundStyle(int style) const {
  const auto icon = mr_imageNamed(QNCategoryHelper::sourceIconNameWith(_listIconName, style));
  return icon != nullptr ? icon->imageWithTemplate(true) : listIcon();
}

}  // namespace quillon
