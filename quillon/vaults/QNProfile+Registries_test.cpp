#include <atomic>
#include <thread>

#include "quillon/items/QNItem.h"
#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/templates/QNCategory.h"
#include "quillon/templates/QNCategoryHelper.h"
#include "quillon/templates/internal/QNTestCategories.h"
#include "quillon/vaults/internal/QNTestServerProfile.h"
#include "quillon/vaults/internal/QNVaultTesting.h"

namespace quillon {
namespace {

std::shared_ptr<QNProfile> emptyVault() {
  return QNProfile::initExistingWithID(5);
}

// Tags

TEST(QNProfileRegistries, FindsATagByIdAndByText) {
  const auto vault = emptyVault();

  vault->addTag("home", 4);

  EXPECT_EQ(vault->tagWithId(4), "home");
  EXPECT_EQ(vault->tagId("home"), 4u);
  EXPECT_EQ(vault->allTags(), std::set<std::string>{"home"});
}

TEST(QNProfileRegistries, AnAbsentOrUnknownTagHasNoId) {
  const auto vault = emptyVault();
  vault->addTag("home", 4);

  EXPECT_EQ(vault->tagId(std::nullopt), 0u);
  EXPECT_EQ(vault->tagId("work"), 0u);
  EXPECT_EQ(vault->tagWithId(5), std::nullopt);
}

TEST(QNProfileRegistries, AddingATagLeavesOlderEntriesInTheOtherMap) {
  const auto vault = emptyVault();
  vault->addTag("home", 4);

  vault->addTag("work", 4);
  vault->addTag("work", 5);

  EXPECT_EQ(vault->tagWithId(4), "work");
  EXPECT_EQ(vault->tagWithId(5), "work");
  EXPECT_EQ(vault->tagId("home"), 4u);
  EXPECT_EQ(vault->tagId("work"), 5u);
  EXPECT_EQ(vault->allTags(), std::set<std::string>{"work"});
}

TEST(QNProfileRegistries, RemovesATagFromBothMaps) {
  const auto vault = emptyVault();
  vault->addTag("home", 4);
  vault->addTag("work", 5);

  vault->removeTag("home");
  vault->removeTag("unknown");
  vault->removeTag(std::nullopt);

  EXPECT_EQ(vault->tagWithId(4), std::nullopt);
  EXPECT_EQ(vault->tagId("home"), 0u);
  EXPECT_EQ(vault->allTags(), std::set<std::string>{"work"});
}

TEST(QNProfileRegistries, TagsMayBeAddedAndAskedOnTwoThreads) {
  const auto vault = emptyVault();
  const auto add = [&vault](std::uint64_t first) {
    for (std::uint64_t id = first; id < first + 200; ++id) {
      vault->addTag("tag " + std::to_string(id), id);
      ASSERT_EQ(vault->tagId(*vault->tagWithId(id)), id);
    }
  };

  std::thread other(add, 1000);
  add(1);
  other.join();

  EXPECT_EQ(vault->allTags().size(), 400u);
}

// Categories

std::shared_ptr<QNGenericCategory> categoryNamed(const std::string& uuid, std::uint64_t order) {
  auto category = std::make_shared<QNCategory>(initNew);
  category->setUuid(uuid);
  category->setDisplayOrder(order);
  return category;
}

std::vector<std::string> uuidsOf(
    const std::vector<std::shared_ptr<QNGenericCategory>>& categories) {
  std::vector<std::string> uuids;
  for (const auto& category : categories) uuids.push_back(category->uuid().value_or("none"));
  return uuids;
}

TEST(QNProfileRegistries, FindsACategoryByIdentifier) {
  const auto vault = emptyVault();
  const auto category = categoryNamed("001", 1);

  vault->addCategory(category);

  EXPECT_EQ(vault->categoryWithUUID("001"), category);
  EXPECT_EQ(vault->categoryWithUUID("002"), nullptr);
  EXPECT_EQ(vault->categoryWithUUID(std::nullopt), nullptr);
}

TEST(QNProfileRegistries, ACategoryTakesThePlaceOfOneWithItsIdentifier) {
  const auto vault = emptyVault();
  const auto newer = categoryNamed("001", 2);

  vault->addCategory(categoryNamed("001", 1));
  vault->addCategory(newer);

  EXPECT_EQ(vault->allCategories(), std::vector<std::shared_ptr<QNGenericCategory>>{newer});
}

TEST(QNProfileRegistries, RegistersNoCategoryWithoutAnIdentifier) {
  const auto vault = emptyVault();

  vault->addCategory(nullptr);
  vault->addCategory(std::make_shared<QNCategory>(initNew));

  EXPECT_TRUE(vault->allCategories().empty());
}

TEST(QNProfileRegistries, DisplaysCategoriesInTheirOrderWithoutTombstones) {
  const auto vault = emptyVault();
  for (const auto& [uuid, order] : {std::pair{"001", 30}, {"099", 1}, {"101", 20}, {"110", 20}}) {
    vault->addCategory(categoryNamed(uuid, static_cast<std::uint64_t>(order)));
  }

  EXPECT_EQ(uuidsOf(vault->allDisplayedCategories()),
            (std::vector<std::string>{"101", "110", "001"}));
  EXPECT_EQ(vault->allCategories().size(), 4u);
}

TEST(QNProfileRegistries, RemovesAllCategories) {
  const auto vault = emptyVault();
  vault->addCategory(categoryNamed("001", 1));

  vault->removeAllCategories();

  EXPECT_TRUE(vault->allCategories().empty());
}

TEST(QNProfileRegistries, MakesASystemCategoryFromTheDefaults) {
  const auto vault = emptyVault();

  const auto made = std::dynamic_pointer_cast<QNCategory>(vault->newSystemCategoryWithUUID("001"));

  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->profile(), vault);
  EXPECT_EQ(made->uuid(), "001");
  EXPECT_EQ(made->singularName(), QNCategoryHelper::defaultSingularNameFor("001"));
  EXPECT_EQ(made->pluralName(), QNCategoryHelper::defaultPluralNameFor("001"));
  EXPECT_EQ(made->listIconName(), "type-login-list");
  EXPECT_EQ(made->detailIconName(), "type-login-details");
  EXPECT_EQ(made->displayOrder(), 10000u);
  EXPECT_TRUE(vault->allCategories().empty());
}

constexpr std::string_view kMachine =
    R"({"uuid":"110","icons":{"list":"type-machine-list"},"contents":[],)"
    R"("localizedStrings":{"__title__":"Machine","__pluralTitle__":"Machines"}})";

TEST(QNProfileRegistries, MakesACategoryFromATemplate) {
  const auto vault = emptyVault();

  const auto made =
      std::dynamic_pointer_cast<QNCategory>(vault->newCategoryFromTemplate(templateOf(kMachine)));

  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->profile(), vault);
  EXPECT_EQ(made->uuid(), "110");
  EXPECT_EQ(made->singularName(), "Machine");
  EXPECT_EQ(made->pluralName(), "Machines");
  EXPECT_EQ(made->listIconName(), "type-machine-list");
  EXPECT_EQ(made->detailIconName(), std::nullopt);
  EXPECT_EQ(made->displayOrder(), 95000u);
  EXPECT_TRUE(vault->allCategories().empty());
}

