#include "quillon/platform/crypto/QNAESKey.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>

#include "quillon/platform/crypto/internal/QNAESGCM.h"
#include "quillon/platform/crypto/internal/QNCryptoTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

using namespace cryptotesting;

const Bytes kSalt = toBytes(bytesOf("0123456789abcdef"));

Bytes rawOf(const QNAESKeyRef& key) {
  return toBytes(key->rawKeyData());
}

// Frozen forms

TEST(QNAESKey, SealsAndOpensTheFrozenMessages) {
  const QNScopedRandom random(repeating(hexAt(frozen(), "random")));
  const auto key = QNAESKey::initWithRawKey(hexAt(frozen(), "rawKey"));
  for (const auto& each : frozen().at("encrypt").as_array()) {
    const Bytes plain = patterned(each.at("plainSize").to_number<std::size_t>());

    const auto sealed = key->encrypt(plain);

    ASSERT_TRUE(sealed);
    EXPECT_EQ(sealed->size(), each.at("sealedSize").to_number<std::size_t>());
    EXPECT_EQ(mr_SHA256hex(*sealed), each.at("sealedSHA256").as_string()) << each.at("plainSize");
    EXPECT_EQ(key->decrypt(*sealed), plain) << each.at("plainSize");
  }
}

TEST(QNAESKey, OpensAFrozenMessageByteForByte) {
  const auto key = QNAESKey::initWithRawKey(hexAt(frozen(), "rawKey"));
  for (const auto& each : frozen().at("encrypt").as_array()) {
    if (!each.as_object().contains("sealed")) continue;  // told by its digest alone

    EXPECT_EQ(key->decrypt(hexAt(each, "sealed")), hexAt(each, "plain"));
  }
}

TEST(QNAESKey, WrapsAndUnwrapsTheFrozenKey) {
  const QNScopedRandom random(repeating(hexAt(frozen(), "random")));
  const auto key = QNAESKey::initWithRawKey(hexAt(frozen(), "rawKey"));
  const Bytes raw = hexAt(frozen().at("encryptKey"), "wrappedRawKey");

  const auto wrapped = key->encryptKey(*QNAESKey::initWithRawKey(raw));
  const auto unwrapped = key->decryptKey(hexAt(frozen().at("encryptKey"), "wrapped"));

  EXPECT_EQ(wrapped, hexAt(frozen().at("encryptKey"), "wrapped"));
  ASSERT_NE(unwrapped, nullptr);
  EXPECT_EQ(rawOf(unwrapped), raw);
}

TEST(QNAESKey, MakesTheFrozenKeysFromKeyData) {
  for (const auto& each : frozen().at("keyData").as_array()) {
    EXPECT_EQ(rawOf(QNAESKey::initWithKeyData(hexAt(each, "data"))), hexAt(each, "rawKey"));
  }
}

TEST(QNAESKey, MakesTheFrozenKeysFromPasswords) {
  for (const auto& each : frozen().at("password").as_array()) {
    const auto key = QNAESKey::initWithPassword(std::string(each.at("password").as_string()),
                                                hexAt(each, "salt"),
                                                each.at("iterations").to_number<std::uint32_t>());

    ASSERT_NE(key, nullptr);
    EXPECT_EQ(rawOf(key), hexAt(each, "rawKey")) << each.at("password");
  }
}

TEST(QNAESKey, MakesThePublishedCodes) {
  for (const auto& each : published().at("HMAC-SHA256").as_array()) {
    Bytes raw(32, 0x77);
    const Bytes hmacKey = hexAt(each, "key");  // zeros at its end don't change an HMAC
    raw.insert(raw.end(), hmacKey.begin(), hmacKey.end());
    raw.resize(QNAESKey::kRawKeySize, 0);
    const Bytes wanted = hexAt(each, "mac");

    const auto mac = QNAESKey::initWithRawKey(raw)->hmac(hexAt(each, "data"));

    ASSERT_TRUE(mac);
    EXPECT_EQ(toBytes(ByteView(*mac).first(wanted.size())), wanted) << each.at("source");
  }
}

// Making keys

TEST(QNAESKey, OfAbsentDataOpensAndSealsNothing) {
  const auto dead = QNAESKey::initWithKeyData(std::nullopt);
  const auto key = fixedKey();

  ASSERT_NE(dead, nullptr);
  EXPECT_EQ(dead->rawKey(), nullptr);
  EXPECT_TRUE(dead->rawKeyData().empty());
  EXPECT_FALSE(dead->encrypt(patterned(3)));
  EXPECT_FALSE(dead->decrypt(*key->encrypt(patterned(3))));
  EXPECT_FALSE(dead->encryptKey(*key));
  EXPECT_FALSE(key->encryptKey(*dead));
  EXPECT_EQ(dead->decryptKey(*key->encryptKey(*key)), nullptr);
  EXPECT_FALSE(dead->hmac(patterned(3)));
}

