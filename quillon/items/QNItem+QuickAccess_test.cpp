#include <gmock/gmock.h>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/items/internal/QNQuickAccessTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Shortcuts = std::vector<QNQuickAccessShortcut>;

QNSampleItemRef itemWith(std::string_view category, std::string_view sections,
                         const std::shared_ptr<QNGenericProfile>& vault = localVault()) {
  auto item = newItem(vault);
  item->setCategoryUUID(std::string(category));
  item->setDetailsObject(jsonValue(sections), kDetailsSections);
  item->didSave();
  return item;
}

// By category

struct CategoryCase {
  const char* name;
  std::string_view category;
  std::vector<std::string> offered;
};

void PrintTo(const CategoryCase& each, std::ostream* out) {
  *out << each.name;
}

/// One field for each of what is offered, in reverse order and over two sections, and another one.
std::string sectionsWith(const std::vector<std::string>& offered) {
  std::string fields = R"({"k":"string","n":"another","v":"x"})";
  for (auto each = offered.rbegin(); each != offered.rend(); ++each) {
    const std::string identifier = each->substr(0, each->find(' '));
    fields += R"(]},{"fields":[{"k":"string","n":")" + identifier + R"(","v":"x"})";
  }
  return R"([{"fields":[)" + fields + "]}]";
}

class QNItemQuickAccessCategories : public testing::TestWithParam<CategoryCase> {};

TEST_P(QNItemQuickAccessCategories, OfferTheirFieldsInOrder) {
  const auto item = itemWith(GetParam().category, sectionsWith(GetParam().offered));

  EXPECT_THAT(shown(item->quickAccessFields()), ElementsAreArray(GetParam().offered));
}

INSTANTIATE_TEST_SUITE_P(
    , QNItemQuickAccessCategories,
    testing::Values(
        CategoryCase{"Passport",
                     "106",
                     {"fullname 0", "number 0", "expiry_date 0", "issuing_country 0", "sex 0",
                      "nationality 0", "issuing_authority 0", "birthplace 0", "issue_date 0",
                      "birthdate 0", "type 0"}},
        CategoryCase{"SocialSecurityNumber", "108", {"name 0", "number 0"}},
        CategoryCase{"DriverLicense", "103", {"fullname 0", "number 0", "expiry_date 0"}},
        CategoryCase{"Router", "109", {"wireless_password 1", "password 2"}},
        CategoryCase{"BankAccount",
                     "101",
                     {"routingNo 0", "accountNo 0", "swift 0", "iban 0", "telephonePin 0"}},
        CategoryCase{"Server", "110", {"username 2", "password 1", "url 3"}},
        CategoryCase{"Email", "111", {"pop_username 2", "pop_password 1", "pop_server 3"}},
        CategoryCase{"Database", "102", {"username 2", "password 1", "hostname 3"}},
        CategoryCase{"SoftwareLicense", "100", {"reg_name 2", "reg_code 1", "reg_email 3"}},
        CategoryCase{"Rewards", "107", {"membership_no 2", "pin 1", "member_name 3"}},
        CategoryCase{"Membership", "105", {"membership_no 2", "pin 1", "expiry_date 3"}},
        CategoryCase{"Identity", "004", {"email 2", "address 3"}}),
    [](const auto& tested) { return tested.param.name; });

TEST(QNItemQuickAccess, OfARouterBeginsWithTheWirelessPassword) {
  const auto item = itemWith("109", R"([{"fields":[{"k":"concealed","n":"password","v":"a"},)"
                                    R"({"k":"concealed","n":"wireless_password","v":"b"}]}])");

  EXPECT_THAT(shown(item->createQuickAccessFields()),
              ElementsAre("wireless_password 1", "password 2"));
}

TEST(QNItemQuickAccess, GivesTheFieldsOfTheItemItself) {
  const auto item = itemWith("109", R"([{"fields":[{"k":"concealed","n":"password","v":"a"}]}])");

  const auto shortcuts = item->quickAccessFields();

  ASSERT_EQ(shortcuts.size(), 1u);
  EXPECT_EQ(shortcuts[0].field(), item->findFieldWithIdentifier("password"));
}

