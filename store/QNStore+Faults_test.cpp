// The disk fails at the first call, the second, and so on: in each of them the store must end in
// the old or the new state, say which, and be usable again.

#include <sqlite3.h>

#include <array>

#include "quillon/organisation/predicates/QNPredicate.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/sync/QNSyncState.h"
#include "store/internal/QNFolderTesting.h"
#include "store/internal/QNMergeTesting.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

/// A file system for SQLite that passes everything on to the usual one and fails on demand.
class FailingFileSystem final {
 public:
  FailingFileSystem() {
    if (onlyOne != nullptr) std::abort();
    onlyOne = this;
    base = sqlite3_vfs_find(nullptr);
    vfs = *base;
    vfs.zName = "failing";
    vfs.szOsFile = static_cast<int>(sizeof(File)) + base->szOsFile;
    vfs.xOpen = open;
    vfs.xDelete = remove;
    sqlite3_vfs_register(&vfs, 1);
  }
  ~FailingFileSystem() {
    sqlite3_vfs_unregister(&vfs);
    sqlite3_vfs_register(base, 1);
    onlyOne = nullptr;
  }
  FailingFileSystem(const FailingFileSystem&) = delete;
  FailingFileSystem& operator=(const FailingFileSystem&) = delete;

  /// Lets `calls` calls pass and fails the next one, or all from then on.
  void failAfter(std::uint64_t calls, bool forever) {
    remaining = calls;
    failing = forever ? Failing::always : Failing::once;
  }
  /// True if a call has failed since failAfter().
  bool stop() {
    const bool failed = failing == Failing::happened || (failing == Failing::always && begun);
    failing = Failing::never;
    begun = false;
    return failed;
  }

 private:
  struct File {
    sqlite3_file base;
    sqlite3_io_methods methods;
    [[nodiscard]] sqlite3_file* inner() { return reinterpret_cast<sqlite3_file*>(this + 1); }
  };
  enum class Failing { never, once, always, happened };

  bool fails() {
    if (failing == Failing::never || failing == Failing::happened) return false;
    if (remaining > 0) {
      --remaining;
      return false;
    }
    begun = true;
    if (failing == Failing::once) failing = Failing::happened;
    return true;
  }

  static sqlite3_file* innerOf(sqlite3_file* file) {
    return reinterpret_cast<File*>(file)->inner();
  }
  static int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    file->pMethods = nullptr;
    if (onlyOne->fails()) return SQLITE_CANTOPEN;
    auto* const wrapped = reinterpret_cast<File*>(file);
    const int code = onlyOne->base->xOpen(onlyOne->base, name, wrapped->inner(), flags, outFlags);
    if (code != SQLITE_OK) return code;
    wrapped->methods = methodsFor(*wrapped->inner()->pMethods);
    file->pMethods = &wrapped->methods;
    return SQLITE_OK;
  }
  static int remove(sqlite3_vfs*, const char* name, int syncFolder) {
    if (onlyOne->fails()) return SQLITE_IOERR_DELETE;
    return onlyOne->base->xDelete(onlyOne->base, name, syncFolder);
  }
  static sqlite3_io_methods methodsFor(const sqlite3_io_methods& inner) {
    sqlite3_io_methods methods{};
    methods.iVersion = inner.iVersion < 2 ? inner.iVersion : 2;
    methods.xClose = [](sqlite3_file* file) { return call(file)->xClose(innerOf(file)); };
    methods.xRead = [](sqlite3_file* file, void* to, int size, sqlite3_int64 offset) {
      return onlyOne->fails() ? SQLITE_IOERR_READ
                              : call(file)->xRead(innerOf(file), to, size, offset);
    };
    methods.xWrite = [](sqlite3_file* file, const void* from, int size, sqlite3_int64 offset) {
      return onlyOne->fails() ? SQLITE_FULL : call(file)->xWrite(innerOf(file), from, size, offset);
    };
    methods.xTruncate = [](sqlite3_file* file, sqlite3_int64 size) {
      return onlyOne->fails() ? SQLITE_IOERR_TRUNCATE : call(file)->xTruncate(innerOf(file), size);
    };
    methods.xSync = [](sqlite3_file* file, int flags) {
      return onlyOne->fails() ? SQLITE_IOERR_FSYNC : call(file)->xSync(innerOf(file), flags);
    };
    methods.xFileSize = [](sqlite3_file* file, sqlite3_int64* size) {
      return call(file)->xFileSize(innerOf(file), size);
    };
    methods.xLock = [](sqlite3_file* file, int level) {
      return call(file)->xLock(innerOf(file), level);
    };
    methods.xUnlock = [](sqlite3_file* file, int level) {
      return call(file)->xUnlock(innerOf(file), level);
    };
    methods.xCheckReservedLock = [](sqlite3_file* file, int* out) {
      return call(file)->xCheckReservedLock(innerOf(file), out);
    };
    methods.xFileControl = [](sqlite3_file* file, int what, void* argument) {
      return call(file)->xFileControl(innerOf(file), what, argument);
    };
    methods.xSectorSize = [](sqlite3_file* file) { return call(file)->xSectorSize(innerOf(file)); };
    methods.xDeviceCharacteristics = [](sqlite3_file* file) {
      return call(file)->xDeviceCharacteristics(innerOf(file));
    };
    methods.xShmMap = [](sqlite3_file* file, int page, int size, int extend, void volatile** out) {
      return call(file)->xShmMap(innerOf(file), page, size, extend, out);
    };
    methods.xShmLock = [](sqlite3_file* file, int offset, int count, int flags) {
      return call(file)->xShmLock(innerOf(file), offset, count, flags);
    };
    methods.xShmBarrier = [](sqlite3_file* file) { call(file)->xShmBarrier(innerOf(file)); };
    methods.xShmUnmap = [](sqlite3_file* file, int deleteFlag) {
      return call(file)->xShmUnmap(innerOf(file), deleteFlag);
    };
    return methods;
  }
  static const sqlite3_io_methods* call(sqlite3_file* file) { return innerOf(file)->pMethods; }

  inline static FailingFileSystem* onlyOne = nullptr;
  sqlite3_vfs* base = nullptr;
  sqlite3_vfs vfs{};
  Failing failing = Failing::never;
  bool begun = false;
  std::uint64_t remaining = 0;
};

