#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/organisation/internal/QNFolderTesting.h"
#include "quillon/platform/images/QNImageOperations.h"

namespace quillon {
namespace {

using testing::ElementsAre;

std::vector<std::string> keysOf(const JsonObject& object) {
  std::vector<std::string> keys;
  for (const auto& member : object) keys.emplace_back(member.key());
  return keys;
}

constexpr std::uint64_t kLargest = 18'446'744'073'709'551'615u;

std::shared_ptr<QNFolder> filledFolder() {
  auto folder = cleanFolder("Work");
  folder->setUuid(sharedString("UUID"));
  folder->setParentUUID("PARENT");
  folder->setUpdatedAt(1'700'000'000);
  folder->setCreatedAt(1'600'000'000);
  folder->setTxTimestamp(kLargest);
  folder->setParentId(8);
  folder->setSmartFolder(true);
  folder->setNumberOfChildren(3);
  folder->setNumberOfItems(4'000'000'000);
  folder->setIconData(Bytes{1, 2, 3});
  return folder;
}

std::shared_ptr<QNFolder> restored(std::string_view row) {
  auto folder = cleanFolder("Before");
  folder->setUuid(sharedString("BEFORE"));
  folder->setAllAttributes(jsonObject(row));
  return folder;
}

std::shared_ptr<QNFolder> folderIn(ByteView archive) {
  const QNDecodableClass known = {
      "QNFolder", [](QNDecoder& coder) {
        return std::shared_ptr<QNCoding>(std::make_shared<QNFolder>(coder));
      }};
  const auto read = QNKeyedUnarchiver::unarchivedObjectOfClasses({&known, 1}, archive);
  return std::dynamic_pointer_cast<QNFolder>(read.value());
}

Bytes folderArchive(QNFolder& folder) {
  return QNKeyedArchiver::archivedDataWithRootObject(folder).value();
}

// Rows

TEST(QNFolderRows, HoldWhatTheFolderHolds) {
  const JsonObject row = filledFolder()->allAttributes();

  EXPECT_THAT(keysOf(row), ElementsAre("overview", "uuid", "parentUUID", "updatedAt", "createdAt",
                                       "isSmartFolder", "iconData", "loaded"));
  EXPECT_EQ(row.at("overview").at("title"), Json("Work"));
  EXPECT_EQ(row.at("uuid"), Json("UUID"));
  EXPECT_EQ(row.at("parentUUID"), Json("PARENT"));
  EXPECT_EQ(row.at("updatedAt"), Json(1'700'000'000u));
  EXPECT_EQ(row.at("createdAt"), Json(1'600'000'000u));
  EXPECT_EQ(row.at("isSmartFolder"), Json(true));
  EXPECT_EQ(row.at("iconData"), Json("AQID"));
  EXPECT_EQ(row.at("loaded"), Json(true));
}

TEST(QNFolderRows, LeaveOutWhatTheFolderHasNot) {
  QNFolder folder(QNExisting{1});
  folder.setProfile(localVault());

  EXPECT_THAT(keysOf(folder.allAttributes()), ElementsAre("overview", "loaded"));
}

TEST(QNFolderRows, AreTakenOver) {
  const auto folder = restored(
      R"({"overview":{"title":"Work"},"uuid":"U","parentUUID":"P","updatedAt":17,"createdAt":16,)"
      R"("isSmartFolder":true,"loaded":true})");

  EXPECT_EQ(folder->title(), "Work");
  EXPECT_EQ(*folder->uuid(), "U");
  EXPECT_EQ(folder->parentUUID(), "P");
  EXPECT_EQ(folder->updatedAt(), 17u);
  EXPECT_EQ(folder->createdAt(), 16u);
  EXPECT_TRUE(folder->smartFolder());
  EXPECT_TRUE(folder->dirtyRow());
}

TEST(QNFolderRows, AreTakenOverWithTextsForNumbers) {
  const auto folder = restored(R"({"updatedAt":"17","createdAt":" 16 ","isSmartFolder":"1"})");

  EXPECT_EQ(folder->updatedAt(), 17u);
  EXPECT_EQ(folder->createdAt(), 16u);
  EXPECT_TRUE(folder->smartFolder());
}

TEST(QNFolderRows, AreSmartByWhateverSaysYes) {
  for (const char* const yes : {"true", "1", "2.5", "0.5", "-0.5", "1e99", "\"YES\"", "\"true\"",
                                "\"1\"", "\" 1\"", "\" YES\""}) {
    EXPECT_TRUE(restored("{\"isSmartFolder\":" + std::string(yes) + "}")->smartFolder()) << yes;
  }
  for (const char* const no :
       {"false", "0", "\"NO\"", "\"\"", "\"0\"", "\" \"", "\" no YES\"", "0.0", "[1]", "null"}) {
    EXPECT_FALSE(restored("{\"isSmartFolder\":" + std::string(no) + "}")->smartFolder()) << no;
  }
}

TEST(QNFolderRows, DirtyTheRowByAnotherParentAlone) {
  const auto folder = restored(R"({"parentUUID":"P"})");

  EXPECT_EQ(folder->parentUUID(), "P");
  EXPECT_TRUE(folder->dirtyRow());
}

TEST(QNFolderRows, KeepAllBitsOfATime) {
  const auto folder = cleanFolder();
  folder->setUpdatedAt(kLargest);
  const auto again = cleanFolder();

  again->setAllAttributes(folder->allAttributes());

  EXPECT_EQ(again->updatedAt(), kLargest);
}

TEST(QNFolderRows, TakeAwayWhatTheyDoNotHoldButTheUuid) {
  const auto folder = filledFolder();

  folder->setAllAttributes(jsonObject("{}"));

  EXPECT_EQ(*folder->uuid(), "UUID");
  EXPECT_EQ(folder->parentUUID(), std::nullopt);
  EXPECT_EQ(folder->updatedAt(), 0u);
  EXPECT_EQ(folder->createdAt(), 0u);
  EXPECT_FALSE(folder->smartFolder());
  EXPECT_EQ(folder->title(), "Work");
}

TEST(QNFolderRows, DoNotBringAnIconBack) {
  const auto folder = filledFolder();

  folder->setAllAttributes(folder->allAttributes());

  EXPECT_EQ(folder->iconData(), std::nullopt);
}

// Archive

TEST(QNFolderArchive, HoldsItsKeysInOrder) {
  const auto folder = filledFolder();
  folder->setDisplayOrder(7);

  const JsonObject root = rootOf(folderArchive(*folder));

  EXPECT_THAT(keysOf(root), ElementsAre("$class", "oid", "objectFlags", "profileID", "profileType",
                                        "kOverviewData", "uuid", "createdAt", "updatedAt",
                                        "txTimestamp", "parentId", "parentUUID", "smartFolder",
                                        "numberOfChildren", "numberOfItems"));
  EXPECT_EQ(root.at("$class"), Json("QNFolder"));
  EXPECT_EQ(root.at("smartFolder"), Json(true));
}

TEST(QNFolderArchive, LeavesOutWhatTheFolderHasNot) {
  QNFolder folder(QNExisting{1});

  EXPECT_THAT(keysOf(rootOf(folderArchive(folder))),
              ElementsAre("$class", "oid", "objectFlags", "profileID", "profileType", "createdAt",
                          "updatedAt", "txTimestamp"));
}

TEST(QNFolderArchive, ReadsBackWithoutTheIcon) {
  const auto vault = localVault();
  const auto folder = filledFolder();
  folder->setProfile(vault);

  const auto again = folderIn(folderArchive(*folder));
  again->setProfile(vault);

  EXPECT_EQ(*again->uuid(), "UUID");
  EXPECT_EQ(again->createdAt(), 1'600'000'000u);
  EXPECT_EQ(again->updatedAt(), 1'700'000'000u);
  EXPECT_EQ(again->txTimestamp(), kLargest);
  EXPECT_EQ(again->parentId(), 8u);
  EXPECT_EQ(again->parentUUID(), "PARENT");
  EXPECT_TRUE(again->smartFolder());
  EXPECT_EQ(again->numberOfChildren(), 3u);
  EXPECT_EQ(again->numberOfItems(), 4'000'000'000u);
  EXPECT_EQ(again->iconData(), std::nullopt);
  EXPECT_EQ(again->title(), "Work");
}

}  // namespace
}  // namespace quillon
