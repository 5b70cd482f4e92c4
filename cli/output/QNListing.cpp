#include "cli/output/QNListing.h"

#include <algorithm>

#include "cli/fields/QNCategoryNames.h"
#include "cli/output/QNItemJson.h"
#include "cli/output/QNListOrdering.h"
#include "cli/output/QNShownText.h"
#include "quillon/lists/QNItemList.h"

namespace quillon {
namespace {

constexpr std::size_t kKindWidth = 16;  // a longer one pushes what follows it

constexpr std::string_view kMargin = "  ";  // under a heading

JsonObject jsonOf(const QNItemListSection& section) {
  JsonObject object(jsonStorage());
  setJsonText(object, "section", section.sectionName());
  JsonArray& items = object["items"].emplace_array();
  for (const auto& item : section.items()) items.emplace_back(listedJson(*item));
  return object;
}

}  // namespace

QNListForm listForm(bool json, bool withUUIDs) {
  if (json) return QNListForm::json;
  return withUUIDs ? QNListForm::tableWithUUIDs : QNListForm::table;
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

void QNListing::add(const std::shared_ptr<QNItem>& item, std::uint32_t rank) {
  if (_layout == QNListLayout::sections) return _items.push_back(item);
  const std::string key = listKeyOf(*item, _order, rank);
  const Bytes text = textOfItem(*item);
  Line line{{}, key.size()};
  line.keyAndText.reserve(key.size() + text.size());
  const ByteView keyBytes = bytesOf(key);
  line.keyAndText.insert(line.keyAndText.end(), keyBytes.begin(), keyBytes.end());
  line.keyAndText.insert(line.keyAndText.end(), text.begin(), text.end());
  _lines.push_back(std::move(line));
}

void QNListing::print(QNOutput& out) {
  _layout == QNListLayout::sections ? printSections(out) : printLines(out);
}

void QNListing::printLines(QNOutput& out) {
  std::sort(_lines.begin(), _lines.end(),
            [](const Line& a, const Line& b) { return a.key() < b.key(); });
  const bool json = _form == QNListForm::json;
  if (json) out.text("[");
  for (std::size_t i = 0; i < _lines.size(); ++i) {
    if (json && i > 0) out.text(",\n");
    json ? out.jsonText(_lines[i].text()) : out.line(_lines[i].text());
  }
  if (json) out.line("]");
}

void QNListing::printSections(QNOutput& out) const {
  const auto list = QNItemList::initWithItems(_items, QNListSorter(_order));
  JsonArray array(jsonStorage());
  for (const auto& section : list->sections()) {
    if (_form == QNListForm::json) {
      array.emplace_back(jsonOf(*section));
      continue;
    }
    out.line(shownText(section->sectionName()));
    for (const auto& item : section->items()) {
      out.text(kMargin);
      out.line(textOf(textOfItem(*item)));
    }
  }
  if (_form != QNListForm::json) return;
  out.json(Json(std::move(array)));
  out.line("");
}

}  // namespace quillon
