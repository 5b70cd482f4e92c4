#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillon {

/// A bar on standard error, if that is a terminal; nothing otherwise. Gone without a trace when
/// it is destroyed.
class QNProgressBar final {
 public:
  QNProgressBar(std::string_view title, std::uint64_t total);
  ~QNProgressBar();
  QNProgressBar(const QNProgressBar&) = delete;
  QNProgressBar& operator=(const QNProgressBar&) = delete;

  /// Cheap: draws ten times a second at most.
  void advanceTo(std::uint64_t done);

 private:
  std::string _title;
  std::uint64_t _total;
  double _nextDrawing = 0;  // of the steady clock
  bool _terminal;
  bool _drawn = false;
};

}  // namespace quillon
