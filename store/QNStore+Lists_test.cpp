// Lists of a folder and by a question, and tags. What every list does: QNStore+Load_test.cpp.

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <random>

#include "quillon/organisation/QNTag.h"
#include "quillon/organisation/predicates/QNItemKeyPaths.h"
#include "quillon/organisation/predicates/QNPredicate.h"
#include "quillon/platform/log/MRLogger.h"
#include "store/internal/QNFolderTesting.h"
#include "store/internal/QNStoreState.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Which = QNStore::Which;

class QNStoreLists : public ::testing::Test {
 protected:
  void runSQL(const std::string& sql) const {
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &connection), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(connection);
    sqlite3_close(connection);
  }
  std::shared_ptr<QNItem> savedNote(std::string_view title, std::string_view notes) {
    const auto item = makeLogin(session.vault, title);
    item->setNotesPlain(notes);
    EXPECT_EQ(errorOf(session.store->save(item)), "");
    return item;
  }
  void trash(const std::shared_ptr<QNItem>& item) {
    item->setTrashed(true);
    EXPECT_EQ(errorOf(session.store->save(item)), "");
  }
  std::vector<std::string> titlesInFolder(const QNFolder& folder, Which which = Which::normal) {
    std::vector<std::string> titles;
    const auto listed =
        session.store->listFolder(session.vault, *folder.uuid(), which,
                                  [&](const auto& item) { titles.push_back(item->title()); });
    EXPECT_TRUE(listed.ok()) << listed.error().message;
    EXPECT_EQ(listed.value().listed, titles.size());
    return titles;
  }
  QNResult<QNListReport> listMatching(std::string_view format, Which which = Which::normal) {
    found.clear();
    const auto predicate = QNPredicate::predicateWithFormat(format);
    if (!predicate.ok()) return predicate.error();
    return session.store->listMatching(
        session.vault, which, *predicate.value(),
        [this](const std::shared_ptr<QNItem>& item) { found.push_back(item->title()); });
  }
  /// Titles, of a list in which nothing is wrong.
  std::vector<std::string> titlesMatching(std::string_view format, Which which = Which::normal) {
    const auto listed = listMatching(format, which);
    EXPECT_TRUE(listed.ok()) << listed.error().message;
    if (!listed.ok()) return {};
    EXPECT_EQ(listed.value().listed, found.size());
    EXPECT_THAT(listed.value().damaged, IsEmpty());
    EXPECT_FALSE(listed.value().ledgerBroken);
    return found;
  }

  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  Session session = makeSession(file);
  std::vector<std::string> found;
};

// Of a folder

TEST_F(QNStoreLists, OfAFolderHaveWhatLiesRightInIt) {
  const auto outer = savedFolder(session, "outer");
  const auto inner = savedFolder(session, "inner", outer);
  savedLogin(session, "at the top");
  savedLoginIn(session, *outer, "a");
  savedLoginIn(session, *inner, "b");
  savedLoginIn(session, *outer, "c");
  trash(savedLoginIn(session, *outer, "d"));
  trash(savedLoginIn(session, *outer, "e"));
  savedLoginIn(session, *outer, "f");

  EXPECT_THAT(titlesInFolder(*outer), ElementsAre("a", "c", "f"));
  EXPECT_THAT(titlesInFolder(*outer, Which::trashed), ElementsAre("d", "e"));
  EXPECT_THAT(titlesInFolder(*outer, Which::all), ElementsAre("a", "c", "f", "d", "e"));
  EXPECT_THAT(titlesInFolder(*inner), ElementsAre("b"));
  EXPECT_THAT(titlesInFolder(*makeFolder(session.vault, "unknown")), IsEmpty());
  EXPECT_EQ(session.store->detailsRead(), 0u);
}

TEST_F(QNStoreLists, OfAFolderHaveItemsOfItsVaultOnly) {
  const auto mine = savedFolder(session, "mine");
  Session other = {nullptr, QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt)};
  ASSERT_TRUE(session.store->saveVault(*other.vault).ok());
  const auto theirs = makeLogin(other.vault, "theirs");
  theirs->setFolderUUID(*mine->uuid());
  ASSERT_TRUE(session.store->save(theirs).ok());

  EXPECT_THAT(titlesInFolder(*mine), IsEmpty());
  EXPECT_EQ(treeIn(session), "mine 0");
}