/// What a store holds, in a form to compare: titles, passwords, hint, folders, partners.
std::vector<std::string> stateOf(const std::filesystem::path& file) {
  Session session = openSession(file);
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
  std::vector<std::string> state = {session.vault->passwordHint().value_or(""), treeIn(session)};
  const auto visit = [&](const std::shared_ptr<QNItem>& item) {
    EXPECT_TRUE(session.store->loadDetails(item).ok());
    state.push_back(item->title() + "/" + std::string(item->password()->reveal()));
  };
  EXPECT_TRUE(session.store->list(session.vault, QNStore::Which::all, visit).ok());
  const auto sources = std::move(session.store->syncSources(session.vault)).value();
  for (const auto& source : sources) {
    state.push_back("source with states: " + std::to_string(source->itemStates().size()));
  }
  return state;
}

QNResult<std::shared_ptr<QNFolder>> firstFolder(Session& session) {
  const auto report = session.store->folders(session.vault);
  if (!report.ok()) return report.error();
  return report.value().folders.at(0);
}

/// One change of a store; made of a session and an item that was read from it.
struct Change {
  const char* name;
  std::function<QNResult<QNDone>(Session&, const std::shared_ptr<QNItem>&)> run;
};

std::vector<Change> changes() {
  return {
      {"save",
       [](Session& session, const auto& item) {
         item->setTitle("one 2");
         item->setPassword("secret 2");
         return session.store->save(item);
       }},
      {"save a new one",
       [fresh = std::shared_ptr<QNItem>()](Session& session, const auto&) mutable {
         if (fresh == nullptr || fresh->profile() != session.vault) {
           fresh = makeLogin(session.vault, "new", "https://new.example", "secret n");
         }
         return session.store->save(fresh);
       }},
      {"save all",
       [batch = std::vector<std::shared_ptr<QNItem>>()](Session& session,
                                                        const auto& item) mutable {
         if (batch.empty() || batch.front() != item) {
           batch = {item};
           for (int i = 0; i < 30; ++i) batch.push_back(makeLogin(session.vault, "batch"));
         }
         item->setTitle("one 2");
         return session.store->saveAll(batch);
       }},
      {"save the vault",
       [](Session& session, const auto&) {
         session.vault->setPasswordHint("another");
         session.vault->markRowDirty();
         return session.store->saveVault(*session.vault);
       }},
      {"delete",
       [](Session& session, const auto& item) { return session.store->deleteItem(item); }},
      {"bring a deleted one back",
       [](Session& session, const auto& item) -> QNResult<QNDone> {
         return session.store->inTransaction([&]() -> QNResult<QNDone> {
           const auto back = makeLogin(session.vault, "back", "", "secret b");
           back->setUuid(item->uuid());
           const auto deleted = session.store->deleteItem(item);
           return deleted.ok() ? session.store->save(back) : deleted;
         });
       }},
      {"save a folder",
       [](Session& session, const auto&) {
         const auto box = firstFolder(session);
         if (!box.ok()) return QNResult<QNDone>(box.error());
         box.value()->setTitle("chest");
         return session.store->saveFolder(box.value());
       }},
      {"save a new folder",
       [](Session& session, const auto&) {
         const auto box = firstFolder(session);
         if (!box.ok()) return QNResult<QNDone>(box.error());
         return session.store->saveFolder(makeFolder(session.vault, "inside", box.value()));
       }},
      {"delete a folder",
       [](Session& session, const auto&) {
         const auto box = firstFolder(session);
         return box.ok() ? session.store->deleteFolder(box.value()) : QNResult<QNDone>(box.error());
       }},
      {"save a sync source",
       [](Session& session, const auto& item) {
         const auto source = std::make_shared<QNSyncSource>(initNew);
         source->setProfile(session.vault);
         const auto state = std::make_shared<QNSyncState>();
         state->setObjectUUID(*item->uuid());
         source->setItemStates({state});
         return session.store->saveSyncSource(source);
       }},
  };
}

