#include "quillon/templates/QNCategoryHelper.h"

#include <gtest/gtest.h>

#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

// The table of names is built at its first use in the process: in English, here.
class InEnglish final : public testing::Environment {
  void SetUp() override {
    const QNScopedLanguage english("en");
    ASSERT_EQ(QNCategoryHelper::defaultSingularNameFor("001"), "Login");
  }
};
const auto* const kInEnglish = testing::AddGlobalTestEnvironment(new InEnglish);

struct Row {
  const char* uuid;
  const char* singularName;
  const char* pluralName;
  const char* listIconName;
  const char* detailIconName;
};

const Row kTable[] = {
    {"001", "Login", "Logins", "type-login-list", "type-login-details"},
    {"003", "Secure Note", "Secure Notes", "type-secure-note-list", "type-secure-note-details"},
    {"002", "Credit Card", "Credit Cards", "type-credit-card-list", "type-credit-card-details"},
    {"004", "Identity", "Identities", "type-identity-list", "type-identity-details"},
    {"005", "Password", "Passwords", "type-password-list", "type-password-details"},
    {"109", "Router", "Routers", "type-router-list", "type-router-details"},
    {"110", "Server", "Servers", "type-server-list", "type-server-details"},
    {"111", "Email", "Emails", "type-email-list", "type-email-details"},
    {"006", "Document", "Documents", "type-document-list", "type-document-details"},
    {"112", "API Credential", "API Credentials", "type-api-credential-list",
     "type-api-credential-details"},
    {"113", "Medical Record", "Medical Records", "type-medical-record-list",
     "type-medical-record-details"},
    {"115", "Crypto Wallet", "Crypto Wallets", "type-crypto-wallet-list",
     "type-crypto-wallet-details"},
    {"114", "SSH Key", "SSH Keys", "type-ssh-key-list", "type-ssh-key-details"},
    {"099", "Tombstone", "Tombstones", "type--list", "type--details"},
};

class CategoryNames : public testing::TestWithParam<Row> {};

TEST_P(CategoryNames, AreThoseOfTheTable) {
  const Row& row = GetParam();

  EXPECT_EQ(QNCategoryHelper::defaultSingularNameFor(row.uuid), row.singularName);
  EXPECT_EQ(QNCategoryHelper::defaultPluralNameFor(row.uuid), row.pluralName);
  EXPECT_EQ(QNCategoryHelper::defaultListIconNameFor(row.uuid), row.listIconName);
  EXPECT_EQ(QNCategoryHelper::defaultDetailIconNameFor(row.uuid), row.detailIconName);
}

INSTANTIATE_TEST_SUITE_P(Rows, CategoryNames, testing::ValuesIn(kTable),
                         [](const auto& tested) { return std::string(tested.param.uuid); });

TEST(QNCategoryHelper, GivesTombstonesIconNamesWithADoubleDash) {
  EXPECT_EQ(QNCategoryHelper::defaultListIconNameFor("099"), "type--list");
  EXPECT_EQ(QNCategoryHelper::defaultDetailIconNameFor("099"), "type--details");
}

TEST(QNCategoryHelper, HasNoNamesForCategoriesThatTemplatesDescribe) {
  for (const char* const uuid : {"100", "101", "102", "103", "104", "105", "106", "107", "108"}) {
    EXPECT_EQ(QNCategoryHelper::defaultSingularNameFor(uuid), std::nullopt) << uuid;
    EXPECT_EQ(QNCategoryHelper::defaultPluralNameFor(uuid), std::nullopt) << uuid;
    EXPECT_EQ(QNCategoryHelper::defaultListIconNameFor(uuid), "type-generic-list") << uuid;
    EXPECT_EQ(QNCategoryHelper::defaultDetailIconNameFor(uuid), "type-generic-detail") << uuid;
  }
}

TEST(QNCategoryHelper, HasNoNamesForAnUnknownCategory) {
  EXPECT_EQ(QNCategoryHelper::defaultSingularNameFor("zzz"), std::nullopt);
  EXPECT_EQ(QNCategoryHelper::defaultPluralNameFor("zzz"), std::nullopt);
  EXPECT_EQ(QNCategoryHelper::defaultListIconNameFor("zzz"), "type-generic-list");
  EXPECT_EQ(QNCategoryHelper::defaultDetailIconNameFor("zzz"), "type-generic-detail");
}

TEST(QNCategoryHelper, ReadsNoCategoryAsAllItems) {
  const QNScopedLanguage english("en");

  EXPECT_EQ(QNCategoryHelper::defaultSingularNameFor(std::nullopt), "");
  EXPECT_EQ(QNCategoryHelper::defaultPluralNameFor(std::nullopt), "All Items");
  EXPECT_EQ(QNCategoryHelper::defaultListIconNameFor(std::nullopt), "type-allitems-list");
  EXPECT_EQ(QNCategoryHelper::defaultDetailIconNameFor(std::nullopt), "type-generic-detail");
}

TEST(QNCategoryHelper, LocalizesAllItemsAtEachCall) {
  const QNScopedLanguage german("de");

  EXPECT_EQ(QNCategoryHelper::defaultPluralNameFor(std::nullopt), "Alle Einträge");
}

TEST(QNCategoryHelper, KeepsTheLanguageOfItsFirstUse) {
  const QNScopedLanguage german("de");

  EXPECT_EQ(QNCategoryHelper::defaultSingularNameFor("005"), "Password");
  EXPECT_EQ(QNCategoryHelper::defaultPluralNameFor("005"), "Passwords");
}

TEST(QNCategoryHelper, MakesTheSourceIconNameByBackgroundStyle) {
  EXPECT_EQ(QNCategoryHelper::sourceIconNameWith("type-login-list", 1), "sidebar-login");
  EXPECT_EQ(QNCategoryHelper::sourceIconNameWith("type-login-list", -1), "sidebar-login");
  EXPECT_EQ(QNCategoryHelper::sourceIconNameWith("type-login-list", 0),
            "sidebar-login-light-background");
  EXPECT_EQ(QNCategoryHelper::sourceIconNameWith(std::nullopt, 0), "type-generic-source");
}

TEST(QNCategoryHelper, MakesTheMenuIconName) {
  EXPECT_EQ(QNCategoryHelper::menuIconNameWith("type-login-list"), "type-login-source");
  EXPECT_EQ(QNCategoryHelper::menuIconNameWith(std::nullopt), "type-generic-source");
}

TEST(QNCategoryHelper, MakesTheTouchBarIconName) {
  EXPECT_EQ(QNCategoryHelper::touchbarIconNameWith("type-login-list"), "type-login-dark-color");
  EXPECT_EQ(QNCategoryHelper::touchbarIconNameWith(std::nullopt), "type-allitems-dark-color");
}

TEST(QNCategoryHelper, ReplacesEveryOccurrenceInAnIconName) {
  EXPECT_EQ(QNCategoryHelper::sourceIconNameWith("type-type-list-list", 1), "sidebar-sidebar");
  EXPECT_EQ(QNCategoryHelper::menuIconNameWith("a-list-b-list"), "a-source-b-source");
  EXPECT_EQ(QNCategoryHelper::touchbarIconNameWith("-list-list"), "-dark-color-dark-color");
}

TEST(QNCategoryHelper, LeavesAnIconNameWithoutThosePartsAsItIs) {
  EXPECT_EQ(QNCategoryHelper::sourceIconNameWith("custom", 0), "custom");
  EXPECT_EQ(QNCategoryHelper::menuIconNameWith(""), "");
}

}  // namespace
}  // namespace quillon
