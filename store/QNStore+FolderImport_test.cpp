// Folders that come out of a file: what stands in it needn't be true.

#include <gmock/gmock.h>

#include <random>

#include "quillon/platform/environment/QNEnvironment.h"
#include "store/internal/QNFolderTesting.h"
#include "store/internal/QNMergeTesting.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class QNStoreFolderImport : public ::testing::Test {
 protected:
  using Folders = std::vector<std::shared_ptr<QNFolder>>;
  /// One with a uuid that a test can name.
  std::shared_ptr<QNFolder> named(std::string_view uuid, std::optional<std::string> parent = {}) {
    auto made = makeFolder(session.vault, uuid);
    made->setUuid(sharedString(std::string(uuid)));
    made->setParentUUID(std::move(parent));
    return made;
  }
  std::vector<std::string> add(const Folders& folders) {
    auto moved = session.store->addFolders(session.vault, folders);
    EXPECT_TRUE(moved.ok()) << moved.error().message;
    return moved.ok() ? std::move(moved).value() : std::vector<std::string>();
  }
  std::string errorOfAdding(const Folders& folders) {
    return errorOf(session.store->addFolders(session.vault, folders));
  }
  Session copyOfStore() {
    EXPECT_EQ(errorOf(session.store->backupTo(folder / "theirs")), "");
    return openSession(folder / "theirs");
  }
  void deleteA() {
    const auto a = session.store->folder(session.vault, "a");
    ASSERT_TRUE(a.ok());
    EXPECT_EQ(errorOf(session.store->deleteFolder(a.value())), "");
  }

  QNScopedClock clock{1'700'000'000};
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
};

TEST_F(QNStoreFolderImport, KeepsWhatAFolderHas) {
  const auto made = named("a");
  made->setCreatedAt(5);
  made->setUpdatedAt(6);
  made->setDisplayOrder(7);
  made->setIconData(Bytes{8});
  made->setSmartFolder(true);
  made->setSmartFolderPredicate(QNPredicate::predicateWithFormat("faveIndex > 0").value());

  EXPECT_THAT(add({made}), IsEmpty());

  const auto read = session.store->folder(session.vault, "a").value();
  EXPECT_EQ(read->title(), "a");
  EXPECT_EQ(read->createdAt(), 5u);
  EXPECT_EQ(read->updatedAt(), 6u);
  EXPECT_EQ(read->displayOrder(), 7u);
  EXPECT_EQ(read->iconData(), Bytes{8});
  EXPECT_EQ(read->smartFolderPredicate()->predicateFormat(), "faveIndex > 0");
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreFolderImport, TakesAParentThatComesLater) {
  EXPECT_THAT(add({named("c", "b"), named("b", "a"), named("a")}), IsEmpty());

  EXPECT_EQ(treeIn(session), "a 0 [b 0 [c 0]]");
}

TEST_F(QNStoreFolderImport, PutsFoldersIntoThoseThatAreThere) {
  const auto box = savedFolder(session, "box");

  EXPECT_THAT(add({named("a", *box->uuid())}), IsEmpty());

  EXPECT_EQ(treeIn(session), "box 0 [a 0]");
}

TEST_F(QNStoreFolderImport, PutsAtTheTopWhatHasNoParentAndWhatLiesInItself) {
  EXPECT_THAT(add({named("a", "b"), named("b", "a"), named("below", "a"), named("self", "self"),
                   named("orphan", "nobody"), named("empty", "")}),
              UnorderedElementsAre("a", "b", "self", "orphan", "empty"));

  EXPECT_EQ(treeIn(session), "a 0 [below 0] b 0 empty 0 orphan 0 self 0");
}

