#include "store/QNStore.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include "store/internal/QNFiles.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

unsigned permissionsOf(const std::filesystem::path& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 ? info.st_mode & 07777u : 0;
}

void runSQL(const std::filesystem::path& file, const char* sql) {
  sqlite3* connection = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &connection), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr), SQLITE_OK)
      << sqlite3_errmsg(connection);
  sqlite3_close(connection);
}

std::string errorOfOpening(const std::filesystem::path& file) {
  return errorOf(QNStore::open(file));
}

TEST(QNStore, OpensWhatItCreated) {
  const TemporaryFolder folder;
  makeSession(folder / "a.quillon");

  const Session session = openSession(folder / "a.quillon");

  EXPECT_EQ(session.store->schemaVersion(), 3);
  EXPECT_TRUE(session.vault->isUnlocked());
}

TEST(QNStore, DoesNotCreateOverAFile) {
  const TemporaryFolder folder;
  writeFile(folder / "letter", "dear");

  const auto created = QNStore::create(folder / "letter");

  EXPECT_EQ(errorOf(created), codeText(QNStoreErrorCode::exists));
  EXPECT_EQ(bytesOfFile(folder / "letter"), "dear");
}

TEST(QNStore, MakesFilesAndFoldersThatNobodyElseMayReadWhateverTheUmask) {
  const TemporaryFolder folder;
  const mode_t before = umask(0);

  Session session = makeSession(folder / "new/deep/a.quillon");
  savedLogin(session, "a");
  ASSERT_TRUE(session.store->backupTo(folder / "copies/b.quillon").ok());
  umask(before);

  for (const char* file : {"new/deep/a.quillon", "new/deep/a.quillon-wal", "new/deep/a.quillon-shm",
                           "copies/b.quillon"}) {
    EXPECT_EQ(permissionsOf(folder / file), 0600u) << file;
  }
  for (const char* made : {"new", "new/deep", "copies"}) {
    EXPECT_EQ(permissionsOf(folder / made), 0700u) << made;
  }
}

TEST(QNStore, LeavesNoFileBehindWhenItCannotMakeTheStore) {
  const TemporaryFolder folder;
  writeFile(folder / "plain", "");

  const auto created = QNStore::create(folder / "plain/a.quillon");

  EXPECT_FALSE(created.ok());
  EXPECT_EQ(bytesOfFile(folder / "plain"), "");
}

TEST(QNStore, TellsAMissingFileAFolderAndAnEmptyFileApart) {
  const TemporaryFolder folder;
  writeFile(folder / "empty", "");

  EXPECT_EQ(errorOfOpening(folder / "nothing"), codeText(QNStoreErrorCode::notFound));
  EXPECT_EQ(errorOfOpening(folder.path()), codeText(QNStoreErrorCode::notAStore));
  EXPECT_EQ(errorOfOpening(folder / "empty"), codeText(QNStoreErrorCode::notAStore));
  EXPECT_EQ(bytesOfFile(folder / "empty"), "");
}

TEST(QNStore, RefusesAnotherProgramsFileAndLeavesItAsItIs) {
  const TemporaryFolder folder;
  writeFile(folder / "text", std::string(8192, 'x'));
  runSQL(folder / "foreign", "CREATE TABLE notes (a); INSERT INTO notes VALUES ('b')");
  runSQL(folder / "signed", "PRAGMA application_id = 77; CREATE TABLE notes (a)");

  for (const char* file : {"text", "foreign", "signed"}) {
    const std::string before = bytesOfFile(folder / file);
    EXPECT_EQ(errorOfOpening(folder / file), codeText(QNStoreErrorCode::notAStore)) << file;
    EXPECT_EQ(bytesOfFile(folder / file), before) << file;
  }
}

TEST(QNStore, RefusesANewerSchema) {
  const TemporaryFolder folder;
  makeSession(folder / "a.quillon");
  runSQL(folder / "a.quillon", "PRAGMA user_version = 4");

  EXPECT_EQ(errorOfOpening(folder / "a.quillon"), codeText(QNStoreErrorCode::newerSchema));
  EXPECT_EQ(errorOf(QNStore::open(folder / "a.quillon", QNStore::Access::readOnly)),
            codeText(QNStoreErrorCode::newerSchema));
}

