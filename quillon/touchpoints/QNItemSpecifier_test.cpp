#include "quillon/touchpoints/QNItemSpecifier.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "quillon/items/QNItem.h"
#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/vaults/internal/QNTestServerProfile.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

using Items = std::vector<std::shared_ptr<QNItem>>;
using Refs = std::vector<QNItemSpecifier::Ref>;
using ItemsOfProfile = std::pair<std::string, std::vector<std::string>>;

constexpr std::array kClasses = {
    QNDecodableClass{"QNItemSpecifier", QNItemSpecifier::initWithCoder}};

std::shared_ptr<QNTestServerProfile> vaultOf(std::string uuid) {
  auto vault = std::make_shared<QNTestServerProfile>();
  vault->setUuid(sharedString(std::move(uuid)));
  return vault;
}

std::shared_ptr<QNItem> itemOf(std::string uuid, const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = std::make_shared<QNItem>(initNew);
  item->setProfile(vault);
  item->setUuid(sharedString(std::move(uuid)));
  return item;
}

QNItemSpecifier::Ref specifier(std::string_view uuid, std::string_view profileUUID) {
  return QNItemSpecifier::specifierWithItemUUID(uuid, profileUUID);
}

std::string shown(const QNItemSpecifier::Ref& it) {
  return it == nullptr ? "none" : it->debugDescription();
}

QNResult<std::shared_ptr<QNCoding>> unarchived(std::string_view members) {
  return QNKeyedUnarchiver::unarchivedObjectOfClasses(
      kClasses, bytesOf(R"({"quillon-archive":1,"root":{"$class":"QNItemSpecifier")" +
                        std::string(members) + "}}"));
}

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
  EXPECT_EQ(log.records().front().file, "Mac/QNItemSpecifier");
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

TEST(QNItemSpecifier, OfAnItemWithoutAProfileHasAnUnknownOne) {
  QNItem item(QNExisting{1});
  item.setProfileType(kProfileTypeLocalVault);
  item.setUuid(sharedString("item"));

  const auto made = QNItemSpecifier::specifierWithItem(item);

  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->uuid(), "item");
  EXPECT_THAT(made->profileUUID(), StartsWith("unknown"));
  EXPECT_FALSE(made->matchesItem(item));
}

TEST(QNItemSpecifier, OfAnItemWithoutAProfileFindsItIfTheItemKeepsIt) {
  const auto item = std::make_shared<QNItem>(QNExisting{1});
  item->setProfileType(kProfileTypeLocalVault);
  item->setUuid(sharedString("item"));
  const Items items{item};

  EXPECT_THAT(QNItemSpecifier::itemsMatchingSpecifiers(items, Refs{item->itemSpecifier()}),
              ElementsAre(item));
  EXPECT_THAT(QNItemSpecifier::itemsMatchingSpecifiers(
                  items, Refs{QNItemSpecifier::specifierWithItem(*item)}),
              IsEmpty());
  EXPECT_EQ(QNItemSpecifier::stringRepresentationsForItems(items),
            QNItemSpecifier::stringRepresentationsForItems(items));
}

TEST(QNItemSpecifier, MatchesNoItemWithoutAUuid) {
  EXPECT_FALSE(specifier("", "")->matchesItem(QNItem(QNExisting{1})));
}

TEST(QNItemSpecifier, ACopyIsEqualAndKeepsAnUnknownProfile) {
  const auto made = QNItemSpecifier::specifierWithItemUUID("item", std::nullopt);

  const QNItemSpecifier copy = *made;

  EXPECT_EQ(copy, *made);
  EXPECT_EQ(copy.hash(), made->hash());
}

TEST(QNItemSpecifier, MatchesTheItemOfBothIdentifiers) {
  const auto vault = vaultOf("vault");
  const auto item = itemOf("item", vault);

  EXPECT_TRUE(specifier("item", "vault")->matchesItem(*item));
  EXPECT_FALSE(specifier("other", "vault")->matchesItem(*item));
  EXPECT_FALSE(specifier("item", "other")->matchesItem(*item));
}

TEST(QNItemSpecifier, MakesOneForEachItemInTheirOrder) {
  const auto vault = vaultOf("vault");
  const Items items{itemOf("b", vault), nullptr, itemOf("a", vault)};

  const Refs made = QNItemSpecifier::specifiersWithItems(items);

  ASSERT_EQ(made.size(), 2u);
  EXPECT_EQ(*made[0], *specifier("b", "vault"));
  EXPECT_EQ(*made[1], *specifier("a", "vault"));
  EXPECT_THAT(QNItemSpecifier::specifiersWithItems({}), IsEmpty());
}

