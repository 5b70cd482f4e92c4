#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/memory/QNBytes.h"

namespace quillon {

/// What the text of a one-time password says.
struct QNTOTPParameters {
  enum class Algorithm { sha1, sha256, sha512 };
  /// 40 bits, one group of base32. RFC 4226 asks for 128, but sites hand out 80, and some less:
  /// what is refused is what must have been cut.
  static constexpr std::size_t kMinSecretBytes = 5;
  static constexpr std::uint32_t kMinDigits = 6;
  static constexpr std::uint32_t kMaxDigits = 10;
  static constexpr std::uint32_t kMaxPeriod = 300;
  static constexpr std::uint32_t kSteamDigits = 5;

  Bytes secret;  // kMinSecretBytes or more
  Algorithm algorithm = Algorithm::sha1;
  std::uint32_t digits = kMinDigits;
  std::uint32_t period = 30;  // seconds
  /// Letters and digits of Steam's own alphabet in place of a number.
  bool isSteam = false;

  /// A TOTPError for a text that can't be used: the first that is found, of scheme, host, digits,
  /// period, algorithm and secret in that order.
  static QNResult<QNTOTPParameters> fromText(std::string_view text);
};

}  // namespace quillon
