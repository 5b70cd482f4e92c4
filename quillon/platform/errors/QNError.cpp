#include "quillon/platform/errors/QNError.h"

#include <fmt/format.h>

namespace quillon {

std::string QNError::domainCodeString() const {
  return fmt::format("{} {}", domain, code);
}

QNError QNError::within(std::string_view where) const {
  return {domain, code, fmt::format("{}: {}", where, message)};
}

QNError QNError::unreadable(std::string_view message) {
  return {std::string(MRErrorDomain), kErrorUnreadableData, std::string(message)};
}

}  // namespace quillon
