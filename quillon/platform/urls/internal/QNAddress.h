#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// What can be told of an address as somebody typed it.
struct QNAddress {
  /// Longest address and longest host that are read, in bytes.
  static constexpr std::size_t kMaxBytes = 65'536;
  static constexpr std::size_t kMaxHostBytes = 253;

  /// Lower case, without ":". "localhost:8080" has none.
  std::optional<std::string> scheme;
  /// Lower-case ASCII: a name (international ones as xn--), an IPv4 address as typed, or an IPv6
  /// address in its shortest form and without brackets. Never empty.
  std::optional<std::string> host;

  static QNAddress fromText(std::string_view text);
};

/// `text` without what can't be seen around it, and without tabs and new lines inside. Points
/// into `text`, or into `storage` where a copy was needed.
std::string_view cleanedAddress(std::string_view text, std::string& storage);

// Hosts: QNAddress+Host.cpp
/// The host in its lower-case ASCII form; nothing if it can't be one. `text` is what stands
/// between user information and port, percent-encoded perhaps.
std::optional<std::string> hostFromText(std::string_view text);
/// The shortest form of an IPv6 address without brackets; nothing for other text.
std::optional<std::string> IPv6FromText(std::string_view text);
/// Is a host, as hostFromText() gives it, an address in numbers?
bool isIPAddress(std::string_view host);

}  // namespace quillon
