#include "quillon/platform/json/QNForeignElements.h"

namespace quillon {

void QNForeignElements::add(std::size_t place, const Json& element) {
  _elements.push_back({place, Json(element, jsonStorage())});
}

}  // namespace quillon
