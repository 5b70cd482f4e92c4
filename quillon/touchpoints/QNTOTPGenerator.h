#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

#include "quillon/platform/otp/LTTOTP.h"

namespace quillon {

/// One-time passwords from the value of an item's field and a moment. Keeps no state.
class QNTOTPGenerator final {
 public:
  /// Seconds since 1970, with fractions. A clock's time_point of any unit converts.
  using Date = std::chrono::sys_time<std::chrono::duration<double>>;
  /// Code in latticeErrorDomain, without a message: the text is empty, or blanks alone.
  static constexpr std::int64_t kErrorEmptyURL = 1201;

  /// The code of this moment. Nothing, with an error log, if there is none.
  static std::optional<QNTOTPGeneratorResult> generateWithURL(std::string_view url);
  /// The code of the date's second; fractions are cut off towards 1970. kErrorEmptyURL, or an
  /// error of LTTOTP as it is. A date that isn't finite, or more than 2^63 seconds away, ends the
  /// process: no clock has it.
  static QNResult<QNTOTPGeneratorResult> generate(std::string_view with, Date date);
};

}  // namespace quillon
