#include "quillon/items/internal/QNMergeTesting.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class QNPasswordMerge : public testing::Test {
 protected:
  std::shared_ptr<QNPassword> passwordOf(std::optional<std::string_view> value) {
    auto item = std::make_shared<QNPassword>(initNew);
    item->setProfile(_vault);
    item->setCreatedAt(5);
    item->setPassword(value);
    item->didSave();
    return item;
  }
  std::shared_ptr<QNLogin> loginOf(std::string_view user, std::string_view password) {
    auto login = std::make_shared<QNLogin>(initNew);
    login->setProfile(_vault);
    login->setUsername(user);
    login->setPassword(password);
    login->didSave();
    return login;
  }

  std::shared_ptr<QNProfile> _vault = localVault();
  QNScopedClock _clock{1000};
};

TEST_F(QNPasswordMerge, OfWhatIsNoItemChangesNothing) {
  const auto mine = passwordOf("pw");
  const MRCapturingSink sink;

  EXPECT_EQ(mine->mergeWithConflict(nullptr), mine);

  EXPECT_FALSE(mine->dirtyRow());
  EXPECT_THAT(errors(sink), ElementsAre("Attempted to merge (null) into " + mine->description() +
                                        ". Avoiding that as it doesn't make sense to do so."));
}

TEST_F(QNPasswordMerge, OfAnotherCategoryGivesNothing) {
  const auto mine = passwordOf("pw");
  const auto note = versionIn(_vault);
  note->_setOid(9);
  const MRCapturingSink sink;

  EXPECT_EQ(mine->mergeWithConflict(note), nullptr);

  EXPECT_FALSE(mine->dirtyRow());
  EXPECT_FALSE(mine->hasOid());
  EXPECT_THAT(assertions(sink), ElementsAre("Attempt to merge password " + mine->description() +
                                            " (005) with item from different category " +
                                            note->description() + " (003)"));
}

TEST_F(QNPasswordMerge, OfWhatIsNoPasswordThoughItSaysSoGivesNothing) {
  const auto mine = passwordOf("pw");
  const auto item = versionIn(_vault);
  item->setCategoryUUID("005");
  const MRCapturingSink sink;

  EXPECT_EQ(mine->mergeWithConflict(item), nullptr);

  EXPECT_EQ(assertions(sink).size(), 1u);
}

TEST_F(QNPasswordMerge, OfALoginOfAnotherCategoryGivesNothingAndMovesNothing) {
  const auto mine = passwordOf("pw");
  mine->addURLString("https://a.example/deep");
  mine->didSave();
  const auto theirs = std::make_shared<QNPrivacyComLogin>(initNew);
  theirs->setProfile(_vault);
  theirs->didSave();
  const MRCapturingSink sink;

  EXPECT_EQ(mine->mergeWithConflict(theirs), nullptr);

  EXPECT_FALSE(mine->dirtyRow());
  EXPECT_FALSE(theirs->dirtyRow());
  EXPECT_EQ(mine->URLAtIndex(0)->item(), mine);
  EXPECT_THAT(addressesOf(*mine), ElementsAre("https://a.example/deep"));
  EXPECT_THAT(assertions(sink), ElementsAre("Attempt to merge password " + mine->description() +
                                            " (005) with item from different category " +
                                            theirs->description() + " (800)"));
}

TEST_F(QNPasswordMerge, OfALoginGivesNothingIfItDoesNotOpenItself) {
  const auto mine = damagedTwinOf<QNPassword>(*passwordOf("pw"), _vault);
  const auto theirs = loginOf("ann", "other");
  const MRCapturingSink sink;

  EXPECT_EQ(mine->mergeWithConflict(theirs), nullptr);

  EXPECT_EQ(mine->URLAtIndex(0)->item(), mine);
  EXPECT_FALSE(mine->dirtyRow());
  EXPECT_FALSE(theirs->dirtyRow());
  EXPECT_THAT(errors(sink), Contains("Attempted to merge " + theirs->description() + " into " +
                                     mine->description() + ", which don't both open"));
}

