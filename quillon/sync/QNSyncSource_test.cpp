#include "quillon/sync/QNSyncSource.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/images/internal/QNNamedPictures.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/sync/QNSyncState.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const QNUser kAda{"Ada", "/home/Ada/Library", "/home/Ada/Documents"};

std::shared_ptr<QNSyncSource> sourceAt(std::optional<std::string> identifier) {
  auto source = std::make_shared<QNSyncSource>(initNew);
  source->setKeychainIdentifier(std::move(identifier));
  return source;
}

std::shared_ptr<QNSyncState> stateOf(std::optional<std::string> uuid) {
  auto state = std::make_shared<QNSyncState>();
  state->setObjectUUID(std::move(uuid));
  return state;
}

class ScopedLanguage final {
 public:
  explicit ScopedLanguage(std::string_view tag)
      : _before(QNLocalization::sharedLocalization().language()) {
    QNLocalization::sharedLocalization().setLanguage(tag);
  }
  ~ScopedLanguage() { QNLocalization::sharedLocalization().setLanguage(_before); }
  ScopedLanguage(const ScopedLanguage&) = delete;
  ScopedLanguage& operator=(const ScopedLanguage&) = delete;

 private:
  std::string _before;
};

// Kinds of partners

struct IdentifierCase {
  const char* identifier;
  bool ubiquity, dropbox, wifi;
};
class QNSyncSourceIdentifier : public testing::TestWithParam<IdentifierCase> {};

TEST_P(QNSyncSourceIdentifier, TellsTheKindOfItsPartner) {
  const IdentifierCase& expected = GetParam();

  EXPECT_EQ(QNSyncSource::isUbiquityKeychainIdentifier(expected.identifier), expected.ubiquity);
  EXPECT_EQ(QNSyncSource::isDropboxKeychainIdentifier(expected.identifier), expected.dropbox);
  EXPECT_EQ(QNSyncSource::isWiFiKeychainIdentifier(expected.identifier), expected.wifi);
}

INSTANTIATE_TEST_SUITE_P(
    Identifiers, QNSyncSourceIdentifier,
    testing::Values(IdentifierCase{"", false, false, false},
                    IdentifierCase{"/a/7qxk3m9r1t~com~marlowworks~quillon/b", true, false, false},
                    IdentifierCase{"/5hd41pw29v~com~marlowworks~beta~quillon/", true, false, false},
                    IdentifierCase{"/a/7qxk3m9r1t~com~marlowworks~quillon", false, false, false},
                    IdentifierCase{"/A/7QXK3M9R1T~com~marlowworks~quillon/b", false, false, false},
                    IdentifierCase{"7qxk3m9r1t~com~marlowworks~quillon/b", false, false, false},
                    IdentifierCase{"/home/ada/dropbox/a", false, true, false},
                    IdentifierCase{"/home/ada/dropbox", false, true, false},
                    IdentifierCase{"/home/ada/dropbox (work)/a", false, true, false},
                    IdentifierCase{"/home/ada/dropbox_old/a", false, true, false},
                    IdentifierCase{"/home/ada/dropbox2/a", false, false, false},
                    IdentifierCase{"/home/ada/dropboxes", false, false, false},
                    IdentifierCase{"/home/ada/mydropbox/a", false, false, false},
                    IdentifierCase{"/home/ada/Dropbox/a", false, false, false},
                    IdentifierCase{"dropbox", false, false, false},
                    IdentifierCase{"bonjour://machine", false, false, true},
                    IdentifierCase{"Bonjour://machine", false, false, false},
                    IdentifierCase{" bonjour://machine", false, false, false},
                    IdentifierCase{"bonjour://machine/dropbox/", false, true, true}));

TEST(QNSyncSource, IsForImportOnlyUnderTheFixedName) {
  EXPECT_TRUE(sourceAt(std::string(QNSyncSourceLocationImport))->importOnly());
  EXPECT_FALSE(sourceAt("import")->importOnly());
  EXPECT_FALSE(sourceAt("Imports")->importOnly());
  EXPECT_FALSE(sourceAt(std::nullopt)->importOnly());
}

