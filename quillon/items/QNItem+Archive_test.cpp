#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/platform/internal/QNMemoryWatch.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

std::shared_ptr<QNLogin> newLogin(const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = std::make_shared<QNLogin>(initNew);
  item->setProfile(vault);
  return item;
}

// Every key that an archive can have, for a type of vault.
std::shared_ptr<QNLogin> filledLogin(const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = newLogin(vault);
  item->setTitle("Träger");
  item->setPassword("the password of it");
  item->setNotesPlain("the notes of it");
  item->setCreatedAt(1'600'000'000);
  item->setUpdatedAt(1'700'000'000);
  item->setTxTimestamp(18'446'744'073'709'551'615u);
  item->setFolderId(3);
  item->setFolderUUID("FOLDER");
  item->setScope("Always");
  item->setFaveIndex(200);
  item->setNumberOfAttachments(2);
  item->setNumberOfTimesUsed(4);
  item->setLastUsedTimestamp(1'750'000'000);
  item->addURLString("https://a.example/", "A");
  item->addURLString("https://b.example/");
  item->URLAtIndex(0)->_setOid(21);
  item->URLAtIndex(1)->_setOid(22);
  item->removeURLAtIndex(1);
  item->_setOid(11);
  return item;
}

// A member as "KEY kind".
std::vector<std::string> keysAndKinds(const JsonObject& root) {
  std::vector<std::string> members;
  for (const auto& member : root) {
    const Json& value = member.value();
    const bool isBytes = value.is_object() && value.get_object().contains("$bytes");
    const std::string_view kind = isBytes             ? "bytes"
                                  : value.is_number() ? "number"
                                  : value.is_string() ? "text"
                                  : value.is_array()  ? "objects"
                                                      : "object";
    members.push_back(std::string(member.key()) + " " + std::string(kind));
  }
  return members;
}

// Writing

TEST(QNItemArchive, HasItsKeysAndKindsInTheStoredOrder) {
  const auto item = filledLogin(localVault());

  EXPECT_THAT(
      keysAndKinds(rootOf(archiveOf(*item))),
      ElementsAre("$class text", "oid number", "objectFlags number", "profileID number",
                  "profileType number", "kOverviewData bytes", "uuid text", "key bytes",
                  "createdAt number", "updatedAt number", "txTimestamp number", "folderId number",
                  "folderUUID text", "categoryUUID text", "sectionName text", "scope text",
                  "faveIndex number", "nAttachments number", "nUsed number", "lastUsed number",
                  "details bytes", "URLs objects", "deletedURLs objects"));
}

TEST(QNItemArchive, OfAnAccountItemHasItsPropertiesAndNoKey) {
  const auto item = newLogin(accountVault());
  item->h9ItemProperties()->setItemVersion(7);

  EXPECT_THAT(
      keysAndKinds(rootOf(archiveOf(*item))),
      ElementsAre("$class text", "oid number", "objectFlags number", "profileID number",
                  "profileType number", "kOverviewData bytes", "uuid text", "createdAt number",
                  "updatedAt number", "txTimestamp number", "categoryUUID text", "sectionName text",
                  "h9ItemProperties object", "details bytes"));
}

TEST(QNItemArchive, OfAShellHasNoDetails) {
  const auto vault = localVault();
  const auto row = filledLogin(vault);
  row->willSave();
  const auto shell = std::make_shared<QNLogin>(QNExisting{11});
  shell->setProfile(vault);
  shell->setDetailsData(row->detailsData());
  shell->didSave();

  EXPECT_THAT(keysAndKinds(rootOf(archiveOf(*shell))),
              ElementsAre("$class text", "oid number", "objectFlags number", "profileID number",
                          "profileType number", "uuid text", "key bytes", "createdAt number",
                          "updatedAt number", "txTimestamp number", "categoryUUID text"));
}

TEST(QNItemArchive, HoldsNothingInClear) {
  const auto item = filledLogin(localVault());
  const std::string key = mr_base64encode(item->key()->rawKeyData());

  const Bytes archive = archiveOf(*item);

  for (const std::string& secret :
       {std::string("Träger"), std::string("the password of it"), std::string("the notes of it"),
        std::string("a.example"), key}) {
    EXPECT_EQ(textOf(archive).find(secret), std::string_view::npos) << secret;
  }
}

TEST(QNItemArchive, SavesADirtyItemFirst) {
  const auto item = filledLogin(localVault());
  ASSERT_EQ(item->detailsData(), std::nullopt);

  const Bytes archive = archiveOf(*item);

  ASSERT_TRUE(item->detailsData());
  EXPECT_EQ(rootOf(archive).at("details").at("$bytes"),
            Json(mr_base64encode(*item->detailsData())));
}

TEST(QNItemArchive, KeepsTheBuffersOfACleanItemAsTheyAre) {
  const auto vault = localVault();
  const auto item = filledLogin(vault);
  item->willSave();
  item->didSave();
  for (const auto& url : item->URLs()) {
    url->willSave();
    url->didSave();
  }
  const auto sealed = item->detailsData();
  const MRCapturingSink sink;
  vault->lock();

  const Bytes first = archiveOf(*item);

  EXPECT_EQ(archiveOf(*item), first);
  EXPECT_EQ(item->detailsData(), sealed);
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemArchive, SavesADirtyAddressFirstAndKeepsACleanOnesBuffer) {
  const auto item = newLogin(localVault());
  item->addURLString("https://a.example/");
  item->addURLString("https://b.example/");
  save(*item);
  for (const auto& url : item->URLs()) {
    url->willSave();
    url->didSave();
  }
  const auto dirty = item->URLAtIndex(0);
  const auto clean = item->URLAtIndex(1);
  const auto formerOfDirty = dirty->overviewData();
  const auto formerOfClean = clean->overviewData();
  dirty->setLabel("A");

  const JsonObject root = rootOf(archiveOf(*item));

  const auto sealed = [&root](std::size_t index) {
    return root.at("URLs").at(index).at("kOverviewData").at("$bytes");
  };
  EXPECT_NE(dirty->overviewData(), formerOfDirty);
  EXPECT_EQ(sealed(0), Json(mr_base64encode(*dirty->overviewData())));
  EXPECT_EQ(clean->overviewData(), formerOfClean);
  EXPECT_EQ(sealed(1), Json(mr_base64encode(*formerOfClean)));
}

TEST(QNItemArchive, CapsAFavouritesPlaceWhenItIsWritten) {
  const auto item = newLogin(localVault());
  item->setDisplayOrder(3'000'000'000u);

  EXPECT_EQ(rootOf(archiveOf(*item)).at("faveIndex"), Json(2'147'483'647));
}

// Reading

TEST(QNItemArchive, ComesBackWithEveryColumn) {
  const auto item = filledLogin(localVault());

  const auto read = itemIn(archiveOf(*item));

  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->className(), "QNLogin");
  EXPECT_EQ(read->oid(), 11u);
  EXPECT_EQ(read->intValue(), item->intValue());
  EXPECT_EQ(read->profileType(), kProfileTypeLocalVault);
  EXPECT_EQ(*read->uuid(), *item->uuid());
  EXPECT_EQ(toBytes(read->encryptedKey()), toBytes(item->encryptedKey()));
  EXPECT_EQ(read->createdAt(), 1'600'000'000u);
  EXPECT_EQ(read->updatedAt(), 1'700'000'000u);
  EXPECT_EQ(read->txTimestamp(), 18'446'744'073'709'551'615u);
  EXPECT_EQ(read->folderId(), 3u);
  EXPECT_EQ(read->folderUUID(), "FOLDER");
  EXPECT_EQ(read->categoryUUID(), "001");
  EXPECT_EQ(read->sectionName(), "T");
  EXPECT_EQ(read->scope(), "Always");
  EXPECT_EQ(read->faveIndex(), 200u);
  EXPECT_EQ(read->numberOfTimesUsed(), 4);
  EXPECT_EQ(read->lastUsedTimestamp(), 1'750'000'000u);
  EXPECT_EQ(read->detailsData(), item->detailsData());
  EXPECT_EQ(read->overviewData(), item->overviewData());
  EXPECT_TRUE(read->isMutable());
  EXPECT_EQ(read->numberOfAttachments(), 2);
}

TEST(QNItemArchive, OpensInItsVaultWithItsUuid) {
  const auto vault = localVault();
  const auto item = filledLogin(vault);

  const auto read = itemIn(archiveOf(*item));
  ASSERT_NE(read, nullptr);
  read->setProfile(vault);

  EXPECT_EQ(*read->uuid(), *item->uuid());
  EXPECT_EQ(read->title(), "Träger");
  EXPECT_EQ(read->notesPlain(), "the notes of it");
  EXPECT_TRUE(read->password()->equals("the password of it"));
}

TEST(QNItemArchive, OfAnAccountItemOpensInItsVault) {
  const auto vault = accountVault();
  const auto item = newLogin(vault);
  item->setTitle("Träger");
  item->setNotesPlain("the notes");
  item->h9ItemProperties()->setItemVersion(7);
  item->h9ItemProperties()->setChangerUUID("USER");

  const auto read = itemIn(archiveOf(*item));
  ASSERT_NE(read, nullptr);
  read->setProfile(vault);

  EXPECT_EQ(*read->uuid(), *item->uuid());
  EXPECT_EQ(read->title(), "Träger");
  EXPECT_EQ(read->notesPlain(), "the notes");
  EXPECT_EQ(read->h9ItemProperties()->itemVersion(), 7u);
  EXPECT_EQ(read->h9ItemProperties()->changerUUID(), "USER");
}

TEST(QNItemArchive, GivesNoUuidToAVaultOfAnotherType) {
  const auto item = newLogin(localVault());
  save(*item);
  const auto read = itemIn(archiveOf(*item));
  ASSERT_NE(read, nullptr);

  read->setProfile(accountVault());

  EXPECT_NE(*read->uuid(), *item->uuid());
  EXPECT_EQ(read->uuid()->size(), 22u);
}

TEST(QNItemArchive, GivesTheAddressesTheirItem) {
  const auto vault = localVault();
  const auto read = itemIn(archiveOf(*filledLogin(vault)));
  ASSERT_NE(read, nullptr);

  read->setProfile(vault);

  ASSERT_EQ(read->numberOfURLs(), 1u);
  EXPECT_EQ(read->URLAtIndex(0)->item(), read);
  EXPECT_EQ(read->URLAtIndex(0)->profile(), vault);
  EXPECT_EQ(read->URLAtIndex(0)->oid(), 21u);
  EXPECT_EQ(read->URLAtIndex(0)->URLString(), "https://a.example/");
  EXPECT_EQ(read->URLAtIndex(0)->displayOrder(), 100u);
  ASSERT_EQ(read->deletedURLs().size(), 1u);
  EXPECT_EQ(read->deletedURLs()[0]->oid(), 22u);
  EXPECT_EQ(read->deletedURLs()[0]->item(), read);
}

TEST(QNItemArchive, TellsAListThatHasBecomeEmptyFromNone) {
  const auto item = newLogin(localVault());
  const auto without = rootOf(archiveOf(*item));
  item->addURLString("https://a.example/");
  item->removeURLAtIndex(0);
  save(*item);

  const Bytes archive = archiveOf(*item);

  EXPECT_FALSE(without.contains("URLs"));
  EXPECT_EQ(jsonText(rootOf(archive).if_contains("URLs")), "[]");
  EXPECT_EQ(archiveOf(*itemIn(archive)), archive);
}

JsonObject smallRoot() {
  return jsonObject(R"({"$class":"QNItem","objectFlags":296,"profileType":2})");
}
std::shared_ptr<QNItem> itemWith(std::string_view key, Json value) {
  JsonObject root = smallRoot();
  root[key] = std::move(value);
  return itemIn(archiveWithRoot(root));
}
Json bytesValue(std::size_t count) {
  return JsonObject{{"$bytes", mr_base64encode(Bytes(count, 7))}};
}

TEST(QNItemArchive, WithAKeyOfAnotherLengthHasNoneAndSaysNothing) {
  const MRCapturingSink sink;

  const auto exact = itemWith("key", bytesValue(112));
  ASSERT_NE(exact, nullptr);
  EXPECT_EQ(toBytes(exact->encryptedKey()), Bytes(112, 7));

  for (const std::size_t size : {0u, 100u, 111u, 113u, 224u}) {
    const auto item = itemWith("key", bytesValue(size));
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(toBytes(item->encryptedKey()), Bytes(112, 0)) << size;
  }
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemArchive, CapsAFavouritesPlaceAsASignedNumberWhenItIsRead) {
  EXPECT_EQ(itemWith("faveIndex", 2'147'483'647)->faveIndex(), 2'147'483'647u);
  EXPECT_EQ(itemWith("faveIndex", 2'147'483'648)->faveIndex(), 2'147'483'647u);
  EXPECT_EQ(itemWith("faveIndex", 9'223'372'036'854'775'807)->faveIndex(), 2'147'483'647u);
  EXPECT_EQ(itemWith("faveIndex", 9'223'372'036'854'775'808u)->faveIndex(),
            9'223'372'036'854'775'808u);
  EXPECT_EQ(itemWith("faveIndex", -1)->faveIndex(), 0u);
}

TEST(QNItemArchive, WithoutLoadedDetailsReadsNone) {
  JsonObject root = rootOf(archiveOf(*filledLogin(localVault())));
  root["objectFlags"] = 256;

  const auto item = itemIn(archiveWithRoot(root));

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->detailsData(), std::nullopt);
  item->markDetailsLoaded();
  EXPECT_THAT(item->URLs(), IsEmpty());
  EXPECT_THAT(item->deletedURLs(), IsEmpty());
}

TEST(QNItemArchive, ReadsValuesOfOtherKindsAsAbsent) {
  JsonObject root = smallRoot();
  for (const std::string_view key : {"uuid", "key", "folderUUID", "categoryUUID", "sectionName",
                                     "scope", "details", "h9ItemProperties", "deletedURLs"}) {
    root[key] = 7;
  }
  for (const std::string_view key : {"createdAt", "updatedAt", "txTimestamp", "folderId",
                                     "faveIndex", "nAttachments", "nUsed", "lastUsed", "URLs"}) {
    root[key] = "7";
  }

  const auto item = itemIn(archiveWithRoot(root));

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->uuid(), nullptr);
  EXPECT_EQ(toBytes(item->encryptedKey()), Bytes(112, 0));
  EXPECT_EQ(item->folderUUID(), std::nullopt);
  EXPECT_EQ(item->categoryUUID(), std::nullopt);
  EXPECT_EQ(item->sectionName(), "U");  // of "Unnamed": without a vault nothing opens
  EXPECT_EQ(item->scope(), std::nullopt);
  EXPECT_EQ(item->detailsData(), std::nullopt);
  EXPECT_EQ(item->createdAt() + item->updatedAt() + item->txTimestamp(), 0u);
  EXPECT_EQ(item->folderId() + item->faveIndex() + item->lastUsedTimestamp(), 0u);
  EXPECT_EQ(item->numberOfTimesUsed(), 0);
  EXPECT_EQ(item->numberOfAttachments(), 0);
  EXPECT_THAT(item->URLs(), IsEmpty());
}

TEST(QNItemArchive, TakesObjectsOfOtherClassesForNothing) {
  JsonObject root = smallRoot();
  root["h9ItemProperties"] = jsonObject(R"({"$class":"QNItemURL"})");
  root["URLs"] =
      jsonValue(R"([{"$class":"QNItem"},{"$class":"QNItemURL","oid":4},{"$class":"X"}])");

  const auto item = itemIn(archiveWithRoot(root));

  ASSERT_NE(item, nullptr);
  ASSERT_EQ(item->numberOfURLs(), 1u);
  EXPECT_EQ(item->URLAtIndex(0)->oid(), 4u);
  item->URLAtIndex(0)->didLoad();
  EXPECT_FALSE(rootOf(archiveOf(*item)).contains("h9ItemProperties"));
}

// Each category that has a class of its own, one of a template, and one that nobody knows.
class QNItemArchiveClasses : public testing::TestWithParam<const char*> {};

TEST_P(QNItemArchiveClasses, ComeBackAsTheyWere) {
  const auto vault = localVault();
  const auto item = vault->existingItemWithID(5, GetParam());
  ASSERT_NE(item, nullptr);
  item->didLoad();

  const auto read = itemIn(archiveOf(*item));

  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->className(), item->className());
  EXPECT_EQ(typeid(*read), typeid(*item));
  EXPECT_EQ(read->categoryUUID(), item->categoryUUID());
}

INSTANTIATE_TEST_SUITE_P(Categories, QNItemArchiveClasses,
                         testing::Values("001", "002", "003", "004", "005", "006", "099", "100",
                                         "113", "115", "800", "zzz"));

TEST(QNItemArchive, ListsEachClassOnce) {
  std::set<std::string_view> names;
  for (const auto& known : QNItem::decodableClasses()) names.insert(known.name);

  EXPECT_EQ(names.size(), QNItem::decodableClasses().size());
  EXPECT_EQ(names.count("QNItem"), 1u);
}

// Damage

TEST(QNItemArchive, IsRefusedAtEveryTruncation) {
  const Bytes archive = archiveOf(*filledLogin(localVault()));

  for (std::size_t length = 0; length < archive.size(); ++length) {
    EXPECT_EQ(itemIn(ByteView(archive).first(length)), nullptr) << length;
  }
}

// Most flips leave JSON, and many an item. What was flipped must not open, or open as it was.
TEST(QNItemArchive, WithAFlippedBitHasNoOtherKeyAndNoOtherContent) {
  const auto vault = localVault();
  const auto item = newLogin(vault);
  item->setNotesPlain("the notes of it");
  item->clearBackupKeys();
  Bytes archive = archiveOf(*item);
  const Bytes wrapped = toBytes(item->encryptedKey());
  const QNKeyBytes raw = item->key()->rawKeyData();
  const MRCapturingSink silenced;
  std::size_t items = 0, otherKeys = 0;

  for (std::size_t bit = 0; bit < archive.size() * 8; ++bit) {
    const auto mask = static_cast<std::uint8_t>(1u << bit % 8);
    archive[bit / 8] ^= mask;
    if (const auto read = itemIn(archive)) {
      ++items;
      const bool same = toBytes(read->encryptedKey()) == wrapped;
      otherKeys += same ? 0 : 1;
      read->setProfile(vault);
      const QNAESKeyRef key = read->profileType() == kProfileTypeLocalVault ? read->key() : nullptr;
      EXPECT_TRUE(key == nullptr || (same && key->rawKeyData() == raw)) << bit;
      const auto notes = read->notesPlain();
      EXPECT_TRUE(!notes || (same && notes == "the notes of it")) << bit;
    }
    archive[bit / 8] ^= mask;
  }

  EXPECT_GT(items, 100u);
  EXPECT_GT(otherKeys, 100u);
  EXPECT_EQ(item->key()->rawKeyData(), raw);
}

TEST(QNItemArchive, LeavesNoSecretInMemory) {
  constexpr std::string_view secret = "a long secret #4815 that no value holds inside itself";
  const QNFreedBlockWatch watch(secret);

  {
    const auto vault = localVault();
    const auto item = newLogin(vault);
    item->setNotesPlain(secret);
    const auto read = itemIn(archiveOf(*item));
    read->setProfile(vault);
    ASSERT_NE(read->detailsObjectForKey("notesPlain"), nullptr);
    const auto row = read->allAttributes();
    const auto again = QNItem::itemWithAttributes(row, vault);
    ASSERT_NE(again->detailsObjectForKey("notesPlain"), nullptr);
    ASSERT_TRUE(again->fingerprint_fingerprint());
    auto debug = again->fingerprint_debugJSON();
    ASSERT_TRUE(debug);
    wipe(debug->data(), debug->size());
  }

  EXPECT_EQ(watch.found(), 0u);
}

}  // namespace
}  // namespace quillon
