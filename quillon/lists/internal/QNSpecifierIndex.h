#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "quillon/touchpoints/QNItemSpecifier.h"

namespace quillon {

class QNItem;

/// Where each item of a section stands, by its specifier as it was when the index was made. A list
/// asks one section after the other, and most of them don't have it: so one table of hashes, in
/// which a miss is mostly one look at memory, and nothing is allocated.
class QNSpecifierIndex final {
 public:
  /// None of the items is null. One without a specifier isn't found.
  explicit QNSpecifierIndex(const std::vector<std::shared_ptr<QNItem>>& items);

  /// The last position of that specifier, or kNotFound. `hash` is the specifier's.
  [[nodiscard]] std::int64_t positionOf(const QNItemSpecifier& specifier, std::size_t hash) const;

 private:
  static constexpr std::uint32_t kFree = 0xFFFFFFFF;
  struct Slot {
    std::uint32_t mark = 0;  // upper half of the hash
    std::uint32_t position = kFree;
  };
  [[nodiscard]] std::size_t slotOf(const QNItemSpecifier& specifier, std::size_t hash) const;

  std::vector<QNItemSpecifier::Ref> _specifiers;  // by position
  std::vector<Slot> _slots;                       // a power of two, half of them free at least
};

}  // namespace quillon
