#include <fmt/format.h>

#include "bench/bench.h"

namespace quillon::bench {

void benchUnlock() {
  constexpr std::string_view password = "correct horse battery staple";
  const auto vault = QNProfile::profileWithName("bench", password, std::nullopt);
  const auto derive = [&] {
    use(QNAESKey::initWithPassword(password, *vault->salt(), vault->iterations()).get());
  };
  const double derivation = bestSecondsOf(3, derive);
  const double unlock = bestSecondsOf(3, [&] {
    vault->lock();
    if (!vault->_unlockWithPassword(password)) std::abort();
  });
  fmt::print(
      "unlock   {} iterations: {:.1f} ms, of which key derivation {:.1f} ms; beyond it {:.3f} ms\n",
      vault->iterations(), unlock * 1e3, derivation * 1e3, (unlock - derivation) * 1e3);
}

}  // namespace quillon::bench
