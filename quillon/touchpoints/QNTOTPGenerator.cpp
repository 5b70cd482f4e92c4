#include "quillon/touchpoints/QNTOTPGenerator.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

std::int64_t timestampOf(QNTOTPGenerator::Date date) {
  constexpr double limit = 9223372036854775808.0;  // 2^63, the first that doesn't fit
  const double seconds = date.time_since_epoch().count();
  if (!(seconds >= -limit && seconds < limit)) {  // NaN as well
    MRLogger::sharedLogger().assertion(DEBUG_APP, {}, "a date that no clock has");
    std::abort();
  }
  return static_cast<std::int64_t>(seconds);
}

// Under the names that logs have always told it by.
void logFailure(const QNError& error) {
  log_error(DEBUG_APP,
            MRLogText("failed to get JSON request string for lattice {}", "Common/QNTOTPGenerator",
                      __LINE__, "generate(url:)"),
            error.domainCodeString());
}

}  // namespace

std::optional<QNTOTPGeneratorResult> QNTOTPGenerator::generateWithURL(std::string_view url) {
  auto result = generate(url, Date(std::chrono::duration<double>(secondsNow())));
  if (!result.ok()) {
    logFailure(result.error());
    return std::nullopt;
  }
  return std::move(result).value();
}

QNResult<QNTOTPGeneratorResult> QNTOTPGenerator::generate(std::string_view with, Date date) {
  const std::string_view url = trimmedView(with);
  if (url.empty()) return QNError{std::string(latticeErrorDomain), kErrorEmptyURL, {}};
  return LTTOTP::totp(QNTOTPGeneratorRequest(timestampOf(date), url));
}

}  // namespace quillon
