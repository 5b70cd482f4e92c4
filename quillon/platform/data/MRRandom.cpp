#include <openssl/rand.h>
#include <pthread.h>

#include <array>
#include <atomic>
#include <cstdlib>

#include "quillon/platform/data/MRData.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

// A draw from the system's generator costs about 0.4 µs whatever its size, and an item wants
// several nonces and identifiers of 16 to 24 bytes: they are cut from a batch. Keys never are: a
// batch lies in memory that may be swapped out.
constexpr std::size_t kBatchSize = 1024;

// Counts the forks of this process, so that parent and child never use one batch.
std::atomic<std::uint32_t> forkCount{1};

struct Batch {
  std::array<std::uint8_t, kBatchSize> bytes;
  std::size_t used = kBatchSize;
  std::uint32_t forks = 0;
  ~Batch() { wipe(bytes.data(), bytes.size()); }
};

// Without randomness there is no security to fall back on, so a failure is the end.
void drawFromSystem(std::span<std::uint8_t> out) {
  if (!out.empty() && RAND_bytes(out.data(), static_cast<int>(out.size())) != 1) std::abort();
}

// Of a generator whose output nobody ever sees, unlike that of nonces.
void drawPrivately(std::span<std::uint8_t> out) {
  if (!out.empty() && RAND_priv_bytes(out.data(), static_cast<int>(out.size())) != 1) std::abort();
}

}  // namespace

void fillRandom(std::span<std::uint8_t> out) {
  if (const auto& source = scopedRandomSource()) return source(out);
  if (out.size() > kBatchSize / 4) return drawFromSystem(out);
  static const int watching = pthread_atfork(nullptr, nullptr, [] { ++forkCount; });
  static_cast<void>(watching);
  thread_local Batch batch;
  if (batch.forks != forkCount || batch.used + out.size() > kBatchSize) {
    drawFromSystem(batch.bytes);
    batch.used = 0;
    batch.forks = forkCount;
  }
  std::uint8_t* const from = batch.bytes.data() + batch.used;
  std::copy_n(from, out.size(), out.begin());
  wipe(from, out.size());  // nothing comes twice, and nothing stays behind
  batch.used += out.size();
}

void fillRandomKey(std::span<std::uint8_t> out) {
  if (const auto& source = scopedRandomSource()) return source(out);
  drawPrivately(out);
}

Bytes mr_randomData(std::size_t count) {
  Bytes bytes(count);
  fillRandom(bytes);
  return bytes;
}

std::uint32_t randomBelow(std::uint32_t bound) {
  // Numbers below the largest multiple of `bound` are kept, so that none is likelier.
  const std::uint64_t range = std::uint64_t{1} << 32;
  const std::uint64_t limit = range - range % bound;
  for (;;) {
    std::array<std::uint8_t, 4> bytes{};
    fillRandom(bytes);
    std::uint64_t number = 0;
    for (const std::uint8_t byte : bytes) number = number << 8 | byte;
    wipe(bytes.data(), bytes.size());
    if (number < limit) return static_cast<std::uint32_t>(number % bound);
  }
}

std::string mr_uuid() {
  std::array<std::uint8_t, 16> bytes{};
  fillRandom(bytes);
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0f) | 0x40);  // version 4
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3f) | 0x80);  // variant of RFC 9562
  std::string text = hexText(bytes);
  for (const std::size_t at : {8u, 13u, 18u, 23u}) text.insert(at, 1, '-');
  return text;
}

std::string mr_shortUUID() {
  constexpr std::string_view alphabet =
      "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz";
  std::array<std::uint8_t, 16> bytes{};
  fillRandom(bytes);
  // 58^22 is just above 2^128: 22 digits hold every number, with leading "1"s as zeros.
  std::string text(22, alphabet[0]);
  for (std::size_t at = text.size(); at-- > 0;) {
    unsigned remainder = 0;
    for (std::uint8_t& byte : bytes) {
      const unsigned value = remainder << 8 | byte;
      byte = static_cast<std::uint8_t>(value / 58);
      remainder = value % 58;
    }
    text[at] = alphabet[remainder];
  }
  return text;
}

}  // namespace quillon
