#include "quillon/vaults/H9UserAccount.h"

#include <optional>

#include "quillon/platform/urls/QNURLTools.h"

namespace quillon {
namespace {

// What stands behind the first label: each account may sign in at a name of its own.
std::optional<std::string> domainOf(std::string_view server) {
  const auto host = QNURLTools::shared().extractHostFromURLString(server);
  if (!host) return std::nullopt;
  const std::size_t dot = host->find('.');
  return dot == std::string::npos ? "" : host->substr(dot + 1);
}

}  // namespace

bool H9UserAccount::isServerURLOnSameServerAsServerURL(std::string_view server,
                                                       std::string_view other) {
  const auto domain = domainOf(server);
  return domain && domain == domainOf(other);
}

}  // namespace quillon
