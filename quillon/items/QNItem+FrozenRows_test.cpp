#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/files/QNResources.h"

namespace quillon {
namespace {

Bytes bytesFrom(std::size_t count, unsigned factor, unsigned offset) {
  Bytes bytes(count);
  for (std::size_t i = 0; i < count; ++i) {
    bytes[i] = static_cast<std::uint8_t>(factor * i + offset);
  }
  return bytes;
}

// The vault that sealed what is in the frozen archive.
std::shared_ptr<QNProfile> frozenVault() {
  auto vault = QNProfile::initExistingWithID(5);
  vault->setUuid(sharedString("VAULT"));
  vault->setOverviewKey(bytesFrom(64, 5, 1));
  vault->setMasterKey(bytesFrom(256, 11, 7));
  return vault;
}

std::string frozen(std::string_view name) {
  return fileContent(std::string(QUILLON_TESTDATA "/") + std::string(name), 1 << 20).value();
}

TEST(QNItemFrozenArchive, IsReadWithEveryColumn) {
  const auto item = itemIn(bytesOf(frozen("archive-v1.json")));

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->className(), "QNSecureNote");
  EXPECT_EQ(item->oid(), 11u);
  EXPECT_FALSE(item->dirtyRow());
  EXPECT_TRUE(item->loaded());
  EXPECT_EQ(item->profileId(), 5u);
  EXPECT_EQ(*item->uuid(), "5d1c60a6-0f0d-4a6b-9f0e-3c1f0b7c2e11");
  EXPECT_EQ(item->createdAt(), 1'600'000'000u);
  EXPECT_EQ(item->updatedAt(), 1'700'000'000u);
  EXPECT_EQ(item->txTimestamp(), 18'446'744'073'709'551'615u);
  EXPECT_EQ(item->folderId(), 3u);
  EXPECT_EQ(item->folderUUID(), "FOLDER");
  EXPECT_EQ(item->categoryUUID(), "003");
  EXPECT_EQ(item->sectionName(), "T");
  EXPECT_EQ(item->scope(), "Always");
  EXPECT_EQ(item->faveIndex(), 2'147'483'647u);
  EXPECT_EQ(item->numberOfAttachments(), 2);
  EXPECT_EQ(item->numberOfTimesUsed(), -2'147'483'648);
  EXPECT_EQ(item->lastUsedTimestamp(), 1'750'000'000u);
}

TEST(QNItemFrozenArchive, OpensInItsVault) {
  const auto item = itemIn(bytesOf(frozen("archive-v1.json")));
  ASSERT_NE(item, nullptr);

  item->setProfile(frozenVault());

  EXPECT_EQ(item->title(), "Träger");
  EXPECT_EQ(item->notesPlain(), "die Notiz");
  EXPECT_TRUE(item->previouslyUsedPasswordAtIndex(0)->value()->equals("früher"));
  EXPECT_TRUE(item->findFieldWithIdentifier("iban") != nullptr);
  EXPECT_EQ(jsonText(item->detailsObjectForKey("unknown")), R"([1,{"a":null}])");
  Bytes itemKey = bytesFrom(64, 255, 63);  // 63, 62, ...
  EXPECT_EQ(toBytes(item->key()->rawKeyData()), itemKey);
  EXPECT_EQ(item->URLAtIndex(0)->URLString(), "https://a.example/");
  EXPECT_EQ(item->URLAtIndex(0)->label(), "A");
  EXPECT_EQ(item->URLAtIndex(0)->displayOrder(), 100u);
  EXPECT_EQ(item->deletedURLs().at(0)->URLString(), "https://b.example/");
  EXPECT_EQ(item->deletedURLs().at(0)->oid(), 22u);
}

TEST(QNItemFrozenArchive, IsWrittenByteForByte) {
  const std::string text = frozen("archive-v1.json");

  EXPECT_EQ(textOf(archiveOf(*itemIn(bytesOf(text)))), text);
}

TEST(QNItemFrozenRow, IsReadWithEveryKey) {
  const auto item = QNItem::itemWithAttributes(jsonObject(frozen("row-v1.json")), frozenVault());

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->className(), "QNSecureNote");
  EXPECT_EQ(*item->uuid(), "5d1c60a6-0f0d-4a6b-9f0e-3c1f0b7c2e11");
  EXPECT_EQ(item->updatedAt(), 18'446'744'073'709'551'615u);
  EXPECT_EQ(item->createdAt(), 1'600'000'000u);
  EXPECT_EQ(item->scope(), "Always");
  EXPECT_EQ(item->sectionName(), "T");
  EXPECT_EQ(item->title(), "Träger");
  EXPECT_EQ(item->notesPlain(), "die Notiz");
  EXPECT_EQ(item->backupKeysBase64Encoded().size(), 2u);
  EXPECT_EQ(item->numberOfURLs(), 2u);
  EXPECT_EQ(item->URLAtIndex(1)->URLString(), "https://b.example/");
}

TEST(QNItemFrozenRow, IsWrittenByteForByte) {
  const std::string text = frozen("row-v1.json");
  const auto item = QNItem::itemWithAttributes(jsonObject(text), frozenVault());
  item->copyDetails(*jsonObject(text).at("details").if_object());  // without the new item's own key

  EXPECT_EQ(item->json(), text);
}

TEST(QNItemFrozenFingerprint, IsMadeOfTheSameTextForEver) {
  const JsonObject vector = jsonObject(frozen("fingerprint-v1.json"));
  const auto item = QNItem::itemWithAttributes(vector.at("row").get_object(), frozenVault());

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->fingerprint_jsonString(), std::string_view(vector.at("text").get_string()));
  EXPECT_EQ(item->fingerprint_fingerprint(),
            std::string_view(vector.at("fingerprint").get_string()));
}

}  // namespace
}  // namespace quillon