TEST_F(QNPasswordMerge, OfALoginThatDoesNotOpenGivesNothingAndStaysOne) {
  const auto mine = passwordOf("pw");
  mine->addURLString("https://a.example/deep");
  mine->didSave();
  const auto theirs = damagedTwinOf<QNLogin>(*loginOf("ann", "other"), _vault);
  const MRCapturingSink sink;

  EXPECT_EQ(mine->mergeWithConflict(theirs), nullptr);

  EXPECT_FALSE(mine->dirtyRow());
  EXPECT_THAT(addressesOf(*mine), ElementsAre("https://a.example/deep"));
  EXPECT_EQ(mine->URLAtIndex(0)->item(), mine);
}

TEST_F(QNPasswordMerge, OfAPasswordThatDoesNotOpenGivesNothing) {
  const auto mine = passwordOf("pw");
  const auto theirs = damagedTwinOf<QNPassword>(*passwordOf("other"), _vault);
  const MRCapturingSink sink;

  EXPECT_EQ(mine->mergeWithConflict(theirs), nullptr);

  EXPECT_FALSE(mine->dirtyRow());
  EXPECT_THAT(historyOf(*mine), IsEmpty());
}

TEST_F(QNPasswordMerge, BeatsATombstoneAndTakesItsRow) {
  const auto mine = passwordOf("pw");
  const auto tombstone = std::make_shared<QNTombstone>(QNExisting{9});
  tombstone->setProfile(_vault);

  EXPECT_EQ(mine->mergeWithConflict(tombstone), mine);

  EXPECT_TRUE(mine->dirtyRow());
  EXPECT_EQ(mine->oid(), 9u);
}

TEST_F(QNPasswordMerge, KeepsItsPasswordAndTheOtherAsHistoryOfToday) {
  const auto mine = passwordOf("pw");
  const auto theirs = passwordOf("other");

  EXPECT_EQ(mine->mergeWithConflict(theirs), mine);

  EXPECT_TRUE(mine->password()->equals("pw"));
  EXPECT_THAT(historyOf(*mine), ElementsAre("other@1000"));
  EXPECT_TRUE(mine->dirtyRow());
}

TEST_F(QNPasswordMerge, AddsTheOtherPasswordOnce) {
  const auto mine = passwordOf("pw");
  const auto theirs = passwordOf("other");

  mine->mergeWithConflict(theirs);
  _clock.setSeconds(2000);
  mine->mergeWithConflict(theirs);

  EXPECT_THAT(historyOf(*mine), ElementsAre("other@1000"));
}

TEST_F(QNPasswordMerge, FindsAPasswordThatIsHistoryAlready) {
  const auto mine = passwordOf("pw");
  mine->addPreviouslyUsedPassword({QNSecret("other"), 1});

  mine->mergeWithConflict(passwordOf("other"));

  EXPECT_THAT(historyOf(*mine), ElementsAre("other@1"));
}

TEST_F(QNPasswordMerge, AddsNothingForAnEqualPasswordOrNone) {
  const auto mine = passwordOf("pw");

  mine->mergeWithConflict(passwordOf("pw"));
  mine->mergeWithConflict(passwordOf(std::nullopt));

  EXPECT_THAT(historyOf(*mine), IsEmpty());
}

TEST_F(QNPasswordMerge, KeepsEqualPasswordsOfDifferentTimesInTheHistory) {
  const auto mine = passwordOf("pw");
  const auto theirs = passwordOf("pw");
  mine->addPreviouslyUsedPassword({QNSecret("old"), 1});
  theirs->addPreviouslyUsedPassword({QNSecret("old"), 2});

  mine->mergeWithConflict(theirs);

  EXPECT_THAT(historyOf(*mine), ElementsAre("old@1", "old@2"));
}

TEST_F(QNPasswordMerge, TakesTheOthersRowIfItHasNone) {
  const auto mine = passwordOf("pw");
  const auto theirs = passwordOf("pw");
  theirs->_setOid(9);

  mine->mergeWithConflict(theirs);

  EXPECT_EQ(mine->oid(), 9u);
}

TEST_F(QNPasswordMerge, KeepsItsOwnRow) {
  const auto mine = passwordOf("pw");
  mine->_setOid(4);
  const auto theirs = passwordOf("pw");
  theirs->_setOid(9);

  mine->mergeWithConflict(theirs);

  EXPECT_EQ(mine->oid(), 4u);
}