class QNStoreFaults : public ::testing::Test {
 protected:
  QNStoreFaults() {
    Session session = makeSession(file);
    uuid = *savedLogin(session, "one", "https://one.example", "secret 1")->uuid();
    for (int i = 0; i < 20; ++i) savedLogin(session, "other");
    const auto box = savedFolder(session, "box");
    savedLoginIn(session, *box, "in the box");
    savedFolder(session, "in the box too", box);
    session = Session();
    original = bytesOfFile(file);
    oldState = stateOf(file);
  }
  void restore() const {
    for (const char* suffix : {"-wal", "-shm", "-journal"}) {
      std::filesystem::remove(file.string() + suffix);
    }
    writeFile(file, original);
  }

  /// Fails the calls after the first `calls`. False if the change needed no more than those.
  bool failsSafely(Change& change, std::uint64_t calls, bool forever,
                   const std::vector<std::string>& newState) {
    restore();
    {
      Session session = openSession(file);
      const auto item = std::move(session.store->item(session.vault, uuid)).value();
      fileSystem.failAfter(calls, forever);
      const auto done = change.run(session, item);
      if (!fileSystem.stop()) {
        EXPECT_TRUE(done.ok());
        return false;
      }
      if (!done.ok()) {
        EXPECT_TRUE(isStoreError(done.error(), QNStoreErrorCode::diskFull) ||
                    isStoreError(done.error(), QNStoreErrorCode::inputOutput))
            << done.error().message;
        EXPECT_EQ(stateOf(file), oldState);
        const auto retried = change.run(session, item);
        EXPECT_TRUE(retried.ok()) << retried.error().message;
      }
    }
    EXPECT_EQ(stateOf(file), newState);
    return true;
  }

  FailingFileSystem fileSystem;
  const MRCapturingSink silence;
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  std::string uuid, original;
  std::vector<std::string> oldState;
};

TEST_F(QNStoreFaults, EachChangeIsMadeWholeOrNotAtAllWhateverCallFails) {
  std::vector<Change> all = changes();
  for (Change& change : all) {
    restore();
    {
      Session session = openSession(file);
      const auto item = std::move(session.store->item(session.vault, uuid)).value();
      ASSERT_TRUE(change.run(session, item).ok());
    }
    const auto newState = stateOf(file);
    ASSERT_NE(newState, oldState);
    for (const bool forever : {false, true}) {
      std::uint64_t calls = 0;
      do {
        SCOPED_TRACE(std::string(change.name) + ", call " + std::to_string(calls) +
                     (forever ? " and all later ones" : ""));
        if (!failsSafely(change, calls, forever, newState)) break;
        ++calls;
      } while (!HasFailure());
      EXPECT_GT(calls, 3u) << change.name;
    }
  }
}

