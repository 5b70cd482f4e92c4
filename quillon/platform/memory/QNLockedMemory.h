#pragma once
// Memory for keys: guarded pages of libsodium, locked against swapping while the process's
// lock limit (often 8 MiB) allows it, cut into small blocks that are wiped when freed.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillon {

/// A block of `size` bytes, 1 or more. Never null: throws std::bad_alloc, which is fatal here.
void* lockedAllocate(std::size_t size);
/// Wipes the block and gives it back. `size` is the size it was asked with.
void lockedFree(void* block, std::size_t size) noexcept;
/// Bytes in use by callers now. For tests: it is 0 once every key is gone.
std::size_t lockedBytesInUse() noexcept;

template <class T>
struct QNLockedAllocator {
  using value_type = T;
  QNLockedAllocator() noexcept = default;
  template <class U>
  QNLockedAllocator(const QNLockedAllocator<U>&) noexcept {}  // NOLINT: an allocator converts
  T* allocate(std::size_t count) { return static_cast<T*>(lockedAllocate(count * sizeof(T))); }
  void deallocate(T* block, std::size_t count) noexcept { lockedFree(block, count * sizeof(T)); }
  template <class U>
  bool operator==(const QNLockedAllocator<U>&) const noexcept {
    return true;
  }
};

/// Key bytes in locked memory.
using QNKeyBytes = std::vector<std::uint8_t, QNLockedAllocator<std::uint8_t>>;

}  // namespace quillon
