#pragma once
// One-time passwords by the clock (RFC 6238). What is read, and what isn't: docs/formats.md.

#include <cstdint>
#include <optional>
#include <string_view>

#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/memory/QNSecret.h"
#include "quillon/platform/otp/TOTPError.h"

namespace quillon {

/// What a code is made from.
struct QNTOTPGeneratorRequest {
  QNTOTPGeneratorRequest(std::optional<std::int64_t> at, std::string_view text)
      : timestamp(at), url(text) {}
  /// Seconds since 1970; nothing for now. Any moment has a code, those before 1970 too.
  std::optional<std::int64_t> timestamp;
  /// "otpauth://totp/...", "steam://..." or the bare base32 of a seed.
  QNSecret url;
};

/// A code, and how long it holds.
struct QNTOTPGeneratorResult {
  QNSecret code;
  /// From the request's moment to the next code: 1 to `period`.
  std::uint32_t secondsLeft = 0;
  std::uint32_t period = 0;
  /// Length of the code.
  std::uint32_t digits = 0;
};

/// Reads the text and computes the code. Keeps no state; any thread may ask. No text, seed or
/// code is ever logged, or part of an error.
class LTTOTP final {
 public:
  /// Code in latticeErrorDomain if no code can be computed for want of memory.
  static constexpr std::int64_t kErrorCannotCompute = 1202;
  /// TOTPError::toError() for a text that can't be used, or kErrorCannotCompute.
  static QNResult<QNTOTPGeneratorResult> totp(const QNTOTPGeneratorRequest& with);
};

}  // namespace quillon
