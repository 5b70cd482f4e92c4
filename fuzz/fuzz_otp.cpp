// Texts of one-time passwords. Each has a code of its form or a named cause for having none; blanks
// around it change nothing, a period has one code, and a bare seed is that of an address.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "quillon/platform/otp/LTTOTP.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/touchpoints/QNTOTPGenerator.h"

namespace {

using namespace quillon;

void require(bool truth) {
  if (!truth) std::abort();
}

QNResult<QNTOTPGeneratorResult> codeAt(std::int64_t timestamp, std::string_view text) {
  return LTTOTP::totp(QNTOTPGeneratorRequest(timestamp, text));
}

void requireForm(const QNTOTPGeneratorResult& result) {
  const std::string_view code = result.code.reveal();
  require(code.size() == result.digits);
  require(result.digits >= 5 && result.digits <= 10);
  require(result.period >= 1 && result.period <= 300);
  require(result.secondsLeft >= 1 && result.secondsLeft <= result.period);
  const char* const alphabet = result.digits == 5 ? "23456789BCDFGHJKMNPQRTVWXY" : "0123456789";
  require(code.find_first_not_of(alphabet) == std::string_view::npos);
}

void requireSame(const QNResult<QNTOTPGeneratorResult>& a,
                 const QNResult<QNTOTPGeneratorResult>& b) {
  require(a.ok() == b.ok());
  if (a.ok()) {
    require(a.value().code.equals(b.value().code));
  } else {
    require(a.error().code == b.error().code);
  }
}

// What a query can't hold as it is.
bool isPlain(std::string_view text) {
  return text.find_first_of(":%&#+") == std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // A moment that the text itself decides.
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < size; ++i) bits = bits * 31 + data[i];
  const auto timestamp = static_cast<std::int64_t>(bits);
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto result = codeAt(timestamp, text);
  requireSame(result, codeAt(timestamp, " \n" + text + "\t"));
  const std::string seed(trimmedView(text));
  if (isPlain(seed)) requireSame(result, codeAt(timestamp, "otpauth://totp/x?secret=" + seed));
  if (!result.ok()) {
    const auto cause = TOTPError::fromError(result.error());
    require(cause && result.error().message == cause->rawValue());
    return 0;
  }
  requireForm(result.value());
  const std::uint32_t left = result.value().secondsLeft;
  // Not beyond the last moment that there is.
  if (timestamp < INT64_MAX - 300) requireSame(result, codeAt(timestamp + left - 1, text));
  const auto generated =
      QNTOTPGenerator::generate(text, QNTOTPGenerator::Date(std::chrono::duration<double>(59)));
  requireSame(generated, codeAt(59, text));
  return 0;
}
