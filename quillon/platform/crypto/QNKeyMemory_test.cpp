// What keys leave in memory once they are gone: nothing. The process reads its own memory.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "quillon/platform/crypto/QNAESKey.h"
#include "quillon/platform/crypto/QNEncryptedString.h"
#include "quillon/platform/crypto/internal/QNAESGCM.h"
#include "quillon/platform/crypto/internal/QNCryptoTesting.h"

namespace quillon {
namespace {

using namespace cryptotesting;

// 16 bytes to look for, kept masked so that the search doesn't find its own copy.
class Needle {
 public:
  static constexpr std::size_t kSize = 16;
  explicit Needle(const std::uint8_t* bytes) : _first(bytes[0]) {
    for (std::size_t i = 0; i < kSize; ++i) {
      _masked[i] = static_cast<std::uint8_t>(bytes[i] ^ kMask);
    }
  }
  std::size_t timesIn(ByteView bytes) const {
    std::size_t count = 0;
    while (bytes.size() >= kSize) {
      const void* const place = std::memchr(bytes.data(), _first, bytes.size() - kSize + 1);
      if (place == nullptr) break;
      const auto* const found = static_cast<const std::uint8_t*>(place);
      count += isAt(found);
      bytes = bytes.subspan(static_cast<std::size_t>(found - bytes.data()) + 1);
    }
    return count;
  }

 private:
  static constexpr std::uint8_t kMask = 0x5a;

  bool isAt(const std::uint8_t* place) const {
    for (std::size_t i = 0; i < kSize; ++i) {
      if (static_cast<std::uint8_t>(place[i] ^ kMask) != _masked[i]) return false;
    }
    return true;
  }

