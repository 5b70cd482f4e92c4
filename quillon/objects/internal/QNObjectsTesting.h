#pragma once
// For tests: the smallest persisted classes, which count what is done to them.

#include <functional>
#include <thread>

#include "quillon/objects/QNDatabaseObjectWithOverview.h"
#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/vaults/QNProfile.h"
#include "quillon/vaults/internal/QNTestServerProfile.h"

namespace quillon {

class QNTestRecord : public QNDatabaseObject {
 public:
  explicit QNTestRecord(QNNew) : QNDatabaseObject(initNew) {}
  explicit QNTestRecord(QNExisting existing) : QNDatabaseObject(existing) {}
  explicit QNTestRecord(QNDecoder& coder) : QNDatabaseObject(coder) {}
  std::string_view className() const override { return "QNTestRecord"; }
  void willSerialize() override { ++serializations; }
  void saveAllAttributes(JsonObject& attributes) override { attributes["calls"] = serializations; }
  void restoreAllAttributes(const JsonObject& attributes) override { restored = attributes; }

  int serializations = 0;
  JsonObject restored;
};

class QNTestPage : public QNDatabaseObjectWithOverview {
 public:
  explicit QNTestPage(QNNew) : QNDatabaseObjectWithOverview(initNew) {}
  explicit QNTestPage(QNExisting existing) : QNDatabaseObjectWithOverview(existing) {}
  explicit QNTestPage(QNDecoder& coder) : QNDatabaseObjectWithOverview(coder) {}
  std::string_view className() const override { return "QNTestPage"; }
  void markRowDirty() override {
    called("markRowDirty");
    QNDatabaseObjectWithOverview::markRowDirty();
  }
  bool dirtyRow() const override {
    called("dirtyRow");
    return QNDatabaseObjectWithOverview::dirtyRow();
  }
  void willSerialize() override {
    called("willSerialize");
    ++serializations;
    if (derivedTitle) setOverviewText(derivedTitle, "title");
  }
  void didParseOverview() override {
    ++parses;
    if (whileParsing) whileParsing();
  }
  using QNDatabaseObjectWithOverview::monitor;

  int serializations = 0;
  int parses = 0;
  std::optional<std::string> derivedTitle;
  std::function<void()> whileParsing;
  /// Told the name of each of the operations above that the base calls.
  std::function<void(std::string_view operation)> whileCalled;

 private:
  void called(std::string_view operation) const {
    if (whileCalled) whileCalled(operation);
  }
};

/// Does a thread hold the page's monitor at this moment, this one included?
inline bool isLockedForOthers(const QNTestPage& page) {
  bool locked = true;
  std::thread([&] {
    locked = !page.monitor().try_lock();
    if (!locked) page.monitor().unlock();
  }).join();
  return locked;
}

/// A local vault that costs next to nothing to make.
inline std::shared_ptr<QNProfile> openLocalVault(std::uint64_t oid = 3) {
  auto vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);
  vault->_setOid(oid);
  return vault;
}

/// The shell of a row that holds `data`, clean as the database layer leaves it.
inline std::shared_ptr<QNTestPage> storedPage(const std::shared_ptr<QNGenericProfile>& vault,
                                              std::optional<Bytes> data) {
  auto page = std::make_shared<QNTestPage>(QNExisting{42});
  page->setProfile(vault);
  page->setOverviewData(std::move(data));
  page->didLoad();
  return page;
}

inline JsonObject jsonObject(std::string_view text) {
  return mr_objectFromJSONStringWithError(text).value();
}

inline std::string jsonText(const JsonObject& object) {
  return mr_JSONStringWithError(object).value();
}

/// Archived as JSON text, so that a test can look at its keys.
inline std::string archiveOf(QNCoding& object) {
  return std::string(textOf(QNKeyedArchiver::archivedDataWithRootObject(object).value()));
}

template <class Class>
std::shared_ptr<Class> unarchived(std::string_view name, std::string_view archive) {
  const QNDecodableClass known = {
      name, [](QNDecoder& coder) { return std::shared_ptr<QNCoding>(new Class(coder)); }};
  return std::dynamic_pointer_cast<Class>(
      QNKeyedUnarchiver::unarchivedObjectOfClasses({&known, 1}, bytesOf(archive)).value());
}

/// "KIND of METHOD: text" of each report, with the subsystem in front if it isn't the database.
inline std::vector<std::string> reportsOf(const MRCapturingSink& sink) {
  std::vector<std::string> reports;
  for (const MRLogRecord& record : sink.records()) {
    const bool isError = record.kind == MRLogKind::error;
    const bool isOfDatabase = record.subsystem == DEBUG_DATABASE;
    reports.push_back((isOfDatabase ? "" : "subsystem " + std::to_string(record.subsystem) + ": ") +
                      (isError ? "error of " : "assertion of ") + record.method + ": " +
                      record.text);
  }
  return reports;
}

}  // namespace quillon
