#include "cli/import/QNFolderRow.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "cli/import/QNItemRow.h"
#include "cli/import/QNRowImporter.h"
#include "quillon/items/internal/QNItemTesting.h"

namespace quillon {
namespace {

// A folder's row has three containers around the content of a member of its overview: itself, the
// object that it is a member of, the overview. A file has two more around all that.
constexpr std::size_t kDeepest = kMaxJsonDepth - 5;

std::shared_ptr<QNFolder> folderOfDepth(std::size_t depth) {
  auto folder = std::make_shared<QNFolder>(initNew);
  folder->setProfile(localVault());
  folder->copyOverview(
      jsonObject("{\"other\":" + std::string(depth, '[') + std::string(depth, ']') + "}"));
  return folder;
}

std::string textOfFolder(QNFolder& folder) {
  const auto text = exportedText(exportedJson(folder));
  EXPECT_TRUE(text.ok());
  return text.ok() ? std::string(textOf(text.value())) : "";
}

TEST(QNFolderRow, OfTheDeepestFolderIsReadAgain) {
  const auto file = QNExportFile::read(
      bytesOf("{\"format\":\"quillon\",\"version\":1,\"items\":[],\"folders\":[" +
              textOfFolder(*folderOfDepth(kDeepest)) + "]}"));

  ASSERT_TRUE(file.ok());
  EXPECT_EQ(file.value().folders().size(), 1u);
}

TEST(QNFolderRow, OfADeeperFolderIsRefused) {
  const auto text = exportedText(exportedJson(*folderOfDepth(kDeepest + 1)));

  ASSERT_FALSE(text.ok());
  EXPECT_EQ(text.error().message, "it nests too deeply to be imported again");
}

TEST(QNFolderRow, GivesBackAnIconAndAnOrder) {
  const auto folder = folderOfDepth(1);
  folder->setIconData(Bytes{0, 1, 255});
  folder->setDisplayOrder(9);

  const auto read = folderFromExported(Json(exportedJson(*folder)), localVault());

  ASSERT_TRUE(read.ok());
  EXPECT_EQ(read.value()->iconData(), (Bytes{0, 1, 255}));
  EXPECT_EQ(read.value()->displayOrder(), 9u);
  EXPECT_FALSE(read.value()->hasOid());
}

// Any value in any place: a folder that can be written and read again, or an error.
TEST(QNFolderRow, OfAnyContentMakesAFolderThatComesBackTheSame) {
  constexpr std::string_view kValues[] = {"null",     "true",
                                          "-1",       "1.5",
                                          "1e300",    "18446744073709551615",
                                          "\"\"",     "\"a\"",
                                          "\"AAAA\"", "\"\\u0000\\u202e\"",
                                          "[]",       "{}",
                                          "[null]",   "{\"title\":[{}],\"sfVersion\":-1}"};
  std::size_t read = 0;
  for (const std::string_view key : {"uuid", "parentUUID", "updatedAt", "createdAt",
                                     "isSmartFolder", "iconData", "overview", "oid", "loaded"}) {
    for (const std::string_view value : kValues) {
      SCOPED_TRACE(fmt::format("{}: {}", key, value));
      const Json exported(jsonObject(fmt::format(
          R"({{"displayOrder":{1},"row":{{"uuid":"u","overview":{{}},"{0}":{1}}}}})", key, value)));
      const auto folder = folderFromExported(exported, localVault());
      if (!folder.ok()) continue;
      ++read;
      const std::string text = textOfFolder(*folder.value());
      const auto again = folderFromExported(Json(jsonObject(text)), localVault());
      ASSERT_TRUE(again.ok());
      EXPECT_EQ(textOfFolder(*again.value()), text);
      EXPECT_FALSE(folder.value()->hasOid());
    }
  }
  EXPECT_GT(read, 60u);
}

}  // namespace
}  // namespace quillon