TEST(QNSyncSource, IsOfTheLocalNetworkByItsOwnIdentifier) {
  EXPECT_TRUE(sourceAt("bonjour://machine")->isWiFiSyncSource());
  EXPECT_FALSE(sourceAt("/bonjour://machine")->isWiFiSyncSource());
  EXPECT_FALSE(sourceAt(std::nullopt)->isWiFiSyncSource());
}

TEST(QNSyncSource, HasFixedNamesForWhatNoPathNames) {
  EXPECT_EQ(QNSyncKeychainIdentifierH9Syncer, "H9SyncTransactionIdentifier");
  EXPECT_EQ(QNSyncKeychainIdentifierDatabaseMigration, "DatabaseMigration");
  EXPECT_EQ(QNSyncKeychainIdentifierWiFiSyncServer, "WiFiSyncServer");
  EXPECT_EQ(QNSyncSourceLocationImport, "Import");
  EXPECT_EQ(QNDatabaseNotificationSyncTransactionFlagKey, "SyncTransaction");
  EXPECT_EQ(QNDatabaseNotificationSyncedKeychainIdentifierKey, "SyncedKeychain");
}

// Titles and icons

constexpr const char* kUbiquityPath = "/users/ada/7qxk3m9r1t~com~marlowworks~quillon/quillon_data";

TEST(QNSyncSource, IsTitledAfterItsKind) {
  const ScopedLanguage english("en");

  EXPECT_EQ(sourceAt("/home/ada/dropbox/a")->localizedTitle(), "Dropbox");
  EXPECT_EQ(sourceAt(kUbiquityPath)->localizedTitle(), "iCloud");
  EXPECT_EQ(sourceAt("bonjour://machine")->localizedTitle(), "WLAN Server");
  EXPECT_EQ(sourceAt("/media/stick")->localizedTitle(), "File Sharing");
  EXPECT_EQ(sourceAt(std::nullopt)->localizedTitle(), "File Sharing");
}

TEST(QNSyncSource, IsTitledInTheUsersLanguage) {
  const std::pair<const char*, const char*> titles[] = {
      {"de", "Dateifreigabe"},       {"es", "Archivos compartidos"},
      {"fr", "Partage de fichiers"}, {"pt", "Compartilhamento de arquivos"},
      {"ja", "ファイル共有"},        {"ar", "مشاركة الملفات"}};
  for (const auto& [tag, title] : titles) {
    const ScopedLanguage language(tag);
    EXPECT_EQ(sourceAt("/media/stick")->localizedTitle(), title) << tag;
    EXPECT_NE(sourceAt("bonjour://machine")->localizedTitle(), "WLAN Server") << tag;
  }
}

TEST(QNSyncSource, TheFirstKindThatFitsGivesTitleAndIcon) {
  const ScopedLanguage english("en");
  const auto network = sourceAt("bonjour://machine/dropbox/");
  const auto cloud = sourceAt(kUbiquityPath + std::string("/dropbox"));
  const auto networkCloud = sourceAt("bonjour://a/5hd41pw29v~com~marlowworks~beta~quillon/");

  EXPECT_EQ(network->localizedTitle(), "Dropbox");
  EXPECT_TRUE(network->isWiFiSyncSource());
  EXPECT_EQ(cloud->localizedTitle(), "Dropbox");
  EXPECT_EQ(networkCloud->localizedTitle(), "iCloud");
  EXPECT_TRUE(isPictureNamed(network->icon(), "dropbox-icon-choice"));
  EXPECT_TRUE(isPictureNamed(networkCloud->icon(), "icloud-icon-choice"));
}