TEST_F(QNPasswordMerge, BecomesALoginWithOne) {
  const auto mine = passwordOf("pw");
  mine->_setOid(4);
  mine->setNotesPlain("notes");
  const auto theirs = loginOf("ann", "other");
  theirs->_setOid(9);

  const auto result = std::dynamic_pointer_cast<QNLogin>(mine->mergeWithConflict(theirs));

  ASSERT_NE(result, nullptr);
  EXPECT_NE(result, theirs);
  EXPECT_EQ(result->oid(), 4u);
  EXPECT_EQ(*result->uuid(), *mine->uuid());
  EXPECT_EQ(result->notesPlain(), "notes");
  EXPECT_TRUE(result->password()->equals("pw"));
  EXPECT_NE(result->previouslyUsedPasswordWithValue("other"), nullptr);
  EXPECT_TRUE(result->dirtyRow());
}

TEST_F(QNPasswordMerge, TakesTheLoginsRowIfItHasNone) {
  const auto mine = passwordOf("pw");
  const auto theirs = loginOf("ann", "other");
  theirs->_setOid(9);

  const auto result = mine->mergeWithConflict(theirs);

  EXPECT_EQ(result->oid(), 9u);
}

TEST_F(QNPasswordMerge, IsReplacedByALoginAsALogin) {
  const auto mine = passwordOf("pw");
  mine->_setOid(4);
  const auto theirs = loginOf("ann", "other");
  theirs->willSerialize();

  const auto result = std::dynamic_pointer_cast<QNLogin>(mine->objectByReplacingWith(theirs));

  ASSERT_NE(result, nullptr);
  EXPECT_NE(result, theirs);
  EXPECT_EQ(result->oid(), 4u);
  EXPECT_EQ(*result->uuid(), *mine->uuid());
  EXPECT_EQ(result->username(), "ann");
  EXPECT_TRUE(result->password()->equals("other"));
}

TEST_F(QNPasswordMerge, IsNotReplacedByALoginIfEitherDoesNotOpen) {
  const auto mine = passwordOf("pw");
  mine->addURLString("https://a.example/deep");
  const auto damaged = damagedTwinOf<QNPassword>(*passwordOf("pw"), _vault);
  const MRCapturingSink sink;

  EXPECT_EQ(mine->objectByReplacingWith(damagedTwinOf<QNLogin>(*loginOf("ann", "other"), _vault)),
            mine);
  EXPECT_EQ(damaged->objectByReplacingWith(loginOf("ann", "other")), damaged);

  EXPECT_EQ(mine->URLAtIndex(0)->item(), mine);
  EXPECT_TRUE(mine->password()->equals("pw"));
  EXPECT_EQ(damaged->URLAtIndex(0)->item(), damaged);
  EXPECT_FALSE(damaged->dirtyRow());
}

TEST_F(QNPasswordMerge, RetiresNoPasswordASecondTimeThatTheWinnerRetired) {
  const auto row = passwordOf("old");
  save(*row);
  const auto opened = [&] {
    auto item = std::make_shared<QNPassword>(QNExisting{row->oid()});
    item->setProfile(_vault);
    item->setOverviewData(row->overviewData());
    item->markLoadingDetails();
    item->setEncryptedKey(row->encryptedKey());
    item->setDetailsData(row->detailsData());
    item->markDetailsLoaded();
    item->didLoad();
    return item;
  };
  const auto mine = opened();
  const auto theirs = opened();
  theirs->setPassword("new");
  save(*theirs);
  _clock.setSeconds(2000);

  mine->objectByReplacingWith(theirs);
  save(*mine);

  EXPECT_TRUE(mine->password()->equals("new"));
  EXPECT_THAT(historyOf(*mine), ElementsAre("old@1000"));
}

TEST_F(QNPasswordMerge, IsReplacedByAPasswordInItself) {
  const auto mine = passwordOf("pw");

  EXPECT_EQ(mine->objectByReplacingWith(passwordOf("other")), mine);

  EXPECT_TRUE(mine->password()->equals("other"));
}

}  // namespace
}  // namespace quillon
