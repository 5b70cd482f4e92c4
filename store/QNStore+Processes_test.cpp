// Processes that die, meet a full disk, may not write, or write at once. A child is forked before
// this process has opened a file, since an open one must not be carried across.

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <charconv>
#include <csignal>
#include <cstdlib>
#include <map>
#include <random>

#include "quillon/platform/internal/QNSanitizers.h"
#include "quillon/platform/log/MRLogger.h"
#include "store/internal/QNMergeTesting.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

/// A child that writes lines into a pipe. It must end by itself or be killed.
class Child final {
 public:
  using Report = std::function<void(std::string_view)>;
  explicit Child(const std::function<void(const Report&)>& work) {
    if (pipe(_pipe) != 0) std::abort();
    _process = fork();
    if (_process < 0) std::abort();
    if (_process != 0) {
      close(_pipe[1]);
      return;
    }
    close(_pipe[0]);
    work([this](std::string_view line) {
      const std::string whole = std::string(line) + "\n";
      if (write(_pipe[1], whole.data(), whole.size()) < 0) _exit(3);
    });
    _exit(::testing::Test::HasFailure() ? 1 : 0);
  }
  ~Child() {
    killIt();
    static_cast<void>(finish());
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  void killIt() const {
    if (_process > 0) kill(_process, SIGKILL);  // 0 would mean this process and all its kin
  }
  /// Waits until the child has written that many lines.
  void awaitReports(int lines) {
    char next = 0;
    while (lines > 0 && read(_pipe[0], &next, 1) == 1) {
      _read += next;
      if (next == '\n') --lines;
    }
  }
  /// Waits for the end; every whole line that it wrote.
  std::vector<std::string> finish() {
    if (_process <= 0) return {};
    std::string text = std::exchange(_read, {});
    char block[4096];
    for (ssize_t size; (size = read(_pipe[0], block, sizeof block)) > 0;) {
      text.append(block, static_cast<std::size_t>(size));
    }
    close(_pipe[0]);
    waitpid(_process, &_status, 0);
    _process = 0;
    std::vector<std::string> lines;
    for (std::size_t end; (end = text.find('\n')) != std::string::npos; text.erase(0, end + 1)) {
      lines.push_back(text.substr(0, end));
    }
    return lines;
  }
  [[nodiscard]] bool endedWell() const { return WIFEXITED(_status) && WEXITSTATUS(_status) == 0; }

 private:
  int _pipe[2] = {-1, -1};
  pid_t _process = 0;
  int _status = 0;
  std::string _read;
};

/// Gives up the rights of root, if the tests run with them: permissions mean nothing to root.
void becomeNobody() {
  constexpr id_t kNobody = 65534;
  if (geteuid() != 0) return;
  if (setgid(kNobody) != 0 || setuid(kNobody) != 0) _exit(4);
}

void giveToNobody(const std::filesystem::path& path) {
  if (geteuid() == 0 && chown(path.c_str(), 65534, 65534) != 0) std::abort();
}

int numberIn(std::string_view text) {
  int number = -1;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// Killing

constexpr int kEdited = 4;      // items that are edited over and over
constexpr int kBatchSize = 10;  // items of one import

/// Edits one item after the other: the number goes into title, password and address at once.
[[noreturn]] void editForEver(const std::filesystem::path& file, const Child::Report& report) {
  Session session = openSession(file);
  std::vector<std::shared_ptr<QNItem>> items;
  const auto listed =
      session.store->list(session.vault, QNStore::Which::all, [&](const auto& item) {
        if (item->title().starts_with("edit")) items.push_back(item);
      });
  if (!listed.ok() || items.size() != kEdited) _exit(5);
  for (const auto& item : items) {
    if (!session.store->loadDetails(item).ok()) _exit(6);
  }
  report("ready");
  for (int round = 0;; ++round) {
    const int which = round % kEdited;
    const auto& item = items[static_cast<std::size_t>(which)];
    const int number = numberIn(item->title().substr(5)) + 1;
    item->setTitle(fmt::format("edit {}", number));
    item->setPassword(fmt::format("pass {}", number));
    item->setURLString(fmt::format("https://site{}.example", number));
    if (!session.store->save(item).ok()) _exit(7);
    report(fmt::format("{} {}", which, number));
  }
}

/// Imports batch after batch.
[[noreturn]] void importForEver(const std::filesystem::path& file, int first,
                                const Child::Report& report) {
  Session session = openSession(file);
  report("ready");
  for (int batch = first;; ++batch) {
    std::vector<std::shared_ptr<QNItem>> items;
    for (int i = 0; i < kBatchSize; ++i) {
      items.push_back(makeLogin(session.vault, fmt::format("batch {}", batch)));
    }
    if (!session.store->saveAll(items).ok()) _exit(7);
    report(fmt::format("{}", batch));
  }
}

struct Found {
  std::vector<int> edited;     // by row
  std::map<int, int> batches;  // number of items by batch
};

/// Reads everything back; expects that no item is half one thing and half another.
Found readBack(const std::filesystem::path& file) {
  Session session = openSession(file);
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
  Found found;
  const auto visit = [&](const std::shared_ptr<QNItem>& item) {
    const std::string title = item->title();
    if (title.starts_with("batch")) {
      ++found.batches[numberIn(std::string_view(title).substr(6))];
      return;
    }
    const int number = numberIn(std::string_view(title).substr(5));
    found.edited.push_back(number);
    EXPECT_TRUE(session.store->loadDetails(item).ok());
    EXPECT_TRUE(item->password()->equals(fmt::format("pass {}", number)));
    EXPECT_EQ(item->URLString(), fmt::format("https://site{}.example", number));
  };
  EXPECT_TRUE(session.store->list(session.vault, QNStore::Which::all, visit).ok());
  EXPECT_EQ(found.edited.size(), static_cast<std::size_t>(kEdited));
  return found;
}

void makeEditedStore(const std::filesystem::path& file) {
  Session session = makeSession(file);
  for (int i = 0; i < kEdited; ++i)
    savedLogin(session, "edit 0", "https://site0.example", "pass 0");
}

class QNStoreKilled : public ::testing::TestWithParam<int> {};

// 10 stores, 50 kills each: half while items are edited, half while some are imported.
TEST_P(QNStoreKilled, LosesNothingThatWasCommittedAndKeepsNoHalfItem) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  makeEditedStore(file);
  Found before = readBack(file);
  std::mt19937 random(static_cast<unsigned>(GetParam()));
  std::uniform_int_distribution<int> reports(0, 4);  // 0: may fall into the opening
  std::uniform_int_distribution<int> microseconds(0, 10'000);
  int commits = 0;
  for (int round = 0; round < 50 && !HasFailure(); ++round) {
    const bool edits = round % 2 == 0;
    const int nextBatch = before.batches.empty() ? 0 : before.batches.rbegin()->first + 1;
    Child child([&](const Child::Report& report) {
      edits ? editForEver(file, report) : importForEver(file, nextBatch, report);
    });
    child.awaitReports(reports(random));
    usleep(static_cast<useconds_t>(microseconds(random)));
    child.killIt();

    const std::vector<std::string> lines = child.finish();

    EXPECT_FALSE(child.endedWell());
    const Found after = readBack(file);
    std::vector<int> promised = before.edited;
    int lastBatch = nextBatch - 1;
    for (const std::string& line : lines) {
      if (line == "ready") continue;
      ++commits;
      if (edits) {
        promised[static_cast<std::size_t>(numberIn(line))] =
            numberIn(std::string_view(line).substr(2));
      } else {
        lastBatch = numberIn(line);
      }
    }
    // The change that was under way may be there: one more, and never more than one.
    int ahead = 0;
    for (std::size_t i = 0; i < promised.size(); ++i) {
      EXPECT_GE(after.edited[i], promised[i]);
      ahead += after.edited[i] - promised[i];
    }
    const int batches = static_cast<int>(after.batches.size());
    EXPECT_GE(batches, lastBatch + 1);
    ahead += batches - (lastBatch + 1);
    EXPECT_LE(ahead, 1);
    for (const auto& [batch, items] : after.batches) EXPECT_EQ(items, kBatchSize) << batch;
    before = after;
  }
  EXPECT_GT(commits, 10);  // the kills did fall among commits
}

// A sanitizer makes a start of the child so slow that one store takes as long as ten.
INSTANTIATE_TEST_SUITE_P(Stores, QNStoreKilled, ::testing::Range(0, runsUnderSanitizer() ? 1 : 10));

// Merges. QUILLON_MERGE_KILLS: how many are killed.

int mergeKills() {
  const int usual = runsUnderSanitizer() ? 5 : 60;
  const char* const wanted = std::getenv("QUILLON_MERGE_KILLS");
  return wanted == nullptr ? usual : numberIn(wanted);
}

struct TwoTexts {
  std::map<std::string, std::string> mine, theirs;
};

TwoTexts soundTextsOf(const std::filesystem::path& myFile, const std::filesystem::path& theirFile) {
  Session mine = openSession(myFile), theirs = openSession(theirFile);
  EXPECT_EQ(problemsIn(mine), std::vector<std::string>());
  EXPECT_EQ(problemsIn(theirs), std::vector<std::string>());
  return {textsIn(mine), textsIn(theirs)};
}

TEST(QNStoreProcesses, AKilledMergeLeavesEachFileWholeAndTheNextOneEndsIt) {
  const TemporaryFolder folder;
  const std::filesystem::path myFile = folder / "mine", theirFile = folder / "theirs";
  QNScopedClock clock(1'700'000'000);
  makeStoresApart(myFile, theirFile, clock);
  const StoreSnapshot mySnapshot(myFile), theirSnapshot(theirFile);
  const TwoTexts before = soundTextsOf(myFile, theirFile);
  const auto merge = [&] {
    Session mine = openSession(myFile), theirs = openSession(theirFile);
    return errorOf(mergeStores(mine, theirs));
  };
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(merge(), "");
  const auto needed = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - start);
  const auto after = soundTextsOf(myFile, theirFile).mine;
  ASSERT_NE(before.mine, after);
  ASSERT_NE(before.theirs, after);
  std::mt19937 random(1);
  std::uniform_int_distribution<std::int64_t> microseconds(0, needed.count());
  int unfinished = 0;
  for (int round = 0; round < mergeKills() && !::testing::Test::HasFailure(); ++round) {
    SCOPED_TRACE(round);
    mySnapshot.putBack();
    theirSnapshot.putBack();
    Child child([&](const Child::Report& report) {
      Session mine = openSession(myFile), theirs = openSession(theirFile);
      report("ready");
      report(errorOf(mergeStores(mine, theirs)));
    });
    child.awaitReports(1);
    usleep(static_cast<useconds_t>(microseconds(random)));
    child.killIt();
    if (child.finish().size() < 2) ++unfinished;

    const TwoTexts now = soundTextsOf(myFile, theirFile);
    EXPECT_TRUE(now.mine == before.mine || now.mine == after);
    EXPECT_TRUE(now.theirs == before.theirs || now.theirs == after);
    // Theirs is written first.
    EXPECT_TRUE(now.mine == before.mine || now.theirs == after);
    EXPECT_EQ(merge(), "");
    const TwoTexts ended = soundTextsOf(myFile, theirFile);
    EXPECT_EQ(ended.mine, after);
    EXPECT_EQ(ended.theirs, after);
  }
  EXPECT_GT(unfinished, 0);  // the kills did fall into merges
}

// Two writers

TEST(QNStoreProcesses, TwoThatWriteAtOnceBothComplete) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  { Session session = makeSession(file); }
  constexpr int kSaves = 60;
  const auto write = [&file](std::string_view title) {
    return [&file, title](const Child::Report& report) {
      Session session = openSession(file);
      for (int i = 0; i < kSaves; ++i) {
        const auto saved = session.store->save(makeLogin(session.vault, title));
        report(saved.ok() ? "saved" : saved.error().domainCodeString());
      }
    };
  };
  Child first(write("first"));
  Child second(write("second"));

  const std::vector<std::string> all(kSaves, "saved");
  EXPECT_EQ(first.finish(), all);
  EXPECT_EQ(second.finish(), all);

  Session session = openSession(file);
  EXPECT_EQ(titlesIn(session).size(), 2u * kSaves);
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST(QNStoreProcesses, OneCanReadWhileAnotherWrites) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  makeEditedStore(file);
  Child writer([&file](const Child::Report& report) { editForEver(file, report); });
  writer.awaitReports(2);

  for (int i = 0; i < 20; ++i) {
    Session session =
        openSession(file, i % 2 == 0 ? QNStore::Access::readOnly : QNStore::Access::readWrite);
    EXPECT_EQ(titlesIn(session, QNStore::Which::all).size(), static_cast<std::size_t>(kEdited));
  }
  writer.killIt();
  EXPECT_GT(writer.finish().size(), 1u);
}

// A full disk

TEST(QNStoreProcesses, SayThatTheDiskIsFullAndLoseNothing) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  {
    Session session = makeSession(file);
    savedLogin(session, "before");
  }
  Child child([&file](const Child::Report& report) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {400'000, RLIM_INFINITY};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(5);
    Session session = openSession(file);
    std::vector<std::shared_ptr<QNItem>> items;
    for (int i = 0; i < 1'000; ++i) items.push_back(makeLogin(session.vault, "many"));
    report(errorOf(session.store->saveAll(items)));
    report(items.back()->dirtyRow() && !items.front()->hasOid() ? "still dirty" : "clean");
    report(errorOf(session.store->save(makeLogin(session.vault, "one more"))));
    report(errorOf(session.store->backupTo(file.string() + ".copy")));
  });

  const std::vector<std::string> lines = child.finish();

  EXPECT_EQ(lines, (std::vector<std::string>{codeText(QNStoreErrorCode::diskFull), "still dirty",
                                             "", ""}));
  Session session = openSession(file);
  EXPECT_EQ(titlesIn(session), (std::vector<std::string>{"before", "one more"}));
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST(QNStoreProcesses, LeaveNoHalfStoreAndNoHalfCopyOnAFullDisk) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  {
    Session session = makeSession(file);
    for (int i = 0; i < 200; ++i) savedLogin(session, "before");
  }
  Child child([&](const Child::Report& report) {
    std::signal(SIGXFSZ, SIG_IGN);
    Session session = openSession(file);
    const rlimit limit = {20'000, RLIM_INFINITY};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(5);
    report(errorOf(QNStore::create(folder / "new")));
    report(errorOf(session.store->backupTo(folder / "copy")));
  });

  const std::vector<std::string> lines = child.finish();

  const std::string full = codeText(QNStoreErrorCode::diskFull);
  EXPECT_EQ(lines, (std::vector<std::string>{full, full}));
  EXPECT_FALSE(std::filesystem::exists(folder / "new"));
  EXPECT_FALSE(std::filesystem::exists(folder / "copy"));
}

// Rights

TEST(QNStoreProcesses, SayThatAFileIsReadOnlyAndReadIt) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  {
    Session session = makeSession(file);
    savedLogin(session, "a");
  }
  giveToNobody(folder.path());
  giveToNobody(file);
  chmod(file.c_str(), 0400);
  Child child([&](const Child::Report& report) {
    becomeNobody();
    report(errorOf(QNStore::open(file)));
    Session session = openSession(file, QNStore::Access::readOnly);
    report(titlesIn(session).at(0));
    report(errorOf(session.store->save(makeLogin(session.vault, "b"))));
  });

  const std::string refused = codeText(QNStoreErrorCode::notWritable);
  EXPECT_EQ(child.finish(), (std::vector<std::string>{refused, "a", refused}));
  EXPECT_TRUE(child.endedWell());
}

TEST(QNStoreProcesses, ReadAFileInAFolderThatTheyMayNotWrite) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "sealed/a.quillon";
  {
    Session session = makeSession(file);
    savedLogin(session, "a");
  }
  giveToNobody(folder.path());
  giveToNobody(folder / "sealed");
  giveToNobody(file);
  chmod((folder / "sealed").c_str(), 0500);
  Child child([&](const Child::Report& report) {
    becomeNobody();
    Session session = openSession(file, QNStore::Access::readOnly);
    report(titlesIn(session).at(0));
    report(errorOf(QNStore::open(file)));
    report(errorOf(QNStore::create(folder / "sealed/new")));
    report(errorOf(QNStore::create(folder / "sealed/deep/new")));
    report(errorOf(session.store->backupTo(folder / "sealed/copy")));
  });

  const std::string refused = codeText(QNStoreErrorCode::notWritable);
  EXPECT_EQ(child.finish(), (std::vector<std::string>{"a", refused, refused, refused, refused}));
  EXPECT_TRUE(child.endedWell());
  chmod((folder / "sealed").c_str(), 0700);
}

TEST(QNStoreProcesses, SayThatAFileCannotBeReachedOrRead) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "secret/a.quillon";
  { Session session = makeSession(file); }
  giveToNobody(folder.path());
  chmod(file.c_str(), 0000);
  Child child([&](const Child::Report& report) {
    becomeNobody();
    report(errorOf(QNStore::open(file)));
  });

  const std::vector<std::string> lines = child.finish();

  ASSERT_EQ(lines.size(), 1u);
  EXPECT_TRUE(lines[0] == codeText(QNStoreErrorCode::inputOutput) ||
              lines[0] == codeText(QNStoreErrorCode::notWritable))
      << lines[0];
}

}  // namespace
}  // namespace quillon
