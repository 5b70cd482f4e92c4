#define OPENSSL_SUPPRESS_DEPRECATED
#include <fmt/format.h>
#include <openssl/sha.h>

#include <array>
#include <cstdlib>

#include "bench/bench.h"
#include "quillon/touchpoints/QNTOTPGenerator.h"

namespace quillon::bench {
namespace {

constexpr int kCodes = 100'000;
constexpr std::string_view kURL =
    "otpauth://totp/Example:alice%40example.org?secret=GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQ"
    "&issuer=Example&algorithm=SHA1&digits=6&period=30";

// Both passes of an HMAC-SHA1 over a count: what any program must do for a code.
void hashTwice(const std::array<std::uint8_t, 64>& block, std::uint64_t count) {
  std::array<std::uint8_t, SHA_DIGEST_LENGTH> digest{};
  SHA_CTX context;
  SHA1_Init(&context);
  SHA1_Update(&context, block.data(), block.size());
  SHA1_Update(&context, &count, sizeof count);
  SHA1_Final(digest.data(), &context);
  SHA1_Init(&context);
  SHA1_Update(&context, block.data(), block.size());
  SHA1_Update(&context, digest.data(), digest.size());
  SHA1_Final(digest.data(), &context);
  use(digest.data());
}

}  // namespace

void benchOTP() {
  const std::array<std::uint8_t, 64> block{3};
  const double floor = bestSecondsOf(3, [&] {
    for (std::uint64_t i = 0; i < kCodes; ++i) hashTwice(block, i);
  });
  const double codes = bestSecondsOf(3, [] {
    for (int i = 0; i < kCodes; ++i) {
      const QNTOTPGenerator::Date date(std::chrono::duration<double>(30.0 * i));
      const auto result = QNTOTPGenerator::generate(kURL, date);
      if (!result.ok()) std::abort();
      use(result.value().code.reveal().data());
    }
  });
  fmt::print(
      "otp      {} codes: {:.2f} us a code from its address (wanted: 10); floor, one HMAC-SHA1 "
      "{:.2f} us; ratio {:.1f}\n",
      kCodes, codes * 1e6 / kCodes, floor * 1e6 / kCodes, codes / floor);
}

}  // namespace quillon::bench