TEST_F(QNStoreLists, OfAFolderGoThroughAnIndexInItsOrder) {
  const auto planOf = [&](std::string_view sql) {
    const std::string explain = "EXPLAIN QUERY PLAN " + std::string(sql);  // outlives the database
    const auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readOnly)).value();
    QNQuery plan = database->query(explain);
    std::vector<std::string> steps;
    while (plan.next()) steps.emplace_back(plan.text(3));
    return steps;
  };

  EXPECT_THAT(
      planOf(kSelectItemsOfFolder),
      ElementsAre("SEARCH items USING INDEX items_by_folder (vault_id=? AND folder_uuid=?)"));
  EXPECT_THAT(planOf(kCountItemsOfFolders),
              ElementsAre("SEARCH items USING COVERING INDEX items_by_folder "
                          "(vault_id=? AND folder_uuid>?)"));
}

TEST_F(QNStoreLists, OfAFolderNameADamagedRow) {
  const auto mine = savedFolder(session, "mine");
  savedLoginIn(session, *mine, "a");
  const auto damaged = savedLoginIn(session, *mine, "b");
  runSQL("UPDATE items SET fave_index = 9 WHERE oid = 2");

  const auto listed =
      session.store->listFolder(session.vault, *mine->uuid(), Which::normal, [](const auto&) {});

  ASSERT_TRUE(listed.ok());
  EXPECT_THAT(listed.value().damaged, ElementsAre(*damaged->uuid()));
  EXPECT_EQ(listed.value().listed, 1u);
}

TEST_F(QNStoreLists, AreNotOfALockedVaultNorInsideOthers) {
  savedLogin(session, "a");
  const auto truth = QNPredicate::predicateWithValue(true);
  const auto ignore = [](const auto&) {};
  const auto all = [&] {
    return std::vector<std::string>{
        errorOf(session.store->listFolder(session.vault, "f", Which::all, ignore)),
        errorOf(session.store->listMatching(session.vault, Which::all, *truth, ignore)),
        errorOf(session.store->tags(session.vault))};
  };
  const std::string busy = codeText(QNStoreErrorCode::busy);
  const std::string locked = codeText(QNStoreErrorCode::locked);
  ASSERT_TRUE(session.store
                  ->list(session.vault, Which::all,
                         [&](const auto&) { EXPECT_THAT(all(), ElementsAre(busy, busy, busy)); })
                  .ok());
  session.vault->lock();

  EXPECT_THAT(all(), ElementsAre(locked, locked, locked));
}

// By a question

TEST_F(QNStoreLists, ByAQuestionAboutOverviewsOpenNoDetails) {
  savedNote("apple", "fruit");
  savedNote("pear", "fruit");
  savedNote("Apple pie", "cake");

  EXPECT_THAT(titlesMatching(R"(title CONTAINS[c] "apple" AND categoryUUID == "001")"),
              ElementsAre("apple", "Apple pie"));
  EXPECT_THAT(titlesMatching(R"(NOT title == "pear")"), ElementsAre("apple", "Apple pie"));
  EXPECT_THAT(titlesMatching("TRUEPREDICATE"), ElementsAre("apple", "pear", "Apple pie"));
  EXPECT_THAT(titlesMatching("FALSEPREDICATE"), IsEmpty());
  EXPECT_EQ(session.store->detailsRead(), 0u);
  EXPECT_EQ(session.vault->numberOfItemKeysUnwrapped(), 0u);
}

TEST_F(QNStoreLists, ByAQuestionOpenDetailsOnlyWhereTheRestDoesNotDecide) {
  savedNote("apple", "fruit");
  savedNote("pear", "fruit");
  savedNote("apple pie", "cake");
  savedNote("plum", "fruit");
  const auto readBy = [&](std::string_view format, const std::vector<std::string>& titles) {
    const std::uint64_t before = session.store->detailsRead();
    EXPECT_EQ(titlesMatching(format), titles) << format;
    return session.store->detailsRead() - before;
  };

  EXPECT_EQ(readBy(R"(notesPlain == "fruit" AND title BEGINSWITH "apple")", {"apple"}), 2u);
  EXPECT_EQ(readBy(R"(notesPlain == "cake" OR title == "plum")", {"apple pie", "plum"}), 3u);
  EXPECT_EQ(
      readBy(R"(NOT (notesPlain == "fruit" AND title BEGINSWITH "p"))", {"apple", "apple pie"}),
      2u);
  EXPECT_EQ(readBy(R"(notesPlain == "fruit")", {"apple", "pear", "plum"}), 4u);
}

