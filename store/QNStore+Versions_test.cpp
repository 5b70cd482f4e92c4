// Files of every version that was ever published must open for ever. testdata/SOURCES.md tells how
// they were made.

#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

class QNStoreVersions : public ::testing::Test {
 protected:
  QNStoreVersions() {
    std::filesystem::copy_file(std::filesystem::path(QUILLON_TESTDATA) / "version-1.store", file);
  }
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
};

TEST_F(QNStoreVersions, OpensAFileOfVersion1) {
  Session session = openSession(file);

  EXPECT_EQ(session.vault->passwordHint(), "the usual");
  EXPECT_EQ(session.vault->createdAt(), 1'700'000'000u);
  EXPECT_EQ(session.vault->profileColor(), (QNColor{0.5f, 0.25f, 0.75f, 1.0f}));
  EXPECT_EQ(titlesIn(session, QNStore::Which::normal),
            (std::vector<std::string>{"Bank", "Zettel"}));
  EXPECT_EQ(titlesIn(session, QNStore::Which::trashed), std::vector<std::string>{"Generated"});
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreVersions, ReadsEveryFieldOfALoginOfVersion1) {
  Session session = openSession(file);

  const auto set =
      std::move(session.store->itemSetForURL(session.vault, "https://www.bank.example")).value();

  ASSERT_EQ(set->derivedLogins.size(), 1u);
  QNItem& login = *set->derivedLogins[0];
  EXPECT_EQ(login.username(), "ada");
  EXPECT_TRUE(login.password()->equals("second password"));
  EXPECT_TRUE(login.containsPasswordValue("first password"));
  EXPECT_EQ(login.notesPlain(), "mind the gap");
  ASSERT_EQ(login.numberOfURLs(), 2u);
  EXPECT_EQ(login.URLAtIndex(0)->URLString(), "https://www.bank.example/start");
  EXPECT_EQ(login.URLAtIndex(1)->label(), "help");
  EXPECT_EQ(login.faveIndex(), 7u);
  EXPECT_EQ(login.numberOfTimesUsed(), 3);
  EXPECT_EQ(login.lastUsedTimestamp(), 1'699'999'999u);
  EXPECT_EQ(login.createdAt(), 1'700'000'000u);
  EXPECT_EQ(login.updatedAt(), 1'700'000'100u);
  EXPECT_EQ(login.txTimestamp(), 1'700'000'100u);
}

TEST_F(QNStoreVersions, ReadsANoteOfVersion1) {
  Session session = openSession(file);
  std::shared_ptr<QNItem> note;
  ASSERT_TRUE(
      session.store
          ->list(session.vault, QNStore::Which::normal, [&note](const auto& item) { note = item; })
          .ok());

  ASSERT_TRUE(session.store->loadDetails(note).ok());

  EXPECT_EQ(note->notesPlain(), "größer als 1 €");
  EXPECT_TRUE(note->hasNeverScope());
}

TEST_F(QNStoreVersions, WritesIntoAFileOfVersion1) {
  Session session = openSession(file);

  savedLogin(session, "new");

  EXPECT_EQ(titlesIn(session), (std::vector<std::string>{"Bank", "Zettel", "new"}));
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

}  // namespace
}  // namespace quillon
