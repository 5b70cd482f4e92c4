// otpauth://totp/LABEL?NAME=VALUE&...   the form that codes to scan hold
// steam://SECRET                        what other password managers keep for Steam
// SECRET                                what a site shows to be typed in
//
// Copies of any part may hold the seed, and lie in QNSecret and Bytes only.

#include "quillon/platform/otp/internal/QNTOTPParameters.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

#include "quillon/platform/data/MRData.h"
#include "quillon/platform/memory/QNSecret.h"
#include "quillon/platform/otp/TOTPError.h"
#include "quillon/platform/otp/internal/QNBase32.h"
#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using Algorithm = QNTOTPParameters::Algorithm;

bool isEqualIgnoringCase(std::string_view a, std::string_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lowercaseASCII(x) == lowercaseASCII(y); });
}

bool isSteamName(std::string_view text) {
  return isEqualIgnoringCase(trimmedView(text), "steam");
}

// As browsers write forms: a plus is a blank. A % that begins no escape stays.
QNSecret unescaped(std::string_view text) {
  QNSecret plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char c = text[i] == '+' ? ' ' : text[i];
    if (c == '%') {
      const auto byte = bytesFromHex(text.substr(i + 1, 2));
      if (byte && byte->size() == 1) {
        c = textOf(*byte).front();
        i += 2;
      }
    }
    plain.append({&c, 1});
  }
  return plain;
}

// The first parameter of that name. Names in capitals too: codes to scan are smaller so.
std::optional<QNSecret> parameterNamed(std::string_view name, std::string_view inQuery) {
  while (!inQuery.empty()) {
    const std::string_view one = inQuery.substr(0, inQuery.find('&'));
    inQuery.remove_prefix(std::min(inQuery.size(), one.size() + 1));
    const std::size_t equals = one.find('=');
    if (!isEqualIgnoringCase(one.substr(0, equals), name)) continue;
    return unescaped(equals == std::string_view::npos ? "" : one.substr(equals + 1));
  }
  return std::nullopt;
}