TEST(QNProfileRegistries, MakesNoCategoryFromAnAbsentTemplate) {
  const QNScopedTemplates none;

  EXPECT_EQ(emptyVault()->newCategoryFromTemplate(nullptr), nullptr);
  EXPECT_EQ(emptyVault()->newLegacyCategoryWithUUID("110"), nullptr);
  EXPECT_EQ(emptyVault()->newLegacyCategoryWithUUID(std::nullopt), nullptr);
}

TEST(QNProfileRegistries, MakesALegacyCategoryFromTheSharedTemplate) {
  const QNScopedTemplates registered{kMachine};

  const auto made = emptyVault()->newLegacyCategoryWithUUID("110");

  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->singularName(), "Machine");
}

TEST(QNProfileRegistries, TheSupportedCategoriesAreFixed) {
  const std::set<std::string, std::less<>> supported = {"001", "002", "003", "004", "005", "099",
                                                        "100", "101", "102", "103", "104", "105",
                                                        "106", "107", "108", "109", "110", "111"};

  EXPECT_EQ(QNProfileSupportedCategoryUUIDs(), supported);
}

class QNProfileCategorySupport
    : public testing::TestWithParam<std::pair<std::optional<std::string>, bool>> {};

TEST_P(QNProfileCategorySupport, IsMembershipInTheSet) {
  EXPECT_EQ(emptyVault()->supportsCategoryUUID(GetParam().first), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Identifiers, QNProfileCategorySupport,
                         testing::Values(std::pair{"001", true}, std::pair{"099", true},
                                         std::pair{"111", true}, std::pair{"006", false},
                                         std::pair{"112", false}, std::pair{"0??", false},
                                         std::pair{"", false}, std::pair{std::nullopt, false}));

TEST(QNProfileRegistries, MayBeFilledAndEmptiedWhileAnotherThreadListsAndArchives) {
  const auto vault = emptyVault();
  vault->addTag("kept", 1);
  vault->addCategory(categoryNamed("kept", 1));
  std::atomic<bool> done{false};
  std::thread other([&vault, &done] {
    for (std::uint64_t round = 0; round < 300; ++round) {
      const std::string name = std::to_string(round % 7);
      vault->addTag(name, 100 + round);
      vault->addCategory(categoryNamed(name, round));
      vault->removeTag(name);
      if (round % 10 == 0) vault->removeAllCategories();
      vault->addCategory(categoryNamed("kept", 1));
    }
    done = true;
  });

  std::size_t rounds = 0;
  do {
    ++rounds;
    EXPECT_EQ(vault->tagId("kept"), 1u);
    EXPECT_EQ(vault->allTags().count("kept"), 1u);
    for (const auto& category : vault->allDisplayedCategories()) EXPECT_NE(category, nullptr);
    EXPECT_TRUE(QNKeyedArchiver::archivedDataWithRootObject(*vault).ok());
  } while (!done);
  other.join();

  EXPECT_GT(rounds, 0u);
  EXPECT_EQ(vault->tagWithId(1), "kept");
  EXPECT_EQ(vault->allTags(), std::set<std::string>{"kept"});
  EXPECT_NE(vault->categoryWithUUID("kept"), nullptr);
}

// Items

struct ItemCase {
  const char* uuid;
  const char* className;
};
class QNProfileItems : public testing::TestWithParam<ItemCase> {};

TEST_P(QNProfileItems, NewOnesAreOfTheCategorysClass) {
  const auto item = emptyVault()->newItemForCategoryUUID(GetParam().uuid);

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->className(), GetParam().className);
  EXPECT_EQ(item->categoryUUID(), GetParam().uuid);
  EXPECT_EQ(item->profile(), nullptr);
  EXPECT_FALSE(item->hasOid());
  EXPECT_TRUE(item->loaded());
}

