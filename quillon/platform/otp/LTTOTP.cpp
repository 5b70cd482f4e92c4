#include "quillon/platform/otp/LTTOTP.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/otp/internal/QNTOTPParameters.h"

namespace quillon {
namespace {

constexpr std::string_view kDecimal = "0123456789";
constexpr std::string_view kSteam = "23456789BCDFGHJKMNPQRTVWXY";

/// A moment in steps of the period. Rounded down before 1970 too, so that each step has the same
/// length; a step below 0 is hashed as its two's complement.
struct Step {
  std::int64_t number;
  std::uint32_t secondsLeft;
  Step(std::int64_t timestamp, std::int64_t period) : number(timestamp / period) {
    std::int64_t into = timestamp % period;
    if (into < 0) {
      into += period;
      --number;
    }
    secondsLeft = static_cast<std::uint32_t>(period - into);
  }
  [[nodiscard]] std::array<std::uint8_t, 8> bytes() const {
    std::array<std::uint8_t, 8> text{};
    const auto bits = static_cast<std::uint64_t>(number);
    for (std::size_t i = 0; i < text.size(); ++i) {
      text[i] = static_cast<std::uint8_t>(bits >> (56 - 8 * i));
    }
    return text;
  }
};

const EVP_MD* hashOf(QNTOTPParameters::Algorithm algorithm) {
  switch (algorithm) {
    case QNTOTPParameters::Algorithm::sha256:
      return EVP_sha256();
    case QNTOTPParameters::Algorithm::sha512:
      return EVP_sha512();
    case QNTOTPParameters::Algorithm::sha1:
      break;
  }
  return EVP_sha1();
}

// 31 bits of the HMAC, from the place that its last byte tells (RFC 4226, section 5.3).
std::optional<std::uint32_t> truncatedHMAC(const QNTOTPParameters& parameters, const Step& step) {
  const auto message = step.bytes();
  const Bytes& key = parameters.secret;
  std::array<std::uint8_t, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  if (key.size() > std::numeric_limits<int>::max() ||
      HMAC(hashOf(parameters.algorithm), key.data(), static_cast<int>(key.size()), message.data(),
           message.size(), digest.data(), &size) == nullptr) {
    return std::nullopt;
  }
  const std::size_t at = digest[size - 1] & 15u;
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < 4; ++i) number = number << 8 | digest[at + i];
  wipe(digest.data(), digest.size());
  return number & 0x7fffffffu;
}

// The lowest digits to the base of the alphabet's size. A number has its highest first, and Steam
// the lowest.
QNSecret codeOf(std::uint32_t number, const QNTOTPParameters& parameters) {
  const std::string_view alphabet = parameters.isSteam ? kSteam : kDecimal;
  std::array<char, QNTOTPParameters::kMaxDigits> places{};
  char* const end = places.data() + parameters.digits;
  for (char* place = places.data(); place != end; ++place) {
    *place = alphabet[number % alphabet.size()];
    number = static_cast<std::uint32_t>(number / alphabet.size());
  }
  if (!parameters.isSteam) std::reverse(places.data(), end);
  QNSecret code(std::string_view(places.data(), parameters.digits));
  wipe(places.data(), places.size());
  return code;
}

}  // namespace

QNResult<QNTOTPGeneratorResult> LTTOTP::totp(const QNTOTPGeneratorRequest& with) {
  const auto read = QNTOTPParameters::fromText(with.url.reveal());  // read into wiping buffers
  if (!read.ok()) return read.error();
  const QNTOTPParameters& parameters = read.value();
  const Step step(with.timestamp.value_or(static_cast<std::int64_t>(secondsNow())),
                  parameters.period);
  const auto number = truncatedHMAC(parameters, step);
  if (!number) {
    return QNError{std::string(latticeErrorDomain), kErrorCannotCompute, "no HMAC"};
  }
  return QNTOTPGeneratorResult{codeOf(*number, parameters), step.secondsLeft, parameters.period,
                               parameters.digits};
}

}  // namespace quillon
