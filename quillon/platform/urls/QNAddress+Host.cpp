#include <arpa/inet.h>
#include <unicode/uidna.h>

#include <algorithm>
#include <array>

#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/urls/internal/QNAddress.h"

namespace quillon {
namespace {

// Browsers refuse these in a name, but for "~", which here begins a path. The rest may stand in
// one, "_" and "*" included.
constexpr std::string_view kForbidden = " #/:<>?@[\\]^|%~";

bool isForbidden(char c) noexcept {
  return static_cast<unsigned char>(c) <= 0x20 || c == 0x7F ||
         kForbidden.find(c) != std::string_view::npos;
}

int hexDigit(char c) noexcept {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = lowercaseASCII(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::optional<std::string> percentDecoded(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += text[i];
      continue;
    }
    if (text.size() - i < 3) return std::nullopt;
    const int high = hexDigit(text[i + 1]);
    const int low = hexDigit(text[i + 2]);
    if (high < 0 || low < 0) return std::nullopt;
    decoded += static_cast<char>(high << 4 | low);
    i += 2;
  }
  return decoded;
}

// Browsers' settings of UTS 46: non-transitional, right-to-left and joiner rules kept, hyphens
// and lengths not looked at.
const UIDNA* idnaRules() {
  static const UIDNA* const rules = [] {
    UErrorCode status = U_ZERO_ERROR;
    constexpr std::uint32_t options = UIDNA_CHECK_BIDI | UIDNA_CHECK_CONTEXTJ |
                                      UIDNA_NONTRANSITIONAL_TO_ASCII |
                                      UIDNA_NONTRANSITIONAL_TO_UNICODE;
    UIDNA* const opened = uidna_openUTS46(options, &status);
    return U_SUCCESS(status) ? opened : nullptr;
  }();
  return rules;
}

std::optional<std::string> asciiFormOf(std::string_view name) {
  constexpr std::size_t longestInput = 4 * QNAddress::kMaxHostBytes;
  constexpr std::uint32_t ignored = UIDNA_ERROR_EMPTY_LABEL | UIDNA_ERROR_LABEL_TOO_LONG |
                                    UIDNA_ERROR_DOMAIN_NAME_TOO_LONG | UIDNA_ERROR_LEADING_HYPHEN |
                                    UIDNA_ERROR_TRAILING_HYPHEN | UIDNA_ERROR_HYPHEN_3_4;
  if (name.size() > longestInput || idnaRules() == nullptr) return std::nullopt;
  std::array<char, 1024> ascii{};
  UIDNAInfo info = UIDNA_INFO_INITIALIZER;
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t size =
      uidna_nameToASCII_UTF8(idnaRules(), name.data(), static_cast<std::int32_t>(name.size()),
                             ascii.data(), static_cast<std::int32_t>(ascii.size()), &info, &status);
  if (U_FAILURE(status) || (info.errors & ~ignored) != 0) return std::nullopt;
  return std::string(ascii.data(), static_cast<std::size_t>(size));
}

// An A-label has to be looked at as closely as what it stands for.
bool needsIDNA(std::string_view name) {
  return !isASCII(name) || name.find("xn--") != std::string_view::npos;
}

bool isAlphanumeric(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

// The last label must have a letter or a digit, so that a stray sign is no host.
bool isHostName(std::string_view name) {
  const std::string_view lastLabel = name.substr(name.rfind('.') + 1);
  return name.size() <= QNAddress::kMaxHostBytes && name.substr(0, 1) != "." &&
         name.find("..") == std::string_view::npos &&
         std::none_of(name.begin(), name.end(), isForbidden) &&
         std::any_of(lastLabel.begin(), lastLabel.end(), isAlphanumeric);
}

}  // namespace

std::optional<std::string> hostFromText(std::string_view text) {
  std::optional<std::string> name(text);
  if (text.find('%') != std::string_view::npos) name = percentDecoded(text);
  if (!name) return std::nullopt;
  std::transform(name->begin(), name->end(), name->begin(), lowercaseASCII);
  if (needsIDNA(*name)) name = asciiFormOf(*name);
  while (name && !name->empty() && name->back() == '.') name->pop_back();
  return name && isHostName(*name) ? name : std::nullopt;
}

std::optional<std::string> IPv6FromText(std::string_view text) {
  // The zone of a link-local address ("%eth0") means something on one machine only.
  const std::string_view number = text.substr(0, text.find('%'));
  if (number.size() >= INET6_ADDRSTRLEN || std::count(number.begin(), number.end(), ':') < 2) {
    return std::nullopt;
  }
  std::array<char, INET6_ADDRSTRLEN> buffer{};
  std::copy(number.begin(), number.end(), buffer.begin());
  in6_addr address{};
  if (inet_pton(AF_INET6, buffer.data(), &address) != 1) return std::nullopt;
  inet_ntop(AF_INET6, &address, buffer.data(), buffer.size());
  return std::string(buffer.data());
}

bool isIPAddress(std::string_view host) {
  if (host.find(':') != std::string_view::npos) return true;
  const std::string_view last = host.substr(host.rfind('.') + 1);
  return std::all_of(last.begin(), last.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace quillon
