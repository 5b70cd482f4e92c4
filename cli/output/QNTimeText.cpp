#include "cli/output/QNTimeText.h"

#include <ctime>

namespace quillon {

std::string timeText(std::uint64_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm local{};
  if (seconds == 0 || localtime_r(&time, &local) == nullptr) return "";
  char text[64];
  return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local));
}

}  // namespace quillon
