#include "quillon/platform/crypto/internal/QNSegmentCipher.h"

#include <gtest/gtest.h>

#include "quillon/platform/crypto/internal/QNCryptoTesting.h"

namespace quillon {
namespace {

using namespace cryptotesting;
constexpr auto kInside = QNSegmentPlace::inside;
constexpr auto kLast = QNSegmentPlace::last;

class QNSegmentCipherTest : public testing::Test {
 protected:
  QNAESKeyRef key = fixedKey();
  std::optional<QNSegmentCipher> message = QNSegmentCipher::forNewMessage(*key);
  const Bytes full = patterned(QNAESKey::kSegmentSize);
  Bytes out = Bytes(QNSegmentCipher::kSealedSegmentSize + 1);
  std::span<std::uint8_t> roomFor(std::size_t plainSize) {
    return std::span(out).first(plainSize + kGCMTagSize);
  }
};

TEST_F(QNSegmentCipherTest, RefusesTheSegmentWhoseNumberTheNonceCannotHold) {
  auto reader = QNSegmentCipher::forHead(*key, message->head());
  message->skipTo(0xffff'ffff);
  reader->skipTo(0xffff'ffff);
  ASSERT_TRUE(message->seal(full, kInside, roomFor(full.size())));
  Bytes plain(full.size());
  ASSERT_TRUE(reader->open(ByteView(out).first(full.size() + kGCMTagSize), kInside, plain));

  EXPECT_FALSE(message->seal(full, kInside, roomFor(full.size())));
  EXPECT_FALSE(message->seal(full, kLast, roomFor(full.size())));
  EXPECT_FALSE(reader->open(ByteView(out).first(full.size() + kGCMTagSize), kInside, plain));
}

TEST_F(QNSegmentCipherTest, TakesOnlyFullSegmentsBeforeTheLast) {
  EXPECT_FALSE(
      message->seal(ByteView(full).first(full.size() - 1), kInside, roomFor(full.size() - 1)));
  EXPECT_TRUE(message->seal(full, kInside, roomFor(full.size())));
}

TEST_F(QNSegmentCipherTest, TakesNoSegmentLargerThanFull) {
  EXPECT_FALSE(message->seal(patterned(full.size() + 1), kLast, out));
}

TEST_F(QNSegmentCipherTest, TakesAnEmptyLastSegmentOnlyAsTheFirst) {
  ASSERT_TRUE(message->seal(full, kInside, roomFor(full.size())));

  EXPECT_FALSE(message->seal({}, kLast, roomFor(0)));
  EXPECT_TRUE(QNSegmentCipher::forNewMessage(*key)->seal({}, kLast, roomFor(0)));
}

TEST_F(QNSegmentCipherTest, TakesNothingAfterTheLastSegment) {
  ASSERT_TRUE(message->seal(full, kLast, roomFor(full.size())));

  EXPECT_FALSE(message->seal(full, kInside, roomFor(full.size())));
  EXPECT_FALSE(message->seal(full, kLast, roomFor(full.size())));
}

TEST_F(QNSegmentCipherTest, GivesNothingForTheKeyOfAbsentData) {
  const auto dead = QNAESKey::initWithKeyData(std::nullopt);

  EXPECT_FALSE(QNSegmentCipher::forNewMessage(*dead));
  EXPECT_FALSE(QNSegmentCipher::forHead(*dead, message->head()));
}

TEST_F(QNSegmentCipherTest, TakesOnlyAWholeHeadWithItsMagic) {
  const Bytes head = toBytes(message->head());

  EXPECT_TRUE(QNSegmentCipher::forHead(*key, head));
  EXPECT_FALSE(QNSegmentCipher::forHead(*key, ByteView(head).first(27)));
  EXPECT_FALSE(QNSegmentCipher::forHead(*key, joined({head, Bytes(1)})));
  EXPECT_FALSE(QNSegmentCipher::forHead(*key, withBitFlipped(head, 24)));
}

TEST(isQNProfileEncrypted, GoesByMagicAndLength) {
  Bytes shortest(44);
  std::copy_n(bytesOf("QNE1").begin(), 4, shortest.begin());

  EXPECT_TRUE(isQNProfileEncrypted(shortest));
  EXPECT_FALSE(isQNProfileEncrypted(ByteView(shortest).first(43)));
  EXPECT_FALSE(isQNProfileEncrypted(ByteView(shortest).first(4)));
  EXPECT_FALSE(isQNProfileEncrypted({}));
}

TEST(isQNProfileEncrypted, IsFalseForEveryOtherBeginning) {
  Bytes data(100);
  std::copy_n(bytesOf("QNE1").begin(), 4, data.begin());
  ASSERT_TRUE(isQNProfileEncrypted(data));

  for (std::size_t bit = 0; bit < 32; ++bit) {
    EXPECT_FALSE(isQNProfileEncrypted(withBitFlipped(data, bit))) << "bit " << bit;
  }
}

TEST(isQNProfileEncrypted, IsTrueForWhatAKeySealsAndFalseForAWrappedKey) {
  const auto key = fixedKey();

  EXPECT_TRUE(isQNProfileEncrypted(*key->encrypt({})));
  EXPECT_TRUE(isQNProfileEncrypted(*key->encrypt(patterned(300))));
  EXPECT_FALSE(isQNProfileEncrypted(*key->encryptKey(*key)));
}

}  // namespace
}  // namespace quillon
