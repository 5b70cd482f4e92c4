#include "quillon/platform/urls/QNURLTools.h"

#include <libpsl.h>

#include "quillon/platform/data/MRData.h"
#include "quillon/platform/urls/internal/QNAddress.h"

namespace quillon {
namespace {

// The list that libpsl was built with: no file to read, and one list for all who share a library.
// A build without it reads the system's file.
const psl_ctx_t* publicSuffixes() {
  static const psl_ctx_t* const list = [] {
    const psl_ctx_t* const builtin = psl_builtin();
    return builtin != nullptr ? builtin : psl_load_file(psl_dist_filename());
  }();
  return list;
}

// By the public suffix list's own algorithm, private suffixes included: "a.github.io" and
// "b.github.io" belong to different people. An unlisted last label counts as a suffix.
std::string nakedDomainOfHost(const std::string& host) {
  if (isIPAddress(host) || publicSuffixes() == nullptr) return host;
  const char* const domain = psl_registrable_domain(publicSuffixes(), host.c_str());
  return domain != nullptr ? domain : host;
}

std::string hashOf(std::string_view salt, std::string_view site) {
  return hexText(hmacSHA256(bytesOf(salt), bytesOf(site)));
}

constexpr std::string_view kItemParameter = "quillon-item=";
constexpr std::string_view kVaultParameter = "quillon-vault=";

bool isParameterOfOurs(std::string_view parameter) {
  return parameter.substr(0, kItemParameter.size()) == kItemParameter ||
         parameter.substr(0, kVaultParameter.size()) == kVaultParameter;
}

// The query of an address that was itself made here keeps what isn't ours.
std::string queryWithoutOurs(std::string_view query) {
  std::string kept;
  while (!query.empty()) {
    const std::size_t end = query.find('&');
    const std::string_view parameter = query.substr(0, end);
    if (!isParameterOfOurs(parameter)) kept.append(parameter) += '&';
    query.remove_prefix(end == std::string_view::npos ? query.size() : end + 1);
  }
  return kept;
}

// Elsewhere in an address a bracket says nothing of its host.
bool hasBracketedHost(std::string_view typed, const QNAddress& address) {
  if (address.scheme) typed.remove_prefix(address.scheme->size() + 1);
  typed.remove_prefix(std::min(typed.find_first_not_of("/\\"), typed.size()));
  const std::string_view authority = typed.substr(0, typed.find_first_of("/\\?#"));
  return authority.substr(authority.rfind('@') + 1, 1) == "[";  // npos + 1 is 0
}

std::string percentEncoded(std::string_view text) {
  constexpr std::string_view plain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  std::string encoded;
  for (const char c : text) {
    if (plain.find(c) != std::string_view::npos) {
      encoded += c;
    } else {
      (encoded += '%') += hexText(bytesOf(std::string_view(&c, 1)));
    }
  }
  return encoded;
}

}  // namespace

const QNURLTools& QNURLTools::shared() {
  static const QNURLTools tools;
  return tools;
}

std::optional<std::string> QNURLTools::extractHostFromURLString(std::string_view url) const {
  return QNAddress::fromText(url).host;
}

std::optional<std::string> QNURLTools::extractSchemeFromURLString(std::string_view url) const {
  return QNAddress::fromText(url).scheme;
}

std::optional<std::string> QNURLTools::nakedDomainForURLString(std::string_view url) const {
  const auto host = extractHostFromURLString(url);
  if (!host) return std::nullopt;
  return nakedDomainOfHost(*host);
}

std::optional<std::string> QNURLTools::derivedHashWithSalt(std::string_view salt,
                                                           std::string_view forURLString) const {
  const auto host = extractHostFromURLString(forURLString);
  if (!host) return std::nullopt;
  return hashOf(salt, *host);
}

std::optional<std::string> QNURLTools::nakedHashWithSalt(std::string_view salt,
                                                         std::string_view forURLString) const {
  const auto domain = nakedDomainForURLString(forURLString);
  if (!domain) return std::nullopt;
  return hashOf(salt, *domain);
}

std::optional<std::string> QNURLTools::generateGoAndFillURLStringForString(
    std::string_view url, std::string_view itemUUID, std::string_view profileUUID) const {
  const QNAddress address = QNAddress::fromText(url);
  if (!address.host) return std::nullopt;
  std::string storage;
  const std::string_view typed = cleanedAddress(url, storage);
  const bool isIPv6 = address.host->find(':') != std::string::npos;
  if (isIPv6 && !hasBracketedHost(typed, address)) return std::nullopt;
  const std::string_view body = typed.substr(0, typed.find('#'));
  const std::string_view place = body.substr(0, body.find('?'));
  const std::string_view query = body.substr(std::min(place.size() + 1, body.size()));
  std::string full;
  if (!address.scheme) full = place.substr(0, 2) == "//" ? "https:" : "https://";
  full.append(place) += '?';
  full.append(queryWithoutOurs(query)).append(kItemParameter).append(percentEncoded(itemUUID));
  full.append("&").append(kVaultParameter).append(percentEncoded(profileUUID));
  return full.append(typed.substr(body.size()));
}

}  // namespace quillon
