#include <fmt/format.h>

#include <algorithm>

#include "bench/bench.h"
#include "cli/pick/QNPickDrawing.h"
#include "cli/pick/QNPickList.h"

namespace quillon::bench {
namespace {

constexpr double kLimit = 0.016;  // of a keystroke, at 100,000 items

struct Keystrokes {
  double worst = 0;
  double sum = 0;
};

// Each letter narrows, and the screen is drawn. Of each keystroke the round counts that least else
// disturbed.
Keystrokes measureTyping(QNPickList& list, std::string_view typed) {
  std::vector<double> best(typed.size(), 1e300);
  for (int round = 0; round < 7; ++round) {
    list.narrowTo("");
    for (std::size_t size = 1; size <= typed.size(); ++size) {
      const double seconds = secondsOf([&] {
        list.narrowTo(typed.substr(0, size));
        const std::string screen = drawn({list, "> ", typed.substr(0, size)}, {50, 160});
        use(screen.data());
      });
      best[size - 1] = std::min(best[size - 1], seconds);
    }
  }
  Keystrokes found;
  for (const double seconds : best) {
    found.worst = std::max(found.worst, seconds);
    found.sum += seconds;
  }
  return found;
}

}  // namespace

void benchPick(std::size_t count) {
  QNPickList list;
  std::string bytes;  // what a search has to look at, once
  for (std::size_t i = 0; i < count; ++i) {
    const std::string title = fmt::format("Account {} at Example {}", i, i % 977);
    const std::string more = fmt::format("person{}@example.org", i);
    const std::string url =
        fmt::format("https://login.example-{}.com/accounts/signin?id={}", i % 9973, i);
    bytes += title + more + url;
    list.add({title, more}, url);
  }
  const double floor = bestSecondsOf(5, [&] {
    const auto place = bytes.find("nowhere in it");
    use(&place);
  });
  fmt::print("pick, {} items; one look at all bytes: {:.2f} ms\n", count, floor * 1e3);
  // Letters that all items hold, that few do, and that none does.
  for (const std::string_view typed : {"example 77 person", "account 4242", "nowhere", "e", "1"}) {
    const Keystrokes found = measureTyping(list, typed);
    fmt::print("  {:18} worst key {:6.2f} ms, {:5.1f} times the floor; {:.2f} ms a key; {}\n",
               typed, found.worst * 1e3, found.worst / floor,
               found.sum * 1e3 / static_cast<double>(typed.size()),
               found.worst <= kLimit ? "within 16 ms" : "TOO SLOW");
  }
}

}  // namespace quillon::bench
