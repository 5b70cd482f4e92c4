#include <fmt/format.h>

#include <algorithm>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultFolders.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/import/QNFolderRow.h"
#include "cli/import/QNItemRow.h"
#include "cli/import/QNRowImporter.h"
#include "cli/output/QNNewFile.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNMessages.h"
#include "quillon/logins/QNItemURL.h"

namespace quillon {
namespace {

struct Exported {
  Bytes content;
  std::size_t folders = 0;
  std::size_t items = 0;
  QNExit exit = QNExit::done;
};

void append(Bytes& bytes, std::string_view text) {
  const ByteView more = bytesOf(text);
  bytes.insert(bytes.end(), more.begin(), more.end());
}

// Is everything there that a row dictionary would otherwise leave out without a word?
bool opens(QNItem& item) {
  if (item.mutableOverview() == nullptr || item.details() == nullptr) return false;
  const auto urls = item.URLs();
  return std::all_of(urls.begin(), urls.end(),
                     [](const auto& url) { return url->mutableOverview() != nullptr; });
}

// A folder or an item a line, so that nothing but one of them is held twice. One that doesn't open
// is reported and left out, as the list does with its row; so is one that no import would read.
class Exporting {
 public:
  explicit Exporting(QNStore& store) : _store(store) {
    append(_exported.content, fmt::format("{{\"format\":\"{}\",\"version\":{},\"folders\":[",
                                          kExportFormat, kExportVersion));
  }

  // Those in quarantine call themselves ordinary ones.
  void addAll(const QNVaultFolders& folders) {
    for (const QNFolderRef& folder : folders.inRowOrder()) {
      folder->setSmartFolder(folders.isSmart(*folder));
      addLine(*folder->uuid(), exportedJson(*folder), _exported.folders);
    }
    append(_exported.content, "\n],\"items\":[");
    _exported.exit = std::max(_exported.exit, folders.warn());
  }

  void add(const std::shared_ptr<QNItem>& item) {
    if (!_store.loadDetails(item) || !opens(*item)) return _unread.push_back(*item->uuid());
    addLine(*item->uuid(), exportedJson(*item), _exported.items);
  }

  Exported finish(QNListReport report) {
    append(_exported.content, "\n]}\n");
    report.damaged.insert(report.damaged.end(), _unread.begin(), _unread.end());
    _exported.exit = std::max(_exported.exit, warnOfDamage(report));
    return std::move(_exported);
  }

 private:
  void addLine(const std::string& uuid, JsonObject exported, std::size_t& count) {
    const auto text = exportedText(std::move(exported));
    if (!text) return leaveOut(uuid, text.error());
    append(_exported.content, count++ == 0 ? "\n" : ",\n");
    append(_exported.content, textOf(text.value()));
  }

  void leaveOut(const std::string& uuid, const QNError& reason) {
    say(fmt::format("{}: left out: {}", shownText(uuid), reason.message));
    _exported.exit = std::max(_exported.exit, QNExit::failed);
  }

  QNStore& _store;
  Exported _exported;
  std::vector<std::string> _unread;
};

QNResult<Exported> exportAll(const QNVaultSession& session) {
  const auto folders = QNVaultFolders::read(session);
  if (!folders) return folders.error();
  Exporting exporting(session.store());
  exporting.addAll(folders.value());
  const auto report =
      session.store().list(session.vault(), QNStore::Which::all,
                           [&](const std::shared_ptr<QNItem>& item) { exporting.add(item); });
  if (!report) return report.error();
  return exporting.finish(report.value());
}

QNCommandResult writeFile(Global global, const Exported& exported,
                          const std::filesystem::path& file) {
  const auto written = writeNewFile(file, exported.content);
  if (!written) return written.error();
  if (global.json) {
    return printJson(
        {{"export", file.string()}, {"items", exported.items}, {"folders", exported.folders}},
        exported.exit);
  }
  say(fmt::format("items in clear in {}: {}", shownText(file.string()), exported.items));
  return exported.exit;
}

}  // namespace

QNCommandResult runCommand(Global global, const QNExportArguments& arguments) {
  const bool isPrinted = arguments.file.empty();
  if (isPrinted && QNOutput().isTerminal() && !arguments.force) {
    return toolError(QNExit::wrongUsage,
                     "every password would stand on the terminal: name a file, or give --force");
  }
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto exported = exportAll(session.value());
  if (!exported) return exported.error();
  if (!isPrinted) return writeFile(global, exported.value(), arguments.file);
  QNOutput out;
  out.jsonText(textOf(exported.value().content));
  return out.finish(exported.value().exit);
}

}  // namespace quillon
