#include "cli/commands/QNNewFolder.h"

#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

// Goes down a path, and makes what isn't there.
class NewFolders {
 public:
  NewFolders(const QNVaultSession& session, const QNVaultFolders& tree)
      : _session(session), _tree(tree) {}

  QNResult<QNDone> enter(std::string_view title) {
    const auto there = child(title);
    if (!there) return there.error();
    if (there.value() == nullptr) {
      make(title);
      return QNDone{};
    }
    if (_tree.isSmart(*there.value())) {
      return toolError(QNExit::failed, "a smart folder holds no others");
    }
    _here = there.value();
    return QNDone{};
  }

  QNResult<QNFolderRef> add(std::string_view title) {
    const auto there = child(title);
    if (!there) return there.error();
    if (there.value() != nullptr && there.value()->title() == title) {
      return toolError(QNExit::failed, "that folder is there already");
    }
    make(title);
    return _here;
  }

  QNResult<QNDone> save() {
    return _session.store().inTransaction([this]() -> QNResult<QNDone> {
      for (const QNFolderRef& folder : _made) {
        const auto saved = _session.store().saveFolder(folder);
        if (!saved) return saved;
      }
      return QNDone{};
    });
  }

 private:
  [[nodiscard]] QNResult<QNFolderRef> child(std::string_view title) const {
    if (!_made.empty()) return QNFolderRef();  // a new folder is empty
    return _tree.child(_here, title);
  }

  void make(std::string_view title) {
    const auto folder = std::make_shared<QNFolder>(QNNew{});
    folder->setProfile(_session.vault());
    folder->setTitle(title);
    if (_here != nullptr) folder->setParentUUID(*_here->uuid());
    _made.push_back(folder);
    _here = folder;
  }

  const QNVaultSession& _session;
  const QNVaultFolders& _tree;
  QNFolderRef _here;  // null at the top
  std::vector<QNFolderRef> _made;
};

}  // namespace

QNResult<QNFolderRef> addFolder(const QNVaultSession& session, const QNVaultFolders& tree,
                                std::string_view path,
                                const std::function<QNResult<QNDone>(QNFolder&)>& prepare) {
  NewFolders folders(session, tree);
  const auto titles = componentsSeparatedByString(path, "/");
  for (std::size_t i = 0; i + 1 < titles.size(); ++i) {
    if (const auto entered = folders.enter(titles[i]); !entered) return entered.error();
  }
  auto added = folders.add(titles.back());
  if (!added) return added;
  const auto prepared = prepare(*added.value());
  if (!prepared) return prepared.error();
  const auto saved = folders.save();
  if (!saved) return saved.error();
  return added;
}

}  // namespace quillon
