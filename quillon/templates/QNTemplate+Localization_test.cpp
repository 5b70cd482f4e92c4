#include <gmock/gmock.h>

#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

// A template file with string tables beside it.
class QNTemplateStrings : public testing::Test {
 protected:
  QNScratchFolder folder;
  std::shared_ptr<QNTemplate> bank() {
    const auto path = folder.write(
        "bank.template.json",
        R"({"templateAttrs":{"uuid":"101","localized":"yes","contents":[{"set":"s","fields":)"
        R"([{"type":"menu","name":"kind","menuitems":["b","a","c"]}]}]}})");
    return QNTemplateManager::loadTemplateFromPath(path);
  }
  void strings(std::string_view file, std::string_view text) {
    folder.write("Locales/" + std::string(file), text);
  }
};

TEST_F(QNTemplateStrings, AreThoseOfTheLanguage) {
  const QNScopedLanguage language("de");
  strings("de.lproj/bank.strings", R"("__title__" = "Konto"; "__pluralTitle__" = "Konten";)");
  strings("en.lproj/bank.strings", R"("__title__" = "Account";)");

  EXPECT_EQ(bank()->localizedTitle(), "Konto");
  EXPECT_EQ(bank()->localizedPluralTitle(), "Konten");
}

TEST_F(QNTemplateStrings, FallBackOnEnglishAndThenOnTheKey) {
  const QNScopedLanguage language("de");
  strings("de.lproj/bank.strings", R"("a" = "ah";)");
  strings("en.lproj/bank.strings", R"("b" = "bee";)");
  const auto made = bank();

  EXPECT_EQ(made->localizedStringForKey("a"), "ah");
  EXPECT_EQ(made->localizedStringForKey("b"), "bee");
  EXPECT_EQ(made->localizedStringForKey("c"), "c");
}

TEST_F(QNTemplateStrings, InEnglishAMissingKeyIsTheKeyItself) {
  const QNScopedLanguage language("en");
  strings("en.lproj/bank.strings", R"("a" = "ay";)");

  EXPECT_EQ(bank()->localizedStringForKey("a"), "ay");
  EXPECT_EQ(bank()->localizedStringForKey("b"), "b");
}

TEST_F(QNTemplateStrings, AreKnownInEveryLanguageByTheirKey) {
  const QNScopedLanguage language("de");
  strings("de.lproj/bank.strings", R"("a" = "ah"; "b" = "beh";)");
  strings("en.lproj/bank.strings", R"("a" = "ay";)");
  strings("notes.txt", "no language");
  const auto made = bank();

  EXPECT_TRUE(made->isLocalizedString("ah", "a"));
  EXPECT_TRUE(made->isLocalizedString("ay", "a"));
  EXPECT_FALSE(made->isLocalizedString("beh", "a"));
  EXPECT_FALSE(made->isLocalizedString("a", "a"));
  EXPECT_FALSE(made->isLocalizedString("ah", "c"));
}

TEST_F(QNTemplateStrings, InTheDefinitionAreKnownByTheirKeyToo) {
  const auto made = templateOf(R"({"localizedStrings":{"a":"ah"},"contents":[]})");

  EXPECT_TRUE(made->isLocalizedString("ah", "a"));
  EXPECT_FALSE(made->isLocalizedString("ay", "a"));
  EXPECT_FALSE(templateOf(R"({"contents":[]})")->isLocalizedString("a", "a"));
}

TEST_F(QNTemplateStrings, OfTheEmptyKeyAreEmpty) {
  EXPECT_EQ(bank()->localizedStringForKey(""), "");
}

TEST_F(QNTemplateStrings, OfARegionFallBackOnTheLanguage) {
  const QNScopedLanguage language("pt-BR");
  strings("pt.lproj/bank.strings", R"("__title__" = "Conta";)");

  EXPECT_EQ(bank()->localizedTitle(), "Conta");
}

TEST_F(QNTemplateStrings, OfARegionComeFromItsOwnFolderAlone) {
  const QNScopedLanguage language("pt-BR");
  strings("pt-BR.lproj/bank.strings", R"("a" = "regional";)");
  strings("pt.lproj/bank.strings", R"("a" = "general"; "b" = "general";)");
  const auto made = bank();

  EXPECT_EQ(made->localizedStringForKey("a"), "regional");
  EXPECT_EQ(made->localizedStringForKey("b"), "b");
}

