#include "quillon/platform/environment/QNEnvironment.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <map>

#include "quillon/platform/data/MRData.h"

namespace quillon {
namespace {

using Variables = std::map<std::string, std::string>;

/// Sets these of the variables that are read, takes the others away, and puts all back.
class ScopedVariables {
 public:
  explicit ScopedVariables(const Variables& values) {
    for (const char* const name :
         {"LC_ALL", "LC_MESSAGES", "LANG", "HOME", "XDG_DATA_HOME", "XDG_DOCUMENTS_DIR"}) {
      const char* const before = std::getenv(name);
      _before[name] = before == nullptr ? std::nullopt : std::optional<std::string>(before);
      unsetenv(name);
    }
    for (const auto& [name, value] : values) setenv(name.c_str(), value.c_str(), 1);
  }
  ~ScopedVariables() {
    for (const auto& [name, value] : _before) {
      if (value)
        setenv(name.c_str(), value->c_str(), 1);
      else
        unsetenv(name.c_str());
    }
  }

 private:
  std::map<std::string, std::optional<std::string>> _before;
};

TEST(QNEnvironment, TellsTheTimeOfTheSystem) {
  const auto before = static_cast<std::uint64_t>(std::time(nullptr));

  const std::uint64_t now = secondsNow();

  EXPECT_GE(now, before);
  EXPECT_LE(now, before + 10);
}

TEST(QNEnvironment, HasASteadyClockThatOnlyMovesOn) {
  const double first = steadySeconds();
  EXPECT_GE(steadySeconds(), first);
}

TEST(QNEnvironment, NamesItsHost) {
  EXPECT_FALSE(localHostName().empty());
}

TEST(QNScopedClock, SetsTheTimeAndPutsTheEarlierClockBack) {
  const QNScopedClock outer(1'000);
  {
    QNScopedClock inner(2'000);
    EXPECT_EQ(secondsNow(), 2'000u);
    inner.setSeconds(2'001);
    EXPECT_EQ(secondsNow(), 2'001u);
  }

  EXPECT_EQ(secondsNow(), 1'000u);
}

TEST(QNScopedRandom, GivesEveryRandomByteAndPutsTheEarlierSourceBack) {
  const auto filling = [](std::uint8_t with) {
    return [with](std::span<std::uint8_t> out) { std::fill(out.begin(), out.end(), with); };
  };
  {
    const QNScopedRandom outer(filling(1));
    {
      const QNScopedRandom inner(filling(2));
      EXPECT_EQ(mr_randomData(2), (Bytes{2, 2}));
    }
    EXPECT_EQ(mr_randomData(2), (Bytes{1, 1}));
  }

  EXPECT_FALSE(scopedRandomSource());
}

TEST(QNScopedLocale, SetsTheTagAndPutsTheEarlierOneBack) {
  const QNScopedLocale outer("ja-JP");
  { const QNScopedLocale inner("fr-FR"); }

  EXPECT_EQ(currentLocale(), "ja-JP");
}

TEST(QNScopedHostName, SetsTheNameAndPutsTheMachinesBack) {
  const std::string machine = localHostName();
  {
    const QNScopedHostName outer("kestrel");
    { const QNScopedHostName inner("buzzard"); }
    EXPECT_EQ(localHostName(), "kestrel");
  }

  EXPECT_EQ(localHostName(), machine);
}

TEST(QNScopedTimeZone, SetsTheZoneAndPutsTheSystemsBack) {
  {
    const QNScopedTimeZone zone("Europe/Berlin");
    EXPECT_EQ(currentTimeZone(), "Europe/Berlin");
  }

  EXPECT_EQ(currentTimeZone(), "");
}

TEST(QNEnvironment, KnowsTheUsersNameAndFolders) {
  const ScopedVariables variables(Variables{{"HOME", "/home/ada"}});

  const QNUser user = currentUser();

  EXPECT_FALSE(user.loginName.empty());
  EXPECT_EQ(user.libraryFolder, "/home/ada/.local/share");
  EXPECT_EQ(user.documentsFolder, "/home/ada/Documents");
}

TEST(QNEnvironment, TakesTheUsersFoldersFromTheirVariables) {
  const ScopedVariables variables(Variables{
      {"HOME", "/home/ada"}, {"XDG_DATA_HOME", "/data"}, {"XDG_DOCUMENTS_DIR", "/papers"}});

  EXPECT_EQ(currentUser().libraryFolder, "/data");
  EXPECT_EQ(currentUser().documentsFolder, "/papers");
}

TEST(QNEnvironment, TakesNoPartOfAPathForAFolder) {
  const ScopedVariables variables(
      Variables{{"HOME", "/home/ada"}, {"XDG_DATA_HOME", "data"}, {"XDG_DOCUMENTS_DIR", ""}});

  EXPECT_EQ(currentUser().libraryFolder, "/home/ada/.local/share");
  EXPECT_EQ(currentUser().documentsFolder, "/home/ada/Documents");
}

TEST(QNEnvironment, FindsTheHomeOfTheSystemsListWithoutAVariable) {
  const ScopedVariables variables(Variables{});

  EXPECT_TRUE(currentUser().documentsFolder.is_absolute());
}

TEST(QNScopedUser, SetsTheUserAndPutsTheSystemsBack) {
  const std::string system = currentUser().loginName;
  {
    const QNScopedUser outer({"ada", "/library", "/documents"});
    { const QNScopedUser inner({"bob", "", ""}); }
    EXPECT_EQ(currentUser().loginName, "ada");
    EXPECT_EQ(currentUser().libraryFolder, "/library");
    EXPECT_EQ(currentUser().documentsFolder, "/documents");
  }

  EXPECT_EQ(currentUser().loginName, system);
}

struct LocaleCase {
  std::map<std::string, std::string> variables;
  const char* tag;
};
class QNEnvironmentLocale : public testing::TestWithParam<LocaleCase> {};

TEST_P(QNEnvironmentLocale, IsReadFromTheVariables) {
  const ScopedVariables variables(GetParam().variables);

  EXPECT_EQ(currentLocale(), GetParam().tag);
}

INSTANTIATE_TEST_SUITE_P(
    Posix, QNEnvironmentLocale,
    testing::Values(LocaleCase{{}, "en-US"}, LocaleCase{{{"LANG", "C"}}, "en-US"},
                    LocaleCase{{{"LANG", "POSIX"}}, "en-US"},
                    LocaleCase{{{"LANG", "C.UTF-8"}}, "en-US"},
                    LocaleCase{{{"LANG", "de_DE.UTF-8"}}, "de-DE"},
                    LocaleCase{{{"LANG", "de_DE@euro"}}, "de-DE"},
                    LocaleCase{{{"LANG", "de_DE.ISO-8859-15@euro"}}, "de-DE"},
                    LocaleCase{{{"LANG", "fr"}}, "fr"},
                    LocaleCase{{{"LANG", "de_DE"}, {"LC_MESSAGES", "es_ES.UTF-8"}}, "es-ES"},
                    LocaleCase{{{"LC_MESSAGES", "es_ES"}, {"LC_ALL", "ja_JP.UTF-8"}}, "ja-JP"},
                    LocaleCase{{{"LC_ALL", ""}, {"LANG", "ja_JP.UTF-8"}}, "ja-JP"},
                    LocaleCase{{{"LC_ALL", "C"}, {"LANG", "ja_JP.UTF-8"}}, "en-US"}));

TEST(QNEnvironment, ATestSaysHowLongSomethingTook) {
  double now = 5;
  {
    const QNScopedSteadyClock clock([&now] { return now; });
    EXPECT_EQ(steadySeconds(), 5);
    now = 7.5;
    EXPECT_EQ(steadySeconds(), 7.5);
  }

  EXPECT_NE(steadySeconds(), 7.5);
}

TEST(QNEnvironment, TellsTheCountryOfTheLocale) {
  const std::pair<std::string, std::optional<std::string>> cases[] = {
      {"en-US", "us"},           {"zh-Hant-TW", "tw"},
      {"zh-cmn-CN", "cn"},       {"es-419", "419"},
      {"sl-IT-nedis", "it"},     {"de", std::nullopt},
      {"sr-Latn", std::nullopt}, {"de-1996", std::nullopt},
      {"de-x-at", std::nullopt}, {"en-u-rg-gbzzzz", std::nullopt}};
  for (const auto& [locale, country] : cases) {
    const QNScopedLocale scoped(locale);
    EXPECT_EQ(currentCountryCode(), country) << locale;
  }
}

}  // namespace
}  // namespace quillon
