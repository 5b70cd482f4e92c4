#include <algorithm>
#include <unordered_set>

#include "quillon/organisation/QNFolder.h"
#include "quillon/organisation/internal/QNItemCount.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using Folder = std::shared_ptr<QNFolder>;

/// A folder on the way down, and which of its subfolders comes next.
struct Level {
  Folder folder;
  std::vector<Folder> sorted;
  std::size_t next = 0;
};

std::vector<Folder> sortedByTitle(std::span<const Folder> folders) {
  struct Titled {
    Folder folder;
    std::string title;
  };
  std::vector<Titled> titled;
  for (const Folder& folder : folders) titled.push_back({folder, folder->title().value_or("")});
  std::stable_sort(titled.begin(), titled.end(), [](const Titled& a, const Titled& b) {
    return localizedCaseInsensitiveCompare(a.title, b.title) < 0;
  });
  std::vector<Folder> sorted;
  for (Titled& it : titled) sorted.push_back(std::move(it.folder));
  return sorted;
}

Level levelOf(const Folder& folder) {
  return {folder, sortedByTitle(folder->subfolders())};
}

}  // namespace

void QNFolder::addSubfolder(const Folder& folder) {
  if (folder == nullptr) return;
  folder->setParentFolder(shared_from_this());
  _subfolders.push_back(folder);
}

std::vector<Folder> QNFolder::foldersAbove() const {
  std::vector<Folder> above;
  std::unordered_set<const QNFolder*> met = {this};
  for (Folder folder = parentFolder(); folder != nullptr && met.insert(folder.get()).second;
       folder = folder->parentFolder()) {
    above.push_back(folder);
  }
  return above;
}

std::uint64_t QNFolder::indentationLevel() const {
  return foldersAbove().size();
}

// It climbs from this folder, not from the other one.
bool QNFolder::isParentOfFolder(const QNFolder& folder) const {
  const Folder parent = folder.parentFolder();
  if (parent == nullptr) return false;
  if (parent.get() == this) return true;
  const auto above = foldersAbove();
  return std::find(above.begin(), above.end(), parent) != above.end();
}

// Without recursion: a tree may be deeper than the stack. A folder within itself is left out.
std::vector<Folder> QNFolder::flattenedAndSorted() {
  std::vector<Folder> flattened = {shared_from_this()};
  std::unordered_set<const QNFolder*> onTheWay = {this};
  std::vector<Level> levels;
  levels.push_back(levelOf(shared_from_this()));
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.sorted.size()) {
      onTheWay.erase(level.folder.get());
      levels.pop_back();
      continue;
    }
    const Folder folder = level.sorted[level.next++];
    if (!onTheWay.insert(folder.get()).second) continue;
    flattened.push_back(folder);
    levels.push_back(levelOf(folder));
  }
  return flattened;
}

std::string QNFolder::localizedSubtitle() const {
  return localizedItemCount(_numberOfChildren + _numberOfItems);
}

}  // namespace quillon
