// folder list, add, move, rename and delete; smart delete, which does the same.

#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNNewFolder.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/output/QNTree.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

JsonObject jsonOf(QNFolder& folder, bool isSmart) {
  JsonObject object(jsonStorage());
  setJsonText(object, "uuid", *folder.uuid());
  setJsonText(object, "title", folder.title().value_or(""));
  const auto parent = folder.parentFolder();
  object["parent"] = nullptr;
  if (parent != nullptr) setJsonText(object, "parent", *parent->uuid());
  object["smart"] = isSmart;
  object["items"] = folder.numberOfItems();
  object["folders"] = folder.numberOfChildren();
  return object;
}

void printList(QNOutput& out, const QNVaultFolders& tree) {
  JsonArray array(jsonStorage());
  for (const QNFolderRef& folder : tree.all()) {
    array.emplace_back(jsonOf(*folder, tree.isSmart(*folder)));
  }
  out.json(Json(std::move(array)));
  out.line("");
}

void printTree(QNOutput& out, const QNVaultFolders& tree, bool withUUIDs) {
  const std::vector<QNFolderRef> folders = tree.all();
  std::vector<std::size_t> levels;
  for (const QNFolderRef& folder : folders) levels.push_back(folder->indentationLevel());
  const std::vector<std::string> branches = branchesOfTree(levels);
  for (std::size_t i = 0; i < folders.size(); ++i) {
    QNFolder& folder = *folders[i];
    if (withUUIDs) out.text(shownText(*folder.uuid()) + "  ");
    out.text(padded(branches[i] + shownTitle(folder), kTitleWidth) + "  ");
    out.line(tree.isSmart(folder)
                 ? QNLocalizedString("smart folder")
                 : localizedFormat("items: %jd", std::to_string(folder.numberOfItems())));
  }
}

// What a command has done to a folder, for scripts alone; damage of the others for everybody.
QNCommandResult done(Global global, const QNVaultFolders& tree, const QNFolder& folder,
                     std::string_view key, Json value) {
  const QNExit exit = tree.warn();
  if (!global.json) return exit;
  return printJson({{"uuid", *folder.uuid()}, {key, std::move(value)}}, exit);
}

Json textOrNull(const std::optional<std::string>& text) {
  return text ? Json(*text) : Json();
}

QNCommandResult saveMoved(Global global, const QNVaultSession& session, const QNVaultFolders& tree,
                          QNFolderRef folder, const QNFolderRef& parent) {
  folder->setParentUUID(parent == nullptr ? std::nullopt : std::optional(*parent->uuid()));
  const auto saved = session.store().saveFolder(folder);
  if (!saved) return saved.error();
  return done(global, tree, *folder, "parent", textOrNull(folder->parentUUID()));
}

using Choose = QNResult<QNFolderRef> (QNVaultFolders::*)(std::string_view) const;

QNCommandResult deleteFolder(Global global, std::string_view name, Choose choose) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto tree = QNVaultFolders::read(session.value());
  if (!tree) return tree.error();
  const auto folder = (tree.value().*choose)(name);
  if (!folder) return folder.error();
  const auto deleted = session.value().store().deleteFolder(folder.value());
  if (!deleted) return deleted.error();
  return done(global, tree.value(), *folder.value(), "deleted", true);
}

}  // namespace

QNCommandResult runCommand(Global global, const QNFolderListArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto tree = QNVaultFolders::read(session.value());
  if (!tree) return tree.error();
  QNOutput out;
  if (global.json) {
    printList(out, tree.value());
  } else {
    printTree(out, tree.value(), arguments.withUUIDs);
  }
  return out.finish(tree.value().warn());
}

QNCommandResult runCommand(Global global, const QNFolderAddArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto tree = QNVaultFolders::read(session.value());
  if (!tree) return tree.error();
  const auto folder =
      addFolder(session.value(), tree.value(), arguments.path, [](QNFolder&) { return QNDone{}; });
  if (!folder) return folder.error();
  return printUUID(global.json, *folder.value()->uuid(), tree.value().warn());
}

QNCommandResult runCommand(Global global, const QNFolderMoveArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto tree = QNVaultFolders::read(session.value());
  if (!tree) return tree.error();
  const auto folder = tree.value().choose(arguments.folder);
  if (!folder) return folder.error();
  if (!arguments.parent) {
    return saveMoved(global, session.value(), tree.value(), folder.value(), nullptr);
  }
  const auto parent = tree.value().chooseOrdinary(*arguments.parent);
  if (!parent) return parent.error();
  return saveMoved(global, session.value(), tree.value(), folder.value(), parent.value());
}

QNCommandResult runCommand(Global global, const QNFolderRenameArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto tree = QNVaultFolders::read(session.value());
  if (!tree) return tree.error();
  const auto folder = tree.value().choose(arguments.folder);
  if (!folder) return folder.error();
  folder.value()->setTitle(arguments.title);
  const auto saved = session.value().store().saveFolder(folder.value());
  if (!saved) return saved.error();
  return done(global, tree.value(), *folder.value(), "title", Json(arguments.title));
}

QNCommandResult runCommand(Global global, const QNFolderDeleteArguments& arguments) {
  return deleteFolder(global, arguments.folder, &QNVaultFolders::choose);
}

QNCommandResult runCommand(Global global, const QNSmartDeleteArguments& arguments) {
  return deleteFolder(global, arguments.folder, &QNVaultFolders::chooseSmart);
}

}  // namespace quillon