TEST(QNSyncSource, HasTheIconOfItsKind) {
  EXPECT_TRUE(isPictureNamed(sourceAt("/dropbox/a")->icon(), "dropbox-icon-choice"));
  EXPECT_TRUE(isPictureNamed(sourceAt(kUbiquityPath)->icon(), "icloud-icon-choice"));
  EXPECT_TRUE(isPictureNamed(sourceAt("bonjour://machine")->icon(), "wifi-icon-choice"));
  EXPECT_TRUE(isPictureNamed(sourceAt("/media/stick")->icon(), "itunes-icon-choice"));
  EXPECT_TRUE(isPictureNamed(sourceAt(std::nullopt)->icon(), "itunes-icon-choice"));
}

// Identifiers

TEST(QNSyncSource, BringsTheShortNameOfACloudIntoItsPath) {
  const QNScopedUser user(kAda);

  const auto source = sourceAt("iCloud");

  EXPECT_EQ(source->keychainIdentifier(),
            "/users/ada/library/mobile documents/7qxk3m9r1t~com~marlowworks~quillon/quillon_data");
  EXPECT_TRUE(source->legacySyncSource());
  EXPECT_TRUE(QNSyncSource::isUbiquityKeychainIdentifier(*source->keychainIdentifier()));
}

TEST(QNSyncSource, BringsTheShortNameOfDropboxIntoAPathOfTheLibrary) {
  const QNScopedUser user(kAda);

  const auto source = sourceAt("Dropbox");

  EXPECT_EQ(source->keychainIdentifier(), "/home/ada/library/dropbox/quillon.marlowkeychain");
  EXPECT_TRUE(source->legacySyncSource());
  EXPECT_TRUE(QNSyncSource::isDropboxKeychainIdentifier(*source->keychainIdentifier()));
}

TEST(QNSyncSource, IsDropboxEvenIfNobodyKnowsTheLibrary) {
  const QNScopedUser nobody(QNUser{});

  EXPECT_EQ(sourceAt("Dropbox")->keychainIdentifier(), "/dropbox/quillon.marlowkeychain");
}

TEST(QNSyncSource, BringsTheShortNameOfDocumentsIntoTheirPath) {
  const QNScopedUser user(kAda);

  const auto source = sourceAt("Documents");

  EXPECT_EQ(source->keychainIdentifier(), "/home/ada/documents/quillon.marlowkeychain");
  EXPECT_TRUE(source->legacySyncSource());
}

TEST(QNSyncSource, WritesTheSamePathInEveryLanguage) {
  const QNScopedUser user({"ILICA", "/I", "/I"});
  const QNScopedLocale turkish("tr-TR");

  EXPECT_EQ(sourceAt("Dropbox")->keychainIdentifier(), "/i/dropbox/quillon.marlowkeychain");
}

TEST(QNSyncSource, KeepsEveryOtherIdentifierAsItIs) {
  for (const char* const identifier : {"icloud", "ICloud", "dropbox", "Documents/", "", "/A/B"}) {
    const auto source = sourceAt(identifier);
    EXPECT_EQ(source->keychainIdentifier(), identifier);
    EXPECT_FALSE(source->legacySyncSource()) << identifier;
  }
}

TEST(QNSyncSource, StaysALegacySourceWhateverIdentifierFollows) {
  const auto source = sourceAt("Documents");

  source->setKeychainIdentifier("/media/stick");

  EXPECT_EQ(source->keychainIdentifier(), "/media/stick");
  EXPECT_TRUE(source->legacySyncSource());
}

TEST(QNSyncSource, RestoresAnIdentifierWithoutTranslatingIt) {
  QNSyncSource source(QNExisting{4});

  source.restoreKeychainIdentifier("Dropbox", true);

  EXPECT_EQ(source.keychainIdentifier(), "Dropbox");
  EXPECT_TRUE(source.legacySyncSource());
}

TEST(QNSyncSource, DescribesItselfByTypeAndIdentifier) {
  QNSyncSource source(QNExisting{7});
  const std::string base = fmt::format("<QNSyncSource-7 {}>", fmt::ptr(&source));
  EXPECT_EQ(source.description(), base + ": ((null)) '(null)'");

  source.setKeychainType("folder");
  source.setKeychainIdentifier("/media/stick");

  EXPECT_EQ(source.description(), base + ": (folder) '/media/stick'");
}

