#include "cli/output/QNListing.h"

#include <algorithm>
#include <limits>

#include "cli/fields/QNCategoryNames.h"
#include "cli/output/QNItemJson.h"
#include "cli/output/QNShownText.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr std::size_t kTitleWidth = 40;
constexpr std::size_t kKindWidth = 16;  // a longer one pushes what follows it

// Bytes that sort as the number does.
void appendNumber(std::string& key, std::uint64_t number) {
  for (int shift = 56; shift >= 0; shift -= 8) key += static_cast<char>(number >> shift);
}

std::uint64_t newestFirst(std::uint64_t seconds) {
  return std::numeric_limits<std::uint64_t>::max() - seconds;
}

}  // namespace

QNListForm listForm(bool json, bool withUUIDs) {
  if (json) return QNListForm::json;
  return withUUIDs ? QNListForm::tableWithUUIDs : QNListForm::table;
}

std::string QNListing::keyOf(QNItem& item, std::uint32_t rank) const {
  std::string key;
  appendNumber(key, rank);
  if (_order == QNListOrder::updated) appendNumber(key, newestFirst(item.updatedAt()));
  if (_order == QNListOrder::created) appendNumber(key, newestFirst(item.createdAt()));
  key += collationKey(item.title());
  key += '\0';  // no byte of a collation key is 0: equal titles are sorted by what follows
  key += *item.uuid();
  return key;
}

Bytes QNListing::textOfItem(QNItem& item) const {
  if (_form == QNListForm::json) return mr_JSONDataWithError(listedJson(item)).value_or(Bytes());
  std::string line;
  if (_form == QNListForm::tableWithUUIDs) line += shownText(*item.uuid()) + "  ";
  const std::string stored = item.additionalInformation().value_or("");
  const std::string subtitle = shownText(withoutIsolation(stored));
  std::string kind = shownText(titleOfCategory(item.categoryUUID().value_or("")));
  line += padded(shownText(item.title()), kTitleWidth) + "  ";
  line += subtitle.empty() ? kind : padded(std::move(kind), kKindWidth) + "  " + subtitle;
  return toBytes(bytesOf(line));
}

void QNListing::add(QNItem& item, std::uint32_t rank) {
  const std::string key = keyOf(item, rank);
  const Bytes text = textOfItem(item);
  Line line{{}, key.size()};
  line.keyAndText.reserve(key.size() + text.size());
  const ByteView keyBytes = bytesOf(key);
  line.keyAndText.insert(line.keyAndText.end(), keyBytes.begin(), keyBytes.end());
  line.keyAndText.insert(line.keyAndText.end(), text.begin(), text.end());
  _lines.push_back(std::move(line));
}

void QNListing::print(QNOutput& out) {
  std::sort(_lines.begin(), _lines.end(),
            [](const Line& a, const Line& b) { return a.key() < b.key(); });
  const bool json = _form == QNListForm::json;
  if (json) out.text("[");
  for (std::size_t i = 0; i < _lines.size(); ++i) {
    if (json && i > 0) out.text(",\n");
    out.text(_lines[i].text());
    if (!json) out.text("\n");
  }
  if (json) out.line("]");
}

}  // namespace quillon