// Digits alone, no sign and no blanks.
std::optional<std::uint32_t> numberFrom(const QNSecret& text) {
  std::uint32_t number = 0;
  const std::string_view digits = text.reveal();  // a small number, no secret
  const char* const end = digits.data() + digits.size();
  const auto read = std::from_chars(digits.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return number;
}

bool readNumber(std::string_view name, std::string_view inQuery, std::uint32_t least,
                std::uint32_t most, std::uint32_t& number) {
  const auto text = parameterNamed(name, inQuery);
  if (!text) return true;
  const auto read = numberFrom(*text);
  if (!read || *read < least || *read > most) return false;
  number = *read;
  return true;
}

std::optional<Algorithm> algorithmNamed(std::string_view name) {
  constexpr std::array<std::pair<std::string_view, Algorithm>, 6> names{
      {{"SHA1", Algorithm::sha1},
       {"SHA256", Algorithm::sha256},
       {"SHA512", Algorithm::sha512},
       {"SHA-1", Algorithm::sha1},
       {"SHA-256", Algorithm::sha256},
       {"SHA-512", Algorithm::sha512}}};
  for (const auto& entry : names) {
    if (isEqualIgnoringCase(entry.first, name)) return entry.second;
  }
  return std::nullopt;
}

QNResult<QNTOTPParameters> withSecret(std::string_view base32, QNTOTPParameters parameters) {
  QNBase32 decoded = QNBase32::decode(base32);
  switch (decoded.fault) {
    case QNBase32::Fault::foreignCharacter:
      return TOTPError(TOTPError::SecretNotBase32).toError();
    case QNBase32::Fault::brokenGroup:
      return TOTPError(TOTPError::SecretFailedDecoding).toError();
    case QNBase32::Fault::none:
      break;
  }
  if (decoded.bytes.empty()) return TOTPError(TOTPError::NoSecret).toError();
  if (decoded.bytes.size() < QNTOTPParameters::kMinSecretBytes) {
    return TOTPError(TOTPError::SecretTooShort).toError();
  }
  parameters.secret = std::move(decoded.bytes);
  return parameters;
}

void makeSteam(QNTOTPParameters& parameters) {
  parameters.isSteam = true;
  parameters.digits = QNTOTPParameters::kSteamDigits;
}

// The parts of //HOST/LABEL?QUERY#REST. A # in the label is the label's: people name accounts so.
struct Address {
  std::string_view host, label, query;
  explicit Address(std::string_view text) {
    const std::size_t mark = text.find('?');
    if (mark != std::string_view::npos) {
      query = text.substr(mark + 1);
      query = query.substr(0, query.find('#'));
    }
    const std::string_view path = text.substr(0, mark);
    host = path.substr(0, path.find_first_of("/#"));
    label = path.substr(std::min(path.size(), host.size() + 1));
  }
};

// "ISSUER:ACCOUNT", whose colon may be escaped, unless the issuer is told by itself.
bool isIssuedBySteam(const Address& address) {
  if (const auto issuer = parameterNamed("issuer", address.query)) {
    return isSteamName(issuer->reveal());  // compared only
  }
  const QNSecret label = unescaped(address.label);
  const std::string_view text = label.reveal();  // compared only
  const std::size_t colon = text.find(':');
  return colon != std::string_view::npos && isSteamName(text.substr(0, colon));
}

QNResult<QNTOTPParameters> fromOtpauth(const Address& address) {
  const bool isSteamHost = isSteamName(address.host);
  if (!isSteamHost && !isEqualIgnoringCase(address.host, "totp")) {
    return TOTPError(TOTPError::InvalidUriHost).toError();
  }
  const auto encoder = parameterNamed("encoder", address.query);
  const bool isSteam = isSteamHost || encoder || isIssuedBySteam(address);
  QNTOTPParameters parameters;
  // Other programs write a count of digits beside Steam's codes too: theirs, or the usual one.
  const std::uint32_t leastDigits =
      isSteam ? QNTOTPParameters::kSteamDigits : QNTOTPParameters::kMinDigits;
  if (!readNumber("digits", address.query, leastDigits, QNTOTPParameters::kMaxDigits,
                  parameters.digits)) {
    return TOTPError(TOTPError::InvalidDigits).toError();
  }
  if (!readNumber("period", address.query, 1, QNTOTPParameters::kMaxPeriod, parameters.period)) {
    return TOTPError(TOTPError::InvalidPeriod).toError();
  }
  if (const auto name = parameterNamed("algorithm", address.query)) {
    const auto algorithm = algorithmNamed(name->reveal());  // compared only
    if (!algorithm) return TOTPError(TOTPError::InvalidAlgorithm).toError();
    parameters.algorithm = *algorithm;
  }
  // A way of writing codes that we don't know would give wrong ones.
  if (encoder && !isSteamName(encoder->reveal())) {  // compared only
    return TOTPError(TOTPError::InvalidAlgorithm).toError();
  }
  if (isSteam) makeSteam(parameters);
  const auto secret = parameterNamed("secret", address.query);
  if (!secret) return TOTPError(TOTPError::NoSecret).toError();
  return withSecret(secret->reveal(), std::move(parameters));  // decoded into wiping bytes
}

QNResult<QNTOTPParameters> fromSteam(const Address& address) {
  QNTOTPParameters parameters;
  makeSteam(parameters);
  return withSecret(unescaped(address.host).reveal(), std::move(parameters));
}

}  // namespace

QNResult<QNTOTPParameters> QNTOTPParameters::fromText(std::string_view text) {
  text = trimmedView(text);
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) return withSecret(text, {});
  const std::string_view scheme = text.substr(0, colon);
  const bool isSteam = isEqualIgnoringCase(scheme, "steam");
  if (!isSteam && !isEqualIgnoringCase(scheme, "otpauth")) {
    return TOTPError(TOTPError::InvalidScheme).toError();
  }
  text.remove_prefix(colon + 1);
  if (!text.starts_with("//")) return TOTPError(TOTPError::InvalidUriHost).toError();
  const Address address(text.substr(2));
  return isSteam ? fromSteam(address) : fromOtpauth(address);
}

}  // namespace quillon