TEST_F(QNStoreFaults, AListByAQuestionWorksAgainAfterAnyCallHasFailed) {
  const auto predicate = QNPredicate::predicateWithFormat(R"(title == "one")").value();
  for (std::uint64_t calls = 0; !HasFailure(); ++calls) {
    SCOPED_TRACE(calls);
    Session session = openSession(file);
    {
      Session other = openSession(file);
      savedLogin(other, "new");
    }  // so that pages are read anew
    const auto list = [&] {
      return errorOf(session.store->listMatching(session.vault, QNStore::Which::all, *predicate,
                                                 [](const auto&) {}));
    };
    fileSystem.failAfter(calls, false);
    const std::string listed = list();
    if (!fileSystem.stop()) {
      EXPECT_EQ(listed, "");
      EXPECT_GT(calls, 3u);
      break;
    }
    EXPECT_EQ(listed, codeText(QNStoreErrorCode::inputOutput));
    EXPECT_EQ(list(), "");
  }
}

// A file is an older one or a newer one, and in both cases all of it is there.
TEST_F(QNStoreFaults, AnOlderFileIsBroughtForwardWholeOrNotAtAllWhateverCallFails) {
  original = bytesOfFile(std::filesystem::path(QUILLON_TESTDATA) / "version-1.store");
  for (std::uint64_t calls = 0; !HasFailure(); ++calls) {
    SCOPED_TRACE(calls);
    restore();
    fileSystem.failAfter(calls, true);
    { static_cast<void>(QNStore::open(file)); }
    const bool failed = fileSystem.stop();

    Session session = openSession(file);
    EXPECT_EQ(titlesIn(session, QNStore::Which::all).size(), 3u);
    EXPECT_EQ(problemsIn(session), std::vector<std::string>());
    if (failed) continue;
    EXPECT_GT(calls, 3u);
    break;
  }
}

// Two files can't be committed at once: whatever was written of a merge, each file is the old or
// the new one, and the next merge ends as if nothing had failed.
TEST_F(QNStoreFaults, AMergeLosesNothingWhateverCallFails) {
  QNScopedClock clock(1'700'000'000);
  const std::filesystem::path myFile = folder / "mine", theirFile = folder / "theirs";
  makeStoresApart(myFile, theirFile, clock);
  const StoreSnapshot mySnapshot(myFile), theirSnapshot(theirFile);
  const auto textsOf = [](const std::filesystem::path& path) {
    Session session = openSession(path);
    EXPECT_EQ(problemsIn(session), std::vector<std::string>());
    return textsIn(session);
  };
  const auto mineBefore = textsOf(myFile), theirsBefore = textsOf(theirFile);
  {
    Session mine = openSession(myFile), theirs = openSession(theirFile);
    ASSERT_EQ(errorOf(mergeStores(mine, theirs)), "");
  }
  const auto after = textsOf(myFile);
  ASSERT_EQ(textsOf(theirFile), after);
  for (std::uint64_t calls = 0; !HasFailure(); ++calls) {
    SCOPED_TRACE(calls);
    mySnapshot.putBack();
    theirSnapshot.putBack();
    bool failed = false;
    {
      Session mine = openSession(myFile), theirs = openSession(theirFile);
      fileSystem.failAfter(calls, true);
      static_cast<void>(mergeStores(mine, theirs));
      failed = fileSystem.stop();
    }
    const auto mineNow = textsOf(myFile), theirsNow = textsOf(theirFile);
    EXPECT_TRUE(mineNow == mineBefore || mineNow == after);
    EXPECT_TRUE(theirsNow == theirsBefore || theirsNow == after);

    Session mine = openSession(myFile), theirs = openSession(theirFile);
    EXPECT_EQ(errorOf(mergeStores(mine, theirs)), "");
    for (Session* session : {&mine, &theirs}) {
      EXPECT_EQ(textsIn(*session), after);
      EXPECT_EQ(problemsIn(*session), std::vector<std::string>());
    }
    if (failed) continue;
    EXPECT_GT(calls, 5u);
    break;
  }
}

}  // namespace
}  // namespace quillon
