#include "quillon/lists/internal/QNSpecifierIndex.h"

#include <bit>

#include "quillon/items/QNItem.h"
#include "quillon/platform/data/QNNotFound.h"

namespace quillon {
namespace {

std::uint32_t markOf(std::size_t hash) {
  return static_cast<std::uint32_t>(std::uint64_t{hash} >> 32);
}

}  // namespace

QNSpecifierIndex::QNSpecifierIndex(const std::vector<std::shared_ptr<QNItem>>& items)
    : _slots(std::bit_ceil(2 * items.size() + 2)) {
  _specifiers.reserve(items.size());
  for (const auto& item : items) {
    const auto position = static_cast<std::uint32_t>(_specifiers.size());
    const auto& specifier = _specifiers.emplace_back(item->itemSpecifier());
    if (specifier == nullptr) continue;
    const std::size_t hash = specifier->hash();
    _slots[slotOf(*specifier, hash)] = {markOf(hash), position};
  }
}

// Where it stands, or the free slot where it belongs.
std::size_t QNSpecifierIndex::slotOf(const QNItemSpecifier& specifier, std::size_t hash) const {
  const std::size_t mask = _slots.size() - 1;
  std::size_t at = hash & mask;
  for (; _slots[at].position != kFree; at = (at + 1) & mask) {
    const Slot& slot = _slots[at];
    if (slot.mark == markOf(hash) && *_specifiers[slot.position] == specifier) break;
  }
  return at;
}

std::int64_t QNSpecifierIndex::positionOf(const QNItemSpecifier& specifier,
                                          std::size_t hash) const {
  const std::uint32_t position = _slots[slotOf(specifier, hash)].position;
  return position == kFree ? kNotFound : std::int64_t{position};
}

}  // namespace quillon