TEST_F(QNTemplateStrings, StayWhenTheLanguageChanges) {
  strings("de.lproj/bank.strings", R"("a" = "ah";)");
  strings("en.lproj/bank.strings", R"("a" = "ay";)");
  const auto made = bank();
  {
    const QNScopedLanguage language("de");
    EXPECT_EQ(made->localizedStringForKey("a"), "ah");
  }
  const QNScopedLanguage language("en");

  EXPECT_EQ(made->localizedStringForKey("a"), "ah");
}

TEST_F(QNTemplateStrings, ThatWereNotThereAreLookedForAgain) {
  const QNScopedLanguage language("de");
  const auto made = bank();
  EXPECT_EQ(made->localizedStringForKey("a"), "a");

  strings("de.lproj/bank.strings", R"("a" = "ah";)");

  EXPECT_EQ(made->localizedStringForKey("a"), "ah");
}

TEST_F(QNTemplateStrings, ComeFromEveryFileThatBeginsWithTheNameALaterOverAnEarlier) {
  strings("en.lproj/bank.strings", R"("a" = "1"; "b" = "1";)");
  strings("en.lproj/bankmore.strings", R"("b" = "2"; "c" = "2";)");
  strings("en.lproj/ban.strings", R"("d" = "3";)");
  strings("en.lproj/bank.txt", R"("e" = "4";)");
  strings("en.lproj/.bank.strings", R"("f" = "5";)");
  strings("en.lproj/deeper/bank.strings", R"("g" = "6";)");

  EXPECT_THAT(bank()->loadLocalizationTable("en"),
              UnorderedElementsAre(Pair("a", "1"), Pair("b", "2"), Pair("c", "2")));
}

TEST_F(QNTemplateStrings, OfNoLanguageAreReported) {
  const MRCapturingSink sink;

  EXPECT_THAT(bank()->loadLocalizationTable(""), IsEmpty());

  EXPECT_THAT(sink.texts(MRLogKind::assertion), ElementsAre("no localization provided: "));
}

TEST_F(QNTemplateStrings, NeverComeFromOutsideTheirFolder) {
  folder.write("bank.strings", R"("a" = "outside";)");
  folder.write("x.lproj/bank.strings", R"("a" = "outside";)");

  EXPECT_THAT(bank()->loadLocalizationTable("../x"), IsEmpty());
}

TEST_F(QNTemplateStrings, ThatAreMissingAreToldWhileStatusLogsAreAllowed) {
  const auto made = bank();
  const MRCapturingSink sink;
  MRLogger::sharedLogger().allowStatus(DEBUG_DATABASE);

  EXPECT_THAT(made->loadLocalizationTable("tlh-Latn"), IsEmpty());
  MRLogger::sharedLogger().allowStatus(0);
  EXPECT_THAT(made->loadLocalizationTable("tlh"), IsEmpty());

  EXPECT_THAT(
      sink.texts(MRLogKind::status),
      ElementsAre("Failed to load localization table " +
                  (folder.path() / "Locales/tlh.lproj").string() + " for localization tlh-Latn"));
}

TEST_F(QNTemplateStrings, OfABrokenLineAreReportedAndTheRestIsRead) {
  strings("en.lproj/bank.strings", "\"a\" = \"1\";\n\"b = 2\n\"c\" = \"3\";\n");
  const MRCapturingSink sink;

  EXPECT_THAT(bank()->loadLocalizationTable("en"),
              UnorderedElementsAre(Pair("a", "1"), Pair("c", "3")));

  EXPECT_THAT(sink.texts(MRLogKind::error),
              ElementsAre("Unable to read localization table bank.strings: line 2"));
}

