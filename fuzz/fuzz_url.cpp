// Addresses as people type them. Whatever is read must read the same again: the host of a host is
// itself, the naked domain is the end of the host, and an address made to go and fill leads to
// the same host.
#include <cstdlib>

#include "quillon/platform/memory/QNBytes.h"
#include "quillon/platform/urls/QNURLTools.h"

namespace {

using namespace quillon;

void require(bool truth) {
  if (!truth) std::abort();
}

bool isLowercaseASCII(std::string_view text) {
  for (const char c : text) {
    if (c <= 0x20 || c == 0x7F || (c >= 'A' && c <= 'Z')) return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QNURLTools& tools = QNURLTools::shared();
  const std::string url(textOf({data, size}));
  const auto scheme = tools.extractSchemeFromURLString(url);
  require(!scheme || (isLowercaseASCII(*scheme) && scheme->size() >= 2));
  const auto host = tools.extractHostFromURLString(url);
  const auto naked = tools.nakedDomainForURLString(url);
  const auto filled = tools.generateGoAndFillURLStringForString(url, "item", "vault");
  require(host.has_value() == naked.has_value());
  require(host.has_value() == tools.derivedHashWithSalt("salt", url).has_value());
  if (!host) {
    require(!filled);
    return 0;
  }
  require(isLowercaseASCII(*host) && !host->empty() && host->size() <= 253);
  require(tools.extractHostFromURLString("https://" + *host + "/") == host);
  require(tools.extractHostFromURLString(*host) == host);
  require(host->size() >= naked->size());
  require(host->compare(host->size() - naked->size(), naked->size(), *naked) == 0);
  require(tools.nakedDomainForURLString(*naked) == naked);
  // The parameters may make an address too long that was just short enough.
  if (filled && filled->size() <= 65'536) require(tools.extractHostFromURLString(*filled) == host);
  return 0;
}
