#include "cli/output/QNListOrdering.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "cli/fields/QNCategoryNames.h"
#include "cli/output/QNTimeText.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr std::size_t kMonthLength = 7;  // of "2026-11-21 04:32:00"
constexpr int kBandWidth = 20;
constexpr int kLastBand = 80;  // up to 100
constexpr std::string_view kNothing = "—";

// Bytes that sort as the number does.
void appendNumber(std::string& key, std::uint64_t number) {
  for (int shift = 56; shift >= 0; shift -= 8) key += static_cast<char>(number >> shift);
}

std::uint64_t newestFirst(std::uint64_t seconds) {
  return std::numeric_limits<std::uint64_t>::max() - seconds;
}

// No byte of a collation key is 0: equal texts are sorted by what follows.
void appendText(std::string& key, std::string_view text) {
  key += collationKey(text);
  key += '\0';
}

void appendOrder(std::string& key, QNItem& item, QNListOrder order) {
  switch (order) {
    case QNListOrder::title:
      return;
    case QNListOrder::updated:
      return appendNumber(key, newestFirst(item.updatedAt()));
    case QNListOrder::created:
      return appendNumber(key, newestFirst(item.createdAt()));
    case QNListOrder::category:
      return appendText(key, pluralTitleOfCategory(item.categoryUUID().value_or("")));
    case QNListOrder::strength:
      return appendNumber(key,
                          static_cast<std::uint64_t>(std::max<int>(item.passwordStrength(), 0)));
  }
}

std::string monthOf(std::uint64_t seconds) {
  const std::string time = timeText(seconds);
  return time.empty() ? std::string(kNothing) : time.substr(0, kMonthLength);
}

// No password and one that is guessed at once are both 0: an overview doesn't tell them apart.
std::string bandOf(std::int16_t strength) {
  if (strength <= 0) return "0";
  const int first = std::min(strength / kBandWidth * kBandWidth, kLastBand);
  return fmt::format("{}–{}", std::max(first, 1),
                     first == kLastBand ? 100 : first + kBandWidth - 1);
}

}  // namespace

std::string listKeyOf(QNItem& item, QNListOrder order, std::uint32_t rank) {
  std::string key;
  appendNumber(key, rank);
  appendOrder(key, item, order);
  appendText(key, item.title());
  key += *item.uuid();
  return key;
}

std::string sectionTitleOf(QNItem& item, QNListOrder order) {
  switch (order) {
    case QNListOrder::title:
      return item.sectionName();
    case QNListOrder::updated:
      return monthOf(item.updatedAt());
    case QNListOrder::created:
      return monthOf(item.createdAt());
    case QNListOrder::category:
      return pluralTitleOfCategory(item.categoryUUID().value_or(""));
    case QNListOrder::strength:
      return bandOf(item.passwordStrength());
  }
  return "";
}

// Each key is made once.
QNItemSorter::Items QNListSorter::sortObjects(Items items) const {
  std::vector<std::pair<std::string, std::shared_ptr<QNItem>>> keyed;
  keyed.reserve(items.size());
  for (auto& item : items) keyed.emplace_back(listKeyOf(*item, _order), std::move(item));
  std::sort(keyed.begin(), keyed.end(),
            [](const auto& a, const auto& b) { return a.first < b.first; });
  std::transform(keyed.begin(), keyed.end(), items.begin(),
                 [](auto& each) { return std::move(each.second); });
  if (!_ascending) std::reverse(items.begin(), items.end());
  return items;
}

}  // namespace quillon
