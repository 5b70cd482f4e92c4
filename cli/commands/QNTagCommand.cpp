// tag list, add, remove and rename.

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <set>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/fields/QNTagName.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "quillon/organisation/QNTag.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

using Items = std::vector<std::shared_ptr<QNItem>>;
using Tags = std::set<std::string>;
using Match = QNTagName::Match;

QNError noSuchTag(std::string_view message, std::string_view name) {
  return toolError(QNExit::notFound, message).within(shownText(name));
}

// A tag, perhaps with those below it, and what becomes of each: nothing takes it away.
struct TagChange {
  QNTagName name;
  bool nested;
  std::function<std::string(std::string_view rest)> renamed;  // null to take it away

  [[nodiscard]] bool concerns(const std::string& tag, Match match) const {
    const auto rest = name.restOf(tag, match);
    return rest && (nested || rest->empty());
  }
  [[nodiscard]] bool concerns(const Tags& tags, Match match) const {
    return std::any_of(tags.begin(), tags.end(),
                       [&](const std::string& tag) { return concerns(tag, match); });
  }
  [[nodiscard]] Tags appliedTo(const Tags& tags, Match match) const {
    Tags changed;
    for (const std::string& tag : tags) {
      if (!concerns(tag, match)) {
        changed.insert(tag);
      } else if (renamed) {
        changed.insert(renamed(*name.restOf(tag, match)));
      }
    }
    return changed;
  }
};

// Items by how the name fits their tags. A name that fits one exactly means no other.
class TaggedItems {
 public:
  explicit TaggedItems(const TagChange& change) : _change(change) {}
  void look(const std::shared_ptr<QNItem>& item) {
    const Tags tags = item->tags();
    if (_change.concerns(tags, Match::exact)) _exact.push_back(item);
    if (_exact.empty() && _change.concerns(tags, Match::loose)) _loose.push_back(item);
  }
  [[nodiscard]] const Items& items() const { return _exact.empty() ? _loose : _exact; }
  void change() const {
    const Match match = _exact.empty() ? Match::loose : Match::exact;
    for (const auto& item : items()) item->setTags(_change.appliedTo(item->tags(), match));
  }

 private:
  const TagChange& _change;
  Items _exact, _loose;
};

// Two names may be of one item, which is saved once.
QNResult<Items> chooseItems(const QNVaultSession& session, const std::vector<std::string>& names) {
  Items items;
  for (const std::string& name : names) {
    const auto item = chooseItem(session, name);
    if (!item) return item.error().within(shownText(name));
    const bool isThere = std::any_of(items.begin(), items.end(), [&](const auto& other) {
      return *other->uuid() == *item.value()->uuid();
    });
    if (!isThere) items.push_back(item.value());
  }
  return items;
}

QNCommandResult printChanged(Global global, std::string_view tag, std::size_t count, QNExit exit) {
  if (global.json) return printJson({{"tag", tag}, {"items", count}}, exit);
  QNOutput out;
  out.line(fmt::format("items changed: {}", count));
  return out.finish(exit);
}

// Of every item, the trash included: all of them are changed, or none.
QNCommandResult changeEverywhere(Global global, std::string_view name, std::string_view told,
                                 const TagChange& change) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  TaggedItems tagged(change);
  const auto report = session.value().store().list(session.value().vault(), QNStore::Which::all,
                                                   [&](const auto& item) { tagged.look(item); });
  if (!report) return report.error();
  const QNExit exit = warnOfDamage(report.value());
  if (tagged.items().empty()) return noSuchTag("no item has such a tag", name);
  tagged.change();
  const auto saved = session.value().store().saveAll(tagged.items());
  if (!saved) return saved.error();
  return printChanged(global, told, tagged.items().size(), exit);
}

QNCommandResult removeFrom(Global global, const QNTagRemoveArguments& arguments,
                           const TagChange& change) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto items = chooseItems(session.value(), arguments.items);
  if (!items) return items.error();
  for (const auto& item : items.value()) {
    TaggedItems tagged(change);
    tagged.look(item);
    if (tagged.items().empty()) return noSuchTag("an item has no such tag", arguments.tag);
    tagged.change();
  }
  const auto saved = session.value().store().saveAll(items.value());
  if (!saved) return saved.error();
  return printChanged(global, arguments.tag, items.value().size(), QNExit::done);
}

void printTags(Global global, QNOutput& out, const QNTagReport& report) {
  JsonArray array(jsonStorage());
  for (const auto& tag : report.tags) {
    const std::string title = tag->title().value_or("");
    if (!global.json) {
      out.text(padded(shownText(title), kTitleWidth) + "  ");
      out.line(localizedFormat("items: %jd", std::to_string(tag->numberOfItems())));
      continue;
    }
    JsonObject& listed = array.emplace_back(boost::json::object_kind).get_object();
    setJsonText(listed, "tag", title);
    listed["items"] = tag->numberOfItems();
  }
  if (!global.json) return;
  out.json(Json(std::move(array)));
  out.line("");
}

}  // namespace

QNCommandResult runCommand(Global global, const QNTagListArguments&) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto report = session.value().store().tags(session.value().vault());
  if (!report) return report.error();
  QNOutput out;
  printTags(global, out, report.value());
  return out.finish(warnOfDamage(report.value().rows));
}

QNCommandResult runCommand(Global global, const QNTagAddArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto items = chooseItems(session.value(), arguments.items);
  if (!items) return items.error();
  Items changed;
  for (const auto& item : items.value()) {
    const Tags before = item->tags();
    item->addTag(arguments.tag);
    if (item->tags() != before) changed.push_back(item);
  }
  const auto saved = session.value().store().saveAll(changed);
  if (!saved) return saved.error();
  return printChanged(global, arguments.tag, changed.size(), QNExit::done);
}

QNCommandResult runCommand(Global global, const QNTagRemoveArguments& arguments) {
  const TagChange change{QNTagName(arguments.tag), arguments.nested, nullptr};
  if (arguments.all) return changeEverywhere(global, arguments.tag, arguments.tag, change);
  return removeFrom(global, arguments, change);
}

QNCommandResult runCommand(Global global, const QNTagRenameArguments& arguments) {
  const auto renamed = [&](std::string_view rest) { return arguments.name + std::string(rest); };
  const TagChange change{QNTagName(arguments.tag), true, renamed};
  return changeEverywhere(global, arguments.tag, arguments.name, change);
}

}  // namespace quillon
