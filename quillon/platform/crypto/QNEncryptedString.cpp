#include "quillon/platform/crypto/QNEncryptedString.h"

#include "quillon/platform/crypto/internal/QNAESGCM.h"
#include "quillon/platform/data/MRData.h"

namespace quillon {
namespace {

constexpr std::size_t kKeySize = 32;

}  // namespace

std::unique_ptr<QNEncryptedString> QNEncryptedString::encryptedStringWithString(
    std::string_view text) {
  std::unique_ptr<QNEncryptedString> string(new QNEncryptedString);
  string->_key.resize(kKeySize);
  fillRandomKey(string->_key);
  string->_sealed.resize(kXAESNonceSize + text.size() + kGCMTagSize);
  const std::span<std::uint8_t, kXAESNonceSize> nonce(string->_sealed.data(), kXAESNonceSize);
  fillRandom(nonce);
  if (!xaesSeal(QNCipherKey(string->_key), nonce, {}, bytesOf(text),
                std::span(string->_sealed).subspan(kXAESNonceSize))) {
    return nullptr;
  }
  return string;
}

QNSecret QNEncryptedString::stringValue() const {
  const QNXAESNonce nonce(_sealed.data(), kXAESNonceSize);
  const ByteView sealed = ByteView(_sealed).subspan(kXAESNonceSize);
  Bytes text(sealed.size() - kGCMTagSize);
  if (!xaesOpen(QNCipherKey(_key), nonce, {}, sealed, text)) return QNSecret();
  return QNSecret(textOf(text));
}

}  // namespace quillon
