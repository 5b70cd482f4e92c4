// Browsers' rules (the WHATWG URL Standard) as far as they reach, and guesses where people leave
// something out. In the order in which they are tried:
//
//   typed                      read as
//   -------------------------  -------------------------------------------
//   2001:db8::1/x              an IPv6 address whose brackets were left out
//   mailto:x, data:x, file:x   a scheme that has no host
//   name://authority/...       a scheme and an authority
//   http:authority/...         the same for http, https, ws, wss and ftp
//   name:8080/...              a host and its port
//   name:password@host/...     user information and a host
//   name:...                   a scheme and nothing that could be a host
//   //authority/...            an authority
//   /... ./... ~... \... c:\...  a path, which has no host
//   authority/...              an authority
//
// An authority ends at the first of / ? #, and at a backslash unless a scheme is named that isn't
// a browser's. Its user information ends at its last @, as a password may have one inside.

#include "quillon/platform/urls/internal/QNAddress.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>

#include "quillon/platform/text/QNASCII.h"

namespace quillon {
namespace {

constexpr std::array<std::string_view, 5> kBrowserSchemes{"http", "https", "ws", "wss", "ftp"};
constexpr std::array<std::string_view, 12> kHostlessSchemes{"about", "acct",       "blob",   "data",
                                                            "file",  "javascript", "mailto", "sip",
                                                            "sips",  "sms",        "tel",    "urn"};

template <class Names>
bool isOneOf(std::string_view name, const Names& names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

constexpr bool isDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}
constexpr bool isLetter(char c) noexcept {
  return lowercaseASCII(c) >= 'a' && lowercaseASCII(c) <= 'z';
}
constexpr bool isSchemeCharacter(char c) noexcept {
  return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
}
constexpr bool isBlankOrControl(char c) noexcept {
  return static_cast<unsigned char>(c) <= 0x20 || c == 0x7F;
}
constexpr bool isTabOrNewLine(char c) noexcept {
  return c == '\t' || c == '\n' || c == '\r';
}

std::string_view beforeAny(std::string_view text, std::string_view ends) {
  return text.substr(0, text.find_first_of(ends));
}

// Also an empty port, which stands for the scheme's own.
bool isPort(std::string_view text) {
  unsigned port = 0;
  for (const char c : text) {
    if (!isDigit(c) || port > 65'535) return false;
    port = port * 10 + static_cast<unsigned>(c - '0');
  }
  return port <= 65'535;
}

std::optional<std::string> hostOfAuthority(std::string_view authority) {
  authority.remove_prefix(authority.rfind('@') + 1);  // npos + 1 is 0
  if (auto bare = IPv6FromText(authority)) return bare;
  std::size_t end = authority.find(':');
  const bool isBracketed = !authority.empty() && authority.front() == '[';
  if (isBracketed) {
    const std::size_t bracket = authority.find(']');
    if (bracket == std::string_view::npos) return std::nullopt;
    end = bracket + 1;
  }
  const std::string_view port = authority.substr(std::min(end, authority.size()));
  if (!port.empty() && (port.front() != ':' || !isPort(port.substr(1)))) return std::nullopt;
  if (isBracketed) return IPv6FromText(authority.substr(1, end - 2));
  return hostFromText(authority.substr(0, end));
}

bool startsWithTwoSlashes(std::string_view text) {
  return text.substr(0, 2) == "//";
}

// What could be a scheme before the first ":", in lower case. A single letter is a drive.
std::string schemeCandidate(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos || colon < 2 || !isLetter(text.front())) return {};
  const std::string_view name = text.substr(0, colon);
  if (!std::all_of(name.begin(), name.end(), isSchemeCharacter)) return {};
  std::string scheme(name);
  std::transform(scheme.begin(), scheme.end(), scheme.begin(), lowercaseASCII);
  return scheme;
}

// Other paths begin with what can't be a host.
bool isPathOnDrive(std::string_view text) {
  return text.size() >= 2 && isLetter(text[0]) && text[1] == ':' &&
         (text.size() == 2 || text[2] == '/' || text[2] == '\\');
}

QNAddress withoutScheme(std::string_view text) {
  if (isPathOnDrive(text)) return {};
  const std::size_t skipped = startsWithTwoSlashes(text) ? 2 : 0;
  return {{}, hostOfAuthority(beforeAny(text.substr(skipped), "/\\?#"))};
}

// People forget one slash, or both.
QNAddress withBrowserScheme(std::string scheme, std::string_view rest) {
  constexpr std::string_view slashes = "/\\";
  for (int i = 0; i < 2 && rest.find_first_of(slashes) == 0; ++i) rest.remove_prefix(1);
  return {std::move(scheme), hostOfAuthority(beforeAny(rest, "/\\?#"))};
}

// Is what follows "name:" a port, or a password and an @? Then "name" was no scheme.
bool isPartOfAuthority(std::string_view rest) {
  const std::string_view end = beforeAny(rest, "/\\?#");
  return (!end.empty() && isPort(end)) || end.find('@') != std::string_view::npos;
}

// Marks of direction and width-less blanks come along when an address is copied from a text.
bool isInvisible(UChar32 c) {
  return u_isUWhiteSpace(c) || u_iscntrl(c) ||
         u_hasBinaryProperty(c, UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
}

std::string withoutInvisibleEnds(std::string_view text) {
  const auto all = icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
  std::int32_t start = 0;
  std::int32_t end = all.length();
  while (start < end && isInvisible(all.char32At(start))) start = all.moveIndex32(start, 1);
  while (start < end && isInvisible(all.char32At(end - 1))) end = all.moveIndex32(end, -1);
  std::string kept;
  return all.tempSubStringBetween(start, end).toUTF8String(kept);
}

}  // namespace

std::string_view cleanedAddress(std::string_view text, std::string& storage) {
  while (!text.empty() && isBlankOrControl(text.back())) text.remove_suffix(1);
  while (!text.empty() && isBlankOrControl(text.front())) text.remove_prefix(1);
  if (std::none_of(text.begin(), text.end(), isTabOrNewLine) && isASCII(text)) return text;
  storage = isASCII(text) ? std::string(text) : withoutInvisibleEnds(text);
  storage.erase(std::remove_if(storage.begin(), storage.end(), isTabOrNewLine), storage.end());
  return storage;
}

QNAddress QNAddress::fromText(std::string_view text) {
  if (text.size() > kMaxBytes) return {};
  std::string storage;
  const std::string_view address = cleanedAddress(text, storage);
  if (auto bare = IPv6FromText(beforeAny(address, "/?#"))) return {{}, std::move(bare)};
  std::string scheme = schemeCandidate(address);
  if (scheme.empty()) return withoutScheme(address);
  const std::string_view rest = address.substr(scheme.size() + 1);
  if (isOneOf(scheme, kHostlessSchemes)) return {std::move(scheme), {}};
  if (isOneOf(scheme, kBrowserSchemes)) return withBrowserScheme(std::move(scheme), rest);
  if (startsWithTwoSlashes(rest)) {
    return {std::move(scheme), hostOfAuthority(beforeAny(rest.substr(2), "/?#"))};
  }
  if (isPartOfAuthority(rest)) return withoutScheme(address);
  return {std::move(scheme), {}};
}

}  // namespace quillon
