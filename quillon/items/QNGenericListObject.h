#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quillon {

/// What a row of a mixed list stands for. This library makes items alone; the others belong to
/// whoever shows the list.
enum class QNListItemType : std::int64_t {
  none = 0,
  item = 1,
  package = 2,
  other = 3,
};

/// Nothing for a number that stands for none.
[[nodiscard]] constexpr std::optional<QNListItemType> QNListItemTypeWithRawValue(
    std::uint64_t number) noexcept {
  return number <= 3 ? std::optional(static_cast<QNListItemType>(number)) : std::nullopt;
}

/// A row of a mixed list. QNItem is one.
class QNGenericListObject {
 public:
  virtual ~QNGenericListObject() = default;
  [[nodiscard]] virtual std::string identifier() = 0;
  [[nodiscard]] virtual std::string title() = 0;
  [[nodiscard]] virtual std::optional<std::string> subtitle() = 0;
  [[nodiscard]] virtual bool read() = 0;
  [[nodiscard]] virtual std::optional<std::string> accessoryText() = 0;
  [[nodiscard]] virtual QNListItemType listItemType() = 0;
};

}  // namespace quillon
