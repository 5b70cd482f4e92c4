#include "quillon/platform/files/QNResources.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// A folder that goes with everything in it.
class QNResources : public testing::Test {
 protected:
  QNResources() {
    std::string name = (fs::temp_directory_path() / "quillon-test-XXXXXX").string();
    folder = mkdtemp(name.data());
  }
  ~QNResources() override { fs::remove_all(folder); }
  fs::path written(const char* name, std::string_view content) const {
    std::ofstream(folder / name, std::ios::binary) << content;
    return folder / name;
  }
  fs::path folder;
};

TEST_F(QNResources, AreFoundWhereTheVariableSays) {
  // The folder is asked once in a process, so each case asks in a process of its own.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  setenv("QUILLON_RESOURCES", "/usr/lib", 1);

  EXPECT_EXIT(std::_Exit(resourceFolder() == "/usr/lib" ? 0 : 1), testing::ExitedWithCode(0), "");

  setenv("QUILLON_RESOURCES", QUILLON_SOURCE_DIR "/resources", 1);
}

TEST_F(QNResources, AreFoundElsewhereWhenTheVariableLeadsNowhere) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  setenv("QUILLON_RESOURCES", "/nowhere/at/all", 1);

  EXPECT_EXIT(std::_Exit(fs::is_directory(resourceFolder()) ? 0 : 1), testing::ExitedWithCode(0),
              "");

  setenv("QUILLON_RESOURCES", QUILLON_SOURCE_DIR "/resources", 1);
}

TEST_F(QNResources, GiveAFilesWholeContent) {
  const std::string content("line\r\n\0\xff end", 12);

  EXPECT_EQ(fileContent(written("file", content), 1000), content);
  EXPECT_EQ(fileContent(written("empty", ""), 1000), "");
}

TEST_F(QNResources, GiveAFileOfUpToTheLimit) {
  const fs::path file = written("file", "12345");

  EXPECT_EQ(fileContent(file, 5), "12345");
  EXPECT_EQ(fileContent(file, 4), std::nullopt);
}

TEST_F(QNResources, GiveNothingForWhatIsNoFile) {
  EXPECT_EQ(fileContent(folder / "absent", 1000), std::nullopt);
  EXPECT_EQ(fileContent(folder, 1'000'000), std::nullopt);
}

}  // namespace
}  // namespace quillon
