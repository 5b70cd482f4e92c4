#include "quillon/platform/images/QNImage.h"
#include "quillon/templates/QNCategory.h"
#include "quillon/templates/QNCategoryHelper.h"

namespace quillon {

// A category with an identifier and no name of a list icon gets none here: the question is the
// identifier.
std::optional<std::string> QNCategory::usedListIconName() const {
  return _uuid ? _listIconName : QNCategoryHelper::defaultListIconNameFor(std::nullopt);
}

QNImageRef QNCategory::listIcon() const {
  const auto name = usedListIconName();
  return name ? mr_imageNamed(*name) : nullptr;
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