TEST_F(QNStoreLists, ByAQuestionOpenNoDetailsOfWhatAFilterKeepsOut) {
  savedNote("apple", "fruit");
  savedNote("pear", "fruit");
  savedNote("apple pie", "cake");
  const auto predicate = QNPredicate::predicateWithFormat(R"(notesPlain == "fruit")").value();

  const auto listed = session.store->listMatching(
      session.vault, Which::normal, *predicate,
      [this](const auto& item) { found.push_back(item->title()); },
      [](QNItem& item) { return item.title().starts_with("apple"); });

  ASSERT_TRUE(listed.ok());
  EXPECT_THAT(found, ElementsAre("apple"));
  EXPECT_EQ(listed.value().listed, 1u);
  EXPECT_EQ(session.store->detailsRead(), 2u);
}

TEST_F(QNStoreLists, ByAQuestionAboutDetailsGiveItemsWithTheirDetails) {
  savedNote("apple", "fruit");
  const auto predicate = QNPredicate::predicateWithFormat(R"(notesPlain == "fruit")").value();
  std::vector<std::shared_ptr<QNItem>> items;

  ASSERT_TRUE(session.store
                  ->listMatching(session.vault, Which::normal, *predicate,
                                 [&](const auto& item) { items.push_back(item); })
                  .ok());

  ASSERT_EQ(items.size(), 1u);
  EXPECT_TRUE(items[0]->detailsLoaded());
  EXPECT_FALSE(items[0]->dirtyRow());
  items[0]->setTitle("edited");
  EXPECT_EQ(errorOf(session.store->save(items[0])), "");
}

TEST_F(QNStoreLists, ByAQuestionKeepToTheStatusThatIsAskedFor) {
  savedNote("apple", "fruit");
  trash(savedNote("old apple", "fruit"));

  EXPECT_THAT(titlesMatching(R"(title CONTAINS "apple")"), ElementsAre("apple"));
  EXPECT_THAT(titlesMatching(R"(title CONTAINS "apple")", Which::trashed),
              ElementsAre("old apple"));
  EXPECT_THAT(titlesMatching(R"(title CONTAINS "apple")", Which::all),
              ElementsAre("apple", "old apple"));
}

TEST_F(QNStoreLists, ByAQuestionFindWhatLiesInNoFolder) {
  const auto mine = savedFolder(session, "mine");
  savedLoginIn(session, *mine, "inside");
  savedLogin(session, "outside");

  EXPECT_THAT(titlesMatching("folderUUID==NIL"), ElementsAre("outside"));
}

TEST_F(QNStoreLists, ByAQuestionNameDamagedRowsAndDetails) {
  const MRCapturingSink silence;
  const auto row = savedNote("a", "x");
  const auto details = savedNote("b", "x");
  savedNote("c", "x");
  runSQL(
      "UPDATE items SET fave_index = 9 WHERE oid = 1;"
      "UPDATE details SET details = x'00' WHERE item_id = 2");

  const auto listed = listMatching(R"(notesPlain == "x")");

  ASSERT_TRUE(listed.ok());
  EXPECT_THAT(listed.value().damaged, ElementsAre(*row->uuid(), *details->uuid()));
  EXPECT_THAT(found, ElementsAre("c"));
  EXPECT_EQ(listed.value().listed, 1u);
}

TEST_F(QNStoreLists, ByAQuestionMissRowsThatWereTakenAway) {
  savedLogin(session, "a");
  savedLogin(session, "b");
  runSQL("PRAGMA foreign_keys = ON; DELETE FROM items WHERE oid = 1");

  EXPECT_TRUE(listMatching("TRUEPREDICATE").value().ledgerBroken);
  EXPECT_TRUE(session.store->tags(session.vault).value().rows.ledgerBroken);
}

TEST_F(QNStoreLists, ByAQuestionThatNoItemCanAnswerEndBeforeTheFirstRow) {
  savedLogin(session, "a");

  const auto listed = listMatching(R"(nonsense == "a")");

  ASSERT_FALSE(listed.ok());
  EXPECT_EQ(listed.error().code, 114);
  EXPECT_THAT(found, IsEmpty());
}

TEST_F(QNStoreLists, ByAQuestionThatWouldTakeForEverSaySo) {
  savedLogin(session, "a");
  savedLogin(session, std::string(5000, 'a'));

  const auto listed = listMatching(R"(title MATCHES "(a|aa)*(a|aa)*(a|aa)*b")");

  ASSERT_FALSE(listed.ok());
  EXPECT_EQ(listed.error().code, 114);
  EXPECT_EQ(titlesIn(session).size(), 2u);
}

