#include "cli/import/QNRowImporter.h"

#include <fmt/format.h>

#include <unordered_set>

#include "cli/import/QNItemRow.h"
#include "quillon/platform/json/QNJsonEquality.h"

// The file: a JSON object.
//
//   "format"    "quillon"
//   "version"   1
//   "items"     list of items: QNItemRow.cpp

namespace quillon {
namespace {

// Items that are held before they are written.
constexpr std::size_t kItemsAtOnce = 512;

class RowImport {
 public:
  RowImport(QNStore& store, const std::shared_ptr<QNProfile>& vault, QNImportMode mode)
      : _store(store), _vault(vault), _mode(mode) {}

  QNResult<QNRowImportReport> run(const JsonArray& items,
                                  const std::function<void(std::size_t)>& progress) {
    const auto work = [&] { return takeAll(items, progress); };
    const auto done = _mode == QNImportMode::add ? _store.inTransaction(work) : work();
    if (!done) return done.error();
    return _report;
  }

 private:
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
    if (!_uuids.insert(uuid).second) return QNError::unreadable("an earlier one has its uuid");
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
  return QNExportFile(std::move(*object));
}

QNResult<QNRowImportReport> importRows(QNStore& store, const std::shared_ptr<QNProfile>& vault,
                                       const JsonArray& items, QNImportMode mode,
                                       const std::function<void(std::size_t)>& progress) {
  return RowImport(store, vault, mode).run(items, progress);
}

}  // namespace quillon
