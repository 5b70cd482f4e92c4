#include "quillon/items/internal/QNMergeTesting.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"

namespace quillon {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// Makes a login of a password item, and puts it into a vault's row.
class QNPasswordToLogin : public testing::Test {
 protected:
  std::shared_ptr<QNPassword> passwordOf(std::string_view value) {
    auto item = std::make_shared<QNPassword>(initNew);
    item->setProfile(_vault);
    item->setTitle("mine");
    item->setPassword(value);
    item->didSave();
    return item;
  }
  std::shared_ptr<QNLogin> login() {
    auto login = std::make_shared<QNLogin>(initNew);
    login->setProfile(_vault);
    login->setTitle("theirs");
    return login;
  }

  std::shared_ptr<QNProfile> _vault = localVault();
};

// Any item

TEST_F(QNPasswordToLogin, KeepsRowUuidAndKey) {
  const auto item = passwordOf("pw");
  item->_setOid(4);

  const auto made = item->convertToLogin();

  EXPECT_EQ(made->oid(), 4u);
  EXPECT_EQ(*made->uuid(), *item->uuid());
  EXPECT_EQ(made->profile(), _vault);
  EXPECT_EQ(made->key(), item->key());
  EXPECT_EQ(made->categoryUUID(), "001");
  EXPECT_TRUE(made->dirtyRow());
}

TEST_F(QNPasswordToLogin, CopiesColumnsAndOverview) {
  const auto item = passwordOf("pw");
  item->setCreatedAt(1);
  item->setTxTimestamp(2);
  item->setUpdatedAt(3);
  item->setFolderId(4);
  item->setFolderUUID("f");
  item->setScope("Never");
  item->setTags({"t", "u"});
  item->setOverviewText("aWNvbg==", kCustomIcon);

  const auto made = item->convertToLogin();

  EXPECT_EQ(made->createdAt(), 1u);
  EXPECT_EQ(made->txTimestamp(), 2u);
  EXPECT_EQ(made->updatedAt(), 3u);
  EXPECT_EQ(made->folderId(), 4u);
  EXPECT_EQ(made->folderUUID(), "f");
  EXPECT_EQ(made->scope(), "Never");
  EXPECT_THAT(made->tags(), ElementsAre("t", "u"));
  EXPECT_EQ(made->title(), "mine");
  EXPECT_EQ(made->overviewTextForKey(kCustomIcon), "aWNvbg==");
}

TEST_F(QNPasswordToLogin, CopiesWhatCountsItsUse) {
  const auto item = passwordOf("pw");
  item->setLastUsedTimestamp(5);
  item->setNumberOfTimesUsed(6);

  const auto made = item->convertToLogin();

  EXPECT_EQ(made->lastUsedTimestamp(), 5u);
  EXPECT_EQ(made->numberOfTimesUsed(), 6);
}

TEST_F(QNPasswordToLogin, DeletesTheAddressesThatTheItemWouldHaveDeleted) {
  const auto item = passwordOf("pw");
  item->addURLString("https://a.example");
  const auto url = item->URLAtIndex(0);
  url->_setOid(8);
  item->removeURLAtIndex(0);

  EXPECT_THAT(item->convertToLogin()->deletedURLs(), ElementsAre(url));
}

TEST_F(QNPasswordToLogin, IsNoneOfWhatDoesNotOpen) {
  const auto damaged = damagedTwinOf<QNPassword>(*passwordOf("pw"), _vault);
  const auto row = passwordOf("pw");
  save(*row);
  row->setOverviewData(Bytes(64, 1));
  row->addURLString("https://a.example");
  const MRCapturingSink sink;

  for (const auto& item : {damaged, row}) {
    EXPECT_EQ(item->convertToLogin(), nullptr);
    EXPECT_EQ(item->convertToLoginBasedOnLogin(login()), nullptr);
    EXPECT_EQ(item->URLAtIndex(0)->item(), item);
  }
  EXPECT_THAT(assertions(sink), Contains("Item " + damaged->description() +
                                         " doesn't open and can't be made a login"));
}

TEST_F(QNPasswordToLogin, WritesNoTitleForNone) {
  const auto item = std::make_shared<QNPassword>(initNew);
  item->setProfile(_vault);

  const auto made = item->convertToLogin();

  EXPECT_EQ(made->overviewTextForKey(kOverviewTitle), std::nullopt);
}

TEST_F(QNPasswordToLogin, MovesAddressesAndSectionsAsTheyAre) {
  const auto item = passwordOf("pw");
  item->addURLString("https://a.example/deep");
  addField(*item, "s", "x", "value");
  const auto url = item->URLAtIndex(0);
  const auto section = item->fieldSectionAtIndex(0);

  const auto made = item->convertToLogin();

  EXPECT_EQ(made->URLAtIndex(0), url);
  EXPECT_EQ(url->item(), made);
  EXPECT_EQ(made->fieldSectionAtIndex(0), section);
}

TEST_F(QNPasswordToLogin, CopiesNotesPasswordAndHistory) {
  const auto item = passwordOf("pw");
  item->updatePassword("pw", true, 77);
  item->setNotesPlain("notes");
  item->addPreviouslyUsedPassword({QNSecret("old"), 1});

  const auto made = item->convertToLogin();

  EXPECT_EQ(made->notesPlain(), "notes");
  EXPECT_TRUE(made->password()->equals("pw"));
  EXPECT_TRUE(made->passwordGeneratedByRandomNumberGenerator());
  EXPECT_EQ(made->passwordBitsEntropy(), 77);
  EXPECT_EQ(made->username(), "");
  EXPECT_THAT(historyOf(*made), ElementsAre("old@1"));
}

TEST_F(QNPasswordToLogin, KeepsTheKeysThatAttachmentsMayBeSealedUnder) {
  const auto item = passwordOf("pw");
  QNSecretSet keys;
  keys.emplace("Zm9ybWVy");
  item->addBackupKeysBase64Encoded(std::move(keys));

  const auto made = item->convertToLogin();

  EXPECT_EQ(made->backupKeysBase64Encoded().count(QNSecret("Zm9ybWVy")), 1u);
}

TEST_F(QNPasswordToLogin, BringsNoKeyThatSealedNothing) {
  const auto item = passwordOf("pw");
  save(*item);

  const auto made = item->convertToLogin();
  save(*made);

  EXPECT_EQ(made->backupKeysBase64Encoded().size(), 1u);
  EXPECT_EQ(
      made->backupKeysBase64Encoded().count(QNSecret(mr_base64encode(item->key()->rawKeyData()))),
      1u);
}

TEST_F(QNPasswordToLogin, WorksForOtherItems) {
  const auto item = newItem(_vault);
  item->name = "ann";
  item->setPassword("pw");

  const auto made = item->convertToLogin();

  EXPECT_EQ(made->username(), "ann");
  EXPECT_TRUE(made->password()->equals("pw"));
}

TEST_F(QNPasswordToLogin, CopiesTheBookkeepingOfAnAccount) {
  const auto vault = accountVault();
  const auto item = newItem(vault);
  item->h9ItemProperties()->setItemVersion(4);
  item->h9ItemProperties()->setLocalEditCount(2);

  const auto made = item->convertToLogin();

  EXPECT_EQ(made->h9ItemProperties()->itemVersion(), 4u);
  EXPECT_EQ(made->h9ItemProperties()->localEditCount(), 2u);
  EXPECT_EQ(*made->uuid(), *item->uuid());
}

TEST_F(QNPasswordToLogin, LeavesAttachmentsAndReportsThoseWithoutARow) {
  const auto item = passwordOf("pw");
  item->setNumberOfAttachments(2);
  const MRCapturingSink sink;

  const auto made = item->convertToLogin();

  EXPECT_EQ(made->numberOfAttachments(), 0);
  EXPECT_THAT(assertions(sink), ElementsAre("Unexpected attachments in unsaved object. Skipping."));
}

TEST_F(QNPasswordToLogin, KeepsTheAttachmentsOfItsRowInSilence) {
  const auto item = passwordOf("pw");
  item->setNumberOfAttachments(2);
  item->_setOid(4);
  const MRCapturingSink sink;

  EXPECT_EQ(item->convertToLogin()->numberOfAttachments(), 2);

  EXPECT_THAT(sink.records(), IsEmpty());
}

TEST_F(QNPasswordToLogin, RetiresWhatTheItemWouldHaveRetired) {
  const auto row = passwordOf("first");
  save(*row);
  const auto item = readAgainAs<QNPassword>(*row, _vault);
  item->setPassword("second");

  const auto made = item->convertToLogin();
  save(*made);

  EXPECT_TRUE(made->password()->equals("second"));
  EXPECT_NE(made->previouslyUsedPasswordWithValue("first"), nullptr);
  EXPECT_EQ(made->numberOfPreviouslyUsedPasswords(), 1u);
}

TEST_F(QNPasswordToLogin, IsSavedAndGathersNoHistoryByItself) {
  const auto item = passwordOf("pw");
  save(*item);

  const auto made = item->convertToLogin();
  save(*made);

  EXPECT_THAT(historyOf(*made), IsEmpty());
}

// Without a login

TEST_F(QNPasswordToLogin, ReducesItsOnlyAddressToTheSite) {
  const std::pair<std::string_view, std::string_view> kAddresses[] = {
      {"https://example.com/a/b?c", "https://example.com"},
      {"HTTP://Example.com:8080/x", "http://example.com"},
      {"example.com/a", "example.com"},
      {"https://example.com", "https://example.com"},
      {"mailto:a@b.example", "mailto:a@b.example"},
  };
  for (const auto& [address, site] : kAddresses) {
    const auto item = passwordOf("pw");
    item->addURLString(address);

    const auto made = item->convertToLoginBasedOnLogin(nullptr);

    EXPECT_THAT(addressesOf(*made), ElementsAre(std::string(site)));
  }
}

TEST_F(QNPasswordToLogin, LeavesSeveralAddressesAsTheyAre) {
  const auto item = passwordOf("pw");
  item->addURLString("https://example.com/a");
  item->addURLString("https://example.org/b");

  const auto made = item->convertToLoginBasedOnLogin(nullptr);

  EXPECT_THAT(addressesOf(*made), ElementsAre("https://example.com/a", "https://example.org/b"));
}

// With a login

TEST_F(QNPasswordToLogin, TakesTitleFormTagsAndFolderOfTheLogin) {
  const auto item = passwordOf("pw");
  item->setTags({"mine"});
  const auto theirs = login();
  theirs->setUsername("ann");
  theirs->setHtmlName("name");
  theirs->setHtmlMethod("post");
  theirs->setHtmlID("id");
  theirs->setHtmlAction("/in");
  theirs->setTags({"theirs"});
  theirs->setFolderId(4);
  theirs->setFolderUUID("f");

  const auto made = item->convertToLoginBasedOnLogin(theirs);

  EXPECT_EQ(made->title(), "theirs");
  EXPECT_EQ(made->username(), "ann");
  EXPECT_EQ(made->htmlName(), "name");
  EXPECT_EQ(made->htmlMethod(), "post");
  EXPECT_EQ(made->htmlID(), "id");
  EXPECT_EQ(made->htmlAction(), "/in");
  EXPECT_THAT(made->tags(), ElementsAre("mine", "theirs"));
  EXPECT_EQ(made->folderId(), 4u);
  EXPECT_EQ(made->folderUUID(), "f");
}

TEST_F(QNPasswordToLogin, TakesTheLoginsRowIfItHasNone) {
  const auto theirs = login();
  theirs->_setOid(9);

  const auto made = passwordOf("pw")->convertToLoginBasedOnLogin(theirs);

  EXPECT_EQ(made->oid(), 9u);
  EXPECT_EQ(made->key(), theirs->key());
}

TEST_F(QNPasswordToLogin, KeepsItsOwnRow) {
  const auto item = passwordOf("pw");
  item->_setOid(4);
  const auto theirs = login();
  theirs->_setOid(9);

  EXPECT_EQ(item->convertToLoginBasedOnLogin(theirs)->oid(), 4u);
}

TEST_F(QNPasswordToLogin, PutsTheLoginsAddressesFirstInTheirOrder) {
  const auto item = passwordOf("pw");
  item->addURLString("https://mine.example/a");
  item->addURLString("https://both.example/a");
  const auto theirs = login();
  theirs->addURLString("https://one.example/a");
  theirs->addURLString("https://both.example/a");
  theirs->addURLString("https://two.example/a");

  const auto made = item->convertToLoginBasedOnLogin(theirs);

  EXPECT_THAT(addressesOf(*made), ElementsAre("https://one.example/a", "https://two.example/a",
                                              "https://mine.example/a", "https://both.example/a"));
}

TEST_F(QNPasswordToLogin, ReducesTheLoginsOnlyAddressToo) {
  const auto theirs = login();
  theirs->addURLString("https://example.com/a");

  const auto made = passwordOf("pw")->convertToLoginBasedOnLogin(theirs);

  EXPECT_THAT(addressesOf(*made), ElementsAre("https://example.com"));
}

TEST_F(QNPasswordToLogin, JoinsSectionsOfOneNameAndTitle) {
  const auto item = passwordOf("pw");
  addField(*item, "s", "x", "mine");
  const auto theirs = login();
  addField(*theirs, "s", "x", "theirs");
  addField(*theirs, "s", "y", "new");
  addField(*theirs, "t", "z", "other");

  const auto made = item->convertToLoginBasedOnLogin(theirs);

  ASSERT_EQ(made->numberOfFieldSections(), 2u);
  const auto joined = made->fieldSectionAtIndex(0);
  ASSERT_EQ(joined->numberOfFields(), 3u);
  EXPECT_TRUE(joined->fieldAtIndex(0)->stringValue()->equals("mine"));
  EXPECT_TRUE(joined->fieldAtIndex(1)->stringValue()->equals("theirs"));
  EXPECT_EQ(joined->fieldAtIndex(2)->identifier(), "y");
  EXPECT_EQ(made->fieldSectionAtIndex(1), theirs->fieldSectionAtIndex(1));
}

TEST_F(QNPasswordToLogin, KeepsSectionsOfOneNameAndAnotherTitleApart) {
  const auto item = passwordOf("pw");
  addField(*item, "s", "x", "mine");
  const auto theirs = login();
  addField(*theirs, "s", "x", "theirs");
  theirs->fieldSectionAtIndex(0)->setTitle("Title");

  const auto made = item->convertToLoginBasedOnLogin(theirs);

  EXPECT_THAT(fieldsOf(*made), ElementsAre("s/x=mine", "s/x=theirs"));
}

TEST_F(QNPasswordToLogin, KeepsItsPasswordAndRetiresTheLogins) {
  const auto item = passwordOf("pw");
  const auto theirs = login();
  theirs->setPassword("former");
  theirs->_setOid(9);

  const auto made = item->convertToLoginBasedOnLogin(theirs);
  EXPECT_TRUE(made->password()->equals("pw"));
  save(*made);

  EXPECT_TRUE(made->password()->equals("pw"));
  EXPECT_NE(made->previouslyUsedPasswordWithValue("former"), nullptr);
  EXPECT_EQ(made->numberOfPreviouslyUsedPasswords(), 1u);
}

TEST_F(QNPasswordToLogin, RetiresBothTheLoginsPasswordAndTheOneThatItHadBefore) {
  const auto row = passwordOf("first");
  save(*row);
  const auto item = readAgainAs<QNPassword>(*row, _vault);
  item->setPassword("second");
  const auto theirs = login();
  theirs->setPassword("former");

  const auto made = item->convertToLoginBasedOnLogin(theirs);
  save(*made);
  save(*made);

  EXPECT_TRUE(made->password()->equals("second"));
  EXPECT_NE(made->previouslyUsedPasswordWithValue("first"), nullptr);
  EXPECT_NE(made->previouslyUsedPasswordWithValue("former"), nullptr);
  EXPECT_EQ(made->numberOfPreviouslyUsedPasswords(), 2u);
}

TEST_F(QNPasswordToLogin, KeepsItsTitleIfTheLoginHasNone) {
  const auto theirs = login();
  theirs->setTitle(std::nullopt);

  EXPECT_EQ(passwordOf("pw")->convertToLoginBasedOnLogin(theirs)->title(), "mine");
}

TEST_F(QNPasswordToLogin, LeavesTheLoginItsOwnEntries) {
  const auto theirs = login();
  theirs->setUsername("ann");
  theirs->setPassword("former");

  EXPECT_NE(passwordOf("pw")->convertToLoginBasedOnLogin(theirs), nullptr);

  EXPECT_EQ(theirs->username(), "ann");
  EXPECT_TRUE(theirs->password()->equals("former"));
}

TEST_F(QNPasswordToLogin, RefusesALoginOfAnotherVault) {
  const auto item = passwordOf("pw");
  item->addURLString("https://a.example");
  const auto theirs = std::make_shared<QNLogin>(initNew);
  theirs->setProfile(localVault(2));
  const MRCapturingSink sink;

  EXPECT_EQ(item->convertToLoginBasedOnLogin(theirs), nullptr);

  EXPECT_EQ(item->URLAtIndex(0)->item(), item);
  EXPECT_THAT(assertions(sink), ElementsAre("Profiles don't match for result <" + *item->uuid() +
                                            "> and login <" + *theirs->uuid() + ">"));
}

}  // namespace
}  // namespace quillon