// Columns

template <class Change>
void expectDirtiesOnce(const Change& change) {
  QNSyncSource source(QNExisting{1});
  ASSERT_FALSE(source.dirtyRow());
  change(source);
  EXPECT_TRUE(source.dirtyRow());
  source.didSave();
  change(source);
  EXPECT_FALSE(source.dirtyRow());
}

TEST(QNSyncSource, IsDirtiedByARealChangeOfAColumn) {
  const Bytes sealed{1, 2, 3};
  expectDirtiesOnce([](auto& source) { source.setKeychainIdentifier("a"); });
  expectDirtiesOnce([](auto& source) { source.setKeychainIdentifier("Documents"); });
  expectDirtiesOnce([](auto& source) { source.restoreKeychainIdentifier(std::nullopt, true); });
  expectDirtiesOnce([](auto& source) { source.setKeychainType("a"); });
  expectDirtiesOnce([](auto& source) { source.setRemoteProfileUUID("a"); });
  expectDirtiesOnce([](auto& source) { source.setRemoteProfileTimestamp(1); });
  expectDirtiesOnce(
      [&](auto& source) { source.setRemoteProfileAttributesEncryptedWithLocal(sealed); });
  expectDirtiesOnce([](auto& source) { source.setLocalProfileUUID("a"); });
  expectDirtiesOnce([](auto& source) { source.setLocalProfileTimestamp(1); });
  expectDirtiesOnce(
      [&](auto& source) { source.setLocalProfileAttributesEncryptedWithRemote(sealed); });
  const auto state = stateOf("a");
  expectDirtiesOnce([&](auto& source) { source.setItemStates({state}); });
  expectDirtiesOnce([&](auto& source) { source.setFolderStates({state}); });
  expectDirtiesOnce([&](auto& source) { source.setAttachmentStates({state}); });
}

TEST(QNSyncSource, GivesItsColumnsBack) {
  QNSyncSource source(initNew);
  EXPECT_EQ(source.keychainIdentifier(), std::nullopt);
  EXPECT_EQ(source.remoteProfileAttributesEncryptedWithLocal(), std::nullopt);
  EXPECT_EQ(source.localProfileAttributesEncryptedWithRemote(), std::nullopt);
  source.setKeychainType("type");
  source.setRemoteProfileUUID("remote");
  source.setRemoteProfileTimestamp(11);
  source.setRemoteProfileAttributesEncryptedWithLocal(Bytes{1});
  source.setLocalProfileUUID("local");
  source.setLocalProfileTimestamp(12);
  source.setLocalProfileAttributesEncryptedWithRemote(Bytes{2});

  EXPECT_EQ(source.keychainType(), "type");
  EXPECT_EQ(source.remoteProfileUUID(), "remote");
  EXPECT_EQ(source.remoteProfileTimestamp(), 11u);
  EXPECT_EQ(source.remoteProfileAttributesEncryptedWithLocal(), Bytes{1});
  EXPECT_EQ(source.localProfileUUID(), "local");
  EXPECT_EQ(source.localProfileTimestamp(), 12u);
  EXPECT_EQ(source.localProfileAttributesEncryptedWithRemote(), Bytes{2});
}

// States

TEST(QNSyncSource, FindsTheStateOfAnObjectAmongThoseOfItsKind) {
  QNSyncSource source(initNew);
  const auto item = stateOf("a"), folder = stateOf("a"), attachment = stateOf("a");
  source.setItemStates({item, stateOf("b")});
  source.setFolderStates({folder});
  source.setAttachmentStates({attachment});

  EXPECT_EQ(source.syncStateForItemUUID("a"), item);
  EXPECT_EQ(source.syncStateForFolderUUID("a"), folder);
  EXPECT_EQ(source.syncStateForAttachmentUUID("a"), attachment);
  EXPECT_EQ(source.syncStateForObjectType(1, "a"), item);
  EXPECT_EQ(source.syncStateForObjectType(2, "a"), folder);
  EXPECT_EQ(source.syncStateForObjectType(3, "a"), attachment);
}

