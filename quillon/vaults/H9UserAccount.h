#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace quillon {

/// An account of a hosted service, as far as the items of its vaults ask for it: where it is. Its
/// keys and its sign-in are not here.
class H9UserAccount final {
 public:
  explicit H9UserAccount(std::string server) : _server(std::move(server)) {}
  /// The address of its server, as it was entered.
  [[nodiscard]] const std::string& server() const { return _server; }

  /// Do the hosts differ in their first label at most? "https://my.example.com" and
  /// "TEAM.example.com" are one server. An address without a host is no other's equal; hosts of
  /// one label are all alike. IP addresses lose what stands before their first dot too: 10.0.0.1
  /// and 192.0.0.1 are one server.
  static bool isServerURLOnSameServerAsServerURL(std::string_view server, std::string_view other);

 private:
  std::string _server;
};

}  // namespace quillon
