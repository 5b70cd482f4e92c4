#include "quillon/platform/internal/QNMemoryWatch.h"

#include <malloc.h>
#include <pthread.h>
#include <sys/mman.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

#include "quillon/platform/memory/QNBytes.h"

namespace quillon {
namespace {

struct Watch {
  // Not a std::string: nothing here may call operator delete.
  std::array<char, 512> needle{};
  std::atomic<std::size_t> size{0};  // 0: the place is free
  std::atomic<std::size_t> found{0};
};
std::array<Watch, 8> watches;

void look(const void* block) noexcept {
  if (block == nullptr) return;
  for (Watch& watch : watches) {
    const std::size_t size = watch.size.load(std::memory_order_acquire);
    if (size == 0) continue;
    // The usable size of a block that was got with malloc.
    const std::size_t blockSize = malloc_usable_size(const_cast<void*>(block));
    if (memmem(block, blockSize, watch.needle.data(), size) != nullptr) ++watch.found;
  }
}

// Far down, so that the end of the thread doesn't overwrite what is looked for.
[[gnu::noinline]] void callFarDown(const std::function<void()>& work) {
  char distance[65'536];
  work();
  wipe(distance, sizeof distance);  // keeps it where it is
}

}  // namespace

QNFreedBlockWatch::QNFreedBlockWatch(std::string_view needle) {
  while (_slot < watches.size() && watches[_slot].size != 0) ++_slot;
  if (_slot == watches.size() || needle.empty() || needle.size() > watches[_slot].needle.size()) {
    throw std::invalid_argument("QNFreedBlockWatch");
  }
  std::memcpy(watches[_slot].needle.data(), needle.data(), needle.size());
  watches[_slot].found = 0;
  watches[_slot].size.store(needle.size(), std::memory_order_release);
}

QNFreedBlockWatch::~QNFreedBlockWatch() {
  watches[_slot].size = 0;
}

std::size_t QNFreedBlockWatch::found() const noexcept {
  return watches[_slot].found;
}

std::size_t remainsOnStack(std::string_view needle, const std::function<void()>& work) {
  // Once before, so that every function is bound: the loader saves the registers on the stack
  // when it binds one, and what is in them then isn't our leaving.
  callFarDown(work);
  constexpr std::size_t kStackSize = std::size_t{4} << 20;
  void* const stack =
      mmap(nullptr, kStackSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (stack == MAP_FAILED) throw std::bad_alloc();
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack, kStackSize);
  pthread_t thread{};
  const auto run = [](void* argument) -> void* {
    callFarDown(*static_cast<const std::function<void()>*>(argument));
    return nullptr;
  };
  const int failed =
      pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work));
  if (failed == 0) pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  std::size_t found = 0;
  const char* at = static_cast<const char*>(stack);
  const char* const end = at + kStackSize;
  while ((at = static_cast<const char*>(memmem(at, static_cast<std::size_t>(end - at),
                                               needle.data(), needle.size()))) != nullptr) {
    ++found;
    ++at;
  }
  munmap(stack, kStackSize);
  if (failed != 0) throw std::runtime_error("no thread");
  return found;
}

}  // namespace quillon

void* operator new(std::size_t size) {
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
// std::stable_sort takes its memory so, and gives it to the operator delete below: both must be of
// one kind for the address sanitizer.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* block) noexcept {
  quillon::look(block);
  std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
  ::operator delete(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
  ::operator delete(block);
}