TEST(QNSyncSource, FindsNothingForAnUnknownOrMissingUUID) {
  QNSyncSource source(initNew);
  source.setItemStates({stateOf("a"), stateOf(std::nullopt)});

  EXPECT_EQ(source.syncStateForItemUUID("b"), nullptr);
  EXPECT_EQ(source.syncStateForItemUUID(""), nullptr);
  EXPECT_EQ(source.syncStateForItemUUID(std::nullopt), nullptr);
  EXPECT_EQ(source.syncStateForFolderUUID("a"), nullptr);
  EXPECT_EQ(source.syncStateForAttachmentUUID("a"), nullptr);
}

TEST(QNSyncSource, OfTwoStatesWithOneUUIDTheLaterCounts) {
  QNSyncSource source(initNew);
  const auto first = stateOf("a"), second = stateOf("a");

  source.setItemStates({first, second});

  EXPECT_EQ(source.syncStateForItemUUID("a"), second);
  EXPECT_EQ(source.itemStates().size(), 2u);
}

TEST(QNSyncSource, HoldsAStateThatIsGivenTwiceOnce) {
  QNSyncSource source(initNew);
  const auto first = stateOf("a"), second = stateOf("b");

  source.setItemStates({first, second, first, nullptr});

  EXPECT_THAT(source.itemStates(), ElementsAre(first, second));
}

TEST(QNSyncSource, AnswersFromTheSetThatItWasGivenLast) {
  QNSyncSource source(initNew);
  source.setItemStates({stateOf("a")});
  ASSERT_NE(source.syncStateForItemUUID("a"), nullptr);

  source.setItemStates({stateOf("b")});

  EXPECT_EQ(source.syncStateForItemUUID("a"), nullptr);
  EXPECT_NE(source.syncStateForItemUUID("b"), nullptr);
}

TEST(QNSyncSource, AnswersFromTheIndexThatItOnceMade) {
  QNSyncSource source(initNew);
  const auto state = stateOf("a");
  source.setItemStates({state});
  ASSERT_EQ(source.syncStateForItemUUID("a"), state);

  state->setObjectUUID("b");

  EXPECT_EQ(source.syncStateForItemUUID("a"), state);
  EXPECT_EQ(source.syncStateForItemUUID("b"), nullptr);
}

TEST(QNSyncSource, CopiesTheSetThatItIsGiven) {
  QNSyncSource source(initNew);
  QNSyncSource::States states{stateOf("a")};
  source.setItemStates(states);

  states.clear();

  EXPECT_EQ(source.itemStates().size(), 1u);
}

class QNSyncSourceObjectType : public testing::TestWithParam<int> {};

TEST_P(QNSyncSourceObjectType, OfNoKnownKindGivesNothingAndIsReported) {
  QNSyncSource source(initNew);
  source.setItemStates({stateOf("a")});
  const MRCapturingSink log;

  EXPECT_EQ(source.syncStateForObjectType(GetParam(), "a"), nullptr);

  EXPECT_THAT(log.texts(MRLogKind::assertion), ElementsAre("Unknown object type."));
  EXPECT_EQ(log.records().front().subsystem, DEBUG_DATABASE);
}

INSTANTIATE_TEST_SUITE_P(Unknown, QNSyncSourceObjectType, testing::Values(0, 4, -1));

TEST(QNSyncSource, ReportsNothingForAnUnknownUUID) {
  const QNSyncSource source(initNew);
  const MRCapturingSink log;

  EXPECT_EQ(source.syncStateForObjectType(1, "a"), nullptr);

  EXPECT_THAT(log.records(), IsEmpty());
}

}  // namespace
}  // namespace quillon
