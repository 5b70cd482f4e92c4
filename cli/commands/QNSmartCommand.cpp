// smart list, add and show.

#include <algorithm>
#include <optional>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNNewFolder.h"
#include "cli/fields/QNGivenPredicate.h"
#include "cli/output/QNListing.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"

namespace quillon {
namespace {

// Nothing in quarantine: this version can't use it.
std::optional<std::string> predicateOf(QNFolder& folder) {
  const auto predicate = folder.smartFolderPredicate();
  return predicate == nullptr ? std::nullopt : std::optional(predicate->predicateFormat());
}

JsonObject jsonOf(QNFolder& folder, const std::optional<std::string>& predicate) {
  JsonObject object(jsonStorage());
  setJsonText(object, "uuid", *folder.uuid());
  setJsonText(object, "title", folder.title().value_or(""));
  object["predicate"] = nullptr;
  if (predicate) setJsonText(object, "predicate", *predicate);
  return object;
}

void printLine(QNOutput& out, QNFolder& folder, const std::string& predicate, bool withUUIDs) {
  if (withUUIDs) out.text(shownText(*folder.uuid()) + "  ");
  out.line(padded(shownTitle(folder), kTitleWidth) + "  " + shownText(predicate));
}

}  // namespace

QNCommandResult runCommand(Global global, const QNSmartListArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto tree = QNVaultFolders::read(session.value());
  if (!tree) return tree.error();
  QNOutput out;
  JsonArray array(jsonStorage());
  for (const QNFolderRef& folder : tree.value().all()) {
    if (!tree.value().isSmart(*folder)) continue;
    const auto predicate = predicateOf(*folder);
    if (global.json) {
      array.emplace_back(jsonOf(*folder, predicate));
    } else {
      printLine(out, *folder, predicate.value_or(""), arguments.withUUIDs);
    }
  }
  if (global.json) {
    out.json(Json(std::move(array)));
    out.line("");
  }
  return out.finish(tree.value().warn());
}

QNCommandResult runCommand(Global global, const QNSmartAddArguments& arguments) {
  const auto predicate = predicateFrom(arguments.predicate);
  if (!predicate) return predicate.error();
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto tree = QNVaultFolders::read(session.value());
  if (!tree) return tree.error();
  const auto prepare = [&](QNFolder& made) -> QNResult<QNDone> {
    made.setSmartFolder(true);
    if (made.setSmartFolderPredicate(predicate.value())) return QNDone{};
    return toolError(QNExit::failed, "the predicate can't be stored");
  };
  const auto folder = addFolder(session.value(), tree.value(), arguments.path, prepare);
  if (!folder) return folder.error();
  return printUUID(global.json, *folder.value()->uuid(), tree.value().warn());
}

QNCommandResult runCommand(Global global, const QNSmartShowArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto tree = QNVaultFolders::read(session.value());
  if (!tree) return tree.error();
  const auto folder = tree.value().chooseSmart(arguments.folder);
  if (!folder) return folder.error();
  const auto predicate = folder.value()->smartFolderPredicate();
  if (predicate == nullptr) {
    return toolError(QNExit::failed, "this version can't use the predicate of that smart folder");
  }
  QNListing listing(listForm(global.json, arguments.withUUIDs), arguments.order,
                    arguments.sections ? QNListLayout::sections : QNListLayout::plain);
  const auto report = session.value().store().listMatching(
      session.value().vault(), QNStore::Which::normal, *predicate,
      [&](const std::shared_ptr<QNItem>& item) { listing.add(item); });
  if (!report) return report.error();
  QNOutput out;
  listing.print(out);
  return out.finish(std::max(tree.value().warn(), warnOfDamage(report.value())));
}

}  // namespace quillon