TEST_P(QNProfileItems, ExistingOnesAreShellsOfTheCategorysClass) {
  const auto item = emptyVault()->existingItemWithID(42, GetParam().uuid);

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->className(), GetParam().className);
  EXPECT_EQ(item->categoryUUID(), GetParam().uuid);
  EXPECT_EQ(item->oid(), 42u);
  EXPECT_FALSE(item->loaded());
}

INSTANTIATE_TEST_SUITE_P(
    Categories, QNProfileItems,
    testing::Values(ItemCase{"001", "QNLogin"}, ItemCase{"002", "QNCreditCard"},
                    ItemCase{"003", "QNSecureNote"}, ItemCase{"004", "QNIdentity"},
                    ItemCase{"005", "QNPassword"}, ItemCase{"006", "H9Document"},
                    ItemCase{"099", "QNTombstone"}, ItemCase{"113", "QNMedicalRecord"},
                    ItemCase{"115", "QNCryptoWallet"}, ItemCase{"800", "QNPrivacyComLogin"}));

TEST(QNProfileRegistries, MakesNoItemForAnAbsentCategory) {
  const MRCapturingSink sink;

  EXPECT_EQ(emptyVault()->newItemForCategoryUUID(std::nullopt), nullptr);
  EXPECT_EQ(emptyVault()->existingItemWithID(42, std::nullopt), nullptr);
  EXPECT_EQ(emptyVault()->itemClassForCategoryUUID(std::nullopt), nullptr);
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNProfileRegistries, AnItemOfAnUnknownCategoryKeepsIt) {
  const MRCapturingSink sink;

  const auto made = emptyVault()->newItemForCategoryUUID("zzz");
  const auto existing = emptyVault()->existingItemWithID(42, "zzz");

  EXPECT_EQ(made->className(), "QNUnknownItem");
  EXPECT_EQ(made->categoryUUID(), "zzz");
  EXPECT_EQ(existing->className(), "QNUnknownItem");
  EXPECT_EQ(existing->categoryUUID(), "zzz");
  const std::string report =
      "Failed to find subclass for categoryUUID 'zzz', will use QNUnknownItem";
  EXPECT_EQ(sink.texts(MRLogKind::error), (std::vector<std::string>{report, report}));
}

