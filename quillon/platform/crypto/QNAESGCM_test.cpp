#include "quillon/platform/crypto/internal/QNAESGCM.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include "quillon/platform/crypto/internal/QNCryptoTesting.h"

namespace quillon {
namespace {

using namespace cryptotesting;

QNCipherKey keyOf(ByteView bytes) {
  return QNCipherKey(bytes.data(), 32);
}
QNGCMNonce shortNonceOf(ByteView bytes) {
  return QNGCMNonce(bytes.data(), 12);
}
QNXAESNonce longNonceOf(ByteView bytes) {
  return QNXAESNonce(bytes.data(), 24);
}

Bytes sealedByXAES(ByteView key, ByteView nonce, ByteView associated, ByteView plain) {
  Bytes sealed(plain.size() + kGCMTagSize);
  EXPECT_TRUE(xaesSeal(keyOf(key), longNonceOf(nonce), associated, plain, sealed));
  return sealed;
}

Bytes shake128(ByteView in, std::size_t size) {
  Bytes out(size);
  EVP_MD_CTX* const context = EVP_MD_CTX_new();
  EVP_DigestInit_ex(context, EVP_shake128(), nullptr);
  EVP_DigestUpdate(context, in.data(), in.size());
  EXPECT_EQ(EVP_DigestFinalXOF(context, out.data(), out.size()), 1);
  EVP_MD_CTX_free(context);
  return out;
}

TEST(QNAESGCM, SealsAndOpensAsPublished) {
  for (const auto& each : published().at("AES-256-GCM").as_array()) {
    const Bytes key = hexAt(each, "key"), nonce = hexAt(each, "nonce");
    const Bytes associated = hexAt(each, "associated"), plain = hexAt(each, "plain");
    Bytes sealed(plain.size() + kGCMTagSize);
    Bytes opened(plain.size());

    ASSERT_TRUE(gcmSeal(keyOf(key), shortNonceOf(nonce), associated, plain, sealed));
    ASSERT_TRUE(gcmOpen(keyOf(key), shortNonceOf(nonce), associated, sealed, opened));

    EXPECT_EQ(sealed, hexAt(each, "sealed")) << each.at("source");
    EXPECT_EQ(opened, plain) << each.at("source");
  }
}

TEST(QNAESGCM, SealsAndOpensWithADerivedKeyAsPublished) {
  for (const auto& each : published().at("XAES-256-GCM").as_array()) {
    const Bytes key = hexAt(each, "key"), nonce = hexAt(each, "nonce");
    const Bytes associated = hexAt(each, "associated"), plain = hexAt(each, "plain");
    Bytes opened(plain.size());

    const Bytes sealed = sealedByXAES(key, nonce, associated, plain);
    ASSERT_TRUE(xaesOpen(keyOf(key), longNonceOf(nonce), associated, sealed, opened));

    EXPECT_EQ(sealed, hexAt(each, "sealed")) << each.at("source");
    EXPECT_EQ(opened, plain) << each.at("source");
  }
}

TEST(QNAESGCM, SealsTenThousandPublishedMessages) {
  // Key, nonce, a length byte, that much plain text, a length byte, that much associated data are
  // taken from SHAKE128 of nothing; the sealed texts go into another SHAKE128. 568 bytes
  // are the most that an iteration takes.
  const auto& wanted = published().at("XAES-256-GCM accumulated");
  const std::size_t iterations = wanted.at("iterations").to_number<std::size_t>();
  const Bytes stream = shake128({}, iterations * 568);
  std::size_t at = 0;
  const auto take = [&](std::size_t size) {
    at += size;
    return ByteView(stream).subspan(at - size, size);
  };
  Bytes all;

  for (std::size_t i = 0; i < iterations; ++i) {
    const ByteView key = take(32);
    const ByteView nonce = take(24);
    const ByteView plain = take(take(1)[0]);
    const ByteView associated = take(take(1)[0]);
    const Bytes sealed = sealedByXAES(key, nonce, associated, plain);
    all.insert(all.end(), sealed.begin(), sealed.end());
  }

  EXPECT_EQ(shake128(all, 32), hexAt(wanted, "digest"));
}

TEST(QNAESGCM, LeavesNothingOfATextThatFailsItsTag) {
  const Bytes key = patterned(32), nonce = patterned(24), plain = patterned(100);
  const Bytes spoilt = withBitFlipped(sealedByXAES(key, nonce, {}, plain), 800);
  Bytes out(100, 0xee);

  const bool opened = xaesOpen(keyOf(key), longNonceOf(nonce), {}, spoilt, out);

  EXPECT_FALSE(opened);
  EXPECT_EQ(out, Bytes(100, 0));
}

TEST(QNAESGCM, RefusesTextShorterThanATag) {
  const Bytes key = patterned(32), nonce = patterned(24);
  Bytes out(16);

  const bool opened = xaesOpen(keyOf(key), longNonceOf(nonce), {}, patterned(15), out);

  EXPECT_FALSE(opened);
}

TEST(QNAESGCM, RefusesAPlaceThatDoesNotFitTheText) {
  const Bytes key = patterned(32), nonce = patterned(24);
  const Bytes sealed = sealedByXAES(key, nonce, {}, patterned(10));
  for (const std::size_t size : {0u, 9u, 11u, 26u}) {
    Bytes out(size);
    EXPECT_FALSE(xaesOpen(keyOf(key), longNonceOf(nonce), {}, sealed, out)) << size;
    EXPECT_FALSE(xaesSeal(keyOf(key), longNonceOf(nonce), {}, patterned(11), out)) << size;
  }
}

TEST(QNAESGCM, RefusesOtherAssociatedData) {
  const Bytes key = patterned(32), nonce = patterned(24);
  const Bytes sealed = sealedByXAES(key, nonce, bytesOf("this"), patterned(10));
  Bytes out(10);

  const bool opened = xaesOpen(keyOf(key), longNonceOf(nonce), bytesOf("that"), sealed, out);

  EXPECT_FALSE(opened);
}

}  // namespace
}  // namespace quillon