TEST(QNItemQuickAccess, LeavesOutFieldsWithoutAValueAndFieldsThatAreNotThere) {
  const auto item = itemWith("110", R"([{"fields":[{"k":"string","n":"username"},)"
                                    R"({"k":"string","n":"url","v":"x"}]}])");

  EXPECT_THAT(shown(item->quickAccessFields()), ElementsAre("url 3"));
}

TEST(QNItemQuickAccess, OffersAFieldWhoseTextIsEmpty) {
  constexpr std::string_view kEmpty = R"([{"fields":[{"k":"string","n":"url","v":""}]}])";

  EXPECT_THAT(shown(itemWith("110", kEmpty)->quickAccessFields()), ElementsAre("url 3"));
  EXPECT_THAT(shown(itemWith("112", kEmpty)->quickAccessFields()), ElementsAre("url 2"));
}

TEST(QNItemQuickAccess, OfAnIdentityOffersAnAddressWithItsCountryAlone) {
  const auto item =
      itemWith("004", R"([{"fields":[{"k":"address","n":"address","v":{"country":"de"}}]}])");

  EXPECT_THAT(shown(item->quickAccessFields()), ElementsAre("address 3"));
}

TEST(QNItemQuickAccess, WithoutTheRightToRevealHasNoConcealedFields) {
  constexpr std::string_view kServer = R"([{"fields":[{"k":"string","n":"username","v":"a"},)"
                                       R"({"k":"concealed","n":"password","v":"b"},)"
                                       R"({"k":"string","n":"url","v":"c"}]}])";

  EXPECT_THAT(shown(itemWith("110", kServer, vaultWithoutRevealing())->quickAccessFields()),
              ElementsAre("username 2", "url 3"));
  EXPECT_THAT(shown(itemWith("110", kServer, accountVault())->quickAccessFields()),
              ElementsAre("username 2", "password 1", "url 3"));
}

TEST(QNItemQuickAccess, WithoutAVaultHasNoConcealedFields) {
  const auto item = std::make_shared<QNSampleItem>(initNew);
  item->setCategoryUUID("109");
  item->setDetailsObject(jsonValue(R"([{"fields":[{"k":"concealed","n":"password","v":"a"}]}])"),
                         kDetailsSections);

  EXPECT_THAT(shown(item->quickAccessFields()), IsEmpty());
}

TEST(QNItemQuickAccess, OfALockedVaultsItemIsEmpty) {
  const auto vault = accountVault();
  const auto row = itemWith("110", R"([{"fields":[{"k":"string","n":"url","v":"c"}]}])", vault);
  save(*row);
  const auto item = opened(*row, vault);
  vault->setLocked(true);
  const MRCapturingSink sink;

  EXPECT_THAT(shown(item->quickAccessFields()), IsEmpty());
  vault->setLocked(false);

  EXPECT_THAT(shown(item->quickAccessFields()), ElementsAre("url 3"));
}

// The first section

constexpr std::string_view kFive =
    R"([{"fields":[{"k":"string","n":"a","v":"1"},{"k":"concealed","n":"b","v":"2"},)"
    R"({"k":"string","n":"c","v":"3"},{"k":"date","n":"d","v":4},{"k":"string","n":"e","v":"5"}]},)"
    R"({"fields":[{"k":"string","n":"f","v":"6"}]}])";

TEST(QNItemQuickAccess, OfAnyOtherCategoryIsTheFirstSection) {
  const std::vector<std::string> expected = {"a 2", "b 1", "c 3", "d 0", "e 0"};

  EXPECT_EQ(shown(itemWith("112", kFive)->quickAccessFields()), expected);
  EXPECT_EQ(shown(itemWith("777", kFive)->createQuickAccessFields()), expected);
  const auto uncategorised = itemWith("", kFive);
  uncategorised->setCategoryUUID(std::nullopt);
  EXPECT_EQ(shown(uncategorised->quickAccessFields()), expected);
}

