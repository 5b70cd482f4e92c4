#include "quillon/platform/text/QNLocalization.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/files/QNResources.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

const std::vector<std::string> kLanguages{"en", "de", "fr", "es", "ja", "pt", "ar"};

QNLocalization::Table tableOf(const std::string& language) {
  const auto path = resourceFolder() / "Locales" / (language + ".lproj") / "Localizable.strings";
  const auto text = fileContent(path, 1 << 20);
  EXPECT_TRUE(text.has_value()) << path;
  return QNLocalization::parseStrings(text.value_or(""), language);
}

// The language at first use is that of the locale then, so it is noted before any test runs.
class FirstLanguage final : public testing::Environment {
 public:
  void SetUp() override {
    const QNScopedLocale locale("fr-CA");
    language = QNLocalization::sharedLocalization().language();
    title = QNLocalizedString("Unnamed");
  }
  static inline std::string language;
  static inline std::string title;
};
[[maybe_unused]] testing::Environment* const kFirstLanguage =
    testing::AddGlobalTestEnvironment(new FirstLanguage);

class QNLocalizationTest : public testing::Test {
 protected:
  static void setLanguage(std::string_view tag) {
    QNLocalization::sharedLocalization().setLanguage(tag);
  }
  void TearDown() override { setLanguage("en"); }
};

TEST_F(QNLocalizationTest, StartsInTheLanguageOfTheLocale) {
  EXPECT_EQ(FirstLanguage::language, "fr-CA");
  EXPECT_EQ(FirstLanguage::title, "Sans nom");
}

TEST_F(QNLocalizationTest, SpeaksSevenLanguages) {
  const std::map<std::string, std::string> unnamed{
      {"en", "Unnamed"},    {"de", "Unbenannt"}, {"fr", "Sans nom"}, {"es", "Sin nombre"},
      {"ja", "名称未設定"}, {"pt", "Sem nome"},  {"ar", "بلا اسم"}};
  for (const auto& [language, title] : unnamed) {
    setLanguage(language);

    EXPECT_EQ(QNLocalizedString("Unnamed"), title);
  }
}

TEST_F(QNLocalizationTest, ARegionFallsBackOnItsLanguage) {
  setLanguage("de-AT");

  EXPECT_EQ(QNLocalization::sharedLocalization().language(), "de-AT");
  EXPECT_EQ(QNLocalizedString("Password"), "Passwort");
}

TEST_F(QNLocalizationTest, ATextMayBeAskedInALanguageThatIsNoLongerTheUsers) {
  const QNLocalization& texts = QNLocalization::sharedLocalization();
  setLanguage("en");

  EXPECT_EQ(texts.localizedStringForKey("Unnamed", {}, "de"), "Unbenannt");
  EXPECT_EQ(texts.localizedStringForKey("Unnamed", {}, "de-AT"), "Unbenannt");
  EXPECT_EQ(texts.localizedStringForKey("Unnamed", {}, "tlh"), "Unnamed");
  EXPECT_EQ(texts.localizedStringForKey("Unnamed"), "Unnamed");
}

TEST_F(QNLocalizationTest, AMissingTranslationShowsTheKey) {
  setLanguage("de");
  EXPECT_EQ(QNLocalizedString("No table has this text"), "No table has this text");

  setLanguage("tlh");
  EXPECT_EQ(QNLocalizedString("Unnamed"), "Unnamed");

  setLanguage("");
  EXPECT_EQ(QNLocalizedString("Unnamed"), "Unnamed");
}

TEST_F(QNLocalizationTest, ATagThatWouldLeaveTheFolderFindsNothing) {
  setLanguage("../Locales/de");

  EXPECT_EQ(QNLocalizedString("Unnamed"), "Unnamed");
}

TEST_F(QNLocalizationTest, FillsInItsOnePlaceholder) {
  setLanguage("en");
  EXPECT_EQ(localizedFormat("%@ Vault", "Family"), "Family Vault");
  EXPECT_EQ(localizedFormat("website %jd", "2"), "website 2");
  EXPECT_EQ(localizedFormat("%@ Vault", "%@ and %jd"), "%@ and %jd Vault");
  EXPECT_EQ(localizedFormat("Unnamed", "unused"), "Unnamed");

  setLanguage("de");
  EXPECT_EQ(localizedFormat("%@ Vault", "Familie"), "Tresor Familie");
  EXPECT_EQ(localizedFormat("website %jd", "12"), "Website 12");
}

