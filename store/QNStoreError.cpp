#include "store/QNStoreError.h"

namespace quillon {

QNError storeError(QNStoreErrorCode code, std::string_view message) {
  return {std::string(QNStoreErrorDomain), static_cast<std::int64_t>(code), std::string(message)};
}

bool isStoreError(const QNError& error, QNStoreErrorCode code) {
  return error.domain == QNStoreErrorDomain && error.code == static_cast<std::int64_t>(code);
}

}  // namespace quillon
