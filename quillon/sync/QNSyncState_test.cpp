#include "quillon/sync/QNSyncState.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/sync/QNSyncSource.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

std::vector<std::string> keysOf(const JsonObject& dictionary) {
  std::vector<std::string> keys;
  for (const auto& member : dictionary) keys.emplace_back(member.key());
  return keys;
}

QNSyncState fullState() {
  QNSyncState state;
  state.setObjectType(1);
  state.setObjectID(5);
  state.setObjectUUID("uuid");
  state.setSyncedAt(1'700'000'000);
  state.setSourceTimestamp(1'720'051'200);
  state.setLocalTimestamp(1'720'051'201);
  return state;
}

const std::vector<std::string> kKeysWithoutSource = {"objectID",
                                                     "objectUUID",
                                                     "objectType",
                                                     "syncedAt",
                                                     "sourceTimestamp",
                                                     "localTimestamp",
                                                     "sourceTimestamp_formatted",
                                                     "localTimestamp_formatted"};

TEST(QNSyncState, GivesItsValuesBack) {
  const auto source = std::make_shared<QNSyncSource>(initNew);
  QNSyncState state = fullState();
  state.setSource(source);

  EXPECT_EQ(state.objectType(), 1);
  EXPECT_EQ(state.objectID(), 5u);
  EXPECT_EQ(state.objectUUID(), "uuid");
  EXPECT_EQ(state.syncedAt(), 1'700'000'000u);
  EXPECT_EQ(state.sourceTimestamp(), 1'720'051'200u);
  EXPECT_EQ(state.localTimestamp(), 1'720'051'201u);
  EXPECT_EQ(state.source(), source);
}

TEST(QNSyncState, DoesNotKeepItsSourceAlive) {
  auto source = std::make_shared<QNSyncSource>(initNew);
  QNSyncState state;
  state.setSource(source);

  source.reset();

  EXPECT_EQ(state.source(), nullptr);
  EXPECT_THAT(keysOf(state.asDictionary()), ElementsAreArray(kKeysWithoutSource));
}

TEST(QNSyncState, DescribesItselfByNumbers) {
  const auto source = std::make_shared<QNSyncSource>(QNExisting{3});
  QNSyncState state = fullState();
  const std::string base = fmt::format("<QNSyncState: {}>", fmt::ptr(&state));
  const std::string rest =
      ", itemOid=5, syncedAt=1700000000, sourceTimestamp=1720051200, txTimestamp=1720051201";
  EXPECT_EQ(state.description(), base + " sourceOid=0" + rest);

  state.setSource(source);

  EXPECT_EQ(state.description(), base + " sourceOid=3" + rest);
}

TEST(QNSyncState, DescribesNumbersWithASign) {
  QNSyncState state;
  state.setObjectID(std::numeric_limits<std::uint64_t>::max());

  EXPECT_NE(state.description().find("itemOid=-1,"), std::string::npos);
}

TEST(QNSyncState, WithoutASourceHasEightKeys) {
  const JsonObject dictionary = fullState().asDictionary();

  EXPECT_THAT(keysOf(dictionary), ElementsAreArray(kKeysWithoutSource));
  EXPECT_EQ(dictionary.at("objectID"), 5u);
  EXPECT_EQ(dictionary.at("objectUUID"), "uuid");
  EXPECT_EQ(dictionary.at("objectType"), 1);
  EXPECT_EQ(dictionary.at("syncedAt"), 1'700'000'000u);
  EXPECT_EQ(dictionary.at("sourceTimestamp"), 1'720'051'200u);
  EXPECT_EQ(dictionary.at("localTimestamp"), 1'720'051'201u);
  EXPECT_EQ(dictionary.at("sourceTimestamp_formatted"), "2024-07-04 00:00:00 +0000");
  EXPECT_EQ(dictionary.at("localTimestamp_formatted"), "2024-07-04 00:00:01 +0000");
}

TEST(QNSyncState, ShowsAMissingUUIDAsAnEmptyText) {
  EXPECT_EQ(QNSyncState().asDictionary().at("objectUUID"), "");
}

TEST(QNSyncState, ShowsAllOfItsSource) {
  const auto source = std::make_shared<QNSyncSource>(QNExisting{3});
  source->setKeychainIdentifier("/media/stick");
  source->setKeychainType("folder");
  source->setRemoteProfileUUID("remote");
  source->setRemoteProfileTimestamp(1'720'051'200);
  source->setLocalProfileUUID("local");
  source->setLocalProfileTimestamp(60);
  QNSyncState state = fullState();
  state.setSource(source);

  const JsonObject dictionary = state.asDictionary();

  EXPECT_EQ(dictionary.size(), 19u);
  EXPECT_EQ(dictionary.at("locationType"), "/media/stick");
  EXPECT_EQ(dictionary.at("keychainType"), "folder");
  EXPECT_EQ(dictionary.at("source_id"), 3u);
  EXPECT_EQ(dictionary.at("source_keychainType"), "folder");
  EXPECT_EQ(dictionary.at("source_locationType"), "/media/stick");
  EXPECT_EQ(dictionary.at("remoteProfileUUID"), "remote");
  EXPECT_EQ(dictionary.at("remoteProfileTimestamp"), 1'720'051'200u);
  EXPECT_EQ(dictionary.at("remoteProfileTimestamp_formatted"), "2024-07-04 00:00:00 +0000");
  EXPECT_EQ(dictionary.at("localProfileUUID"), "local");
  EXPECT_EQ(dictionary.at("localProfileTimestamp"), 60u);
  EXPECT_EQ(dictionary.at("localProfileTimestamp_formatted"), "1970-01-01 00:01:00 +0000");
}

TEST(QNSyncState, LeavesOutATypeThatItsSourceDoesNotHave) {
  const auto source = std::make_shared<QNSyncSource>(initNew);
  source->setKeychainIdentifier("/media/stick");
  QNSyncState state;
  state.setSource(source);

  const JsonObject dictionary = state.asDictionary();

  EXPECT_FALSE(dictionary.contains("keychainType"));
  EXPECT_FALSE(dictionary.contains("source_keychainType"));
  EXPECT_EQ(dictionary.at("locationType"), "/media/stick");
  EXPECT_EQ(dictionary.size(), 17u);
}

TEST(QNSyncState, LeavesOutAnIdentifierThatItsSourceDoesNotHave) {
  const auto source = std::make_shared<QNSyncSource>(initNew);
  source->setKeychainType("folder");
  QNSyncState state;
  state.setSource(source);

  const JsonObject dictionary = state.asDictionary();

  EXPECT_FALSE(dictionary.contains("locationType"));
  EXPECT_FALSE(dictionary.contains("source_locationType"));
  EXPECT_EQ(dictionary.at("source_keychainType"), "folder");
}

TEST(QNSyncState, ShowsMissingProfilesOfItsSourceAsEmptyTexts) {
  const auto source = std::make_shared<QNSyncSource>(initNew);
  QNSyncState state;
  state.setSource(source);

  const JsonObject dictionary = state.asDictionary();

  EXPECT_EQ(dictionary.at("remoteProfileUUID"), "");
  EXPECT_EQ(dictionary.at("localProfileUUID"), "");
  EXPECT_EQ(dictionary.at("remoteProfileTimestamp"), 0u);
  EXPECT_EQ(dictionary.size(), 15u);
}

}  // namespace
}  // namespace quillon