TEST(QNItemQuickAccess, OfTheFirstSectionCanBeAskedForInAnyCategory) {
  EXPECT_THAT(shown(itemWith("109", kFive)->createQuickAccessFieldsFromFirstSection()),
              ElementsAre("a 2", "b 1", "c 3", "d 0", "e 0"));
}

TEST(QNItemQuickAccess, OfTheFirstSectionCountsFieldsWithoutAValue) {
  const auto item =
      itemWith("112", R"([{"fields":[{"k":"string","n":"a"},{"k":"string","n":"b","v":"2"},)"
                      R"({"k":"date","n":"c"},{"k":"string","n":"d","v":"4"}]}])");

  EXPECT_THAT(shown(item->quickAccessFields()), ElementsAre("b 1", "d 0"));
}

TEST(QNItemQuickAccess, OfTheFirstSectionCountsFieldsThatMayNotBeRevealed) {
  EXPECT_THAT(shown(itemWith("112", kFive, vaultWithoutRevealing())->quickAccessFields()),
              ElementsAre("a 2", "c 3", "d 0", "e 0"));
}

TEST(QNItemQuickAccess, OfAnItemWithoutSectionsIsEmpty) {
  EXPECT_THAT(shown(itemWith("112", "[]")->quickAccessFields()), IsEmpty());
  EXPECT_THAT(shown(itemWith("112", R"([{"name":"s"}])")->quickAccessFields()), IsEmpty());
}

// One field

TEST(QNItemQuickAccess, AddsOneFieldBehindWhatIsThere) {
  const auto item = itemWith("112", kFive);
  Shortcuts shortcuts;

  item->addFieldWithIdentifier("f", 7, shortcuts);
  item->addFieldWithIdentifier("unheard of", 8, shortcuts);
  item->addFieldWithIdentifier("a", 9, shortcuts);

  EXPECT_THAT(shown(shortcuts), ElementsAre("f 7", "a 9"));
}

TEST(QNItemQuickAccess, AddsTheFirstOneTimePasswordAlone) {
  const auto item =
      itemWith("112", R"([{"fields":[{"k":"concealed","n":"pin","v":"1"}]},{"fields":[)"
                      R"({"k":"concealed","n":"TOTP_a","v":"otpauth://a"},)"
                      R"({"k":"concealed","n":"TOTP_b","v":"otpauth://b"}]}])");
  Shortcuts shortcuts;

  item->addOneTimePasswordFieldRequestingCopyKey(3, shortcuts);

  ASSERT_EQ(shortcuts.size(), 1u);
  EXPECT_EQ(shortcuts[0].field(), item->fieldSectionAtIndex(1)->fieldAtIndex(0));
  EXPECT_EQ(shortcuts[0].keyCommand(), 3u);
}

TEST(QNItemQuickAccess, AddsTheFirstOneTimePasswordWithoutAValueAndWithoutTheRightToReveal) {
  const auto item = itemWith(
      "112",
      R"([{"fields":[{"k":"concealed","n":"TOTP_a"},{"k":"concealed","n":"TOTP_b","v":"x"}]}])",
      vaultWithoutRevealing());
  Shortcuts shortcuts;

  item->addOneTimePasswordFieldRequestingCopyKey(3, shortcuts);

  ASSERT_EQ(shortcuts.size(), 1u);
  EXPECT_EQ(shortcuts[0].field(), item->fieldSectionAtIndex(0)->fieldAtIndex(0));
}

TEST(QNItemQuickAccess, AddsNoOneTimePasswordWhereThereIsNone) {
  Shortcuts shortcuts;

  itemWith("112", kFive)->addOneTimePasswordFieldRequestingCopyKey(3, shortcuts);

  EXPECT_THAT(shown(shortcuts), IsEmpty());
}

}  // namespace
}  // namespace quillon
