#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNMessages.h"
#include "quillon/organisation/QNFolder.h"

namespace quillon {
namespace {

using Kind = QNMergedItem::Kind;
using Outcome = QNMergedField::Outcome;
using Titles = std::map<std::string, std::string>;

// A value as JSON and as a person read it. Scripts rely on the names; they never change.
template <class Value>
struct TextOf {
  Value value;
  std::string_view name;
  std::string_view text;
};
constexpr std::array<TextOf<Kind>, 9> kKinds = {{
    {Kind::copiedToMine, "copiedToMine", "came over"},
    {Kind::copiedToTheirs, "copiedToTheirs", "went over"},
    {Kind::replacedMine, "replacedMine", "changed here"},
    {Kind::replacedTheirs, "replacedTheirs", "changed there"},
    {Kind::joined, "joined", "joined"},
    {Kind::deletedMine, "deletedMine", "deleted here"},
    {Kind::deletedTheirs, "deletedTheirs", "deleted there"},
    {Kind::deletionRefused, "deletionRefused", "deletion refused"},
    {Kind::notJoined, "notJoined", "of two categories, left alone"},
}};

constexpr std::array<TextOf<Outcome>, 4> kOutcomes = {{
    {Outcome::taken, "taken", "taken"},
    {Outcome::kept, "kept", "kept"},
    {Outcome::joined, "joined", "joined"},
    {Outcome::conflictCopy, "conflictCopy", "kept, and the other one beside it"},
}};

constexpr std::string_view kFirstMerge =
    "no earlier merge of these two is remembered: what differs counts as changed on both sides";

constexpr std::size_t kTextWidth = 16;
constexpr std::size_t kFieldWidth = 34;

template <class Value, std::size_t kSize>
const TextOf<Value>& textIn(const std::array<TextOf<Value>, kSize>& texts, Value value) {
  return texts.at(static_cast<std::size_t>(value));
}

// Before the merge: what it deletes has none afterwards.
QNResult<QNDone> addTitles(const QNVaultSession& session, Titles& titles) {
  const auto report = session.store().list(
      session.vault(), QNStore::Which::all,
      [&](const std::shared_ptr<QNItem>& item) { titles.emplace(*item->uuid(), item->title()); });
  if (!report) return report.error();
  const auto tree = session.store().folders(session.vault());
  if (!tree) return tree.error();
  for (const auto& folder : tree.value().folders) {
    titles.emplace(*folder->uuid(), folder->title().value_or(""));
  }
  return QNDone{};
}

// One side remembers the other under it: the same file by any name.
QNMergeSide sideOf(const QNVaultSession& session, const std::filesystem::path& file) {
  std::error_code failed;
  const auto place = std::filesystem::canonical(file, failed);
  return {&session.store(), session.vault(), failed ? file.string() : place.string()};
}

QNError reasonFor(const QNError& error) {
  if (!isStoreError(error, QNStoreErrorCode::busy)) return error;
  return toolError(QNExit::failed,
                   "another process writes to one of the two stores; nothing was changed");
}

std::string titleOf(const Titles& titles, const std::string& uuid) {
  const auto found = titles.find(uuid);
  return found == titles.end() ? "" : found->second;
}

JsonObject jsonOf(const QNMergedItem& item, const Titles& titles) {
  JsonArray fields(jsonStorage());
  for (const QNMergedField& field : item.fields) {
    JsonObject& shown = fields.emplace_back(boost::json::object_kind).get_object();
    setJsonText(shown, "name", field.name);
    setJsonText(shown, "outcome", textIn(kOutcomes, field.outcome).name);
  }
  JsonObject object(jsonStorage());
  setJsonText(object, "uuid", item.uuid);
  setJsonText(object, "title", titleOf(titles, item.uuid));
  setJsonText(object, "what", textIn(kKinds, item.kind).name);
  object.emplace("fields", std::move(fields));
  return object;
}

JsonObject jsonOf(const QNMergedFolder& folder, const Titles& titles) {
  JsonObject object(jsonStorage());
  setJsonText(object, "uuid", folder.uuid);
  setJsonText(object, "title", titleOf(titles, folder.uuid));
  setJsonText(object, "what", textIn(kKinds, folder.kind).name);
  return object;
}

JsonArray jsonOf(const std::vector<std::string>& uuids) {
  JsonArray array;
  for (const std::string& uuid : uuids) array.emplace_back(uuid);
  return array;
}

JsonObject jsonOf(const QNMergeReport& report, const Titles& titles, bool dryRun) {
  JsonArray folders(jsonStorage());
  for (const QNMergedFolder& folder : report.folders) folders.emplace_back(jsonOf(folder, titles));
  JsonArray items(jsonStorage());
  for (const QNMergedItem& item : report.items) items.emplace_back(jsonOf(item, titles));
  JsonObject object(jsonStorage());
  object["dryRun"] = dryRun;
  object["first"] = report.isFirst;
  object["compared"] = report.compared;
  object.emplace("items", std::move(items));
  object.emplace("folders", std::move(folders));
  object["foldersMovedToTop"] = jsonOf(report.foldersMovedToTop);
  object["quarantinedFolders"] = jsonOf(report.quarantinedFolders);
  return object;
}

void print(QNOutput& out, const QNMergedItem& item, const Titles& titles) {
  const std::string title = titleOf(titles, item.uuid);
  out.line(padded(std::string(textIn(kKinds, item.kind).text), kTextWidth) + "  " +
           shownText(title.empty() ? item.uuid : title));
  for (const QNMergedField& field : item.fields) {
    out.line(fmt::format("  {}  {}", padded(shownText(field.name), kFieldWidth),
                         textIn(kOutcomes, field.outcome).text));
  }
}

void printFolder(QNOutput& out, std::string_view what, const std::string& uuid,
                 const Titles& titles) {
  const std::string title = titleOf(titles, uuid);
  out.line(fmt::format("{}  folder {}", padded(std::string(what), kTextWidth),
                       shownText(title.empty() ? uuid : title)));
}

void printFolders(QNOutput& out, const QNMergeReport& report, const Titles& titles) {
  for (const QNMergedFolder& folder : report.folders) {
    printFolder(out, textIn(kKinds, folder.kind).text, folder.uuid, titles);
  }
  for (const std::string& uuid : report.foldersMovedToTop) {
    printFolder(out, "moved to the top", uuid, titles);
  }
  for (const std::string& uuid : report.quarantinedFolders) {
    printFolder(out, "can't be used", uuid, titles);
  }
}

std::size_t changedIn(const QNMergeReport& report) {
  return static_cast<std::size_t>(
      std::count_if(report.items.begin(), report.items.end(),
                    [](const QNMergedItem& item) { return item.kind != Kind::notJoined; }));
}

QNCommandResult printReport(Global global, const QNMergeReport& report, const Titles& titles,
                            bool dryRun) {
  if (global.json) return printJson(jsonOf(report, titles, dryRun));
  if (report.isFirst) say(kFirstMerge);
  QNOutput out;
  for (const QNMergedItem& item : report.items) print(out, item, titles);
  printFolders(out, report, titles);
  out.line(fmt::format("items compared: {}, {}: {}", report.compared,
                       dryRun ? "would be changed" : "changed", changedIn(report)));
  return out.finish();
}

}  // namespace

QNCommandResult runCommand(Global global, const QNMergeArguments& arguments) {
  // Before passwords are asked for.
  const auto two = requireTwoStores(global, arguments.other);
  if (!two) return two.error();
  const auto mine = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!mine) return mine.error();
  const std::string& vault = arguments.vault.empty() ? global.vault : arguments.vault;
  const auto theirs =
      QNVaultSession::openBeside(global, arguments.other, vault, arguments.password);
  if (!theirs) return theirs.error();
  Titles titles;
  for (const auto* const session : {&mine.value(), &theirs.value()}) {
    const auto added = addTitles(*session, titles);
    if (!added) return added.error();
  }
  const auto mode = arguments.dryRun ? QNStore::MergeMode::dryRun : QNStore::MergeMode::write;
  const auto report = QNStore::merge(sideOf(mine.value(), global.store),
                                     sideOf(theirs.value(), arguments.other), mode);
  if (!report) return reasonFor(report.error());
  return printReport(global, report.value(), titles, arguments.dryRun);
}

}  // namespace quillon
