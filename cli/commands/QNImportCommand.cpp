#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/import/QNCSVImporter.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNInput.h"
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

}  // namespace

QNCommandResult runCommand(Global global, const QNImportArguments& arguments) {
  auto content = readFile(arguments.file, kMaxFileBytes);
  if (!content) return content.error();
  const auto access = arguments.dryRun ? QNStore::Access::readOnly : QNStore::Access::readWrite;
  const auto session = QNVaultSession::open(global, access);
  if (!session) return session.error();
  const auto report = importFile(session.value(), arguments, std::move(content).value());
  if (!report) return report.error();
  const QNExit exit = warnOfDamage(report.value().vault);
  if (global.json) return printJson(jsonOf(report.value(), arguments.dryRun), exit);
  QNOutput out;
  print(out, report.value(), arguments.dryRun);
  return out.finish(exit);
}

}  // namespace quillon
