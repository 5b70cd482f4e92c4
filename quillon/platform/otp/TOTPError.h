#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/json/QNJson.h"

namespace quillon {

/// Why the text of a one-time password can't be used. Which text has which cause:
/// docs/formats.md. A value; the raw value of a case is its own name.
class TOTPError final {
 public:
  enum Case : std::uint8_t {
    InvalidDigits,
    InvalidUriHost,
    InvalidPeriod,
    InvalidAlgorithm,
    InvalidScheme,
    NoSecret,
    SecretTooShort,
    SecretNotBase32,
    SecretFailedDecoding,
  };
  static constexpr std::array<Case, 9> kAllCases{
      InvalidDigits, InvalidUriHost, InvalidPeriod,   InvalidAlgorithm,    InvalidScheme,
      NoSecret,      SecretTooShort, SecretNotBase32, SecretFailedDecoding};
  /// The error code of the first case; the others follow in order.
  static constexpr std::int64_t kFirstCode = 1211;

  constexpr TOTPError(Case value) noexcept : _case(value) {}  // NOLINT: a case is the value
  constexpr operator Case() const noexcept { return _case; }  // NOLINT: for switch and ==

  /// Nothing for any other text; case counts.
  static std::optional<TOTPError> fromRawValue(std::string_view text) noexcept;
  [[nodiscard]] std::string_view rawValue() const noexcept;

  /// The raw value as a JSON text, and back. Nothing for any other JSON.
  [[nodiscard]] Json toJson() const;
  static std::optional<TOTPError> fromJson(const Json& value) noexcept;

  /// latticeErrorDomain, code kFirstCode and on, the raw value as the message; and back.
  [[nodiscard]] QNError toError() const;
  static std::optional<TOTPError> fromError(const QNError& error) noexcept;

 private:
  Case _case;
};

}  // namespace quillon
