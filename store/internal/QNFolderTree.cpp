#include "store/internal/QNFolderTree.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace quillon {

namespace {

class TreeBuilder final {
 public:
  TreeBuilder(std::span<const QNFolderPlace> places, std::size_t maxLevels)
      : _maxLevels(maxLevels), _levels(places.size()) {
    tree.parents.resize(places.size());
    tree.misplaced.resize(places.size());
    std::unordered_map<std::string_view, std::size_t> byUUID;
    for (std::size_t i = 0; i < places.size(); ++i) byUUID.emplace(places[i].uuid, i);
    for (std::size_t i = 0; i < places.size(); ++i) {
      if (!places[i].parentUUID) continue;
      const auto parent = byUUID.find(*places[i].parentUUID);
      if (parent == byUUID.end()) {
        tree.misplaced[i] = true;
      } else {
        tree.parents[i] = parent->second;
      }
    }
  }

  /// Finds the levels of a folder and of all above it.
  void settle(std::size_t folder) {
    std::vector<std::size_t> way;
    std::size_t at = folder;
    while (_levels[at] == 0) {
      _levels[at] = kOnTheWay;
      way.push_back(at);
      if (!tree.parents[at]) break;
      at = *tree.parents[at];
    }
    if (_levels[at] == kOnTheWay && tree.parents[at]) {
      std::for_each(std::find(way.begin(), way.end(), at), way.end(),
                    [this](std::size_t member) { putAtTop(member); });
    }
    // From above downwards: the level of a folder is that of its parent and one.
    for (auto each = way.rbegin(); each != way.rend(); ++each) {
      const auto parent = tree.parents[*each];
      const std::size_t level = parent ? _levels[*parent] + 1 : 1;
      if (level > _maxLevels) putAtTop(*each);
      _levels[*each] = level > _maxLevels ? 1 : level;
    }
  }

  QNFolderTree tree;

 private:
  static constexpr std::size_t kOnTheWay = static_cast<std::size_t>(-1);
  void putAtTop(std::size_t folder) {
    tree.parents[folder].reset();
    tree.misplaced[folder] = true;
  }
  std::size_t _maxLevels;
  std::vector<std::size_t> _levels;  // from 1; 0: not known yet
};

}  // namespace

QNFolderTree folderTree(std::span<const QNFolderPlace> places, std::size_t maxLevels) {
  TreeBuilder builder(places, maxLevels);
  for (std::size_t i = 0; i < places.size(); ++i) builder.settle(i);
  return std::move(builder.tree);
}

}  // namespace quillon
