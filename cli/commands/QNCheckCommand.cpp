#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"

namespace quillon {
namespace {

JsonArray texts(const std::vector<std::string>& texts) {
  JsonArray array;
  for (const std::string& text : texts) array.emplace_back(text);
  return array;
}

JsonObject jsonOf(const QNCheckReport& report) {
  return {{"itemsChecked", report.itemsChecked},
          {"foldersChecked", report.foldersChecked},
          {"clean", report.clean()},
          {"problems", texts(report.problems)},
          {"remarks", texts(report.remarks)}};
}

JsonObject jsonOf(const QNFolderRepair& repair) {
  return {{"foldersSealedAnew", texts(repair.foldersSealedAnew)},
          {"foldersRemoved", texts(repair.foldersRemoved)},
          {"foldersMissing", repair.foldersMissing},
          {"ledgerSetRight", repair.ledgerSetRight},
          {"foldersMovedToTop", texts(repair.foldersMovedToTop)},
          {"itemsMovedToTop", texts(repair.itemsMovedToTop)}};
}

QNResult<std::optional<QNFolderRepair>> repairIfAsked(const QNVaultSession& session, bool asked) {
  if (!asked) return std::optional<QNFolderRepair>();
  auto repair = session.store().repairFolders(session.vault());
  if (!repair) return repair.error();
  return std::optional(std::move(repair).value());
}

void printDamage(QNOutput& out, const QNFolderRepair& repair) {
  for (const std::string& uuid : repair.foldersSealedAnew) {
    out.line(fmt::format("kept as it stands, though it was altered: folder {}", shownText(uuid)));
  }
  for (const std::string& uuid : repair.foldersRemoved) {
    out.line(fmt::format("removed, since its title doesn't open: folder {}", shownText(uuid)));
  }
  if (repair.foldersMissing > 0) {
    out.line(fmt::format("folders missing: {}", repair.foldersMissing));
  } else if (repair.ledgerSetRight) {
    out.line("folders were added, or put back to an older state: they stay as they are");
  }
}

void print(QNOutput& out, const QNFolderRepair& repair) {
  printDamage(out, repair);
  for (const std::string& uuid : repair.foldersMovedToTop) {
    out.line(fmt::format("moved to the top: folder {}", shownText(uuid)));
  }
  for (const std::string& uuid : repair.itemsMovedToTop) {
    out.line(fmt::format("taken out of a folder that isn't there: item {}", shownText(uuid)));
  }
}

}  // namespace

QNCommandResult runCommand(Global global, const QNCheckArguments& arguments) {
  const auto session = QNVaultSession::open(
      global, arguments.repair ? QNStore::Access::readWrite : QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto repair = repairIfAsked(session.value(), arguments.repair);
  if (!repair) return repair.error();
  const auto report = session.value().store().check(session.value().vault());
  if (!report) return report.error();
  const QNExit exit = report.value().clean() ? QNExit::done : QNExit::damaged;
  if (global.json) {
    JsonObject object = jsonOf(report.value());
    if (repair.value()) object["repaired"] = jsonOf(*repair.value());
    return printJson(object, exit);
  }
  QNOutput out;
  if (repair.value()) print(out, *repair.value());
  for (const std::string& problem : report.value().problems) out.line(shownText(problem));
  for (const std::string& remark : report.value().remarks) out.line(shownText(remark));
  out.line(fmt::format("items checked: {}, problems: {}", report.value().itemsChecked,
                       report.value().problems.size()));
  return out.finish(exit);
}

}  // namespace quillon
