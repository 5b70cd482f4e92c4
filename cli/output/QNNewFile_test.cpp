#include "cli/output/QNNewFile.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <vector>

#include "quillon/platform/data/MRData.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace {

// What this program brought to its medium, in order, and the one of these that fails.
std::vector<std::filesystem::path> synchronised;
std::filesystem::path failing;

}  // namespace

// Takes the system's place in this program.
extern "C" int fsync(int descriptor) {
  const auto link = "/proc/self/fd/" + std::to_string(descriptor);
  const auto path = std::filesystem::read_symlink(link);
  synchronised.push_back(path);
  if (path != failing) return static_cast<int>(syscall(SYS_fsync, descriptor));
  errno = EIO;
  return -1;
}

namespace quillon {
namespace {

using testing::ElementsAre;

class QNNewFile : public testing::Test {
 protected:
  QNNewFile() { synchronised.clear(); }
  ~QNNewFile() override { failing.clear(); }
  [[nodiscard]] std::string content() const {
    std::ifstream in(_file);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  QNScratchFolder _folder;
  std::filesystem::path _file = _folder.path() / "new";
};

TEST_F(QNNewFile, IsWrittenForItsOwnerAlone) {
  ASSERT_TRUE(writeNewFile(_file, bytesOf("content")));

  struct stat found {};
  ASSERT_EQ(::stat(_file.c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777u, 0600u);
  EXPECT_EQ(content(), "content");
}

TEST_F(QNNewFile, IsOnTheMediumWithItsName) {
  ASSERT_TRUE(writeNewFile(_file, bytesOf("content")));

  EXPECT_THAT(synchronised, ElementsAre(_file, _folder.path()));
}

TEST_F(QNNewFile, IsNotLeftBehindWhereItCannotBeBroughtToTheMedium) {
  for (const auto& which : {_file, _folder.path()}) {
    failing = which;

    const auto written = writeNewFile(_file, bytesOf("content"));

    ASSERT_FALSE(written) << which;
    EXPECT_EQ(exitFor(written.error()), QNExit::fileError);
    EXPECT_FALSE(std::filesystem::exists(_file));
  }
}

TEST_F(QNNewFile, ReplacesNoOther) {
  _folder.write("new", "old");

  const auto written = writeNewFile(_file, bytesOf("content"));

  ASSERT_FALSE(written);
  EXPECT_EQ(exitFor(written.error()), QNExit::failed);
  EXPECT_EQ(content(), "old");
}

}  // namespace
}  // namespace quillon
