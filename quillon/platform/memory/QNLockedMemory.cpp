#include "quillon/platform/memory/QNLockedMemory.h"

#include <sodium.h>

#include <mutex>
#include <new>

#include "quillon/platform/memory/QNBytes.h"

namespace quillon {
namespace {

// Blocks of 64 bytes (a raw key) are cut from slabs, since libsodium spends at least four pages
// on an allocation and the lock limit is small. A slab is kept once made: whoever releases
// 100,000 open items frees 100,000 blocks, and the next list of them wants them again.
constexpr std::size_t kBlockSize = 64;
constexpr std::size_t kSlabBlocks = 255;  // with the canary, just under four pages

struct FreeBlock {
  FreeBlock* next;
};

struct Arena {
  std::mutex mutex;
  FreeBlock* free = nullptr;
  std::size_t inUse = 0;
};

Arena& arena() {
  static Arena* const it = new Arena;  // never destroyed: static objects may free keys at exit
  return *it;
}

void* sodiumAllocate(std::size_t size) {
  static const int ready = sodium_init();
  void* const block = ready < 0 ? nullptr : sodium_malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void addSlab(Arena& to) {
  auto* const slab = static_cast<unsigned char*>(sodiumAllocate(kBlockSize * kSlabBlocks));
  for (std::size_t i = kSlabBlocks; i-- > 0;) {
    to.free = ::new (slab + i * kBlockSize) FreeBlock{to.free};
  }
}

}  // namespace

void* lockedAllocate(std::size_t size) {
  Arena& from = arena();
  const std::lock_guard guard(from.mutex);
  if (size > kBlockSize) {
    void* const block = sodiumAllocate(size);
    from.inUse += size;
    return block;
  }
  if (from.free == nullptr) addSlab(from);
  FreeBlock* const block = from.free;
  from.free = block->next;
  from.inUse += size;
  return block;
}

void lockedFree(void* block, std::size_t size) noexcept {
  Arena& to = arena();
  wipe(block, size);
  const std::lock_guard guard(to.mutex);
  to.inUse -= size;
  if (size > kBlockSize) {
    sodium_free(block);
    return;
  }
  to.free = ::new (block) FreeBlock{to.free};
}

std::size_t lockedBytesInUse() noexcept {
  Arena& of = arena();
  const std::lock_guard guard(of.mutex);
  return of.inUse;
}

}  // namespace quillon