TEST_F(QNLocalizationTest, FillsInItsTwoPlaceholdersInOrder) {
  setLanguage("en");
  EXPECT_EQ(localizedFormat("%@ from %@", "Login", "Primary"), "Login from Primary");
  EXPECT_EQ(localizedFormat("%@ from %@", "%@", "%@"), "%@ from %@");
  EXPECT_EQ(localizedFormat("%@ from %@", "", "x"), " from x");
  EXPECT_EQ(localizedFormat("%@ Vault", "Family", "unused"), "Family Vault");
  EXPECT_EQ(localizedFormat("Unnamed", "unused", "unused"), "Unnamed");

  setLanguage("ja");
  EXPECT_EQ(localizedFormat("%@ from %@", "ログイン", "家"), "ログイン（家）");
}

TEST_F(QNLocalizationTest, EveryTableHasTheSameKeys) {
  const QNLocalization::Table english = tableOf("en");
  for (const auto& language : kLanguages) {
    const QNLocalization::Table table = tableOf(language);

    for (const auto& [key, text] : english) EXPECT_EQ(table.count(key), 1u) << language << key;
    for (const auto& [key, text] : table) EXPECT_EQ(english.count(key), 1u) << language << key;
  }
}

TEST_F(QNLocalizationTest, TheEnglishTableHasTheTextsOfTheLibrary) {
  const QNLocalization::Table english = tableOf("en");
  for (const char* const key : {"Login",
                                "Logins",
                                "Secure Note",
                                "Secure Notes",
                                "Credit Card",
                                "Credit Cards",
                                "Identity",
                                "Identities",
                                "Password",
                                "Passwords",
                                "Router",
                                "Routers",
                                "Server",
                                "Servers",
                                "Email",
                                "Emails",
                                "Document",
                                "Documents",
                                "API Credential",
                                "API Credentials",
                                "Medical Record",
                                "Medical Records",
                                "Crypto Wallet",
                                "Crypto Wallets",
                                "SSH Key",
                                "SSH Keys",
                                "Tombstone",
                                "Tombstones",
                                "All Items",
                                "Other",
                                "Primary",
                                "Demo",
                                "vault",
                                "%@ Vault",
                                "Unnamed",
                                "%@ from %@",
                                "website",
                                "website %jd",
                                "username",
                                "password",
                                "Conflicts",
                                "Text",
                                "One-Time Password",
                                "Country",
                                "Gender",
                                "Credit card type",
                                "Month",
                                "Credit card number",
                                "Reference",
                                "Phone",
                                "URL",
                                "Date",
                                "Month/Year",
                                "Address",
                                "Unknown",
                                "Related Items",
                                "empty",
                                "1 item",
                                "%@ items",
                                "—",
                                "Never suggest in browser",
                                "Suggest in browser"}) {
    EXPECT_THAT(english, testing::Contains(Pair(key, key)));
  }
}

TEST_F(QNLocalizationTest, TranslationsKeepThePlaceholdersAndAreNotEmpty) {
  const std::regex placeholder("%(@|[a-z]+)");
  const auto placeholdersIn = [&](const std::string& text) {
    return std::multiset<std::string>(
        std::sregex_token_iterator(text.begin(), text.end(), placeholder),
        std::sregex_token_iterator());
  };
  for (const auto& language : kLanguages) {
    for (const auto& [key, text] : tableOf(language)) {
      EXPECT_EQ(placeholdersIn(text), placeholdersIn(key)) << language;
      EXPECT_FALSE(isBlankText(text)) << language << key;
    }
  }
}

TEST_F(QNLocalizationTest, TheTablesThatAreShippedReadWithoutAComplaint) {
  const MRCapturingSink sink;

  for (const auto& language : kLanguages) EXPECT_FALSE(tableOf(language).empty());

  EXPECT_THAT(sink.records(), IsEmpty());
}

TEST_F(QNLocalizationTest, TheTablesOfTheTemplatesReadWithoutAComplaint) {
  const MRCapturingSink sink;

  std::size_t entries = 0;
  for (const auto& language : kLanguages) {
    const auto folder = resourceFolder() / "CategoryTemplates/Locales" / (language + ".lproj");
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
      const auto text = fileContent(file.path(), 1 << 20);
      ASSERT_TRUE(text.has_value()) << file.path();
      const auto lines = std::count(text->begin(), text->end(), '"') / 4;
      const auto table = QNLocalization::parseStrings(*text, file.path().string());
      EXPECT_EQ(table.size(), static_cast<std::size_t>(lines)) << file.path();
      entries += table.size();
    }
  }

  EXPECT_GT(entries, 7u * 250u);
  EXPECT_THAT(sink.records(), IsEmpty());
}

