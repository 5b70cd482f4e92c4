#include "cli/fields/QNCategoryNames.h"

#include <gmock/gmock.h>

#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

// "Bank Account" is "bank-account".
std::string kebab(std::string_view title) {
  std::string name;
  for (const char c : title) name += c == ' ' ? '-' : c;
  return foldedForSearch(name);
}

TEST(QNCategoryNames, AreTheEnglishTitlesInSmallLettersWithDashes) {
  QNLocalization::sharedLocalization().setLanguage("en");

  for (const std::string& uuid : knownCategoryUUIDs()) {
    EXPECT_EQ(nameOfCategory(uuid), kebab(titleOfCategory(uuid))) << uuid;
    EXPECT_NE(pluralTitleOfCategory(uuid), uuid);
  }
}

TEST(QNCategoryNames, FindTheirCategoryAsUuidsAndTitlesDo) {
  QNLocalization::sharedLocalization().setLanguage("en");

  for (const std::string& uuid : knownCategoryUUIDs()) {
    EXPECT_EQ(categoryNamed(uuid), uuid);
    EXPECT_EQ(categoryNamed(nameOfCategory(uuid)), uuid);
    EXPECT_EQ(categoryNamed(titleOfCategory(uuid)), uuid);
    EXPECT_EQ(categoryNamed(pluralTitleOfCategory(uuid)), uuid);
  }
  EXPECT_EQ(categoryNamed("BANK-account"), "101");
  EXPECT_EQ(categoryNamed("bank ACCOUNT"), "101");
}

TEST(QNCategoryNames, OfNoCategoryFindNothing) {
  for (const std::string_view text : {"", "1", "0011", "099", "tombstone", "bank"}) {
    EXPECT_EQ(categoryNamed(text), std::nullopt) << text;
  }
  EXPECT_EQ(nameOfCategory("777"), "");
  EXPECT_EQ(titleOfCategory("777"), "777");
}

TEST(QNCategoryNames, AreOfCategoriesThatALocalVaultTakesOrNot) {
  for (const std::string_view uuid : {"001", "002", "003", "004", "005", "100", "111"}) {
    EXPECT_TRUE(isAvailable(uuid)) << uuid;
  }
  for (const std::string_view uuid : {"", "006", "099", "112", "113", "114", "115", "800"}) {
    EXPECT_FALSE(isAvailable(uuid)) << uuid;
  }
}

TEST(QNCategoryNames, BeginWithTheUsualCategories) {
  const auto uuids = knownCategoryUUIDs();

  ASSERT_EQ(uuids.size(), 22u);
  EXPECT_EQ(std::vector<std::string>(uuids.begin(), uuids.begin() + 6),
            (std::vector<std::string>{"001", "003", "002", "004", "005", "006"}));
}

}  // namespace
}  // namespace quillon