TEST(QNAESKey, OfEmptyDataIsNoKeyThatEverybodyKnows) {
  const auto dead = QNAESKey::initWithKeyData(ByteView());

  EXPECT_EQ(dead->rawKey(), nullptr);
}

TEST(QNAESKey, RebuildsFromItsRawBytesAndFromNoOtherLength) {
  const auto key = QNAESKey::initWithRandomKey();
  const QNKeyBytes raw = key->rawKeyData();
  ASSERT_EQ(raw.size(), 64u);

  const auto again = QNAESKey::initWithRawKey(raw);

  EXPECT_EQ(again->decrypt(*key->encrypt(patterned(9))), patterned(9));
  EXPECT_EQ(again->hmac(patterned(9)), key->hmac(patterned(9)));
  EXPECT_EQ(QNAESKey::initWithRawKey(patterned(63)), nullptr);
  EXPECT_EQ(QNAESKey::initWithRawKey(patterned(65)), nullptr);
  EXPECT_EQ(QNAESKey::initWithRawKey({}), nullptr);
}

TEST(QNAESKey, RandomKeysDiffer) {
  EXPECT_NE(rawOf(QNAESKey::initWithRandomKey()), rawOf(QNAESKey::initWithRandomKey()));
}

TEST(QNAESKey, RefusesCountsOutOfBounds) {
  for (const std::uint32_t count :
       {0u, 1u, 7u, 1'048'577u, std::numeric_limits<std::uint32_t>::max()}) {
    EXPECT_EQ(QNAESKey::initWithPassword("password", kSalt, count), nullptr) << count;
  }
  EXPECT_NE(QNAESKey::initWithPassword("password", kSalt, 8), nullptr);
}

TEST(QNAESKey, RefusesASaltOfAnotherLength) {
  for (const std::size_t size : {0u, 15u, 17u, 32u}) {
    EXPECT_EQ(QNAESKey::initWithPassword("password", patterned(size), 8), nullptr) << size;
  }
}

TEST(QNAESKey, MakesNoKeyFromAPasswordThatIsNotUTF8) {
  for (const std::string_view password : {"\xff", "password\xff", "\xc3", "\xed\xa0\x80"}) {
    EXPECT_EQ(QNAESKey::initWithPassword(password, kSalt, 8), nullptr);
  }
}

TEST(QNAESKey, DependsOnEachOfPasswordSaltAndCount) {
  const Bytes raw = rawOf(QNAESKey::initWithPassword("password", kSalt, 8));

  EXPECT_EQ(rawOf(QNAESKey::initWithPassword("password", kSalt, 8)), raw);
  EXPECT_NE(rawOf(QNAESKey::initWithPassword("Password", kSalt, 8)), raw);
  EXPECT_NE(rawOf(QNAESKey::initWithPassword("", kSalt, 8)), raw);
  EXPECT_NE(rawOf(QNAESKey::initWithPassword("password", patterned(16), 8)), raw);
  EXPECT_NE(rawOf(QNAESKey::initWithPassword("password", kSalt, 9)), raw);
}

TEST(QNAESKey, IsTheSameForComposedAndDecomposedSpelling) {
  const auto composed = QNAESKey::initWithPassword("\xc3\x85", kSalt, 8);
  const auto decomposed = QNAESKey::initWithPassword("A\xcc\x8a", kSalt, 8);
  const auto angstromSign = QNAESKey::initWithPassword("\xe2\x84\xab", kSalt, 8);
  const auto plainA = QNAESKey::initWithPassword("A", kSalt, 8);

  EXPECT_EQ(rawOf(composed), rawOf(decomposed));
  EXPECT_EQ(rawOf(composed), rawOf(angstromSign));
  EXPECT_NE(rawOf(composed), rawOf(plainA));
}

