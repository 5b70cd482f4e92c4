#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

TEST(QNStoreCare, FindsNothingWrongInASoundStore) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  for (int i = 0; i < 10; ++i) savedLogin(session, "a");

  const auto checked = session.store->check(session.vault);

  ASSERT_TRUE(checked.ok());
  EXPECT_TRUE(checked.value().clean());
  EXPECT_EQ(checked.value().itemsChecked, 10u);
  EXPECT_EQ(session.vault->numberOfItemKeysUnwrapped(), 10u);
}

TEST(QNStoreCare, ReportsHashesThatWereMadeForAnotherVault) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto stranger = makeLogin(QNProfile::initNewWithPassword(DEMO_PASSWORD), "stranger");
  const auto item = makeLogin(session.vault, "a");
  const auto url = item->URLAtIndex(0);
  url->setItem(stranger);
  ASSERT_TRUE(session.store->save(item).ok());

  const auto problems = problemsIn(session);

  const std::string name = "item " + *item->uuid() + ": ";
  EXPECT_EQ(problems, std::vector<std::string>{name + "the hashes of URL " +
                                               std::to_string(url->oid()) + " aren't its own"});
}

TEST(QNStoreCare, CopiesWholeWhileItIsOpen) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const std::string uuid = *savedLogin(session, "a")->uuid();

  ASSERT_TRUE(session.store->backupTo(folder / "copy").ok());
  savedLogin(session, "later");

  Session copy = openSession(folder / "copy");
  EXPECT_EQ(titlesIn(copy), std::vector<std::string>{"a"});
  EXPECT_EQ(problemsIn(copy), std::vector<std::string>());
  EXPECT_TRUE(
      std::move(copy.store->item(copy.vault, uuid)).value()->password()->equals("correct horse"));
  savedLogin(copy, "b");
  EXPECT_EQ(titlesIn(copy), (std::vector<std::string>{"a", "b"}));
}

TEST(QNStoreCare, DoesNotCopyOverAFileOrIntoAFolderThatIsNone) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  writeFile(folder / "there", "dear");

  EXPECT_EQ(errorOf(session.store->backupTo(folder / "there")), codeText(QNStoreErrorCode::exists));
  EXPECT_EQ(errorOf(session.store->backupTo(folder / "a.quillon")),
            codeText(QNStoreErrorCode::exists));
  EXPECT_FALSE(session.store->backupTo(folder / "there/copy").ok());
  EXPECT_EQ(bytesOfFile(folder / "there"), "dear");
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST(QNStoreCare, CopiesFromAStoreOpenedForReading) {
  const TemporaryFolder folder;
  {
    Session session = makeSession(folder / "a.quillon");
    savedLogin(session, "a");
  }
  {
    Session session = openSession(folder / "a.quillon", QNStore::Access::readOnly);
    EXPECT_EQ(errorOf(session.store->backupTo(folder / "copy")), "");
  }

  Session copy = openSession(folder / "copy");
  EXPECT_EQ(titlesIn(copy), std::vector<std::string>{"a"});
}

TEST(QNStoreCare, DoesNotCopyInsideATransaction) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  std::string inside;

  const auto done = session.store->inTransaction([&]() -> QNResult<QNDone> {
    inside = errorOf(session.store->backupTo(folder / "copy"));
    return QNDone{};
  });

  EXPECT_EQ(inside, codeText(QNStoreErrorCode::busy));
  EXPECT_TRUE(done.ok());
  EXPECT_FALSE(std::filesystem::exists(folder / "copy"));
}

TEST(QNStoreCare, CountsItemsByCategoryInCategoryOrder) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  for (const std::string_view category : {QNCategoryUUIDPassword, QNCategoryUUIDSecureNote,
                                          QNCategoryUUIDLogin, QNCategoryUUIDLogin}) {
    const auto item = session.vault->newItemForCategoryUUID(category);
    item->setProfile(session.vault);
    ASSERT_TRUE(session.store->save(item).ok());
  }
  const auto trashed = makeLogin(session.vault, "a");
  trashed->setTrashed(true);
  ASSERT_TRUE(session.store->save(trashed).ok());

  const auto counts = session.store->categories(*session.vault);

  ASSERT_TRUE(counts.ok());
  ASSERT_EQ(counts.value().size(), 3u);
  EXPECT_EQ(counts.value()[0], (std::pair<std::string, std::uint64_t>("001", 2)));
  EXPECT_EQ(counts.value()[1], (std::pair<std::string, std::uint64_t>("003", 1)));
  EXPECT_EQ(counts.value()[2], (std::pair<std::string, std::uint64_t>("005", 1)));
}

}  // namespace
}  // namespace quillon