TEST(QNStore, CallsAFileOfOursWithoutItsTablesDamaged) {
  const TemporaryFolder folder;
  makeSession(folder / "a.quillon");
  runSQL(folder / "a.quillon", "DROP TABLE urls; DROP TABLE details; DROP TABLE items");
  Session session = openSession(folder / "a.quillon");

  const auto listed = session.store->list(session.vault, QNStore::Which::all, [](const auto&) {});

  EXPECT_EQ(errorOf(listed), codeText(QNStoreErrorCode::damaged));
}

// A cut file must never look like a good one: at every length either opening says so, or a check.
TEST(QNStore, NoticesAFileThatWasCut) {
  const TemporaryFolder folder;
  {
    Session session = makeSession(folder / "whole");
    for (int i = 0; i < 40; ++i) savedLogin(session, "title " + std::to_string(i));
  }
  const std::string whole = bytesOfFile(folder / "whole");
  ASSERT_GT(whole.size(), 40'000u);

  std::vector<std::size_t> lengths = {1, 15, 16, 50, 68, 72, 99, 100, 101, 511, 512, 4095, 4096};
  for (std::size_t length = 4097; length < whole.size(); length += 1021) lengths.push_back(length);
  lengths.push_back(whole.size() - 1);
  for (const std::size_t length : lengths) {
    writeFile(folder / "cut", whole.substr(0, length));
    const std::string error = errorOfOpening(folder / "cut");
    EXPECT_TRUE(error == codeText(QNStoreErrorCode::notAStore) ||
                error == codeText(QNStoreErrorCode::damaged))
        << length << ": '" << error << "'";
    removeDatabaseFiles(folder / "cut");
  }
}

TEST(QNStore, OpensFilesWhoseNamesMeanSomethingToSQLite) {
  const TemporaryFolder folder;
  for (const char* name : {"file:a?mode=memory", ":memory:", "a b%20#c", "Schlüssel"}) {
    { Session session = makeSession(folder / name); }

    EXPECT_TRUE(std::filesystem::exists(folder / name)) << name;
    EXPECT_EQ(openSession(folder / name).vault->profileName(), kVaultName) << name;
    EXPECT_EQ(openSession(folder / name, QNStore::Access::readOnly).vault->profileName(),
              kVaultName)
        << name;
  }
}

TEST(QNStore, LeavesOneFileWhenItIsClosed) {
  const TemporaryFolder folder;
  {
    Session session = makeSession(folder / "a.quillon");
    savedLogin(session, "a");
  }

  const std::filesystem::directory_iterator files(folder.path());

  EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST(QNStore, ReadsAndDoesNotWriteWhenOpenedForReading) {
  const TemporaryFolder folder;
  std::string uuid;
  {
    Session session = makeSession(folder / "a.quillon");
    uuid = *savedLogin(session, "kept")->uuid();
  }
  const std::string before = bytesOfFile(folder / "a.quillon");
  {
    Session session = openSession(folder / "a.quillon", QNStore::Access::readOnly);
    const auto item = std::move(session.store->item(session.vault, uuid)).value();
    item->setTitle("changed");

    const auto saved = session.store->save(item);

    EXPECT_EQ(errorOf(saved), codeText(QNStoreErrorCode::notWritable));
    EXPECT_TRUE(item->dirtyRow());
    EXPECT_EQ(problemsIn(session), std::vector<std::string>());
  }
  EXPECT_EQ(bytesOfFile(folder / "a.quillon"), before);
}

TEST(QNStore, ShowsNothingInTheClear) {
  const TemporaryFolder folder;
  std::string raw;
  {
    Session session = makeSession(folder / "a.quillon");
    auto item = makeLogin(session.vault, "Zebrafinch", "https://zebrafinch.example/nest",
                          "zebrafinch-secret");
    item->setUsername("zebrafinch-user");
    item->setNotesPlain("zebrafinch-note");
    ASSERT_TRUE(session.store->save(item).ok());
    item->setPassword("zebrafinch-secret-2");
    ASSERT_TRUE(session.store->save(item).ok());
    raw = bytesOfFile(folder / "a.quillon-wal");
  }
  raw += bytesOfFile(folder / "a.quillon");

  for (const char* text : {"ebrafinch", "EBRAFINCH", DEMO_PASSWORD.data()}) {
    EXPECT_EQ(raw.find(text), std::string::npos) << text;
  }
  EXPECT_NE(raw.find("001"), std::string::npos);  // the search does see what is in the clear
}

}  // namespace
}  // namespace quillon
