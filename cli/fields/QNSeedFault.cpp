#include "cli/fields/QNSeedFault.h"

#include "quillon/platform/memory/QNSecret.h"
#include "quillon/platform/otp/TOTPError.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/touchpoints/QNTOTPGenerator.h"

namespace quillon {
namespace {

// The text itself where it is no URL. The name counts in small letters alone, as it is written.
std::string_view seedIn(std::string_view text) {
  constexpr std::string_view kName = "secret=";
  if (text.find(':') == std::string_view::npos) return text;
  const std::size_t name = text.find(kName);
  if (name == std::string_view::npos) return text.substr(text.rfind('/') + 1);
  const std::string_view seed = text.substr(name + kName.size());
  return seed.substr(0, seed.find_first_of("&#"));
}

// Is padding all that is wrong with the seed? In a URL it may be written "%3D".
bool hasForeignPadding(std::string_view text) {
  constexpr std::string_view kEscapes[] = {"%3D", "%3d"};
  QNSecret bare;
  bool hasPadding = false;
  for (std::string_view rest = seedIn(text); !rest.empty();) {
    const bool isEscape = rest.starts_with(kEscapes[0]) || rest.starts_with(kEscapes[1]);
    const bool isPadding = isEscape || rest.front() == '=';
    if (!isPadding) bare.append(rest.substr(0, 1));
    hasPadding |= isPadding;
    rest.remove_prefix(isEscape ? kEscapes[0].size() : 1);
  }
  // The code is thrown away.
  return hasPadding && QNTOTPGenerator::generate(bare.reveal(), QNTOTPGenerator::Date()).ok();
}

}  // namespace

std::string_view reasonForNoCode(const QNError& error, std::string_view text) {
  if (!isUTF8(text)) return "it isn't UTF-8 text";
  if (error.code == QNTOTPGenerator::kErrorEmptyURL) return "there is no text to make one of";
  const auto cause = TOTPError::fromError(error);
  if (!cause) return "no code can be computed; is memory short?";
  switch (*cause) {
    case TOTPError::InvalidDigits:
      return "its number of digits isn't 6 to 10";
    case TOTPError::InvalidUriHost:
      return "it isn't of the kind that goes by the clock: the URL should begin with "
             "otpauth://totp/";
    case TOTPError::InvalidPeriod:
      return "its period isn't 1 to 300 seconds";
    case TOTPError::InvalidAlgorithm:
      return "its algorithm isn't SHA1, SHA256 or SHA512";
    case TOTPError::InvalidScheme:
      return "its URL isn't one of one-time passwords, which begins with otpauth:// or steam://";
    case TOTPError::NoSecret:
      return "it has no seed";
    case TOTPError::SecretTooShort:
      return "its seed is too short; was it cut?";
    case TOTPError::SecretNotBase32:
      return "its seed has characters other than letters and the digits 2 to 7";
    case TOTPError::SecretFailedDecoding:
      if (hasForeignPadding(text)) return "its seed has \"=\" where none belongs; leave them out";
      return "its seed isn't whole: a character is missing, or there is one too many";
  }
  return "no code can be computed";
}

}  // namespace quillon
