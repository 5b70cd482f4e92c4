#include <fmt/format.h>

#include <algorithm>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/output/QNItemJson.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/output/QNTimeText.h"

namespace quillon {
namespace {

using Entries = std::vector<QNPreviouslyUsedPassword>;

constexpr std::size_t kTimeWidth = 19;
constexpr std::string_view kNothing = "—";

// Of two that went at the same time, the one that was written down last.
Entries newestFirst(Entries entries) {
  std::reverse(entries.begin(), entries.end());
  std::stable_sort(entries.begin(), entries.end(),
                   [](const auto& a, const auto& b) { return a.retiredAt() > b.retiredAt(); });
  return entries;
}

QNCommandResult printEntriesJson(const Entries& entries, bool reveal) {
  JsonArray array(jsonStorage());
  for (const QNPreviouslyUsedPassword& entry : entries) {
    JsonObject& shown = array.emplace_back(boost::json::object_kind).get_object();
    shown["retiredAt"] = entry.retiredAt();
    if (!reveal) continue;
    shown["password"] = nullptr;
    if (entry.value()) setJsonText(shown, "password", entry.value()->reveal());  // asked for
  }
  QNOutput out;
  out.json(Json(std::move(array)));
  out.line("");
  return out.finish();
}

void print(QNOutput& out, const QNPreviouslyUsedPassword& entry, bool reveal) {
  const std::string time = timeText(entry.retiredAt());
  out.text(padded(time.empty() ? std::string(kNothing) : time, kTimeWidth) + "  ");
  if (!entry.value()) return out.line(kNothing);
  out.line(reveal ? shownText(entry.value()->reveal()) : kDots);  // the user asked for it
}

}  // namespace

QNCommandResult runCommand(Global global, const QNHistoryArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), arguments.item);
  if (!item) return item.error();
  if (item.value()->details() == nullptr) {
    return toolError(QNExit::damaged, "the item doesn't open");
  }
  const Entries entries = newestFirst(item.value()->previouslyUsedPasswords());
  if (global.json) return printEntriesJson(entries, arguments.reveal);
  QNOutput out;
  for (const QNPreviouslyUsedPassword& entry : entries) print(out, entry, arguments.reveal);
  return out.finish();
}

}  // namespace quillon
