#include "quillon/platform/crypto/internal/QNAESGCM.h"

#include <openssl/evp.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace quillon {
namespace {

struct ContextFree {
  void operator()(EVP_CIPHER_CTX* context) const noexcept { EVP_CIPHER_CTX_free(context); }
};
using Context = std::unique_ptr<EVP_CIPHER_CTX, ContextFree>;

enum Direction { kOpen = 0, kSeal = 1 };  // the values that OpenSSL takes

// OpenSSL counts in int.
constexpr std::size_t kMaxMessage = std::numeric_limits<int>::max() - kGCMTagSize;

// Fetched once and never given back: finding a cipher costs more than using it.
const EVP_CIPHER* gcmCipher() {
  static const EVP_CIPHER* const it = EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr);
  return it;
}
const EVP_CIPHER* blockCipher() {
  static const EVP_CIPHER* const it = EVP_CIPHER_fetch(nullptr, "AES-256-ECB", nullptr);
  return it;
}

// A context lives for one call. OpenSSL wipes the key schedule when it frees it, and that is no
// slower than to keep one context per thread and overwrite its schedule after each message.
Context begin(const EVP_CIPHER* cipher, QNCipherKey key, const std::uint8_t* nonce,
              Direction direction) {
  Context context(EVP_CIPHER_CTX_new());
  if (context == nullptr || cipher == nullptr ||
      EVP_CipherInit_ex(context.get(), cipher, nullptr, key.data(), nonce, direction) != 1) {
    return nullptr;
  }
  return context;
}

// Where `out` is null the bytes are authenticated only.
bool feed(const Context& context, std::uint8_t* out, ByteView in) {
  int count = 0;
  return in.empty() ||
         EVP_CipherUpdate(context.get(), out, &count, in.data(), static_cast<int>(in.size())) == 1;
}

bool finish(const Context& context) {
  std::array<std::uint8_t, 16> nothing{};
  int count = 0;
  return EVP_CipherFinal_ex(context.get(), nothing.data(), &count) == 1;
}

bool openWithoutWiping(QNCipherKey key, QNGCMNonce nonce, ByteView associated, ByteView sealed,
                       std::uint8_t* out) {
  const ByteView text = sealed.first(sealed.size() - kGCMTagSize);
  const ByteView tag = sealed.last(kGCMTagSize);
  const Context context = begin(gcmCipher(), key, nonce.data(), kOpen);
  return context != nullptr && feed(context, nullptr, associated) && feed(context, out, text) &&
         EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_SET_TAG, kGCMTagSize,
                             const_cast<std::uint8_t*>(tag.data())) == 1 &&
         finish(context);
}

using Block = std::array<std::uint8_t, 16>;

// Multiplication by x in GF(2^128), as CMAC makes its subkey. No branch on a bit of the key.
void doubleBlock(Block& block) {
  const unsigned carry = block.front() >> 7;
  for (std::size_t i = 0; i < block.size(); ++i) {
    const unsigned next = i + 1 < block.size() ? block[i + 1] >> 7 : 0u;
    block[i] = static_cast<std::uint8_t>(block[i] << 1 | next);
  }
  block.back() = static_cast<std::uint8_t>(block.back() ^ (0x87u & (0u - carry)));
}

}  // namespace

bool gcmSeal(QNCipherKey key, QNGCMNonce nonce, ByteView associated, ByteView plain,
             std::span<std::uint8_t> out) {
  if (plain.size() > kMaxMessage || associated.size() > kMaxMessage ||
      out.size() != plain.size() + kGCMTagSize) {
    return false;
  }
  const Context context = begin(gcmCipher(), key, nonce.data(), kSeal);
  return context != nullptr && feed(context, nullptr, associated) &&
         feed(context, out.data(), plain) && finish(context) &&
         EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_GET_TAG, kGCMTagSize,
                             out.last(kGCMTagSize).data()) == 1;
}

bool gcmOpen(QNCipherKey key, QNGCMNonce nonce, ByteView associated, ByteView sealed,
             std::span<std::uint8_t> out) {
  if (sealed.size() <= kMaxMessage && associated.size() <= kMaxMessage &&
      sealed.size() == out.size() + kGCMTagSize &&
      openWithoutWiping(key, nonce, associated, sealed, out.data())) {
    return true;
  }
  wipe(out.data(), out.size());
  return false;
}

std::optional<QNMessageKey> QNMessageKey::derive(QNCipherKey key, QNGCMNonce nonceHead) {
  // Only whole blocks are fed and nothing is finished, so that padding never comes in.
  const Context context = begin(blockCipher(), key, nullptr, kSeal);
  if (context == nullptr) return std::nullopt;
  Block subkey{};
  const bool haveSubkey = feed(context, subkey.data(), Block{});
  doubleBlock(subkey);
  QNMessageKey derived;
  std::size_t at = 0;
  for (const std::uint8_t counter : {std::uint8_t{1}, std::uint8_t{2}}) {
    Block message{0, counter, 'X', 0};
    std::copy(nonceHead.begin(), nonceHead.end(), message.begin() + 4);
    for (std::size_t i = 0; i < message.size(); ++i) {
      derived._bytes[at++] = static_cast<std::uint8_t>(message[i] ^ subkey[i]);
    }
  }
  wipe(subkey.data(), subkey.size());
  if (!haveSubkey || !feed(context, derived._bytes.data(), derived._bytes)) return std::nullopt;
  return derived;
}

bool xaesSeal(QNCipherKey key, QNXAESNonce nonce, ByteView associated, ByteView plain,
              std::span<std::uint8_t> out) {
  const auto messageKey = QNMessageKey::derive(key, nonce.first<12>());
  return messageKey && gcmSeal(messageKey->bytes(), nonce.last<12>(), associated, plain, out);
}

bool xaesOpen(QNCipherKey key, QNXAESNonce nonce, ByteView associated, ByteView sealed,
              std::span<std::uint8_t> out) {
  const auto messageKey = QNMessageKey::derive(key, nonce.first<12>());
  return messageKey && gcmOpen(messageKey->bytes(), nonce.last<12>(), associated, sealed, out);
}

}  // namespace quillon