TEST_F(QNStoreFolderImport, PutsAtTheTopWhatWouldLieTooDeep) {
  Folders chain = {named("0")};
  for (std::size_t i = 1; i <= QNStore::kMaxFolderLevels; ++i) {
    chain.push_back(named(std::to_string(i), std::to_string(i - 1)));
  }

  EXPECT_THAT(add(chain), ElementsAre(std::to_string(QNStore::kMaxFolderLevels)));

  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreFolderImport, RefusesAllIfOneIsThere) {
  add({named("a")});

  EXPECT_EQ(errorOfAdding({named("b"), named("a")}), codeText(QNStoreErrorCode::exists));

  EXPECT_EQ(treeIn(session), "a 0");
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreFolderImport, RefusesAllIfOneIsOfAnotherVaultOrNamelessOrTwice) {
  const auto other = QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt);
  ASSERT_TRUE(session.store->saveVault(*other).ok());
  const auto nameless = named("x");
  nameless->setUuid(nullptr);

  EXPECT_EQ(errorOfAdding({named("a"), makeFolder(other, "theirs")}),
            codeText(QNStoreErrorCode::unreadableItem));
  EXPECT_EQ(errorOfAdding({named("a"), nameless}), codeText(QNStoreErrorCode::unreadableItem));
  EXPECT_NE(errorOfAdding({named("a"), named("a")}), "");

  EXPECT_EQ(treeIn(session), "");
}

TEST_F(QNStoreFolderImport, BringsADeletedFolderBackForAMergeToo) {
  add({named("a")});
  Session theirs = copyOfStore();
  clock.setSeconds(1'700'000'100);
  deleteA();
  ASSERT_EQ(errorOf(mergeStores(session, theirs)), "");
  ASSERT_EQ(treeIn(theirs), "");
  const auto old = named("a");
  old->setUpdatedAt(1'600'000'000);

  add({old});

  EXPECT_EQ(session.store->folder(session.vault, "a").value()->updatedAt(), 1'700'000'100u);
  ASSERT_EQ(errorOf(mergeStores(session, theirs)), "");
  EXPECT_EQ(treeIn(session), "a 0");
  EXPECT_EQ(treeIn(theirs), "a 0");
}

TEST_F(QNStoreFolderImport, GivesNoFolderATimeToCome) {
  const auto made = named("a");
  made->setCreatedAt(9'000'000'000);
  made->setUpdatedAt(9'000'000'001);

  add({made});

  const auto read = session.store->folder(session.vault, "a").value();
  EXPECT_EQ(read->createdAt(), 1'700'000'000u);
  EXPECT_EQ(read->updatedAt(), 1'700'000'000u);
}

TEST_F(QNStoreFolderImport, LetsALaterDeletionGoThroughWhateverTimeTheFileGave) {
  const auto made = named("a");
  made->setUpdatedAt(9'000'000'000);
  add({made});
  Session theirs = copyOfStore();
  clock.setSeconds(1'700'000'100);
  deleteA();

  ASSERT_EQ(errorOf(mergeStores(session, theirs)), "");

  EXPECT_EQ(treeIn(session), "");
  EXPECT_EQ(treeIn(theirs), "");
}

TEST_F(QNStoreFolderImport, BringsAFolderBackThatWasDeletedByAClockThatWasAhead) {
  add({named("a")});
  Session theirs = copyOfStore();
  clock.setSeconds(1'800'000'000);
  deleteA();
  ASSERT_EQ(errorOf(mergeStores(session, theirs)), "");
  clock.setSeconds(1'700'000'100);

  add({named("a")});

  ASSERT_EQ(errorOf(mergeStores(session, theirs)), "");
  EXPECT_EQ(treeIn(session), "a 0");
  EXPECT_EQ(treeIn(theirs), "a 0");
}

TEST_F(QNStoreFolderImport, MakesNoDamageOfAnyFile) {
  for (unsigned seed = 0; seed < 30; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto any = [&] { return std::to_string(seed) + "-" + std::to_string(random() % 24); };
    std::vector<std::string> known;
    for (const auto& each : foldersIn(session).folders) known.push_back(*each->uuid());
    Folders folders;
    for (unsigned i = 0; i < 20; ++i) {
      folders.push_back(named(std::to_string(seed) + "-" + std::to_string(i)));
      const bool isKnown = !known.empty() && random() % 4 == 0;
      if (random() % 5 != 0) {
        folders.back()->setParentUUID(isKnown ? known[random() % known.size()] : any());
      }
    }

    const std::vector<std::string> moved = add(folders);

    const QNFolderReport report = foldersIn(session);
    ASSERT_EQ(report.folders.size(), known.size() + folders.size());
    ASSERT_THAT(report.misplaced, IsEmpty());
    ASSERT_EQ(problemsIn(session), std::vector<std::string>());
    for (const std::string& uuid : moved) {
      EXPECT_EQ(session.store->folder(session.vault, uuid).value()->parentUUID(), std::nullopt);
    }
  }
}

}  // namespace
}  // namespace quillon
