#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/QNCategory.h"
#include "store/internal/QNStoreState.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

std::vector<std::string> titlesOf(const QNItemSetForURL::Items& items) {
  std::vector<std::string> titles;
  for (const auto& item : items) titles.push_back(item->title());
  return titles;
}

std::shared_ptr<QNItem> savedItem(Session& session, std::string_view category,
                                  std::string_view title, std::string_view url) {
  const auto item = session.vault->newItemForCategoryUUID(category);
  item->setProfile(session.vault);
  item->setTitle(title);
  item->addURLString(url);
  EXPECT_TRUE(session.store->save(item).ok());
  return item;
}

// Lists

TEST(QNStoreLoad, ListsWithoutUnwrappingAKeyOrReadingDetails) {
  const TemporaryFolder folder;
  {
    Session session = makeSession(folder / "a.quillon");
    for (int i = 0; i < 100; ++i) savedLogin(session, "title");
  }
  Session session = openSession(folder / "a.quillon");
  std::uint64_t visited = 0;

  const auto listed =
      session.store->list(session.vault, QNStore::Which::all, [&visited](const auto& item) {
        EXPECT_EQ(item->title(), "title");
        EXPECT_EQ(item->additionalInformation(), "ada");
        EXPECT_EQ(item->URLString(), "https://www.example.com/login");
        EXPECT_FALSE(item->detailsLoaded());
        EXPECT_FALSE(item->dirtyRow());
        ++visited;
      });

  EXPECT_EQ(visited, 100u);
  EXPECT_EQ(listed.value().listed, 100u);
  EXPECT_EQ(session.vault->numberOfItemKeysUnwrapped(), 0u);
  EXPECT_EQ(session.store->detailsRead(), 0u);
}

TEST(QNStoreLoad, CountsTheDetailsThatItReads) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const std::string uuid = *savedLogin(session, "a")->uuid();

  const auto item = std::move(session.store->item(session.vault, uuid)).value();
  static_cast<void>(item->password());

  EXPECT_EQ(session.store->detailsRead(), 1u);
  EXPECT_EQ(session.vault->numberOfItemKeysUnwrapped(), 1u);
}

TEST(QNStoreLoad, ListsInRowOrderByStatus) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto a = savedLogin(session, "a");
  const auto b = savedLogin(session, "b");
  savedLogin(session, "c");
  a->setFaveIndex(9);
  ASSERT_TRUE(session.store->save(a).ok());
  b->setTrashed(true);
  ASSERT_TRUE(session.store->save(b).ok());

  EXPECT_EQ(titlesIn(session, QNStore::Which::normal), (std::vector<std::string>{"a", "c"}));
  EXPECT_EQ(titlesIn(session, QNStore::Which::trashed), (std::vector<std::string>{"b"}));
  EXPECT_EQ(titlesIn(session, QNStore::Which::all), (std::vector<std::string>{"a", "b", "c"}));
}

TEST(QNStoreLoad, ListsOneVaultOnly) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  savedLogin(session, "mine");
  Session other = {nullptr, QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt)};
  ASSERT_TRUE(session.store->saveVault(*other.vault).ok());
  ASSERT_TRUE(session.store->save(makeLogin(other.vault, "theirs")).ok());

  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"mine"});
}

TEST(QNStoreLoad, ListsNothingOfALockedVault) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  session.vault->lock();
  const auto ignore = [](const auto&) {};

  EXPECT_EQ(errorOf(session.store->list(session.vault, QNStore::Which::all, ignore)),
            codeText(QNStoreErrorCode::locked));
  EXPECT_EQ(errorOf(session.store->item(session.vault, *item->uuid())),
            codeText(QNStoreErrorCode::locked));
  EXPECT_EQ(errorOf(session.store->itemSetForURL(session.vault, "https://example.com")),
            codeText(QNStoreErrorCode::locked));
  EXPECT_EQ(errorOf(session.store->check(session.vault)), codeText(QNStoreErrorCode::locked));
}

TEST(QNStoreLoad, GivesAShellItsCategory) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  savedLogin(session, "a");
  const auto category =
      std::dynamic_pointer_cast<QNCategory>(session.vault->categoryWithUUID(QNCategoryUUIDLogin));
  std::uint64_t categoryId = 0;

  ASSERT_TRUE(session.store
                  ->list(session.vault, QNStore::Which::all,
                         [&categoryId](const auto& item) { categoryId = item->categoryId(); })
                  .ok());

  EXPECT_EQ(categoryId, category->oid());
  EXPECT_NE(categoryId, 0u);
}

