#pragma once
// For tests: which of the library's pictures an image is.

#include "quillon/platform/images/QNImage.h"

namespace quillon {

inline bool isPictureNamed(const std::shared_ptr<const QNImage>& image, std::string_view name) {
  const auto named = mr_imageNamed(name);
  return image != nullptr && named != nullptr && toBytes(image->data()) == toBytes(named->data());
}

}  // namespace quillon