TEST(QNItemSpecifier, LeavesOutItemsWithoutAUuid) {
  const MRCapturingSink log;
  const Items items{std::make_shared<QNItem>(initNew)};

  EXPECT_THAT(QNItemSpecifier::specifiersWithItems(items), IsEmpty());
  EXPECT_THAT(QNItemSpecifier::stringRepresentationsForItems(items), IsEmpty());
  EXPECT_THAT(QNItemSpecifier::itemsMatchingSpecifiers(items, Refs{specifier("a", "b")}),
              IsEmpty());
}

TEST(QNItemSpecifier, WritesTheTextsOfItemsInTheirOrder) {
  const auto vault = vaultOf("vault");
  const Items items{itemOf("b", vault), itemOf("a", vault)};

  EXPECT_THAT(QNItemSpecifier::stringRepresentationsForItems(items),
              ElementsAre("vault_b", "vault_a"));
}

// Texts

TEST(QNItemSpecifier, ComesBackFromEitherOfItsTexts) {
  const auto made = specifier("item", "vault");

  const auto read =
      QNItemSpecifier::specifierWithStringRepresentation(made->stringRepresentation());
  const auto readCore =
      QNItemSpecifier::specifierWithCoreRepresentation(made->coreStringRepresentation());

  ASSERT_NE(read, nullptr);
  ASSERT_NE(readCore, nullptr);
  EXPECT_EQ(*read, *made);
  EXPECT_EQ(*readCore, *made);
}

struct TextCase {
  const char* text;
  const char* separator;
  const char* expected;
};
class QNItemSpecifierText : public testing::TestWithParam<TextCase> {};

