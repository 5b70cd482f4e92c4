#pragma once
// Folders for the tests of this folder, and what a store has of them as one line.

#include <algorithm>

#include "quillon/organisation/QNFolder.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {

/// A new folder, not saved yet.
inline std::shared_ptr<QNFolder> makeFolder(const std::shared_ptr<QNProfile>& vault,
                                            std::string_view title,
                                            const std::shared_ptr<QNFolder>& parent = nullptr) {
  auto folder = std::make_shared<QNFolder>(initNew);
  folder->setProfile(vault);
  folder->setTitle(title);
  if (parent != nullptr) folder->setParentUUID(*parent->uuid());
  return folder;
}

inline std::shared_ptr<QNFolder> savedFolder(Session& session, std::string_view title,
                                             const std::shared_ptr<QNFolder>& parent = nullptr) {
  auto folder = makeFolder(session.vault, title, parent);
  EXPECT_EQ(errorOf(session.store->saveFolder(folder)), "");
  return folder;
}

inline std::shared_ptr<QNItem> savedLoginIn(Session& session, const QNFolder& folder,
                                            std::string_view title) {
  auto item = makeLogin(session.vault, title);
  item->setFolderUUID(*folder.uuid());
  EXPECT_EQ(errorOf(session.store->save(item)), "");
  return item;
}

inline QNFolderReport foldersIn(Session& session) {
  auto report = session.store->folders(session.vault);
  EXPECT_TRUE(report.ok()) << report.error().message;
  return report.ok() ? std::move(report).value() : QNFolderReport();
}

/// "TITLE ITEMS" of each, by title, with what hangs under it in brackets: "a 2 [b 0] c 1".
inline std::string treeText(std::vector<std::shared_ptr<QNFolder>> folders) {
  std::sort(folders.begin(), folders.end(),
            [](const auto& a, const auto& b) { return a->title() < b->title(); });
  std::string text;
  for (const auto& folder : folders) {
    if (!text.empty()) text += ' ';
    text += folder->title().value_or("") + ' ' + std::to_string(folder->numberOfItems());
    EXPECT_EQ(folder->numberOfChildren(), folder->subfolders().size());
    if (folder->subfolders().empty()) continue;
    text += " [" + treeText({folder->subfolders().begin(), folder->subfolders().end()}) + "]";
  }
  return text;
}

/// The tree of a vault that is sound.
inline std::string treeIn(Session& session) {
  const QNFolderReport report = foldersIn(session);
  EXPECT_TRUE(report.misplaced.empty() && report.damaged.empty() && !report.ledgerBroken);
  return treeText(report.top);
}

}  // namespace quillon
