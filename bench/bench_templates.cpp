#include <fmt/format.h>

#include <algorithm>

#include "bench/bench.h"
#include "quillon/fields/QNFieldSection.h"
#include "quillon/templates/QNTemplateManager.h"

namespace quillon::bench {
namespace {

constexpr int kRounds = 2000;

std::size_t numberOfFields(const QNTemplate& of) {
  std::size_t count = 0;
  const auto sections = of.instantiateFieldSections();
  if (!sections) std::abort();
  for (const auto& section : *sections) count += section->numberOfFields();
  return count;
}

}  // namespace

// Loaded as at a start; files may lie in the system's cache.
void benchTemplates() {
  QNTemplateManager& manager = QNTemplateManager::sharedManager();
  manager.exchangeRegistry(nullptr);
  const double load = secondsOf([&] {
    manager.findTemplateWithUUID("101");
    for (const auto& each : manager.templates()) use(each->localizedTitle().data());
  });
  const auto all = manager.templates();
  const auto largest = *std::max_element(all.begin(), all.end(), [](const auto& a, const auto& b) {
    return numberOfFields(*a) < numberOfFields(*b);
  });
  const double make = bestSecondsOf(5, [&] {
    for (int i = 0; i < kRounds; ++i) use(largest->instantiateFieldSections()->data());
  });
  fmt::print("templates {}: loaded with one language in {:.1f} ms (wanted: 10)\n", all.size(),
             load * 1e3);
  fmt::print("sections of {}, {} fields: made in {:.1f} us (wanted: 20)\n", *largest->uuid(),
             numberOfFields(*largest), make * 1e6 / kRounds);
}

}  // namespace quillon::bench