TEST(QNStoreLoad, AVisitorMayReadOtherItemsButNotWrite) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  savedLogin(session, "a");
  savedLogin(session, "b");
  std::uint64_t loaded = 0;
  const auto visit = [&](const std::shared_ptr<QNItem>& item) {
    EXPECT_EQ(errorOf(session.store->loadDetails(item)), "");
    EXPECT_EQ(errorOf(session.store->item(session.vault, *item->uuid())), "");
    EXPECT_TRUE(item->password()->equals("correct horse"));
    ++loaded;
    EXPECT_EQ(errorOf(session.store->save(makeLogin(session.vault, "c"))),
              codeText(QNStoreErrorCode::busy));
    EXPECT_EQ(errorOf(session.store->deleteItem(item)), codeText(QNStoreErrorCode::busy));
    EXPECT_EQ(errorOf(session.store->backupTo(folder / "copy")), codeText(QNStoreErrorCode::busy));
  };

  const auto listed = session.store->list(session.vault, QNStore::Which::all, visit);

  ASSERT_TRUE(listed.ok()) << listed.error().message;
  EXPECT_EQ(loaded, 2u);
  EXPECT_EQ(errorOf(session.store->save(makeLogin(session.vault, "c"))), "");
}

TEST(QNStoreLoad, AListInsideAListIsRefused) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  savedLogin(session, "a");
  std::string inner;

  const auto outer = session.store->list(session.vault, QNStore::Which::all, [&](const auto&) {
    inner = errorOf(session.store->list(session.vault, QNStore::Which::all, [](const auto&) {}));
  });

  EXPECT_EQ(inner, codeText(QNStoreErrorCode::busy));
  EXPECT_EQ(errorOf(outer), "");
  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"a"});
}

TEST(QNStoreLoad, AVisitorThatThrowsLeavesTheStoreUsable) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  savedLogin(session, "a");

  EXPECT_THROW(static_cast<void>(session.store->list(session.vault, QNStore::Which::all,
                                                     [](const auto&) { throw 1; })),
               int);

  savedLogin(session, "b");
  EXPECT_EQ(titlesIn(session), (std::vector<std::string>{"a", "b"}));
}

// One item

TEST(QNStoreLoad, DoesNotFindAnItemOfAnotherUuid) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");

  EXPECT_EQ(errorOf(session.store->item(session.vault, "nobody")),
            codeText(QNStoreErrorCode::notFound));
}

TEST(QNStoreLoad, FillsAListedShell) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  savedLogin(session, "a");
  std::shared_ptr<QNItem> shell;
  ASSERT_TRUE(
      session.store
          ->list(session.vault, QNStore::Which::all, [&shell](const auto& item) { shell = item; })
          .ok());

  ASSERT_EQ(errorOf(session.store->loadDetails(shell)), "");

  EXPECT_TRUE(shell->password()->equals("correct horse"));
  EXPECT_EQ(shell->numberOfURLs(), 1u);
  EXPECT_TRUE(shell->loaded());
  EXPECT_FALSE(shell->dirtyRow());
  EXPECT_EQ(errorOf(session.store->loadDetails(shell)), "");
  EXPECT_EQ(shell->numberOfURLs(), 1u);
}

TEST(QNStoreLoad, KeepsTheEditsOfAShellThatIsFilledLater) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const std::string uuid = *savedLogin(session, "a")->uuid();
  std::shared_ptr<QNItem> shell;
  ASSERT_TRUE(
      session.store
          ->list(session.vault, QNStore::Which::all, [&shell](const auto& item) { shell = item; })
          .ok());
  shell->setTitle("edited");
  shell->setDisplayOrder(4);

  ASSERT_EQ(errorOf(session.store->loadDetails(shell)), "");

  EXPECT_TRUE(shell->dirtyRow());
  EXPECT_TRUE(shell->dirtyDisplayOrder());
  ASSERT_TRUE(session.store->save(shell).ok());
  EXPECT_EQ(reread(folder / "a.quillon", uuid)->title(), "edited");
}

TEST(QNStoreLoad, DoesNotFillAShellOfARowThatHasChanged) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  std::shared_ptr<QNItem> shell;
  ASSERT_TRUE(session.store
                  ->list(session.vault, QNStore::Which::all,
                         [&shell](const auto& listed) { shell = listed; })
                  .ok());
  item->setTitle("b");
  ASSERT_TRUE(session.store->save(item).ok());

  EXPECT_EQ(errorOf(session.store->loadDetails(shell)), codeText(QNStoreErrorCode::lostRace));
  EXPECT_FALSE(shell->detailsLoaded());
  EXPECT_FALSE(shell->loadingDetails());

  ASSERT_TRUE(session.store->deleteItem(item).ok());
  EXPECT_EQ(errorOf(session.store->loadDetails(shell)), codeText(QNStoreErrorCode::notFound));
}