TEST_F(QNTemplateStrings, OfAFileThatIsTooLargeAreLeftOutAndReported) {
  const auto huge = folder.write("Locales/en.lproj/bank.strings", "");
  std::filesystem::resize_file(huge, (std::size_t{4} << 20) + 1);
  strings("en.lproj/bank2.strings", R"("a" = "1";)");
  const MRCapturingSink sink;

  EXPECT_THAT(bank()->loadLocalizationTable("en"), ElementsAre(Pair("a", "1")));

  EXPECT_THAT(sink.texts(MRLogKind::error),
              ElementsAre("Failed to read localization table " + huge.string()));
}

TEST(QNTemplateInlineStrings, AreTheTableWhateverTheLanguage) {
  const auto made = templateOf(R"({"localizedStrings":{"a":"1","b":2,"__title__":"T"}})");

  EXPECT_THAT(made->loadLocalizationTable("de"),
              UnorderedElementsAre(Pair("__title__", "T"), Pair("a", "1")));
  EXPECT_THAT(made->loadLocalizationTable("en"),
              UnorderedElementsAre(Pair("__title__", "T"), Pair("a", "1")));
  EXPECT_EQ(made->localizedTitle(), "T");
}

TEST(QNTemplateInlineStrings, WithoutThemAndWithoutAFileThereAreNone) {
  EXPECT_THAT(templateOf(R"({"localized":"yes"})")->loadLocalizationTable("en"), IsEmpty());
}

TEST(QNTemplateInlineStrings, WithoutAnyTheTitleIsItsKey) {
  EXPECT_EQ(templateOf("{}")->localizedTitle(), "__title__");
  EXPECT_EQ(templateOf("{}")->localizedPluralTitle(), "__pluralTitle__");
}

// Menus

TEST_F(QNTemplateStrings, LabelAMenuValue) {
  const QNScopedLanguage language("en");
  strings("en.lproj/bank.strings", R"("menu.kind.a" = "Kind A"; "menu.kind.b" = "Kind B";)");
  const auto made = bank();

  EXPECT_EQ(made->localizedValueForFieldIdentifier("kind", "a"), "Kind A");
  EXPECT_EQ(made->localizedValueForFieldIdentifier("kind", "c"), "c");
  EXPECT_EQ(made->localizedValueForFieldIdentifier("kind", ""), "");
  EXPECT_EQ(made->localizedValueForFieldIdentifier("kind", std::nullopt), "");
  EXPECT_THAT(made->localizedMenuLabelsForFieldIdentifier("kind"),
              ElementsAre("Kind B", "Kind A", "c"));
  EXPECT_THAT(made->localizedMenuLabelsForFieldIdentifier("other"), IsEmpty());
}

TEST_F(QNTemplateStrings, AnEmptyEnglishTableIsKept) {
  const QNScopedLanguage language("de");
  strings("de.lproj/bank.strings", R"("a" = "ah";)");
  const auto made = bank();
  ASSERT_EQ(made->localizedStringForKey("b"), "b");

  strings("en.lproj/bank.strings", R"("b" = "bee";)");

  EXPECT_EQ(made->localizedStringForKey("b"), "b");
}

TEST_F(QNTemplateStrings, MayBeAskedForByWhoHearsOfABrokenLine) {
  const QNScopedLanguage language("en");
  strings("en.lproj/bank.strings", "\"a\" = \"1\";\n\"b = 2\n");
  const auto made = bank();
  std::string heard;
  auto before = MRLogger::sharedLogger().setSink([&](const MRLogRecord&) {
    if (heard.empty()) {
      heard = "asked";
      heard = made->localizedStringForKey("a");
    }
  });

  EXPECT_EQ(made->localizedStringForKey("a"), "1");
  MRLogger::sharedLogger().setSink(std::move(before));

  EXPECT_EQ(heard, "1");
}

TEST_F(QNTemplateStrings, OfWhatIsNoLanguageAreToldToBeMissing) {
  const auto made = bank();
  const MRCapturingSink sink;
  MRLogger::sharedLogger().allowStatus(DEBUG_DATABASE);

  EXPECT_THAT(made->loadLocalizationTable("pt_BR"), IsEmpty());
  MRLogger::sharedLogger().allowStatus(0);

  EXPECT_THAT(sink.texts(MRLogKind::status),
              ElementsAre("Failed to load localization table " +
                          (folder.path() / "Locales").string() + " for localization pt_BR"));
}

}  // namespace
}  // namespace quillon