TEST_F(QNStoreLists, ByAQuestionEndAtTheItemAtWhichItFails) {
  savedLogin(session, std::string(5000, 'a'));
  savedLogin(session, "a");
  const auto predicate =
      QNPredicate::predicateWithFormat(R"(title MATCHES "(a|aa)*(a|aa)*(a|aa)*b")").value();

  const auto listed = session.store->listMatching(
      session.vault, Which::normal, *predicate, [](const auto&) {},
      [this](QNItem& item) {
        found.push_back(item.title());
        return true;
      });

  EXPECT_FALSE(listed.ok());
  EXPECT_EQ(found.size(), 1u);
}

TEST_F(QNStoreLists, ByAQuestionAreWhatEachItemAnswersWithEverythingLoaded) {
  std::mt19937 random(1);
  std::vector<std::shared_ptr<QNItem>> items;
  for (int i = 0; i < 40; ++i) {
    const char letter = static_cast<char>('a' + random() % 3);
    items.push_back(savedNote(std::string(1, letter), random() % 2 == 0 ? "x" : "y"));
  }
  const std::vector<std::string> leaves = {R"(title == "a")",      R"(title == "b")",
                                           R"(notesPlain == "x")", R"(notesPlain == "y")",
                                           "TRUEPREDICATE",        "FALSEPREDICATE"};
  const std::function<std::string(int)> question = [&](int depth) -> std::string {
    if (depth == 0) return leaves[random() % leaves.size()];
    if (random() % 3 == 0) return "(NOT " + question(depth - 1) + ")";
    return "(" + question(depth - 1) + (random() % 2 == 0 ? " AND " : " OR ") +
           question(depth - 1) + ")";
  };
  for (int round = 0; round < 200; ++round) {
    const std::string format = question(static_cast<int>(random() % 4));
    const auto predicate = QNPredicate::predicateWithFormat(format).value();
    std::vector<std::string> expected;
    for (const auto& item : items) {
      QNItemKeyPathSource source(*item);
      if (predicate->evaluate(source).value()) expected.push_back(item->title());
    }

    ASSERT_EQ(titlesMatching(format), expected) << format;
  }
}

// Tags

TEST_F(QNStoreLists, OfTagsCountEachAsItStandsInTheOrderOfTheLanguage) {
  const auto tag = [&](std::string_view title, const std::set<std::string>& tags) {
    const auto item = makeLogin(session.vault, title);
    item->setTags(tags);
    EXPECT_EQ(errorOf(session.store->save(item)), "");
    return item;
  };
  tag("a", {"Travel", "Travel/Tickets"});
  tag("b", {"Travel/Tickets", "éclair"});
  tag("c", {"Zoo", "apple"});
  tag("d", {});
  trash(tag("e", {"apple", "gone"}));
  session = openSession(file);

  const auto report = session.store->tags(session.vault);

  ASSERT_TRUE(report.ok());
  std::vector<std::string> lines;
  for (const auto& each : report.value().tags) {
    lines.push_back(*each->title() + " " + std::to_string(each->numberOfItems()));
    EXPECT_EQ(each->profile(), session.vault);
  }
  EXPECT_THAT(lines, ElementsAre("apple 1", "éclair 1", "Travel 1", "Travel/Tickets 2", "Zoo 1"));
  EXPECT_EQ(report.value().rows.listed, 4u);
  EXPECT_EQ(session.store->detailsRead(), 0u);
  EXPECT_EQ(session.vault->numberOfItemKeysUnwrapped(), 0u);
}

TEST_F(QNStoreLists, OfTagsNameDamagedRowsAndCountThemNot) {
  const auto item = makeLogin(session.vault, "a");
  item->setTags({"one"});
  ASSERT_TRUE(session.store->save(item).ok());
  runSQL("UPDATE items SET fave_index = 9");

  const auto report = session.store->tags(session.vault).value();

  EXPECT_THAT(report.tags, IsEmpty());
  EXPECT_THAT(report.rows.damaged, ElementsAre(*item->uuid()));
}

TEST_F(QNStoreLists, OfTagsStandInTheFileForNobodyToRead) {
  const auto item = makeLogin(session.vault, "a");
  item->setTags({"Unmistakable/Tag"});
  ASSERT_TRUE(session.store->save(item).ok());
  session = Session();

  EXPECT_EQ(bytesOfFile(file).find("Unmistakable"), std::string::npos);
}

}  // namespace
}  // namespace quillon
