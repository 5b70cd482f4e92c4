#include "cli/output/QNLabels.h"

#include <algorithm>

#include "cli/output/QNShownText.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {

QNLabels::QNLabels(std::span<const std::string_view> keys, std::size_t width) : _width(width) {
  for (const std::string_view key : keys) {
    _width = std::max(_width, shownWidth(QNLocalizedString(key)) + 2);
  }
}

std::string QNLabels::labelFor(std::string_view key) const {
  return padded(QNLocalizedString(key) + ":", _width);
}

}  // namespace quillon
