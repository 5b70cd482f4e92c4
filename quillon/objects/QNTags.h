#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace quillon {

/// Picks the constructor that makes an object without a row.
struct QNNew {};
inline constexpr QNNew initNew{};

/// Picks the constructor that makes the shell of a stored object: initExistingWithID.
struct QNExisting {
  std::uint64_t oid = 0;
};

/// An identifier whose string object is shared: that two objects hold the very same one can be
/// seen, and means something (QNItem::isEqualToItem).
using QNSharedString = std::shared_ptr<const std::string>;
inline QNSharedString sharedString(std::string text) {
  return std::make_shared<const std::string>(std::move(text));
}
/// Equal content; two absent strings are equal.
inline bool equalContent(const QNSharedString& a, const QNSharedString& b) {
  return a == b || (a != nullptr && b != nullptr && *a == *b);
}

}  // namespace quillon
