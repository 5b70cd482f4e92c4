// conflicts and resolve: what merges left to be decided, and the decision.

#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/fields/QNConflicts.h"
#include "cli/output/QNItemJson.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNMessages.h"

namespace quillon {
namespace {

using Conflicts = std::vector<QNConflict>;

// One at a time: a list of items with their details would hold all secrets of the vault.
template <class Visit>
QNResult<QNListReport> forEachInConflict(const QNVaultSession& session, const Visit& visit) {
  std::vector<std::string> unread;
  auto report = session.store().list(session.vault(), QNStore::Which::all,
                                     [&](const std::shared_ptr<QNItem>& item) {
                                       if (!session.store().loadDetails(item))
                                         return unread.push_back(*item->uuid());
                                       const Conflicts conflicts = conflictsOf(*item);
                                       if (!conflicts.empty()) visit(*item, conflicts);
                                     });
  if (!report) return report;
  auto& damaged = report.value().damaged;
  damaged.insert(damaged.end(), unread.begin(), unread.end());
  return report;
}

JsonObject jsonOf(QNItem& item, const QNConflict& conflict, const QNFieldTexts& texts,
                  bool reveal) {
  JsonObject object(jsonStorage());
  setJsonText(object, "field", conflict.name);
  setJsonText(object, "title", texts.titleOf(*conflict.copy));
  object["secret"] = conflict.isSecret();
  if (conflict.isSecret() && !reveal) return object;
  object["mine"] = nullptr;
  if (conflict.hasPlace()) {
    setJsonText(object, "mine", mineOf(item, conflict, texts).reveal());  // asked for, or no secret
  }
  setJsonText(object, "theirs", theirsOf(conflict, texts).reveal());  // the same
  return object;
}

JsonObject jsonOf(QNItem& item, const Conflicts& conflicts, bool reveal) {
  const QNFieldTexts texts(item.categoryUUID());
  JsonObject object = listedJson(item);
  JsonArray& list = object["conflicts"].emplace_array();
  for (const QNConflict& conflict : conflicts) {
    list.emplace_back(jsonOf(item, conflict, texts, reveal));
  }
  return object;
}

// Identifiers of fields that a person made tell nobody anything.
std::string nameAndTitle(const QNConflict& conflict, const QNFieldTexts& texts) {
  const std::string title = texts.titleOf(*conflict.copy);
  const std::string name = shownText(conflict.name);
  return title.empty() || title == conflict.name ? name : name + "  " + shownText(title);
}

void print(QNOutput& out, QNItem& item, const Conflicts& conflicts, bool reveal) {
  const QNFieldTexts texts(item.categoryUUID());
  out.line(fmt::format("{}  {}", shownText(*item.uuid()), shownText(item.title())));
  for (const QNConflict& conflict : conflicts) {
    const bool isShown = reveal || !conflict.isSecret();
    const auto shown = [&](const QNSecret& value) {
      return isShown ? shownText(value.reveal()) : std::string(kDots);  // asked for, or no secret
    };
    out.line("  " + nameAndTitle(conflict, texts));
    if (conflict.hasPlace()) out.line("    mine:    " + shown(mineOf(item, conflict, texts)));
    out.line("    theirs:  " + shown(theirsOf(conflict, texts)));
  }
}

QNError ambiguous(const Conflicts& conflicts) {
  for (const QNConflict& conflict : conflicts) {
    printRaw(fmt::format("{}\n", shownText(conflict.name)));
  }
  return toolError(
      QNExit::ambiguous,
      fmt::format("{} values were put aside for that field; choose one of them", conflicts.size()));
}

class Resolution {
 public:
  explicit Resolution(QNItem& item) : _item(item), _conflicts(conflictsOf(item)) {}
  [[nodiscard]] bool isEmpty() const { return _conflicts.empty(); }
  [[nodiscard]] const std::vector<std::string>& settled() const { return _settled; }

  QNResult<QNDone> run(const QNResolveArguments& arguments) {
    if (arguments.keep) return settleAll(*arguments.keep);
    for (const QNConflictChoice& choice : arguments.choices) {
      const auto settled = settleOne(choice);
      if (!settled) return settled.error().within(shownText(choice.field));
    }
    return QNDone{};
  }

 private:
  QNResult<QNDone> settleAll(QNConflictSide side) {
    for (const QNConflict& conflict : _conflicts) {
      const Conflicts rivals = rivalsOf(_conflicts, conflict);
      if (side == QNConflictSide::theirs && rivals.size() > 1) return ambiguous(rivals);
    }
    return settleThose(_conflicts, side);
  }

  QNResult<QNDone> settleOne(const QNConflictChoice& choice) {
    const Conflicts named = conflictsNamed(_conflicts, choice.field);
    if (named.empty()) return toolError(QNExit::notFound, "the item has no such conflict");
    const bool isMeant =
        named.size() == 1 || (choice.side == QNConflictSide::mine && areOfOnePlace(named));
    if (!isMeant) return ambiguous(named);
    const auto settled = settleThose(named, choice.side);
    _conflicts = conflictsOf(_item);
    return settled;
  }

  QNResult<QNDone> settleThose(const Conflicts& conflicts, QNConflictSide side) {
    for (const QNConflict& conflict : conflicts) {
      const auto settled = settle(_item, conflict, side);
      if (!settled) return settled;
      _settled.push_back(conflict.name);
    }
    return QNDone{};
  }

  QNItem& _item;
  Conflicts _conflicts;
  std::vector<std::string> _settled;
};

QNCommandResult printSettled(Global global, QNItem& item, const std::vector<std::string>& settled) {
  const std::size_t left = conflictsOf(item).size();
  if (global.json) {
    JsonArray names(jsonStorage());
    for (const std::string& name : settled) names.emplace_back(name);
    return printJson({{"uuid", *item.uuid()}, {"settled", std::move(names)}, {"left", left}});
  }
  QNOutput out;
  out.line(fmt::format("conflicts settled: {}, left: {}", settled.size(), left));
  return out.finish();
}

}  // namespace

QNCommandResult runCommand(Global global, const QNConflictsArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  QNOutput out;
  JsonArray array(jsonStorage());
  const auto visit = [&](QNItem& item, const Conflicts& conflicts) {
    if (!global.json) return print(out, item, conflicts, arguments.reveal);
    array.emplace_back(jsonOf(item, conflicts, arguments.reveal));
  };
  const auto report = forEachInConflict(session.value(), visit);
  if (!report) return report.error();
  if (global.json) {
    out.json(Json(std::move(array)));
    out.line("");
  }
  return out.finish(warnOfDamage(report.value()));
}

QNCommandResult runCommand(Global global, const QNResolveArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), arguments.item);
  if (!item) return item.error();
  Resolution resolution(*item.value());
  if (resolution.isEmpty()) return toolError(QNExit::notFound, "the item has no conflicts");
  const auto done = resolution.run(arguments);
  if (!done) return done.error();
  const auto saved = session.value().store().save(item.value());
  if (!saved) return saved.error();
  return printSettled(global, *item.value(), resolution.settled());
}

}  // namespace quillon
