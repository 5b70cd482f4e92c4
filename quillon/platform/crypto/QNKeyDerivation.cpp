#include "quillon/platform/crypto/internal/QNKeyDerivation.h"

#include <openssl/core_names.h>
#include <openssl/kdf.h>
#include <openssl/params.h>
#include <sodium.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

#include "quillon/platform/crypto/QNAESKey.h"
#include "quillon/platform/memory/QNSecret.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr unsigned long long kArgonPasses = 3;
// The hash inside Argon2 leaves its result, our key, in the frame of a function that has returned:
// that much of the stack is cleared.
constexpr std::size_t kArgonStack = 32'768;
constexpr double kCalibratedSeconds = 0.5;
constexpr std::uint32_t kCalibratedStep = 1'024;  // a whole number of MiB

static_assert(QNAESKey::kSaltSize == crypto_pwhash_SALTBYTES);
static_assert(std::size_t{QNAESKey::kMinIterations} * 1'024 == crypto_pwhash_MEMLIMIT_MIN);

std::atomic<std::uint64_t> passwordDerivations{0};

OSSL_PARAM octets(const char* name, ByteView bytes) {
  return OSSL_PARAM_construct_octet_string(name, const_cast<std::uint8_t*>(bytes.data()),
                                           bytes.size());
}

}  // namespace

QNKeyBytes hkdf(const char* digest, ByteView keyMaterial, ByteView salt, ByteView info,
                std::size_t size) {
  const std::unique_ptr<EVP_KDF, decltype(&EVP_KDF_free)> kdf(
      EVP_KDF_fetch(nullptr, OSSL_KDF_NAME_HKDF, nullptr), &EVP_KDF_free);
  const std::unique_ptr<EVP_KDF_CTX, decltype(&EVP_KDF_CTX_free)> context(
      kdf != nullptr ? EVP_KDF_CTX_new(kdf.get()) : nullptr, &EVP_KDF_CTX_free);
  if (context == nullptr || keyMaterial.empty()) return {};
  std::vector<OSSL_PARAM> params{
      OSSL_PARAM_construct_utf8_string(OSSL_KDF_PARAM_DIGEST, const_cast<char*>(digest), 0),
      octets(OSSL_KDF_PARAM_KEY, keyMaterial)};
  if (!salt.empty()) params.push_back(octets(OSSL_KDF_PARAM_SALT, salt));
  if (!info.empty()) params.push_back(octets(OSSL_KDF_PARAM_INFO, info));
  params.push_back(OSSL_PARAM_construct_end());
  QNKeyBytes derived(size);
  if (EVP_KDF_derive(context.get(), derived.data(), derived.size(), params.data()) != 1) return {};
  return derived;
}

QNKeyBytes argon2id(std::string_view password, ByteView salt, std::uint32_t kibibytes,
                    std::size_t size) {
  ++passwordDerivations;
  const auto normalized = normalizedNFKD(password);
  if (!normalized) return {};
  // Argon2 reads the characters themselves; libsodium wants an address of no characters too.
  const std::string_view text = normalized->empty() ? "" : normalized->reveal();
  QNKeyBytes derived(size);
  if (sodium_init() < 0) return {};
  const int failed =
      crypto_pwhash(derived.data(), derived.size(), text.data(), text.size(), salt.data(),
                    kArgonPasses, std::size_t{kibibytes} * 1'024, crypto_pwhash_ALG_ARGON2ID13);
  sodium_stackzero(kArgonStack);
  if (failed != 0) return {};
  return derived;
}

std::uint64_t numberOfPasswordDerivations() noexcept {
  return passwordDerivations;
}

std::uint32_t calibratedIterations(double seconds) {
  constexpr double kLeast = QNAESKey::kMinCalibratedIterations;
  constexpr double kMost = QNAESKey::kMaxCalibratedIterations;
  // Time grows in proportion to the count: the passes are fixed, the memory is the count.
  const double wanted = seconds > 0 ? kLeast * kCalibratedSeconds / seconds : kMost;
  const auto count = static_cast<std::uint32_t>(std::clamp(wanted, kLeast, kMost));
  return count - count % kCalibratedStep;
}

}  // namespace quillon
