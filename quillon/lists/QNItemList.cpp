#include "quillon/lists/QNItemList.h"

#include <unordered_map>
#include <utility>

#include "quillon/items/QNItem.h"
#include "quillon/lists/QNItemSorter.h"
#include "quillon/lists/internal/QNListRange.h"
#include "quillon/platform/data/QNNotFound.h"
#include "quillon/platform/text/QNFormat.h"
#include "quillon/touchpoints/QNItemSpecifier.h"

namespace quillon {
namespace {

// Under the names that logs have always told it by, and without its sections, whose names may be
// titles.
void report(std::string_view complaint, int line = __builtin_LINE()) {
  MRLogger::sharedLogger().assertion(
      DEBUG_DATABASE, "QNItemList",
      MRLogText(complaint, "Common/QNItemList", line, "addItemToSearchSection"));
}

std::shared_ptr<QNItemListSection> emptySection(std::string_view name) {
  return std::make_shared<QNItemListSection>(QNItemListSection::Items{}, std::string(name));
}

// Each name with its items, in the order of first appearance.
class Grouping final {
 public:
  void add(std::string name, std::shared_ptr<QNItem> item) {
    if (_groups.empty() || *_groups[_last].name != name) {
      const auto found = _groupByName.try_emplace(std::move(name), _groups.size());
      if (found.second) _groups.push_back({&found.first->first, {}});
      _last = found.first->second;
    }
    _groups[_last].items.push_back(std::move(item));
  }
  QNItemList::Sections sections() && {
    QNItemList::Sections sections;
    for (auto& group : _groups) {
      sections.push_back(std::make_shared<QNItemListSection>(std::move(group.items), *group.name));
    }
    return sections;
  }

