#include "cli/commands/QNVaultFolders.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>

#include "cli/output/QNShownText.h"
#include "cli/terminal/QNMessages.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using Folders = std::vector<QNFolderRef>;

std::string titleOf(QNFolder& folder) {
  return folder.title().value_or("");
}

// Those that a path of titles names. A title may hold a "/" itself.
class FoldersByPath {
 public:
  explicit FoldersByPath(std::string_view path)
      : _paths{std::string(path), foldedForSearch(path)} {}

  void look(std::span<const QNFolderRef> folders) {
    for (const QNFolderRef& folder : folders) {
      const std::string title = titleOf(*folder);
      look(folder, 0, title, _paths[0]);
      look(folder, 1, foldedForSearch(title), _paths[1]);
    }
  }
  // Equal ones, or else those that differ in case and accents.
  [[nodiscard]] const Folders& best() const { return _found[_found[0].empty() ? 1 : 0]; }

 private:
  void look(const QNFolderRef& folder, std::size_t form, const std::string& title,
            std::string_view rest) {
    if (rest == title) return _found[form].push_back(folder);
    const bool isBelow = rest.starts_with(title) && rest.substr(title.size()).starts_with("/");
    if (!isBelow) return;
    rest.remove_prefix(title.size() + 1);
    for (const QNFolderRef& each : folder->subfolders()) {
      look(each, form, form == 0 ? titleOf(*each) : foldedForSearch(titleOf(*each)), rest);
    }
  }
  std::array<std::string, 2> _paths;  // as it is, and folded
  std::array<Folders, 2> _found;
};

QNError ambiguous(const Folders& folders) {
  for (const QNFolderRef& folder : folders) {
    printRaw(fmt::format("{}  {}\n", shownText(*folder->uuid()), shownTitle(*folder)));
  }
  return toolError(QNExit::ambiguous,
                   fmt::format("{} folders have that name; name one by its uuid", folders.size()));
}

void addUUIDs(std::set<std::string>& uuids, const QNFolder& folder) {
  uuids.insert(*folder.uuid());
  for (const QNFolderRef& each : folder.subfolders()) addUUIDs(uuids, *each);
}

}  // namespace

std::string shownTitle(QNFolder& folder) {
  return shownText(titleOf(folder));
}

QNResult<QNVaultFolders> QNVaultFolders::read(QNStore& store,
                                              const std::shared_ptr<QNProfile>& vault) {
  auto report = store.folders(vault);
  if (!report) return report.error();
  return QNVaultFolders(std::move(report).value());
}

QNResult<QNFolderRef> QNVaultFolders::choose(std::string_view name) const {
  const std::string lowered = lowercaseIdentifier(name);
  const auto hasUUID = [&](const QNFolderRef& folder) {
    return *folder->uuid() == name || *folder->uuid() == lowered;
  };
  const auto byUUID = std::find_if(_report.folders.begin(), _report.folders.end(), hasUUID);
  if (byUUID != _report.folders.end()) return *byUUID;
  FoldersByPath found(name);
  found.look(_report.top);
  if (found.best().size() > 1) return ambiguous(found.best());
  if (!found.best().empty()) return found.best().front();
  if (isWhole()) return toolError(QNExit::notFound, "no folder has that uuid or name");
  return toolError(
      QNExit::damaged,
      "no folder that is left has that uuid or name; quillon check names damaged ones");
}

QNResult<QNFolderRef> QNVaultFolders::chooseOrdinary(std::string_view name) const {
  auto folder = choose(name);
  if (!folder || !isSmart(*folder.value())) return folder;
  return toolError(QNExit::failed,
                   "that is a smart folder, which holds nothing itself; quillon smart show lists "
                   "what it finds");
}

QNResult<QNFolderRef> QNVaultFolders::chooseSmart(std::string_view name) const {
  auto folder = choose(name);
  if (!folder || isSmart(*folder.value())) return folder;
  return toolError(QNExit::failed, "that is no smart folder");
}

QNResult<QNFolderRef> QNVaultFolders::child(const QNFolderRef& parent,
                                            std::string_view title) const {
  const auto among =
      parent == nullptr ? std::span<const QNFolderRef>(_report.top) : parent->subfolders();
  const std::string folded = foldedForSearch(title);
  std::array<Folders, 2> found;
  for (const QNFolderRef& folder : among) {
    const std::string name = titleOf(*folder);
    if (name == title) found[0].push_back(folder);
    if (foldedForSearch(name) == folded) found[1].push_back(folder);
  }
  const Folders& best = found[found[0].empty() ? 1 : 0];
  if (best.size() > 1) return ambiguous(best);
  return best.empty() ? nullptr : best.front();
}

std::optional<std::string> QNVaultFolders::pathTo(std::string_view uuid) const {
  const auto found =
      std::find_if(_report.folders.begin(), _report.folders.end(),
                   [uuid](const QNFolderRef& folder) { return *folder->uuid() == uuid; });
  if (found == _report.folders.end()) return std::nullopt;
  std::string path = titleOf(**found);
  for (auto above = (*found)->parentFolder(); above != nullptr; above = above->parentFolder()) {
    path.insert(0, titleOf(*above) + "/");
  }
  return path;
}

bool QNVaultFolders::isSmart(const QNFolder& folder) const {
  const auto& quarantined = _report.quarantined;
  return folder.smartFolder() ||
         std::find(quarantined.begin(), quarantined.end(), *folder.uuid()) != quarantined.end();
}

Folders QNVaultFolders::all() const {
  Folders folders;
  for (const QNFolderRef& folder : _report.top) {
    const Folders branch = folder->flattenedAndSorted();
    folders.insert(folders.end(), branch.begin(), branch.end());
  }
  return folders;
}

QNExit QNVaultFolders::warn() const {
  if (!_report.damaged.empty()) {
    say(fmt::format("damaged folders left out: {}; quillon check names them",
                    _report.damaged.size()));
  }
  if (_report.ledgerBroken) {
    say("folders were removed, added or put back to an older state by something else than "
        "quillon; quillon check tells more");
  }
  if (!_report.misplaced.empty()) {
    say(
        fmt::format("folders at the top, since their own place isn't there: {}; quillon check "
                    "--repair leaves them there",
                    _report.misplaced.size()));
  }
  if (!_report.quarantined.empty()) {
    say(
        fmt::format("smart folders whose predicate this version can't use: {}; quillon check "
                    "names them",
                    _report.quarantined.size()));
  }
  return isWhole() ? QNExit::done : QNExit::damaged;
}

QNResult<QNExit> chooseFolderOf(QNItemFilter& filter, const QNVaultSession& session,
                                const QNFilterArguments& arguments) {
  if (!arguments.folder) return QNExit::done;
  const auto tree = QNVaultFolders::read(session);
  if (!tree) return tree.error();
  const auto folder = tree.value().chooseOrdinary(*arguments.folder);
  if (!folder) return folder.error();
  filter.folderUUIDs.emplace({*folder.value()->uuid()});
  if (arguments.nested) addUUIDs(*filter.folderUUIDs, *folder.value());
  return tree.value().warn();
}

}  // namespace quillon
