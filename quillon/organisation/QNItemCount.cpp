#include "quillon/organisation/internal/QNItemCount.h"

#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {

std::string localizedItemCount(std::uint64_t count) {
  if (count == 0) return QNLocalizedString("empty");
  if (count == 1) return QNLocalizedString("1 item");
  return localizedFormat("%@ items", qn_formatNumber(count));
}

}  // namespace quillon
