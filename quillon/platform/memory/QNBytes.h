#pragma once
// Byte buffers. Every buffer of ours wipes its block when it is released or outgrown, so
// that clear text in a temporary never stays behind in freed memory.

#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace quillon {

/// Overwrites `size` bytes with zeros; the compiler can't take the call away.
void wipe(void* block, std::size_t size) noexcept;

/// Shown every block just before it is released, already wiped. For tests; null otherwise.
using QNReleasedBlockObserver = void (*)(const void* block, std::size_t size);
void setReleasedBlockObserver(QNReleasedBlockObserver observer) noexcept;

/// Gives a block back to the heap: wiped first, then shown to the observer.
void releaseWiped(void* block, std::size_t size) noexcept;

/// Wipes what it frees, and leaves new elements uninitialised where the container asks for
/// default values: a buffer of n bytes costs no memset before it is written.
template <class T>
struct QNWipingAllocator {
  using value_type = T;
  QNWipingAllocator() noexcept = default;
  template <class U>
  QNWipingAllocator(const QNWipingAllocator<U>&) noexcept {}  // NOLINT: an allocator converts
  T* allocate(std::size_t count) { return static_cast<T*>(::operator new(count * sizeof(T))); }
  void deallocate(T* block, std::size_t count) noexcept { releaseWiped(block, count * sizeof(T)); }
  template <class U, class... Args>
  void construct(U* place, Args&&... args) {
    if constexpr (sizeof...(Args) == 0) {
      ::new (static_cast<void*>(place)) U;
    } else {
      ::new (static_cast<void*>(place)) U(std::forward<Args>(args)...);
    }
  }
  template <class U>
  bool operator==(const QNWipingAllocator<U>&) const noexcept {
    return true;
  }
};

using Bytes = std::vector<std::uint8_t, QNWipingAllocator<std::uint8_t>>;
using ByteView = std::span<const std::uint8_t>;

/// The same bytes under the other type; valid as long as the argument's memory.
inline ByteView bytesOf(std::string_view text) noexcept {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}
inline std::string_view textOf(ByteView bytes) noexcept {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}
inline Bytes toBytes(ByteView bytes) {
  return Bytes(bytes.begin(), bytes.end());
}

/// Equal bytes? The time taken depends on the lengths only.
bool equalInConstantTime(ByteView a, ByteView b) noexcept;

}  // namespace quillon
