#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"

namespace quillon {
namespace {

JsonObject jsonOf(const QNCheckReport& report) {
  JsonArray problems;
  for (const std::string& problem : report.problems) problems.emplace_back(problem);
  return {{"itemsChecked", report.itemsChecked},
          {"clean", report.clean()},
          {"problems", std::move(problems)}};
}

}  // namespace

QNCommandResult runCommand(Global global, const QNCheckArguments&) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto report = session.value().store().check(session.value().vault());
  if (!report) return report.error();
  const QNExit exit = report.value().clean() ? QNExit::done : QNExit::damaged;
  if (global.json) return printJson(jsonOf(report.value()), exit);
  QNOutput out;
  for (const std::string& problem : report.value().problems) out.line(shownText(problem));
  out.line(fmt::format("items checked: {}, problems: {}", report.value().itemsChecked,
                       report.value().problems.size()));
  return out.finish(exit);
}

}  // namespace quillon