TEST_P(QNItemSpecifierText, IsReadByItsNumberOfParts) {
  const auto& [text, separator, expected] = GetParam();

  EXPECT_EQ(shown(QNItemSpecifier::specifierWithStringRepresentation(text, separator)), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, QNItemSpecifierText,
    testing::Values(TextCase{"", "_", "none"}, TextCase{"item", "_", "none"},
                    TextCase{"vault_item", "_", "itemUUID: item, profileUUID: vault"},
                    TextCase{"_", "_", "itemUUID: , profileUUID: "},
                    TextCase{"any_vault_item", "_", "itemUUID: item, profileUUID: vault"},
                    TextCase{"vault_half_item", "_", "itemUUID: item, profileUUID: half"},
                    TextCase{"vault__item", "_", "itemUUID: item, profileUUID: "},
                    TextCase{"a_b_c_d", "_", "none"}, TextCase{"a____", "_", "none"},
                    TextCase{":vault:item", ":", "itemUUID: item, profileUUID: vault"},
                    TextCase{"vault:item", ":", "itemUUID: item, profileUUID: vault"},
                    TextCase{":vault:it:em", ":", "none"},
                    TextCase{"vault--item", "--", "itemUUID: item, profileUUID: vault"},
                    TextCase{"vault_item", "", "none"}));

// Many at once

TEST(QNItemSpecifier, GivesEachProfileWithItsItemsInTheirOrder) {
  const Refs specifiers{specifier("2", "b"), specifier("1", "a"), specifier("3", "b"), nullptr,
                        specifier("1", "b")};
  std::vector<ItemsOfProfile> seen;
  int completions = 0;

  QNItemSpecifier::iterateOverProfilesInSpecifiers(
      specifiers,
      [&seen](const auto& profile, const auto& items) { seen.emplace_back(profile, items); },
      [&] {
        EXPECT_EQ(seen.size(), 2u);
        ++completions;
      });

  EXPECT_THAT(seen,
              ElementsAre(Pair("a", ElementsAre("1")), Pair("b", ElementsAre("2", "3", "1"))));
  EXPECT_EQ(completions, 1);
}

TEST(QNItemSpecifier, GivesNoProfileOfNoSpecifiersAndStillCompletes) {
  int profiles = 0;
  int completions = 0;
  const auto count = [&profiles](const auto&, const auto&) { ++profiles; };

  QNItemSpecifier::iterateOverProfilesInSpecifiers({}, count);
  QNItemSpecifier::iterateOverProfilesInSpecifiers({}, count, [&completions] { ++completions; });

  EXPECT_EQ(profiles, 0);
  EXPECT_EQ(completions, 1);
}

TEST(QNItemSpecifier, GivesProfilesToNobodyAndStillCompletes) {
  const Refs specifiers{specifier("1", "a")};
  int completions = 0;

  EXPECT_NO_THROW(QNItemSpecifier::iterateOverProfilesInSpecifiers(
      specifiers, {}, [&completions] { ++completions; }));

  EXPECT_EQ(completions, 1);
}

TEST(QNItemSpecifier, FindsItemsInTheOrderOfTheSpecifiers) {
  const auto vault = vaultOf("vault");
  const Items items{itemOf("a", vault), nullptr, itemOf("b", vault), itemOf("c", vault)};
  const Refs specifiers{specifier("c", "vault"), specifier("a", "other"), nullptr,
                        specifier("a", "vault"), specifier("c", "vault")};

  EXPECT_THAT(QNItemSpecifier::itemsMatchingSpecifiers(items, specifiers),
              ElementsAre(items[3], items[0], items[3]));
  EXPECT_THAT(QNItemSpecifier::itemsMatchingSpecifiers(items, {}), IsEmpty());
  EXPECT_THAT(QNItemSpecifier::itemsMatchingSpecifiers({}, specifiers), IsEmpty());
}

TEST(QNItemSpecifier, FindsTheLastOfEqualItems) {
  const auto vault = vaultOf("vault");
  const Items items{itemOf("a", vault), itemOf("a", vault)};

  EXPECT_THAT(QNItemSpecifier::itemsMatchingSpecifiers(items, Refs{specifier("a", "vault")}),
              ElementsAre(items[1]));
}

// Stored forms

TEST(QNItemSpecifier, IsArchivedByBothIdentifiers) {
  QNItemSpecifier made = *specifier("item", "vault");

  const auto archive = QNKeyedArchiver::archivedDataWithRootObject(made);

  ASSERT_TRUE(archive.ok());
  EXPECT_EQ(textOf(archive.value()),
            R"({"quillon-archive":1,"root":{"$class":"QNItemSpecifier","uuid":"item",)"
            R"("profileUUID":"vault"}})");
  const auto read = QNKeyedUnarchiver::unarchivedObjectOfClasses(kClasses, archive.value());
  ASSERT_TRUE(read.ok());
  EXPECT_EQ(dynamic_cast<const QNItemSpecifier&>(*read.value()), made);
}

TEST(QNItemSpecifier, OfAnArchiveWithoutAProfileHasAnUnknownOne) {
  const auto read = unarchived(R"(,"uuid":"item")");

  ASSERT_TRUE(read.ok());
  const auto& made = dynamic_cast<const QNItemSpecifier&>(*read.value());
  EXPECT_EQ(made.uuid(), "item");
  EXPECT_THAT(made.profileUUID(), StartsWith("unknown"));
}

TEST(QNItemSpecifier, IsRefusedOfAnArchiveWithoutAUuid) {
  const MRCapturingSink log;

  EXPECT_FALSE(unarchived(R"(,"profileUUID":"vault")").ok());
  EXPECT_FALSE(unarchived(R"(,"uuid":7,"profileUUID":"vault")").ok());

  EXPECT_THAT(log.texts(MRLogKind::assertion),
              ElementsAre("UUID ((null)) is required", "UUID ((null)) is required"));
}

TEST(QNItemSpecifier, ComesBackFromItsJson) {
  const JsonObject json = specifier("item", "vault")->json();

  EXPECT_EQ(mr_JSONStringWithError(json), R"({"uuid":"item","profileUUID":"vault"})");
  const auto read = QNItemSpecifier::specifierWithJson(Json(json));
  ASSERT_TRUE(read.ok());
  EXPECT_EQ(*read.value(), *specifier("item", "vault"));
}

TEST(QNItemSpecifier, IsRefusedOfJsonThatLacksOneIdentifier) {
  const std::pair<const char*, const char*> cases[] = {
      {R"(["item","vault"])", "a specifier is an object"},
      {R"({"profileUUID":"vault"})", "a specifier without uuid"},
      {R"({"uuid":null,"profileUUID":"vault"})", "a specifier without uuid"},
      {R"({"uuid":"item"})", "a specifier without profileUUID"},
      {R"({"uuid":"item","profileUUID":7})", "a specifier without profileUUID"}};
  const MRCapturingSink log;
  for (const auto& [text, message] : cases) {
    const auto read = QNItemSpecifier::specifierWithJson(boost::json::parse(text));

    ASSERT_FALSE(read.ok()) << text;
    EXPECT_EQ(read.error().domain, MRErrorDomain);
    EXPECT_EQ(read.error().code, 114);
    EXPECT_EQ(read.error().message, message);
  }
  EXPECT_THAT(log.records(), IsEmpty());
}

}  // namespace
}  // namespace quillon
