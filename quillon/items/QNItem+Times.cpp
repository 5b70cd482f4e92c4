#include <algorithm>

#include "quillon/items/QNItem.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

// Cut towards zero; below 0 for a time to come.
std::int64_t daysSince(std::uint64_t seconds) {
  return static_cast<std::int64_t>(secondsNow() - seconds) / kSecondsPerDay;
}

std::chrono::sys_seconds dateFrom(std::uint64_t seconds) {
  return std::chrono::sys_seconds(std::chrono::seconds(seconds));
}

}  // namespace

std::int64_t QNItem::createdAtDaysAgo() const {
  return daysSince(_createdAt);
}

std::int64_t QNItem::updatedAtDaysAgo() const {
  return daysSince(_updatedAt);
}

std::int64_t QNItem::passwordAgeInDays() {
  return daysSince(lastPasswordChange());
}

std::int64_t QNItem::lastUsedDaysAgo() const {
  return _lastUsedTimestamp == 0 ? kNotFound : daysSince(_lastUsedTimestamp);
}

std::uint64_t QNItem::lastPasswordChange() {
  const std::lock_guard lock(monitor());
  if (!hasPassword()) return 0;
  return std::max(_createdAt, lastRetirement());
}

std::chrono::sys_seconds QNItem::createdAtAsDate() const {
  return dateFrom(_createdAt);
}

std::chrono::sys_seconds QNItem::updatedAtAsDate() const {
  return dateFrom(_updatedAt);
}

std::optional<std::chrono::sys_seconds> QNItem::lastUsedAtAsDate() const {
  if (_lastUsedTimestamp == 0) return std::nullopt;
  return dateFrom(_lastUsedTimestamp);
}

}  // namespace quillon