TEST(QNProfileRegistries, CardsAndIdentitiesAreNotMadeWithoutATemplateThoughExistingOnesAre) {
  const QNScopedTemplates none;
  const MRCapturingSink sink;

  EXPECT_EQ(emptyVault()->newItemForCategoryUUID("002"), nullptr);
  EXPECT_EQ(emptyVault()->newItemForCategoryUUID("004"), nullptr);

  EXPECT_EQ(sink.texts(MRLogKind::assertion),
            (std::vector<std::string>{"Failed to obtain Credit Card template",
                                      "Failed to obtain Identity template"}));
  EXPECT_NE(emptyVault()->existingItemWithID(42, "002"), nullptr);
  EXPECT_NE(emptyVault()->existingItemWithID(42, "004"), nullptr);
}

TEST(QNProfileRegistries, RecordsAndWalletsWithoutATemplateHaveNoSections) {
  const QNScopedTemplates none;
  for (const std::string_view uuid : {"113", "115"}) {
    const MRCapturingSink sink;

    const auto made = emptyVault()->newItemForCategoryUUID(uuid);

    ASSERT_NE(made, nullptr) << uuid;
    EXPECT_EQ(made->categoryUUID(), uuid);
    EXPECT_EQ(made->numberOfFieldSections(), 0u);
    EXPECT_TRUE(sink.records().empty());
  }
}

TEST(QNProfileRegistries, ACategoryWithATemplateHasTemplateItems) {
  const QNScopedTemplates registered{kMachine};

  const auto made = emptyVault()->newItemForCategoryUUID("110");
  const auto existing = emptyVault()->existingItemWithID(42, "110");

  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->className(), "QNTemplateItem");
  EXPECT_EQ(made->categoryUUID(), "110");
  EXPECT_EQ(existing->className(), "QNTemplateItem");
  EXPECT_EQ(existing->categoryUUID(), "110");
}

TEST(QNProfileRegistries, TemplatesAreThoseOfTheProcess) {
  const QNScopedTemplates registered{kMachine};
  const auto shared = QNTemplateManager::sharedManager().templates();
  ASSERT_EQ(shared.size(), 1u);

  EXPECT_EQ(emptyVault()->templateForCategoryUUID("110"), shared.front());
  EXPECT_EQ(emptyVault()->templateForCategoryUUID("111"), nullptr);
  EXPECT_EQ(emptyVault()->allTemplates(), shared);
}

}  // namespace
}  // namespace quillon