// By website

TEST(QNStoreLoad, FindsItemsOfAPageByHostAndByNakedDomain) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  savedItem(session, QNCategoryUUIDLogin, "host", "https://login.example.com/in");
  savedItem(session, QNCategoryUUIDPrivacyComLogin, "host too", "login.example.com");
  savedItem(session, QNCategoryUUIDLogin, "domain", "https://www.example.com");
  savedItem(session, QNCategoryUUIDPassword, "password host", "https://login.example.com");
  savedItem(session, QNCategoryUUIDPassword, "password domain", "https://example.com");
  savedItem(session, QNCategoryUUIDLogin, "elsewhere", "https://example.org");
  savedItem(session, QNCategoryUUIDSecureNote, "note", "https://login.example.com");
  const auto trashed = savedItem(session, QNCategoryUUIDLogin, "bin", "https://login.example.com");
  trashed->setTrashed(true);
  ASSERT_TRUE(session.store->save(trashed).ok());

  const auto set =
      std::move(session.store->itemSetForURL(session.vault, "https://LOGIN.example.com:8443/x"))
          .value();

  EXPECT_EQ(titlesOf(set->derivedLogins), (std::vector<std::string>{"host", "host too"}));
  EXPECT_EQ(titlesOf(set->nakedLogins), std::vector<std::string>{"domain"});
  EXPECT_EQ(titlesOf(set->derivedPasswords), std::vector<std::string>{"password host"});
  EXPECT_EQ(titlesOf(set->nakedPasswords), std::vector<std::string>{"password domain"});
  EXPECT_EQ(set->profile, session.vault);
  EXPECT_EQ(set->matchingItems().size(), 3u);
  EXPECT_TRUE(set->derivedLogins.at(0)->detailsLoaded());
}

TEST(QNStoreLoad, FindsAnItemOnceThatHasSeveralAddressesOfASite) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = makeLogin(session.vault, "a", "https://a.example.com/1");
  item->addURLString("https://a.example.com/2");
  item->addURLString("https://b.example.com");
  ASSERT_TRUE(session.store->save(item).ok());

  const auto set =
      std::move(session.store->itemSetForURL(session.vault, "https://a.example.com")).value();

  EXPECT_EQ(set->derivedLogins.size(), 1u);
  EXPECT_TRUE(set->nakedLogins.empty());
}

TEST(QNStoreLoad, FindsItemsOfAPageThroughTheIndexesOfHashes) {
  const std::string explain = "EXPLAIN QUERY PLAN ";
  // A connection keeps views of its statements' texts.
  const std::string byHost = explain + std::string(kSelectItemsWithDerivedHash);
  const std::string byDomain = explain + std::string(kSelectItemsWithNakedHash);
  const TemporaryFolder folder;
  const Session session = makeSession(folder / "a.quillon");
  const auto database =
      std::move(QNDatabase::open(folder / "a.quillon", QNDatabase::Mode::readOnly)).value();
  const auto firstStepOf = [&database](std::string_view sql) {
    QNQuery plan = database->query(sql, std::string_view("hash"), std::uint64_t{1});
    return plan.next() ? std::string(plan.text(3)) : std::string();
  };

  EXPECT_EQ(firstStepOf(byHost), "SEARCH urls USING INDEX urls_by_derived_hash (<expr>=?)");
  EXPECT_EQ(firstStepOf(byDomain), "SEARCH urls USING INDEX urls_by_naked_hash (<expr>=?)");
}

TEST(QNStoreLoad, FindsNothingForAnAddressWithoutAHost) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  savedLogin(session, "a");

  const auto set = std::move(session.store->itemSetForURL(session.vault, "mailto:a@b")).value();

  EXPECT_TRUE(set->matchingItems().empty());
}

TEST(QNStoreLoad, FindsAnItemUnderItsNewAddressOnly) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a", "https://old.example");
  item->setURLString("https://new.example");
  ASSERT_TRUE(session.store->save(item).ok());

  const auto before =
      std::move(session.store->itemSetForURL(session.vault, "https://old.example")).value();
  const auto after =
      std::move(session.store->itemSetForURL(session.vault, "https://new.example")).value();

  EXPECT_TRUE(before->derivedLogins.empty());
  EXPECT_EQ(after->derivedLogins.size(), 1u);
}

}  // namespace
}  // namespace quillon
