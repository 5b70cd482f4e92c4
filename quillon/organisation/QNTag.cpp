#include "quillon/organisation/QNTag.h"

#include <utility>

#include "quillon/organisation/internal/QNItemCount.h"
#include "quillon/platform/text/QNText.h"

// Archive, after the base's keys, and row dictionary:
//
//   key              kind                     left out when
//   "title"          text                     absent
//   "numberOfItems"  64-bit integer, a count  0

namespace quillon {
namespace {

constexpr std::string_view kTitle = "title";
constexpr std::string_view kNumberOfItems = "numberOfItems";

}  // namespace

QNTag::QNTag(QNDecoder& coder)
    : QNDatabaseObject(coder), _numberOfItems(coder.decodeInt64(kNumberOfItems).value_or(0)) {
  setTitle(coder.decodeString(kTitle));
}

void QNTag::setTitle(std::optional<std::string> title) {
  if (_title == title) return;
  _title = std::move(title);
  _titleComponents.clear();
  if (!_title) return;
  for (const std::string_view level : componentsSeparatedByString(*_title, QNTagSeparatorString)) {
    _titleComponents.emplace_back(level);
  }
}

std::string QNTag::titleComponentAtNestPosition(std::int64_t position,
                                                bool includeParentTitleComponents) const {
  if (position < 0 || static_cast<std::uint64_t>(position) >= _titleComponents.size()) return {};
  const auto level = static_cast<std::size_t>(position);
  if (!includeParentTitleComponents) return _titleComponents[level];
  std::string path = _titleComponents.front();
  for (std::size_t i = 1; i <= level; ++i) {
    path.append(QNTagSeparatorString).append(_titleComponents[i]);
  }
  return path;
}

std::string QNTag::localizedSubtitle() const {
  return localizedItemCount(_numberOfItems);
}

int QNTag::localizedCompare(const QNTag& other) const {
  return localizedCaseInsensitiveCompare(_title.value_or(""), other._title.value_or(""));
}

void QNTag::saveAllAttributes(JsonObject& attributes) {
  QNDatabaseObject::saveAllAttributes(attributes);
  if (_title) setJsonText(attributes, kTitle, *_title);
  if (_numberOfItems != 0) attributes[kNumberOfItems] = _numberOfItems;
}

void QNTag::restoreAllAttributes(const JsonObject& attributes) {
  QNDatabaseObject::restoreAllAttributes(attributes);
  setTitle(ownedStringForKey(attributes, kTitle));
  _numberOfItems = mr_unsignedValueForKey(attributes, kNumberOfItems).value_or(0);
}

void QNTag::encodeWithCoder(QNEncoder& coder) {
  QNDatabaseObject::encodeWithCoder(coder);
  encodeIfPresent(coder, _title, kTitle);
  if (_numberOfItems != 0) coder.encodeInt64(_numberOfItems, kNumberOfItems);
}

}  // namespace quillon