  std::uint8_t _first;
  std::array<std::uint8_t, kSize> _masked{};
};

// Mappings larger than this are address space that a sanitizer reserved.
constexpr std::uint64_t kMaxMapping = std::uint64_t{1} << 26;

using Counts = std::vector<std::size_t>;

// Adds what lies from `from` to `to`. Neighbouring reads overlap, so that none is cut in two. A
// read that found something is wiped, so that it isn't found in its turn.
void countBetween(std::uint64_t from, std::uint64_t to, int memory,
                  const std::vector<Needle>& needles, Counts& counts) {
  static std::array<std::uint8_t, 1 << 20> chunk;
  constexpr std::size_t step = chunk.size() - (Needle::kSize - 1);
  for (; from < to; from += step) {
    const std::size_t wanted = std::min<std::uint64_t>(chunk.size(), to - from);
    const ssize_t size = pread(memory, chunk.data(), wanted, static_cast<off_t>(from));
    if (size <= 0) return;
    bool found = false;
    for (std::size_t i = 0; i < needles.size(); ++i) {
      const std::size_t times = needles[i].timesIn({chunk.data(), static_cast<std::size_t>(size)});
      counts[i] += times;
      found |= times > 0;
    }
    if (found) wipe(chunk.data(), chunk.size());
  }
}

// How often each needle lies in this process's writable memory.
Counts timesInMemory(const std::vector<Needle>& needles) {
  Counts counts(needles.size());
  const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    char* rest = line.data();  // "FROM-TO MODE ...", hexadecimal
    const std::uint64_t from = std::strtoull(rest, &rest, 16);
    const std::uint64_t to = std::strtoull(rest + 1, &rest, 16);
    if (std::strncmp(rest, " rw", 3) != 0 || to - from > kMaxMapping) continue;
    countBetween(from, to, memory, needles, counts);
  }
  close(memory);
  return counts;
}

// The four quarters of a raw key: an AES key schedule begins with two of them.
std::vector<Needle> quartersOf(const QNAESKey& key) {
  std::vector<Needle> needles;
  for (std::size_t at = 0; at < QNAESKey::kRawKeySize; at += 16) {
    needles.emplace_back(key.rawKey() + at);
  }
  return needles;
}

void useInEveryWay(const QNAESKey& key) {
  const Bytes plain = patterned(70'000);
  const Bytes sealed = *key.encrypt(plain);
  const auto wrapped = key.encryptKey(*QNAESKey::initWithRandomKey());
  Bytes streamed;
  const auto writer = [&](ByteView more) {
    streamed.insert(streamed.end(), more.begin(), more.end());
    return true;
  };
  std::size_t at = 0;
  const auto reader = [&](std::size_t count) {
    const std::size_t size = std::min(count, sealed.size() - at);
    at += size;
    return std::optional(part(sealed, at - size, size));
  };
  EXPECT_TRUE(key.decryptDataWithReader(reader, writer));
  EXPECT_EQ(key.decrypt(sealed), plain);
  EXPECT_FALSE(key.decrypt(withBitFlipped(sealed, 1'000)));
  EXPECT_NE(key.decryptKey(*wrapped), nullptr);
  EXPECT_TRUE(key.hmac(plain));
}

TEST(QNKeyMemory, HoldsALivingKeyOnceAndADeadOneNowhere) {
  auto key = QNAESKey::initWithRandomKey();
  const std::vector<Needle> needles = quartersOf(*key);
  useInEveryWay(*key);
  // Also proves that the search finds what is there.
  EXPECT_EQ(timesInMemory(needles), (Counts{1, 1, 1, 1}));

  key.reset();

  EXPECT_EQ(timesInMemory(needles), (Counts{0, 0, 0, 0}));
}

TEST(QNKeyMemory, HoldsNothingOfAKeyThatOpenedOrWrappedAnother) {
  const auto master = QNAESKey::initWithKeyData(ByteView(patterned(256)));
  auto item = QNAESKey::initWithRandomKey();
  const std::vector<Needle> needles = quartersOf(*item);
  auto again = master->decryptKey(*master->encryptKey(*item));
  useInEveryWay(*again);

  item.reset();
  again.reset();

  EXPECT_EQ(timesInMemory(needles), (Counts{0, 0, 0, 0}));
}

TEST(QNKeyMemory, HoldsNothingOfAPasswordsKey) {
  auto key = QNAESKey::initWithPassword("p\xc3\xa4ssword", patterned(16), 64);
  const std::vector<Needle> needles = quartersOf(*key);
  useInEveryWay(*key);

  key.reset();

  EXPECT_EQ(timesInMemory(needles), (Counts{0, 0, 0, 0}));
}

TEST(QNKeyMemory, HoldsNothingOfAKeyFromKeyData) {
  auto key = QNAESKey::initWithKeyData(ByteView(patterned(256)));
  const std::vector<Needle> needles = quartersOf(*key);
  useInEveryWay(*key);

  key.reset();

  EXPECT_EQ(timesInMemory(needles), (Counts{0, 0, 0, 0}));
}

TEST(QNKeyMemory, HoldsNoPasswordThatAKeyWasMadeFrom) {
  for (const char* const words :
       {"correct horse battery staple", "korrektes Pferd \xc3\xa4hm ja"}) {
    Bytes password(std::strlen(words));
    for (std::size_t i = 0; i < password.size(); ++i) password[i] = words[i] ^ 1;
    const std::vector<Needle> needles{Needle(password.data())};

    ASSERT_NE(QNAESKey::initWithPassword(textOf(password), patterned(16), 64), nullptr);
    EXPECT_EQ(timesInMemory(needles), Counts{1});
    wipe(password.data(), password.size());

    EXPECT_EQ(timesInMemory(needles), Counts{0});
  }
}

// The two halves of the key of one message, derived for the search alone.
std::vector<Needle> messageKeyOf(const QNAESKey& key, const Bytes& sealed) {
  const auto derived =
      QNMessageKey::derive(QNCipherKey(key.rawKey(), 32), QNGCMNonce(sealed.data() + 4, 12));
  return {Needle(derived->bytes().data()), Needle(derived->bytes().data() + 16)};
}

TEST(QNKeyMemory, HoldsNoKeyOfAMessageThatIsDone) {
  const auto key = QNAESKey::initWithRandomKey();
  const Bytes sealed = *key->encrypt(patterned(300));
  const std::vector<Needle> needles = messageKeyOf(*key, sealed);

  ASSERT_TRUE(key->decrypt(sealed));

  EXPECT_EQ(timesInMemory(needles), (Counts{0, 0}));
}

TEST(QNKeyMemory, HoldsASealedStringInNoPlainForm) {
  std::string text = "quite a long secret, all told";
  const std::vector<Needle> needles{Needle(bytesOf(text).data())};
  const auto sealed = QNEncryptedString::encryptedStringWithString(text);
  ASSERT_EQ(sealed->stringValue().reveal(), text);

  wipe(text.data(), text.size());

  EXPECT_EQ(timesInMemory(needles), Counts{0});
}

TEST(QNKeyMemory, GivesLockedMemoryBack) {
  const std::size_t before = lockedBytesInUse();

  {
    const auto key = QNAESKey::initWithRandomKey();
    const auto fromData = QNAESKey::initWithKeyData(ByteView(patterned(64)));
    const auto fromPassword = QNAESKey::initWithPassword("password", patterned(16), 8);
    const auto dead = QNAESKey::initWithKeyData(std::nullopt);
    EXPECT_EQ(lockedBytesInUse(), before + 3 * QNAESKey::kRawKeySize);
    useInEveryWay(*key);
    EXPECT_EQ(key->decryptKey(Bytes(112)), nullptr);
    EXPECT_EQ(lockedBytesInUse(), before + 3 * QNAESKey::kRawKeySize);
  }

  EXPECT_EQ(lockedBytesInUse(), before);
}

bool everyReleasedBlockWasZero = true;

TEST(QNKeyMemory, ReleasesBuffersWiped) {
  const auto key = QNAESKey::initWithRandomKey();
  everyReleasedBlockWasZero = true;
  setReleasedBlockObserver([](const void* block, std::size_t size) {
    const auto* const bytes = static_cast<const std::uint8_t*>(block);
    everyReleasedBlockWasZero &= std::all_of(bytes, bytes + size, [](auto b) { return b == 0; });
  });

  useInEveryWay(*key);
  setReleasedBlockObserver(nullptr);

  EXPECT_TRUE(everyReleasedBlockWasZero);
}

}  // namespace
}  // namespace quillon
