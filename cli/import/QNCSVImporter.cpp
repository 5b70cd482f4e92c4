#include "cli/import/QNCSVImporter.h"

#include "cli/import/QNCSVReader.h"
#include "cli/import/QNCSVRow.h"
#include "cli/import/QNKnownItems.h"

namespace quillon {
namespace {

// Items that are held before they are written.
constexpr std::size_t kItemsAtOnce = 512;

class Import {
 public:
  using Progress = std::function<void(std::size_t)>;

  Import(QNStore& store, const std::shared_ptr<QNProfile>& vault, QNImportMode mode,
         QNCSVReader reader, QNCSVColumns header, QNKnownItems known)
      : _store(store),
        _vault(vault),
        _mode(mode),
        _reader(std::move(reader)),
        _header(std::move(header)),
        _known(std::move(known)) {}

  QNResult<QNImportReport> run(const Progress& progress) {
    const auto work = [&] { return takeRows(progress); };
    const auto done = _mode == QNImportMode::add ? _store.inTransaction(work) : work();
    if (!done) return done.error();
    _report.format = _header.format;
    _report.vault = _known.report();
    for (std::size_t i = 0; i < _keptByColumn.size(); ++i) {
      if (_keptByColumn[i] == 0) continue;
      _report.keptInNotes.push_back({QNCSVRow::nameOfColumn(_header, i), _keptByColumn[i]});
    }
    return std::move(_report);
  }

 private:
  QNResult<QNDone> takeRows(const Progress& progress) {
    while (_reader.next()) {
      const auto taken = take(QNCSVRow(_header, _reader.fields()));
      if (!taken) return taken.error();
      progress(_reader.position());
    }
    if (_reader.error()) return *_reader.error();
    return save();
  }

  QNResult<QNDone> take(const QNCSVRow& row) {
    if (row.isEmpty()) {
      ++_report.skipped;
      return QNDone{};
    }
    auto item = row.makeItem(_vault);
    const auto isNew = _known.addIfNew(*item);
    if (!isNew) return isNew.error();
    if (!isNew.value()) {
      ++_report.alreadyThere;
      return QNDone{};
    }
    ++_report.added;
    countKept(row);
    if (_mode == QNImportMode::onlyTell) return QNDone{};
    _waiting.push_back(std::move(item));
    return _waiting.size() < kItemsAtOnce ? QNDone{} : save();
  }

  void countKept(const QNCSVRow& row) {
    for (const auto& kept : row.kept()) {
      if (kept.column >= _keptByColumn.size()) _keptByColumn.resize(kept.column + 1);
      ++_keptByColumn[kept.column];
    }
  }

  QNResult<QNDone> save() {
    auto saved = _store.saveAll(_waiting);
    _waiting.clear();
    return saved;
  }

  QNStore& _store;
  const std::shared_ptr<QNProfile>& _vault;
  QNImportMode _mode;
  QNCSVReader _reader;
  QNCSVColumns _header;
  QNKnownItems _known;
  QNImportReport _report;
  std::vector<std::uint64_t> _keptByColumn;
  std::vector<std::shared_ptr<QNItem>> _waiting;
};

}  // namespace

QNResult<QNImportReport> importCSV(QNStore& store, const std::shared_ptr<QNProfile>& vault,
                                   Bytes content, QNImportMode mode,
                                   const std::function<void(std::size_t)>& progress) {
  auto text = QNCSVReader::utf8FromFile(std::move(content));
  if (!text) return text.error();
  const char delimiter = QNCSVReader::delimiterOf(textOf(text.value()));
  QNCSVReader reader(std::move(text).value(), delimiter);
  if (!reader.next()) return reader.error().value_or(QNError::unreadable("the file is empty"));
  auto header = QNCSVColumns::fromHeader(reader.fields());
  if (!header) return header.error();
  auto known = QNKnownItems::ofVault(store, vault);
  if (!known) return known.error();
  Import import(store, vault, mode, std::move(reader), std::move(header).value(),
                std::move(known).value());
  return import.run(progress);
}

}  // namespace quillon
