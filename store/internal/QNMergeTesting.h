#pragma once
// Two stores that have gone apart in every way in which a merge brings them together.

#include <map>

#include "quillon/platform/environment/QNEnvironment.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {

inline QNResult<QNMergeReport> mergeStores(Session& mine, Session& theirs) {
  return QNStore::merge({mine.store.get(), mine.vault, "mine"},
                        {theirs.store.get(), theirs.vault, "theirs"});
}

/// What each item is, by uuid: title, password and notes, or "deleted".
inline std::map<std::string, std::string> textsIn(Session& session) {
  std::map<std::string, std::string> texts;
  const auto feed = std::move(session.store->changesSince(session.vault, 0)).value();
  for (const auto& change : feed.changes) {
    std::string& text = texts[change.uuid];
    if (change.kind == QNStoredChange::Kind::deleted) {
      text = "deleted";
      continue;
    }
    const auto item = std::move(session.store->item(session.vault, change.uuid)).value();
    text = item->title() + "/" + std::string(item->password()->reveal()) + "/" +
           item->notesPlain().value_or("");
  }
  return texts;
}

/// Both have merged once, and then: mine has another title of one item, theirs another password
/// of one, one was deleted here and changed there unseen before, one was deleted there, one has
/// other notes on both sides, and each has a new one. Moves `clock`.
inline void makeStoresApart(const std::filesystem::path& myFile,
                            const std::filesystem::path& theirFile, QNScopedClock& clock) {
  Session mine = makeSession(myFile);
  std::map<std::string, std::string> uuids;
  for (const char* const name : {"title", "password", "refused", "deleted", "joined"}) {
    uuids[name] = *savedLogin(mine, name)->uuid();
  }
  ASSERT_EQ(errorOf(mine.store->backupTo(theirFile)), "");
  Session theirs = openSession(theirFile);
  ASSERT_EQ(errorOf(mergeStores(mine, theirs)), "");
  const auto edit = [&](Session& session, const char* name, auto change) {
    clock.setSeconds(secondsNow() + 10);
    const auto item = std::move(session.store->item(session.vault, uuids.at(name))).value();
    change(*item);
    ASSERT_EQ(errorOf(session.store->save(item)), "");
  };
  const auto remove = [&](Session& session, const char* name) {
    clock.setSeconds(secondsNow() + 10);
    const auto item = std::move(session.store->item(session.vault, uuids.at(name))).value();
    ASSERT_EQ(errorOf(session.store->deleteItem(item)), "");
  };
  edit(mine, "title", [](QNItem& item) { item.setTitle("another title"); });
  edit(theirs, "password", [](QNItem& item) { item.setPassword("another password"); });
  edit(theirs, "refused", [](QNItem& item) { item.setTitle("needed"); });
  remove(mine, "refused");
  remove(theirs, "deleted");
  edit(mine, "joined", [](QNItem& item) { item.setNotesPlain("mine"); });
  edit(theirs, "joined", [](QNItem& item) { item.setNotesPlain("theirs"); });
  savedLogin(mine, "new here");
  savedLogin(theirs, "new there");
  clock.setSeconds(secondsNow() + 10);
}

/// A store's file as it is now, without a log beside it, to be put back any number of times.
class StoreSnapshot final {
 public:
  explicit StoreSnapshot(std::filesystem::path file)
      : _file(std::move(file)), _bytes(bytesOfFile(_file)) {}
  void putBack() const {
    for (const char* const suffix : {"-wal", "-shm", "-journal"}) {
      std::filesystem::remove(_file.string() + suffix);
    }
    writeFile(_file, _bytes);
  }

 private:
  std::filesystem::path _file;
  std::string _bytes;
};

}  // namespace quillon
