#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/import/QNRowImporter.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNInput.h"
#include "cli/terminal/QNMessages.h"
#include "cli/terminal/QNProgressBar.h"

namespace quillon {
namespace {

constexpr std::size_t kMaxFileBytes = std::size_t{1} << 30;

JsonObject jsonOf(const QNImportReport& report, bool dryRun) {
  JsonObject kept;
  for (const auto& column : report.keptInNotes) kept[column.name] = column.rows;
  return {{"format", nameOfFormat(report.format)},
          {"dryRun", dryRun},
          {"added", report.added},
          {"alreadyThere", report.alreadyThere},
          {"skipped", report.skipped},
          {"keptInNotes", std::move(kept)}};
}

void print(QNOutput& out, const QNImportReport& report, bool dryRun) {
  out.line(fmt::format("{}: {}", dryRun ? "would add" : "added", report.added));
  if (report.alreadyThere > 0) out.line(fmt::format("already there: {}", report.alreadyThere));
  if (report.skipped > 0) out.line(fmt::format("skipped, since empty: {}", report.skipped));
  for (const auto& column : report.keptInNotes) {
    out.line(fmt::format("kept in the notes: {}, rows: {}", shownText(column.name), column.rows));
  }
}

QNResult<QNImportReport> importFile(const QNVaultSession& session,
                                    const QNImportArguments& arguments, Bytes content) {
  QNProgressBar bar(arguments.dryRun ? "Reading" : "Importing", content.size());
  auto report = importCSV(session.store(), session.vault(), std::move(content),
                          arguments.dryRun ? QNImportMode::onlyTell : QNImportMode::add,
                          [&bar](std::size_t done) { bar.advanceTo(done); });
  const bool isAboutFile = !report && report.error().domain == MRErrorDomain;
  if (isAboutFile) return report.error().within(shownText(arguments.file.string()));
  return report;
}

QNCommandResult importCSVFile(Global global, const QNVaultSession& session,
                              const QNImportArguments& arguments, Bytes content) {
  const auto report = importFile(session, arguments, std::move(content));
  if (!report) return report.error();
  const QNExit exit = warnOfDamage(report.value().vault);
  if (global.json) return printJson(jsonOf(report.value(), arguments.dryRun), exit);
  QNOutput out;
  print(out, report.value(), arguments.dryRun);
  return out.finish(exit);
}

JsonArray texts(const std::vector<std::string>& texts) {
  JsonArray array;
  for (const std::string& text : texts) array.emplace_back(text);
  return array;
}

JsonObject jsonOf(const QNRowImportReport& report, bool dryRun) {
  return {{"format", kExportFormat},
          {"dryRun", dryRun},
          {"added", report.added},
          {"alreadyThere", report.alreadyThere},
          {"differing", report.differing},
          {"damaged", texts(report.damaged)},
          {"foldersAdded", report.foldersAdded},
          {"foldersAlreadyThere", report.foldersAlreadyThere},
          {"foldersMovedToTop", texts(report.foldersMovedToTop)}};
}

void printFolders(QNOutput& out, const QNRowImportReport& report, bool dryRun) {
  if (report.foldersAdded > 0) {
    out.line(
        fmt::format("{}: {}", dryRun ? "would add folders" : "folders added", report.foldersAdded));
  }
  if (report.foldersAlreadyThere > 0) {
    out.line(fmt::format("folders already there: {}", report.foldersAlreadyThere));
  }
  for (const std::string& uuid : report.foldersMovedToTop) {
    out.line(
        fmt::format("at the top, since its own place isn't there: folder {}", shownText(uuid)));
  }
}

void print(QNOutput& out, const QNRowImportReport& report, bool dryRun) {
  out.line(fmt::format("{}: {}", dryRun ? "would add" : "added", report.added));
  if (report.alreadyThere > 0) out.line(fmt::format("already there: {}", report.alreadyThere));
  if (report.differing > 0) {
    out.line(fmt::format("there with other content, and left alone: {}", report.differing));
  }
  printFolders(out, report, dryRun);
}

QNResult<QNRowImportReport> importExport(const QNVaultSession& session,
                                         const QNImportArguments& arguments, ByteView content) {
  const auto file = QNExportFile::read(content);
  if (!file) return file.error();
  QNProgressBar bar(arguments.dryRun ? "Reading" : "Importing", file.value().items().size());
  return importRows(session.store(), session.vault(), file.value(),
                    arguments.dryRun ? QNImportMode::onlyTell : QNImportMode::add,
                    [&bar](std::size_t done) { bar.advanceTo(done); });
}

QNExit warnOfDamage(const QNRowImportReport& report) {
  for (const std::string& uuid : report.damaged) {
    say(fmt::format("{}: there, but damaged, and left alone", shownText(uuid)));
  }
  return report.damaged.empty() ? QNExit::done : QNExit::damaged;
}

QNCommandResult importExportFile(Global global, const QNVaultSession& session,
                                 const QNImportArguments& arguments, ByteView content) {
  const auto report = importExport(session, arguments, content);
  if (!report) return report.error().within(shownText(arguments.file.string()));
  const QNExit exit = warnOfDamage(report.value());
  if (global.json) return printJson(jsonOf(report.value(), arguments.dryRun), exit);
  QNOutput out;
  print(out, report.value(), arguments.dryRun);
  return out.finish(exit);
}

}  // namespace

QNCommandResult runCommand(Global global, const QNImportArguments& arguments) {
  auto content = readFile(arguments.file, kMaxFileBytes);
  if (!content) return content.error();
  const auto access = arguments.dryRun ? QNStore::Access::readOnly : QNStore::Access::readWrite;
  const auto session = QNVaultSession::open(global, access);
  if (!session) return session.error();
  return looksLikeExport(content.value())
             ? importExportFile(global, session.value(), arguments, content.value())
             : importCSVFile(global, session.value(), arguments, std::move(content).value());
}

}  // namespace quillon
