#include "quillon/platform/memory/QNSecret.h"

#include <ostream>

namespace quillon {

void QNSecret::removeLast() noexcept {
  if (_text.empty()) return;
  _text.back() = '\0';
  _text.pop_back();
}

bool QNSecret::equals(std::string_view other) const noexcept {
  return equalInConstantTime(bytesOf(reveal()), bytesOf(other));
}

std::ostream& operator<<(std::ostream& out, const QNSecret& /*secret*/) {
  return out << "[secret]";
}

}  // namespace quillon
