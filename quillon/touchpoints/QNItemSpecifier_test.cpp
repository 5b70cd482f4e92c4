#include "quillon/touchpoints/QNItemSpecifier.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/items/QNItem.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/vaults/internal/QNTestServerProfile.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

TEST(QNItemSpecifier, NamesAnItemByItsUuidAndItsVaults) {
  const auto item = std::make_shared<QNItem>(initNew);
  const auto vault = std::make_shared<QNTestServerProfile>();
  item->setProfile(vault);

  const auto specifier = QNItemSpecifier::specifierWithItem(*item);

  ASSERT_NE(specifier, nullptr);
  EXPECT_EQ(specifier->uuid(), *item->uuid());
  EXPECT_EQ(specifier->profileUUID(), *vault->uuid());
}

TEST(QNItemSpecifier, IsRefusedForAnItemWithoutAUuid) {
  const MRCapturingSink log;
  const auto item = std::make_shared<QNItem>(initNew);

  const auto specifier = QNItemSpecifier::specifierWithItem(*item);

  EXPECT_EQ(specifier, nullptr);
  EXPECT_THAT(log.texts(MRLogKind::assertion), ElementsAre("UUID ((null)) is required"));
  EXPECT_EQ(log.records().front().subsystem, DEBUG_XPC);
}

TEST(QNItemSpecifier, StandsInForAnAbsentProfileWithAFreshUnknownOne) {
  const auto one = QNItemSpecifier::specifierWithItemUUID("item", std::nullopt);
  const auto other = QNItemSpecifier::specifierWithItemUUID("item", std::nullopt);

  EXPECT_THAT(one->profileUUID(), StartsWith("unknown"));
  EXPECT_EQ(one->profileUUID().size(), std::string("unknown").size() + 36);
  EXPECT_FALSE(*one == *other);
}

TEST(QNItemSpecifier, EqualsOneWithBothIdentifiersEqual) {
  const auto one = QNItemSpecifier::specifierWithItemUUID("item", "vault");

  EXPECT_TRUE(*one == *QNItemSpecifier::specifierWithItemUUID("item", "vault"));
  EXPECT_FALSE(*one == *QNItemSpecifier::specifierWithItemUUID("other", "vault"));
  EXPECT_FALSE(*one == *QNItemSpecifier::specifierWithItemUUID("item", "other"));
}

TEST(QNItemSpecifier, HashesToTheSumOfItsIdentifiersHashes) {
  const std::hash<std::string> hashOf;
  const auto specifier = QNItemSpecifier::specifierWithItemUUID("item", "vault");

  EXPECT_EQ(specifier->hash(), hashOf("item") + hashOf("vault"));
}

TEST(QNItemSpecifier, WritesTheProfileFirst) {
  const auto specifier = QNItemSpecifier::specifierWithItemUUID("item", "vault");

  EXPECT_EQ(specifier->stringRepresentation(), "vault_item");
  EXPECT_EQ(specifier->coreStringRepresentation(), ":vault:item");
  EXPECT_EQ(specifier->debugDescription(), "itemUUID: item, profileUUID: vault");
}

TEST(QNItemSpecifier, TakesAnEmptyIdentifierAsItStands) {
  const auto specifier = QNItemSpecifier::specifierWithItemUUID("", "");

  ASSERT_NE(specifier, nullptr);
  EXPECT_EQ(specifier->stringRepresentation(), "_");
}

}  // namespace
}  // namespace quillon