 private:
  struct Group {
    const std::string* name;
    QNItemListSection::Items items;
  };
  std::unordered_map<std::string, std::size_t> _groupByName;
  std::vector<Group> _groups;
  std::size_t _last = 0;  // whose items come in a row, as a rule
};

}  // namespace

// Making

QNItemList::QNItemList(Sections sections) : _mutableSections(std::move(sections)) {
  std::erase(_mutableSections, nullptr);
  updateCaches();
}

std::shared_ptr<QNItemList> QNItemList::initWithItems(Items items,
                                                      const QNItemSorter& sortingWith) {
  std::erase(items, nullptr);
  Grouping grouping;
  if (!items.empty()) {
    for (auto& item : sortingWith.sortObjects(std::move(items))) {
      if (item == nullptr) continue;
      std::string name = sortingWith.sectionTitleForObject(*item);
      grouping.add(std::move(name), std::move(item));
    }
  }
  return initWithSections(std::move(grouping).sections());
}

std::shared_ptr<QNItemList> QNItemList::initWithSearchResults(Items items) {
  return initWithSections(
      {std::make_shared<QNItemListSection>(std::move(items), std::string(kSearchSectionName))});
}

std::shared_ptr<QNItemList> QNItemList::initWithSections(Sections sections) {
  return std::make_shared<QNItemList>(std::move(sections));
}

std::shared_ptr<QNItemList> QNItemList::mutableCopy() const {
  Sections copies;
  for (const auto& section : _mutableSections) copies.push_back(section->mutableCopy());
  return initWithSections(std::move(copies));
}

std::string QNItemList::description() const {
  std::string sections;
  for (const auto& section : _mutableSections) {
    if (!sections.empty()) sections += ", ";
    sections += section->description();
  }
  return formatted("<QNItemList: {}, sections: ({})>", static_cast<const void*>(this), sections);
}

// Items

QNItemList::Items QNItemList::allItems() const {
  Items items;
  items.reserve(numberOfItems());
  for (const auto& section : _mutableSections) {
    for (std::size_t row = 0; row < section->numberOfItems(); ++row) {
      items.push_back(section->itemAtIndex(row));
    }
  }
  return items;
}

std::size_t QNItemList::numberOfItems() const {
  std::size_t count = 0;
  for (const auto& section : _mutableSections) count += section->numberOfItems();
  return count;
}

std::shared_ptr<QNItem> QNItemList::itemAtIndexPath(const std::optional<QNIndexPath>& path) const {
  if (!path || path->section >= _mutableSections.size()) return nullptr;
  return _mutableSections[path->section]->itemAtIndex(path->row);
}

std::optional<QNIndexPath> QNItemList::indexPathForItemWithSpecifier(
    const std::shared_ptr<const QNItemSpecifier>& specifier) const {
  if (specifier == nullptr) return std::nullopt;
  const std::size_t hash = specifier->hash();
  for (std::size_t section = 0; section < _mutableSections.size(); ++section) {
    const auto row = _mutableSections[section]->indexOfItemWithSpecifier(*specifier, hash);
    if (row != kNotFound) return QNIndexPath{static_cast<std::size_t>(row), section};
  }
  return std::nullopt;
}

void QNItemList::enumerateItemsUsingBlock(
    const std::function<void(const std::shared_ptr<QNItem>& item)>& block) const {
  if (!block) return;
  enumerateItemsUsingCancelableBlock([&block](const auto& item, bool&) { block(item); });
}

// Over copies, so that the block may change the list.
void QNItemList::enumerateItemsUsingCancelableBlock(
    const std::function<void(const std::shared_ptr<QNItem>& item, bool& stop)>& block) const {
  if (!block) return;
  bool stop = false;
  for (const auto& section : sections()) {
    if (stop) return;
    for (const auto& item : section->items()) {
      if (stop) return;
      block(item, stop);
    }
  }
}

void QNItemList::addItem(const std::shared_ptr<QNItem>& item) {
  if (item == nullptr) return;
  const std::string name = item->sectionName();
  const std::int64_t known = indexOfSectionWithName(name);
  if (known == kNotFound) {
    _mutableSections.push_back(emptySection(name));
    updateCaches();
  }
  const auto& section = known == kNotFound ? _mutableSections.back()
                                           : _mutableSections[static_cast<std::size_t>(known)];
  section->addUniqueItem(item);
}

// Sections

std::int64_t QNItemList::indexOfSectionWithName(std::string_view name) const {
  const auto found = _sectionIndexByName.find(name);
  return found == _sectionIndexByName.end() ? kNotFound : static_cast<std::int64_t>(found->second);
}

std::int64_t QNItemList::sectionForSectionIndexTitle(std::string_view /*title*/,
                                                     std::int64_t atIndex) const {
  return atIndex;
}

void QNItemList::removeSectionAtIndex(std::size_t index) {
  requireIndex(index, _mutableSections.size(), "QNItemList");
  _mutableSections.erase(_mutableSections.begin() + static_cast<std::ptrdiff_t>(index));
  updateCaches();
}

void QNItemList::updateCaches() {
  _sectionIndexByName.clear();
  _sectionIndexTitles.clear();
  for (const auto& section : _mutableSections) {
    _sectionIndexByName.insert_or_assign(section->sectionName(), _sectionIndexTitles.size());
    _sectionIndexTitles.push_back(section->sectionName());
  }
}

// Search section

bool QNItemList::beginsWithSearchSection() const {
  return !isEmpty() && _mutableSections.front()->sectionName() == kSearchSectionName;
}

void QNItemList::setShowsSearchSection(bool shows) {
  if (_showsSearchSection == shows) return;
  _showsSearchSection = shows;
  if (shows) {
    _mutableSections.insert(_mutableSections.begin(), emptySection(kSearchSectionName));
  } else if (beginsWithSearchSection()) {
    _mutableSections.erase(_mutableSections.begin());
  }
  updateCaches();
}

void QNItemList::addItemToSearchSection(const std::shared_ptr<QNItem>& item) {
  if (!_showsSearchSection) {
    report("You can't add an item to the search section if showsSearchSection is NO");
  } else if (!beginsWithSearchSection()) {
    report(
        "It looks like showsSearchSection is YES, but there doesn't appear to be a search section");
  } else {
    _mutableSections.front()->addUniqueItem(item);
  }
}

}  // namespace quillon
