#include "cli/shell/QNHistoryFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "cli/QNToolError.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

class HistoryFile : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "quillon-history-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder = pattern;
    place = folder / "new" / "quillon" / "shell-history";
  }
  void TearDown() override { fs::remove_all(folder); }

  void write(const std::string& content) const {
    fs::create_directories(place.parent_path());
    std::ofstream(place) << content;
  }
  static unsigned modeOf(const fs::path& file) {
    struct stat about {};
    EXPECT_EQ(::stat(file.c_str(), &about), 0);
    return about.st_mode & 0777;
  }
  std::vector<std::string> lines() const {
    const auto read = QNHistoryFile(place).read();
    EXPECT_TRUE(read.ok());
    return read.ok() ? read.value() : std::vector<std::string>();
  }
  /// It is neither read nor written.
  void expectRefused() const {
    const auto read = QNHistoryFile(place).read();
    const auto appended = QNHistoryFile(place).append("list");
    ASSERT_FALSE(read.ok());
    EXPECT_EQ(exitFor(read.error()), QNExit::fileError);
    ASSERT_FALSE(appended.ok());
    EXPECT_EQ(exitFor(appended.error()), QNExit::fileError);
  }

  fs::path folder;
  fs::path place;
};

TEST_F(HistoryFile, IsMadeForItsOwnerAlone) {
  QNHistoryFile file(place);
  const mode_t before = ::umask(0);

  ASSERT_TRUE(file.append("list").ok());
  ASSERT_TRUE(file.append("show Bank").ok());

  ::umask(before);
  EXPECT_EQ(modeOf(place), 0600u);
  EXPECT_EQ(modeOf(place.parent_path()), 0700u);
  EXPECT_EQ(modeOf(folder / "new"), 0700u);
  EXPECT_THAT(lines(), ElementsAre("list", "show Bank"));
}

TEST_F(HistoryFile, TakesRightsAwayThatOthersHad) {
  write("list\n");
  fs::permissions(place, fs::perms(0644));

  ASSERT_TRUE(QNHistoryFile(place).append("show Bank").ok());

  EXPECT_EQ(modeOf(place), 0600u);
}

TEST_F(HistoryFile, HasNoLinesBeforeItIsThere) {
  EXPECT_THAT(lines(), IsEmpty());
  EXPECT_FALSE(fs::exists(place));
}

TEST_F(HistoryFile, LeavesOutWhatATerminalMightObey) {
  write("list\nshow \x1b[31mred\nshow \xff\n\nshow \xe2\x80\xae\nshow Bank");

  EXPECT_THAT(lines(), ElementsAre("list", "show Bank"));
}

TEST_F(HistoryFile, KeepsItsNewestLines) {
  std::string content;
  for (int i = 0; i < 3000; ++i) content += "show " + std::to_string(i) + "\n";
  write(content);

  const auto read = lines();

  ASSERT_EQ(read.size(), QNHistoryFile::kMaxLines);
  EXPECT_EQ(read.front(), "show 2000");
  EXPECT_EQ(read.back(), "show 2999");
  EXPECT_EQ(fs::file_size(place), 10u * QNHistoryFile::kMaxLines);
  EXPECT_EQ(modeOf(place), 0600u);
  EXPECT_EQ(lines().size(), QNHistoryFile::kMaxLines);
}

TEST_F(HistoryFile, FollowsNoLink) {
  fs::create_directories(place.parent_path());
  std::ofstream(folder / "letter") << "Dear Sir\n";
  fs::create_symlink(folder / "letter", place);

  expectRefused();
  EXPECT_EQ(fs::file_size(folder / "letter"), 9u);
}

TEST_F(HistoryFile, WaitsForNoPipe) {
  fs::create_directories(place.parent_path());
  ASSERT_EQ(::mkfifo(place.c_str(), 0600), 0);

  expectRefused();
}

TEST_F(HistoryFile, OfSomebodyElseIsNotRead) {
  if (::geteuid() == 0) {
    write("list\n");
    ASSERT_EQ(::chown(place.c_str(), 1, 1), 0);
  } else {
    place = "/etc/passwd";  // root's: nobody else can give a file of his own away
  }

  const auto read = QNHistoryFile(place).read();

  ASSERT_FALSE(read.ok());
  EXPECT_EQ(exitFor(read.error()), QNExit::fileError);
}

TEST_F(HistoryFile, LiesInTheUsersDataFolder) {
  const QNScopedUser user({"ada", "/data", "/documents"});

  EXPECT_EQ(QNHistoryFile::defaultPlace(), "/data/quillon/shell-history");
}

TEST_F(HistoryFile, HasNoPlaceWithoutADataFolder) {
  const QNScopedUser user({"ada", "", ""});

  EXPECT_TRUE(QNHistoryFile::defaultPlace().empty());
}

}  // namespace
}  // namespace quillon