TEST(QNAESKey, CalibratesToAWholeNumberOfMebibytesWithinItsBounds) {
  const std::uint32_t count = QNAESKey::calibrateForPassword("password", kSalt);

  EXPECT_GE(count, QNAESKey::kMinCalibratedIterations);
  EXPECT_LE(count, QNAESKey::kMaxCalibratedIterations);
  EXPECT_EQ(count % 1'024, 0u);
}

TEST(QNAESKey, CalibratesByTheTimeThatOneDerivationTook) {
  const auto calibratedWhenItTakes = [](double seconds) {
    double now = 100;
    const QNScopedSteadyClock clock([&now, seconds] { return std::exchange(now, now + seconds); });
    return QNAESKey::calibrateForPassword("password", kSalt);
  };

  EXPECT_EQ(calibratedWhenItTakes(0.25), 131'072u);
  EXPECT_EQ(calibratedWhenItTakes(0.125), 262'144u);
  EXPECT_EQ(calibratedWhenItTakes(2), 65'536u);
}

TEST(QNAESKey, CalibratesToTheLeastWhereItCannotMeasure) {
  EXPECT_EQ(QNAESKey::calibrateForPassword("password", patterned(15)), 65'536u);
}

// Sealing

TEST(QNAESKey, OpensWhatItSealedAtEverySegmentBoundary) {
  const auto key = QNAESKey::initWithRandomKey();
  for (const std::size_t size : {0u, 1u, 15u, 16u, 17u, 300u, 65'535u, 65'536u, 65'537u, 131'071u,
                                 131'072u, 131'073u, 200'000u}) {
    const Bytes plain = patterned(size);
    const std::size_t segments = std::max<std::size_t>(1, (size + 65'535) / 65'536);

    const auto sealed = key->encrypt(plain);

    ASSERT_TRUE(sealed);
    EXPECT_EQ(sealed->size(), 28 + size + 16 * segments) << size;
    EXPECT_EQ(key->decrypt(*sealed), plain) << size;
  }
}

TEST(QNAESKey, SealsTheSameTextDifferentlyEachTime) {
  const auto key = fixedKey();

  EXPECT_NE(key->encrypt(patterned(9)), key->encrypt(patterned(9)));
  EXPECT_NE(key->encryptKey(*key), key->encryptKey(*key));
}

TEST(QNAESKey, OpensNothingOfAnotherKey) {
  const auto key = QNAESKey::initWithRandomKey(), other = QNAESKey::initWithRandomKey();

  EXPECT_FALSE(other->decrypt(*key->encrypt(patterned(300))));
  EXPECT_EQ(other->decryptKey(*key->encryptKey(*key)), nullptr);
  EXPECT_NE(other->hmac(patterned(3)), key->hmac(patterned(3)));
}

TEST(QNAESKey, KeepsMessagesAndWrappedKeysApart) {
  const auto key = fixedKey();

  EXPECT_FALSE(key->decrypt(*key->encryptKey(*key)));
  EXPECT_EQ(key->decryptKey(*key->encrypt(patterned(112 - 44))), nullptr);
}

// Damage. `opens` is told of each spoilt buffer and says whether it was taken.

template <class Opens>
void expectEverySpoiltBufferRefused(const Bytes& good, const Opens& opens) {
  ASSERT_TRUE(opens(good));
  for (std::size_t bit = 0; bit < good.size() * 8; ++bit) {
    EXPECT_FALSE(opens(withBitFlipped(good, bit))) << "bit " << bit << " of " << good.size() * 8;
  }
  for (std::size_t size = 0; size < good.size(); ++size) {
    EXPECT_FALSE(opens(part(good, 0, size))) << size << " of " << good.size() << " bytes";
  }
  for (std::size_t more = 1; more <= 64; ++more) {
    EXPECT_FALSE(opens(joined({good, Bytes(more, 0)}))) << more << " zeros behind";
    EXPECT_FALSE(opens(joined({good, patterned(more)}))) << more << " bytes behind";
    EXPECT_FALSE(opens(joined({Bytes(more, 0), good}))) << more << " zeros before";
  }
}

TEST(QNAESKey, RefusesEveryShortMessageThatWasTouched) {
  const auto key = QNAESKey::initWithRandomKey();
  for (const std::size_t size : {0u, 1u, 16u, 300u}) {
    expectEverySpoiltBufferRefused(*key->encrypt(patterned(size)), [&](const Bytes& sealed) {
      return key->decrypt(sealed).has_value();
    });
  }
}

TEST(QNAESKey, RefusesEveryWrappedKeyThatWasTouched) {
  const auto key = QNAESKey::initWithRandomKey();
  expectEverySpoiltBufferRefused(*key->encryptKey(*key), [&](const Bytes& wrapped) {
    return key->decryptKey(wrapped) != nullptr;
  });
}

// The bytes where a long message may be told apart: the head, the first 16 and the last 32 of
// each segment, and a sample between.
std::vector<std::size_t> telltaleBytes(std::size_t sealedSize) {
  std::vector<std::size_t> places;
  for (std::size_t at = 0; at < sealedSize; ++at) {
    const std::size_t inSegment = at < kHead ? 0 : (at - kHead) % kSealedSegment;
    if (inSegment < 16 || inSegment >= kSealedSegment - 32 || at + 32 >= sealedSize ||
        at % 4'999 == 0) {
      places.push_back(at);
    }
  }
  return places;
}

TEST(QNAESKey, RefusesALongMessageWithABitFlipped) {
  const auto key = QNAESKey::initWithRandomKey();
  const Bytes sealed = *key->encrypt(patterned(kThreeSegments));
  ASSERT_TRUE(key->decrypt(sealed));

  for (const std::size_t at : telltaleBytes(sealed.size())) {
    EXPECT_FALSE(key->decrypt(withBitFlipped(sealed, at * 8 + at % 8))) << "byte " << at;
  }
}

TEST(QNAESKey, RefusesALongMessageThatWasCutOrExtended) {
  const auto key = QNAESKey::initWithRandomKey();
  for (const std::size_t size : {std::size_t{65'536}, std::size_t{131'072}, kThreeSegments}) {
    const Bytes sealed = *key->encrypt(patterned(size));
    ASSERT_TRUE(key->decrypt(sealed));

    for (const std::size_t at : telltaleBytes(sealed.size())) {
      EXPECT_FALSE(key->decrypt(part(sealed, 0, at))) << at << " of " << sealed.size();
    }
    for (std::size_t more = 1; more <= 64; ++more) {
      EXPECT_FALSE(key->decrypt(joined({sealed, Bytes(more, 0)}))) << more << " zeros behind";
    }
  }
}

TEST(QNAESKey, RefusesSegmentsThatWereMovedDroppedOrExchanged) {
  const auto key = QNAESKey::initWithRandomKey();
  const Bytes sealed = *key->encrypt(patterned(kThreeSegments));
  const Bytes other = *key->encrypt(patterned(kThreeSegments));
  const Bytes head = part(sealed, 0, kHead);
  const Bytes first = part(sealed, kHead, kSealedSegment);
  const Bytes second = part(sealed, kHead + kSealedSegment, kSealedSegment);
  const Bytes last = part(sealed, kHead + 2 * kSealedSegment, 1'016);
  ASSERT_TRUE(key->decrypt(joined({head, first, second, last})));

  EXPECT_FALSE(key->decrypt(joined({head, second, first, last})));
  EXPECT_FALSE(key->decrypt(joined({head, first, last})));
  EXPECT_FALSE(key->decrypt(joined({head, second, last})));
  EXPECT_FALSE(key->decrypt(joined({head, last})));
  EXPECT_FALSE(key->decrypt(joined({head, first, second})));
  EXPECT_FALSE(key->decrypt(joined({head, first, first, second, last})));
  EXPECT_FALSE(key->decrypt(joined({head, first, second, last, last})));
  EXPECT_FALSE(key->decrypt(
      joined({head, first, part(other, kHead + kSealedSegment, kSealedSegment), last})));
  EXPECT_FALSE(key->decrypt(joined({part(other, 0, kHead), first, second, last})));
}

TEST(QNAESKey, RefusesAnEmptyLastSegmentBehindAFullOne) {
  // Sealed rightly in all else, so that the one text has one form only.
  const auto key = fixedKey();
  const Bytes head = part(*key->encrypt({}), 0, kHead);
  const QNCipherKey encryptionKey(key->rawKey(), 32);
  const auto messageKey = QNMessageKey::derive(encryptionKey, QNGCMNonce(head.data() + 4, 12));
  const Bytes associated = joined({part(head, 0, 4), part(head, 23, 5)});
  const auto segment = [&](std::uint8_t number, std::uint8_t flag, const Bytes& plain) {
    Bytes sealed(plain.size() + 16);
    const Bytes nonce = joined({part(head, 16, 7), Bytes{0, 0, 0, number, flag}});
    EXPECT_TRUE(
        gcmSeal(messageKey->bytes(), QNGCMNonce(nonce.data(), 12), associated, plain, sealed));
    return sealed;
  };
  const Bytes full = patterned(QNAESKey::kSegmentSize);
  ASSERT_TRUE(key->decrypt(joined({head, segment(0, 1, full)})));

  const auto opened = key->decrypt(joined({head, segment(0, 0, full), segment(1, 1, {})}));

  EXPECT_FALSE(opened);
}

// Sharing

TEST(QNAESKey, ServesFourThreadsAtOnce) {
  const auto key = QNAESKey::initWithRandomKey();
  const Bytes plain = patterned(300), sealed = *key->encrypt(plain);
  const auto mac = key->hmac(plain);
  std::array<int, 4> right{};
  const auto work = [&](int& count) {
    for (int i = 0; i < 500; ++i) {
      const auto item = QNAESKey::initWithRandomKey();
      const auto unwrapped = key->decryptKey(*key->encryptKey(*item));
      count += key->decrypt(sealed) == plain && key->decrypt(*key->encrypt(plain)) == plain &&
               key->hmac(plain) == mac && unwrapped->rawKeyData() == item->rawKeyData();
    }
  };

  std::vector<std::thread> threads;
  threads.reserve(right.size());
  for (int& count : right) threads.emplace_back(work, std::ref(count));
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(right, (std::array<int, 4>{500, 500, 500, 500}));
}

}  // namespace
}  // namespace quillon
