#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// Reads addresses as people type them: with or without a scheme, with user information, ports,
/// international names (UTS 46), IPv4 and IPv6. Hosts come out in lower-case ASCII. The
/// registrable ("naked") domain follows the public suffix list. Stateless after first use.
class QNURLTools final {
 public:
  static const QNURLTools& shared();

  /// The host of an address; nothing if it has none ("mailto:a@b", "", "http:///x").
  [[nodiscard]] std::optional<std::string> extractHostFromURLString(std::string_view url) const;
  /// The scheme in lower case without "://"; nothing if the address has none.
  [[nodiscard]] std::optional<std::string> extractSchemeFromURLString(std::string_view url) const;
  /// "https://login.example.co.uk/" gives "example.co.uk". An IP address or a name without a
  /// public suffix gives the whole host.
  [[nodiscard]] std::optional<std::string> nakedDomainForURLString(std::string_view url) const;

  /// Lower-case hexadecimal HMAC-SHA256 of the host, or of the naked domain, keyed by the salt.
  /// Equal sites have equal hashes under one salt, and nothing links two salts.
  [[nodiscard]] std::optional<std::string> derivedHashWithSalt(std::string_view salt,
                                                               std::string_view forURLString) const;
  [[nodiscard]] std::optional<std::string> nakedHashWithSalt(std::string_view salt,
                                                             std::string_view forURLString) const;
  /// Version of the hash scheme: other rules for hosts or naked domains raise it. A newer suffix
  /// list or Unicode version doesn't: naked hashes of equal versions may differ by the list.
  [[nodiscard]] std::uint64_t hashVersion() const noexcept { return 1; }

  /// The address with the item's and the vault's identifiers added as query parameters, by which
  /// a browser extension opens the site and fills the item. Nothing for an address without host.
  [[nodiscard]] std::optional<std::string> generateGoAndFillURLStringForString(
      std::string_view url, std::string_view itemUUID, std::string_view profileUUID) const;
};

}  // namespace quillon
