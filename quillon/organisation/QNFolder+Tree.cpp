#include <algorithm>
#include <unordered_set>

#include "quillon/organisation/QNFolder.h"
#include "quillon/organisation/internal/QNItemCount.h"
#include "quillon/platform/memory/QNSecret.h"
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

Level levelOf(const Folder& folder) {
  return {folder, QNFolder::sortedByTitle(folder->subfolders())};
}

// Made from the live title: a copy of it would stay behind.
QNSecret titleKeyOf(QNFolder& folder) {
  const std::lock_guard lock(folder.monitor());
  std::string plain = caseInsensitiveCollationKey(folder.overviewTextForKey("title").value_or(""));
  QNSecret key(plain);
  wipe(plain.data(), plain.size());
  return key;
}

}  // namespace

// Without recursion, as everything here: a tree may be deeper than the stack.
QNFolder::~QNFolder() {
  std::vector<Folder> pending = std::move(_subfolders);
  while (!pending.empty()) {
    const Folder folder = std::move(pending.back());
    pending.pop_back();
    if (folder.use_count() > 1) continue;  // somebody else's too
    for (Folder& below : folder->_subfolders) pending.push_back(std::move(below));
    folder->_subfolders.clear();
  }
}

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

// Every row of a tree on a screen asks for it: nothing is noted on the way. Who goes half as fast
// is met in a ring alone.
std::uint64_t QNFolder::indentationLevel() const {
  std::uint64_t level = 0;
  const QNFolder* behind = this;
  for (Folder folder = parentFolder(); folder != nullptr; folder = folder->parentFolder()) {
    if (++level % 2 == 0) behind = behind->parentFolder().get();
    if (folder.get() == behind) return foldersAbove().size();
  }
  return level;
}

// It climbs from this folder, not from the other one.
bool QNFolder::isParentOfFolder(const QNFolder& folder) const {
  const Folder parent = folder.parentFolder();
  if (parent == nullptr) return false;
  if (parent.get() == this) return true;
  const auto above = foldersAbove();
  return std::find(above.begin(), above.end(), parent) != above.end();
}

// A key costs less than all the comparisons with its title.
std::vector<Folder> QNFolder::sortedByTitle(std::span<const Folder> folders) {
  struct Titled {
    Folder folder;
    QNSecret key;
  };
  std::vector<Titled> titled;
  for (const Folder& folder : folders) titled.push_back({folder, titleKeyOf(*folder)});
  std::stable_sort(titled.begin(), titled.end(), [](const Titled& a, const Titled& b) {
    return a.key.reveal() < b.key.reveal();  // looked at, not kept
  });
  std::vector<Folder> sorted;
  for (Titled& it : titled) sorted.push_back(std::move(it.folder));
  return sorted;
}

// A folder within itself is left out.
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
