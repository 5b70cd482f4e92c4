#include "quillon/platform/images/internal/QNDrawingLibrary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "quillon/platform/images/internal/QNTestPictures.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// A folder with a copy of the library, which goes with it.
class QNDrawingLibraryTest : public testing::Test {
 protected:
  QNDrawingLibraryTest() {
    std::string name = (fs::temp_directory_path() / "quillon-test-XXXXXX").string();
    folder = mkdtemp(name.data());
    copy = folder / "libcopy.so";
    fs::copy_file(built(), copy);
    fs::permissions(copy, fs::perms::owner_all);
  }
  ~QNDrawingLibraryTest() override { fs::remove_all(folder); }
  static fs::path built() { return QNDrawingLibrary::places().at(1); }
  fs::path folder, copy;
};

const char* const kBeginning = "The image library can't be loaded, so no picture is drawn: ";

TEST_F(QNDrawingLibraryTest, TakesTheFirstPlaceThatCanBeLoaded) {
  const MRCapturingSink sink;

  const QNDrawingLibrary library({"libnowhere-quillon.so", folder / "absent.so", copy});

  EXPECT_TRUE(library.isLoaded());
  EXPECT_TRUE(sink.records().empty());
}

TEST_F(QNDrawingLibraryTest, ReportsWhenThereIsNone) {
  const MRCapturingSink sink;

  const QNDrawingLibrary library({"libnowhere-quillon.so", folder / "absent.so"});

  EXPECT_FALSE(library.isLoaded());
  const auto errors = sink.texts(MRLogKind::error);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_THAT(errors[0], testing::StartsWith(kBeginning));
  EXPECT_THAT(errors[0], testing::HasSubstr("libnowhere-quillon.so"));
  EXPECT_THAT(errors[0], testing::HasSubstr("absent.so: not there, or somebody else's"));
}

TEST_F(QNDrawingLibraryTest, DrawsNothingWhenThereIsNone) {
  const MRCapturingSink sink;
  const QNDrawingLibrary library({});
  const auto image = QNImage::imageWithData(pngOf(1, 1, 0));
  QNDrawingOrder order;
  order.source = &image->source();
  order.width = order.height = 1;

  const auto drawn = library.draw(order);

  ASSERT_FALSE(drawn.ok());
  EXPECT_EQ(drawn.error().message, "the image library isn't loaded");
}

TEST_F(QNDrawingLibraryTest, RefusesALibraryOfOthers) {
  const MRCapturingSink sink;

  const QNDrawingLibrary library({"libc.so.6"});

  EXPECT_FALSE(library.isLoaded());
  EXPECT_EQ(sink.texts(MRLogKind::error),
            std::vector<std::string>{std::string(kBeginning) + "libc.so.6: of another version"});
}

TEST_F(QNDrawingLibraryTest, RefusesAFileThatEverybodyMayWrite) {
  fs::permissions(copy, fs::perms::others_write, fs::perm_options::add);
  const MRCapturingSink sink;

  EXPECT_FALSE(QNDrawingLibrary({copy}).isLoaded());
  EXPECT_EQ(sink.records().size(), 1u);
}

TEST_F(QNDrawingLibraryTest, RefusesAFolderThatEverybodyMayWrite) {
  fs::permissions(folder, fs::perms::others_write, fs::perm_options::add);
  const MRCapturingSink sink;

  EXPECT_FALSE(QNDrawingLibrary({copy}).isLoaded());
  EXPECT_EQ(sink.records().size(), 1u);
}

TEST_F(QNDrawingLibraryTest, IsLoadedOnceForAllThreads) {
  std::vector<const QNDrawingLibrary*> seen(8);
  std::vector<std::thread> threads;
  for (auto& place : seen) {
    threads.emplace_back([&place] { place = &QNDrawingLibrary::shared(); });
  }
  for (auto& thread : threads) thread.join();

  EXPECT_TRUE(seen[0]->isLoaded());
  EXPECT_THAT(seen, testing::Each(seen[0]));
}

}  // namespace
}  // namespace quillon
