#include "cli/terminal/QNProgressBar.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/terminal/QNMessages.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {
constexpr std::size_t kWidth = 40;
constexpr double kSecondsBetweenDrawings = 0.1;
}  // namespace

QNProgressBar::QNProgressBar(std::string_view title, std::uint64_t total)
    : _title(title),
      _total(std::max<std::uint64_t>(total, 1)),
      _terminal(standardErrorIsTerminal()) {}

QNProgressBar::~QNProgressBar() {
  if (_drawn) printRaw("\r\x1b[K");
}

void QNProgressBar::advanceTo(std::uint64_t done) {
  if (!_terminal || steadySeconds() < _nextDrawing) return;
  _nextDrawing = steadySeconds() + kSecondsBetweenDrawings;
  _drawn = true;
  const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(_total));
  const auto filled = static_cast<std::size_t>(part * kWidth);
  printRaw(fmt::format("\r{} [{:#<{}}{:.<{}}] {:3.0f}%", _title, "", filled, "", kWidth - filled,
                       part * 100));
}

}  // namespace quillon
