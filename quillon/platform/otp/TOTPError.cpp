#include "quillon/platform/otp/TOTPError.h"

#include <algorithm>

namespace quillon {
namespace {

// In the order of the cases. Stored and sent: they never change.
constexpr std::array<std::string_view, TOTPError::kAllCases.size()> kRawValues{
    "InvalidDigits", "InvalidUriHost", "InvalidPeriod",   "InvalidAlgorithm",    "InvalidScheme",
    "NoSecret",      "SecretTooShort", "SecretNotBase32", "SecretFailedDecoding"};

}  // namespace

std::optional<TOTPError> TOTPError::fromRawValue(std::string_view text) noexcept {
  const auto* const found = std::find(kRawValues.begin(), kRawValues.end(), text);
  if (found == kRawValues.end()) return std::nullopt;
  return kAllCases[static_cast<std::size_t>(found - kRawValues.begin())];
}

std::string_view TOTPError::rawValue() const noexcept {
  return kRawValues[_case];
}

Json TOTPError::toJson() const {
  return Json(boost::json::string_view(rawValue().data(), rawValue().size()));
}

std::optional<TOTPError> TOTPError::fromJson(const Json& value) noexcept {
  const boost::json::string* const text = value.if_string();
  return text == nullptr ? std::nullopt : fromRawValue({text->data(), text->size()});
}

QNError TOTPError::toError() const {
  return {std::string(latticeErrorDomain), kFirstCode + _case, std::string(rawValue())};
}

std::optional<TOTPError> TOTPError::fromError(const QNError& error) noexcept {
  for (const Case one : kAllCases) {
    if (error.domain == latticeErrorDomain && error.code == kFirstCode + one) return one;
  }
  return std::nullopt;
}

}  // namespace quillon
