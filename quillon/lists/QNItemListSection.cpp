#include "quillon/lists/QNItemListSection.h"

#include <utility>

#include "quillon/items/QNItem.h"
#include "quillon/lists/internal/QNListRange.h"
#include "quillon/lists/internal/QNSpecifierIndex.h"
#include "quillon/platform/data/QNNotFound.h"
#include "quillon/platform/text/QNFormat.h"

namespace quillon {

QNItemListSection::QNItemListSection(Items items, std::string sectionName)
    : _sectionName(std::move(sectionName)), _mutableItems(std::move(items)) {
  std::erase(_mutableItems, nullptr);
}

QNItemListSection::~QNItemListSection() = default;

std::shared_ptr<QNItemListSection> QNItemListSection::mutableCopy() const {
  return std::make_shared<QNItemListSection>(_mutableItems, _sectionName);
}

std::string QNItemListSection::description() const {
  return formatted("<QNItemListSection {} ({}): {} items>", static_cast<const void*>(this),
                   _sectionName, numberOfItems());
}

std::shared_ptr<QNItem> QNItemListSection::itemAtIndex(std::size_t index) const {
  return index < _mutableItems.size() ? _mutableItems[index] : nullptr;
}

std::int64_t QNItemListSection::indexOfItemWithSpecifier(
    const std::shared_ptr<const QNItemSpecifier>& specifier) const {
  return specifier == nullptr ? kNotFound : indexOfItemWithSpecifier(*specifier, specifier->hash());
}

std::int64_t QNItemListSection::indexOfItemWithSpecifier(const QNItemSpecifier& specifier,
                                                         std::size_t hash) const {
  if (_itemIndexBySpecifier == nullptr) {
    _itemIndexBySpecifier = std::make_unique<const QNSpecifierIndex>(_mutableItems);
  }
  return _itemIndexBySpecifier->positionOf(specifier, hash);
}

void QNItemListSection::addItem(const std::shared_ptr<QNItem>& item) {
  if (item == nullptr) return;
  _mutableItems.push_back(item);
  _itemIndexBySpecifier.reset();
}

void QNItemListSection::addUniqueItem(const std::shared_ptr<QNItem>& item) {
  if (item == nullptr || indexOfItemWithSpecifier(item->itemSpecifier()) != kNotFound) return;
  addItem(item);
}

void QNItemListSection::removeItemAtIndex(std::size_t index) {
  requireIndex(index, _mutableItems.size(), "QNItemListSection");
  _mutableItems.erase(_mutableItems.begin() + static_cast<std::ptrdiff_t>(index));
  _itemIndexBySpecifier.reset();
}

}  // namespace quillon