// A vault's name that has been given the word for a vault must not be given it again.
TEST_F(QNLocalizationTest, AVaultNameFromTheFormatHasTheWordBesideABlank) {
  for (const auto& language : kLanguages) {
    setLanguage(language);
    const std::string word = QNLocalizedString("vault");

    const std::string name = localizedFormat("%@ Vault", "Xyz");

    EXPECT_TRUE(containsIgnoringCaseAndWidth(name, " " + word) ||
                containsIgnoringCaseAndWidth(name, word + " "))
        << language << name;
  }
}

TEST(QNLocalizationStrings, ReadsEntriesAndComments) {
  const auto table = QNLocalization::parseStrings(
      "\xEF\xBB\xBF/* one\n comment */\n\"a\" = \"1\";\r\n"
      "// \"no\" = \"entry\";\n"
      "\t\"b\"/**/=\n\"2\" ; \"c\"=\"3\";// the end",
      "test");

  EXPECT_THAT(table, UnorderedElementsAre(Pair("a", "1"), Pair("b", "2"), Pair("c", "3")));
}

TEST(QNLocalizationStrings, ReadsEscapesOfEveryKind) {
  const auto table = QNLocalization::parseStrings(
      R"("quote \" slash \\" = "line\nnext\ttab \U00e9\U0041 \UD83D\UDE00";)", "test");

  EXPECT_THAT(table, UnorderedElementsAre(Pair("quote \" slash \\", "line\nnext\ttab éA 😀")));
}

TEST(QNLocalizationStrings, OfEqualKeysTheLastCounts) {
  const auto table = QNLocalization::parseStrings("\"a\"=\"1\";\n\"a\"=\"2\";", "test");

  EXPECT_THAT(table, UnorderedElementsAre(Pair("a", "2")));
}

TEST(QNLocalizationStrings, EmptyTextsMakeAnEmptyTable) {
  const MRCapturingSink sink;

  EXPECT_THAT(QNLocalization::parseStrings("", "test"), IsEmpty());
  EXPECT_THAT(QNLocalization::parseStrings("\n /* only this */ \n// and this", "test"), IsEmpty());
  EXPECT_THAT(sink.records(), IsEmpty());
}

TEST(QNLocalizationStrings, ABrokenLineCostsItselfAndALogLine) {
  const std::vector<std::string> broken{
      "\"b\" = \"2\"",          // no semicolon
      "\"b\" \"2\";",           // no equals sign
      "\"b = 2;",               // open quote
      "\"b\" = \"2;",           // open quote in the text
      "b = \"2\";",             // bare key
      "\"b\" = \"\\x\";",       // unknown escape
      "\"b\" = \"\\u0041\";",   // a small u
      "\"b\" = \"\\",           // escape of the end of the line
      "\"b\" = \"\\U12\";",     // too few digits
      "\"b\" = \"\\UD83D\";",   // half a pair
      "\"b\" = \"\\UDE00\";",   // the other half
      "\"b\" = \"\xFF\";",      // not UTF-8
      "\"\xC3\" = \"2\";",      // not UTF-8 in the key
      "= \"2\";",               // no key
      ";",                      // nothing
      "/* never closed",        // open comment
      "\"b\" /* never closed",  // open comment inside an entry
  };
  for (const auto& line : broken) {
    const MRCapturingSink sink;

    const auto table =
        QNLocalization::parseStrings("\"a\" = \"1\";\n" + line + "\n\"c\" = \"3\";\n", "xx");

    EXPECT_THAT(table, UnorderedElementsAre(Pair("a", "1"), Pair("c", "3"))) << line;
    EXPECT_THAT(sink.texts(MRLogKind::error),
                ElementsAre("Unable to read localization table xx: line 2"))
        << line;
  }
}

TEST(QNLocalizationStrings, WhatFollowsAnEntryOnItsLineIsReadByItself) {
  const MRCapturingSink sink;

  const auto table = QNLocalization::parseStrings("\"a\"=\"1\"; junk\n\"c\"=\"3\";", "xx");

  EXPECT_THAT(table, UnorderedElementsAre(Pair("a", "1"), Pair("c", "3")));
  EXPECT_EQ(sink.texts(MRLogKind::error).size(), 1u);
}

}  // namespace
}  // namespace quillon
