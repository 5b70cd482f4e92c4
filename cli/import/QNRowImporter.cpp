#include "cli/import/QNRowImporter.h"

#include <fmt/format.h>

#include <unordered_set>

#include "cli/import/QNFolderRow.h"
#include "cli/import/QNItemRow.h"
#include "quillon/platform/json/QNJsonEquality.h"

// The file: a JSON object.
//
//   "format"    "quillon"
//   "version"   1
//   "folders"   list of folders: QNFolderRow.cpp; an older file has none
//   "items"     list of items: QNItemRow.cpp

namespace quillon {
namespace {

// Items that are held before they are written.
constexpr std::size_t kItemsAtOnce = 512;
constexpr const char* kTwice = "an earlier one has its uuid";

class RowImport {
 public:
  RowImport(QNStore& store, const std::shared_ptr<QNProfile>& vault, QNImportMode mode)
      : _store(store), _vault(vault), _mode(mode) {}

  QNResult<QNRowImportReport> run(const QNExportFile& file,
                                  const std::function<void(std::size_t)>& progress) {
    const auto work = [&]() -> QNResult<QNDone> {
      const auto done = takeFolders(file.folders());
      return done ? takeAll(file.items(), progress) : done;
    };
    const auto done = _mode == QNImportMode::add ? _store.inTransaction(work) : work();
    if (!done) return done.error();
    return _report;
  }

 private:
  QNResult<QNDone> takeFolders(const JsonArray& folders) {
    if (folders.empty()) return QNDone{};
    const auto known = _store.folders(_vault);
    if (!known) return known.error();
    for (const auto& folder : known.value().folders) _knownFolders.insert(*folder->uuid());
    _damagedFolders.insert(known.value().damaged.begin(), known.value().damaged.end());
    std::size_t count = 0;
    for (const Json& exported : folders) {
      ++count;
      const auto taken = takeFolder(exported);
      if (!taken) return taken.error().within(fmt::format("folder {}", count));
    }
    return saveFolders();
  }

  QNResult<QNDone> takeFolder(const Json& exported) {
    auto folder = folderFromExported(exported, _vault);
    if (!folder) return folder.error();
    const std::string uuid = *folder.value()->uuid();
    if (!_folderUUIDs.insert(uuid).second) return QNError::unreadable(kTwice);
    if (_damagedFolders.contains(uuid)) return leaveDamaged(uuid);
    const bool isKnown = _knownFolders.contains(uuid);
    ++(isKnown ? _report.foldersAlreadyThere : _report.foldersAdded);
    if (!isKnown) _newFolders.push_back(std::move(folder).value());
    return QNDone{};
  }

  QNResult<QNDone> saveFolders() {
    if (_mode == QNImportMode::onlyTell) return QNDone{};
    auto moved = _store.addFolders(_vault, _newFolders);
    if (!moved) return moved.error();
    _report.foldersMovedToTop = std::move(moved).value();
    return QNDone{};
  }

  QNResult<QNDone> takeAll(const JsonArray& items,
                           const std::function<void(std::size_t)>& progress) {
    std::size_t count = 0;
    for (const Json& exported : items) {
      ++count;
      const auto taken = take(exported);
      if (!taken) return taken.error().within(fmt::format("item {}", count));
      progress(count);
    }
    return save();
  }

  QNResult<QNDone> take(const Json& exported) {
    auto item = itemFromExported(exported, _vault);
    if (!item) return item.error();
    const std::string uuid = *item.value()->uuid();
    if (!_uuids.insert(uuid).second) return QNError::unreadable(kTwice);
    const auto known = _store.item(_vault, uuid);
    if (known) return compare(*known.value(), *item.value());
    if (isStoreError(known.error(), QNStoreErrorCode::damaged)) return leaveDamaged(uuid);
    if (!isStoreError(known.error(), QNStoreErrorCode::notFound)) return known.error();
    ++_report.added;
    if (_mode == QNImportMode::onlyTell) return QNDone{};
    _waiting.push_back(std::move(item).value());
    return _waiting.size() < kItemsAtOnce ? QNDone{} : save();
  }

  QNResult<QNDone> compare(QNItem& known, QNItem& item) {
    const bool isSame = equalJson(exportedJson(known), exportedJson(item));
    ++(isSame ? _report.alreadyThere : _report.differing);
    return QNDone{};
  }

  QNResult<QNDone> leaveDamaged(const std::string& uuid) {
    _report.damaged.push_back(uuid);
    return QNDone{};
  }

  QNResult<QNDone> save() {
    auto saved = _store.saveAllWithTheirTimes(_waiting);
    _waiting.clear();
    return saved;
  }

  QNStore& _store;
  const std::shared_ptr<QNProfile>& _vault;
  QNImportMode _mode;
  QNRowImportReport _report;
  std::unordered_set<std::string> _uuids;
  std::unordered_set<std::string> _folderUUIDs, _knownFolders, _damagedFolders;
  std::vector<std::shared_ptr<QNFolder>> _newFolders;
  std::vector<std::shared_ptr<QNItem>> _waiting;
};

}  // namespace

bool looksLikeExport(ByteView content) {
  const std::string_view text = textOf(content);
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && text[first] == '{';
}

QNResult<QNExportFile> QNExportFile::read(ByteView content) {
  QNError error;
  auto object = mr_objectFromJSONDataWithError(content, &error);
  if (!object) return error;
  if (mr_validStringValueForKey(*object, "format") != kExportFormat) {
    return QNError::unreadable("this JSON isn't what quillon export writes");
  }
  if (mr_unsignedValueForKey(*object, "version") != kExportVersion) {
    return QNError::unreadable("it is of another version of quillon");
  }
  if (mr_objectForKey(*object, "items", JsonKind::array) == nullptr) {
    return QNError::unreadable("it has no list of items");
  }
  if (!object->contains("folders")) object->emplace("folders", JsonArray());
  if (mr_objectForKey(*object, "folders", JsonKind::array) == nullptr) {
    return QNError::unreadable("its folders are no list");
  }
  return QNExportFile(std::move(*object));
}

QNResult<QNRowImportReport> importRows(QNStore& store, const std::shared_ptr<QNProfile>& vault,
                                       const QNExportFile& file, QNImportMode mode,
                                       const std::function<void(std::size_t)>& progress) {
  return RowImport(store, vault, mode).run(file, progress);
}

}  // namespace quillon
