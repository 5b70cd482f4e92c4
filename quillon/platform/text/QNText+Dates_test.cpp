#include <gtest/gtest.h>

#include <limits>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr std::int64_t kIndependenceDay = 1720051200;  // 4 July 2024, 00:00:00 UTC

std::string formatted(std::int64_t seconds, const char* locale, const char* zone) {
  const QNScopedLocale scopedLocale(locale);
  const QNScopedTimeZone scopedZone(zone);
  return std::string(qn_formatDate(seconds).reveal());
}

TEST(QNTextDates, AreWrittenInTheUsersLanguage) {
  EXPECT_EQ(formatted(kIndependenceDay, "en-US", "UTC"), "Jul 4, 2024");
  EXPECT_EQ(formatted(kIndependenceDay, "de-DE", "UTC"), "04.07.2024");
  EXPECT_EQ(formatted(kIndependenceDay, "ja-JP", "UTC"), "2024/07/04");
}

TEST(QNTextDates, AreThoseOfTheUsersTimeZone) {
  EXPECT_EQ(formatted(kIndependenceDay, "en-US", "America/Los_Angeles"), "Jul 3, 2024");
  EXPECT_EQ(formatted(kIndependenceDay, "en-US", "Asia/Tokyo"), "Jul 4, 2024");
  EXPECT_EQ(formatted(kIndependenceDay - 1, "en-US", "Asia/Tokyo"), "Jul 4, 2024");
}

TEST(QNTextDates, BeginBefore1970) {
  EXPECT_EQ(formatted(0, "en-US", "UTC"), "Jan 1, 1970");
  EXPECT_EQ(formatted(-86400, "en-US", "UTC"), "Dec 31, 1969");
}

TEST(QNTextDates, BeyondTheCalendarAreItsLast) {
  EXPECT_FALSE(formatted(std::numeric_limits<std::int64_t>::max(), "en-US", "UTC").empty());
  EXPECT_EQ(formatted(std::numeric_limits<std::int64_t>::max(), "en-US", "UTC"),
            formatted(std::numeric_limits<std::int64_t>::max() / 2, "en-US", "UTC"));
  EXPECT_EQ(formatted(std::numeric_limits<std::int64_t>::min(), "en-US", "UTC"),
            formatted(std::numeric_limits<std::int64_t>::min() / 2, "en-US", "UTC"));
}

TEST(QNTextDates, AreDescribedInOneFormEverywhere) {
  const QNScopedLocale arabic("ar-EG");
  const QNScopedTimeZone zone("Asia/Tokyo");

  EXPECT_EQ(qn_describedDate(kIndependenceDay + 45005), "2024-07-04 12:30:05 +0000");
  EXPECT_EQ(qn_describedDate(0), "1970-01-01 00:00:00 +0000");
}

TEST(QNTextDates, AreDescribedUpToTheCalendarsLast) {
  const std::string last = qn_describedDate(std::numeric_limits<std::uint64_t>::max());

  EXPECT_EQ(last, qn_describedDate(std::numeric_limits<std::uint64_t>::max() / 2));
  EXPECT_TRUE(last.ends_with(" +0000")) << last;
}

TEST(QNTextDates, OfTheSystemsZoneAreFoundToo) {
  EXPECT_FALSE(formatted(kIndependenceDay, "en-US", "").empty());
}

TEST(QNTextDates, AreWrittenWithTheirTimeToo) {
  const QNScopedLocale locale("de-DE");
  const QNScopedTimeZone berlin("Europe/Berlin");

  EXPECT_EQ(qn_formatDateAndTime(kIndependenceDay), "04.07.2024, 02:00:00");
  {
    const QNScopedTimeZone tokyo("Asia/Tokyo");
    EXPECT_EQ(qn_formatDateAndTime(kIndependenceDay), "04.07.2024, 09:00:00");
  }
  EXPECT_EQ(qn_formatDate(kIndependenceDay).reveal(), "04.07.2024");
}

TEST(QNTextDates, WithTheirTimeFollowTheLanguage) {
  const QNScopedLocale locale("en-US");
  const QNScopedTimeZone zone("UTC");

  const auto shown = qn_formatDateAndTime(kIndependenceDay + 54245);

  // Before "PM" stands a space that depends on the version of ICU.
  ASSERT_TRUE(shown);
  EXPECT_EQ(shown->substr(0, 20), "Jul 4, 2024, 3:04:05");
  EXPECT_EQ(shown->substr(shown->size() - 2), "PM");
}

std::optional<std::int64_t> parsed(std::string_view text, const char* locale,
                                   const char* zone = "UTC") {
  const QNScopedLocale scopedLocale(locale);
  const QNScopedTimeZone scopedZone(zone);
  return qn_parseDate(text);
}

constexpr std::int64_t kDay = kIndependenceDay + 11 * 3600;

TEST(QNTextDates, AreReadInOneFormEverywhereAndInTheFormsOfTheLocale) {
  for (const char* const locale : {"en-US", "de-DE", "ja-JP", "ar-EG", "zz"}) {
    EXPECT_EQ(parsed("2024-07-04", locale), kDay) << locale;
    EXPECT_EQ(parsed(" 2024-07-04\n", locale), kDay) << locale;
  }
  EXPECT_EQ(parsed("7/4/2024", "en-US"), kDay);
  EXPECT_EQ(parsed("07/04/2024", "en-US"), kDay);
  EXPECT_EQ(parsed("Jul 4, 2024", "en-US"), kDay);
  EXPECT_EQ(parsed("4.7.2024", "de-DE"), kDay);
  EXPECT_EQ(parsed("04.07.2024", "de-DE"), kDay);
  EXPECT_EQ(parsed("2024/7/4", "ja-JP"), kDay);
}

TEST(QNTextDates, AreOneMomentWhereverTheyAreTyped) {
  for (const char* const zone : {"Pacific/Pago_Pago", "America/Los_Angeles", "Europe/Berlin",
                                 "Asia/Kathmandu", "Pacific/Auckland", "Pacific/Chatham"}) {
    EXPECT_EQ(parsed("2024-07-04", "en-US", zone), kDay) << zone;
    EXPECT_EQ(parsed("7/4/2024", "en-US", zone), kDay) << zone;
    EXPECT_EQ(formatted(kDay, "en-US", zone), "Jul 4, 2024") << zone;
  }
}

TEST(QNTextDates, AreTheTypedDayInTheFarthestZonesToo) {
  EXPECT_EQ(parsed("2024-07-04", "en-US", "Pacific/Tongatapu"), kDay - 3600);
  EXPECT_EQ(parsed("2024-07-04", "en-US", "Pacific/Kiritimati"), kDay - 2 * 3600);
  EXPECT_EQ(parsed("2024-07-04", "en-US", "Etc/GMT+12"), kDay + 3600);
  for (const char* const zone : {"Pacific/Auckland", "Pacific/Chatham", "Pacific/Kiritimati",
                                 "Etc/GMT+12", "Pacific/Pago_Pago"}) {
    const auto christmas = parsed("2024-12-24", "en-US", zone);
    ASSERT_TRUE(christmas.has_value()) << zone;
    EXPECT_EQ(formatted(*christmas, "en-US", zone), "Dec 24, 2024") << zone;
  }
}

TEST(QNTextDates, MarksOfDirectionCountNeitherInWhatIsTypedNorInTheLanguagesOwn) {
  const QNScopedLocale locale("ar-EG");
  const QNScopedTimeZone zone("Africa/Cairo");
  const std::string shown(qn_formatDate(kDay).reveal());
  ASSERT_NE(shown.find("\u200f"), std::string::npos) << shown;

  EXPECT_EQ(qn_parseDate(shown), kDay);
  EXPECT_EQ(qn_parseDate("٠٤/٠٧/٢٠٢٤"), kDay);
  EXPECT_EQ(qn_parseDate("\u061c٤\u200e/٧/٢٠٢٤"), kDay);
}

TEST(QNTextDates, WhatIsNoDayIsNotRead) {
  for (const std::string_view text :
       {"", "2024", "2024-02-30", "2023-02-29", "2024-13-01", "2024-00-01", "2024-7-4", "24-07-04",
        "2024-07-04x", "20240704", "0024-07-04", "7/4/24", "7/4", "2/30/2024", "13/1/2024",
        "4.7.2024", "tomorrow", "7/4/2024 and more", "\xff"}) {
    EXPECT_EQ(parsed(text, "en-US"), std::nullopt) << text;
  }
  EXPECT_EQ(parsed("4.7.24", "de-DE"), std::nullopt);
  EXPECT_EQ(parsed("30.2.2024", "de-DE"), std::nullopt);
}

TEST(QNTextDates, AreReadBackAsTheyAreWritten) {
  for (const char* const locale :
       {"en-US", "en-GB", "de-DE", "fr-FR", "es-ES", "pt-BR", "ja-JP", "ar-EG", "ar"}) {
    const QNScopedLocale scopedLocale(locale);
    const QNScopedTimeZone scopedZone("Europe/Berlin");
    EXPECT_EQ(qn_parseDate(qn_formatDate(kDay).reveal()), kDay) << locale;
    EXPECT_EQ(qn_parseDate(qn_formatISODate(kDay).reveal()), kDay) << locale;
    EXPECT_NE(qn_parseDate(qn_exampleOfDate()), std::nullopt) << locale;
  }
}

TEST(QNTextDates, HaveOneFormForPrograms) {
  const QNScopedTimeZone zone("America/Los_Angeles");

  EXPECT_TRUE(qn_formatISODate(kIndependenceDay).equals("2024-07-03"));
  EXPECT_TRUE(qn_formatISODate(-86400).equals("1969-12-30"));
}

// The moments are those of GNU date: TZ=ZONE date -d YEAR-MONTH-DAY +%s

struct MonthCase {
  std::int32_t month, year;
  const char* zone;
  std::int64_t first, last;
};

TEST(QNTextDates, AMonthHasAFirstAndALastDay) {
  const MonthCase cases[] = {
      {2, 2024, "UTC", 1706745600, 1709164800},
      {2, 2023, "UTC", 1675209600, 1677542400},
      {2, 1900, "UTC", -2206310400, -2203977600},
      {12, 2024, "UTC", 1733011200, 1735603200},
      {2, 2024, "America/Los_Angeles", 1706774400, 1709193600},
      {3, 2024, "Europe/Berlin", 1709247600, 1711839600},
  };
  for (const auto& each : cases) {
    const QNScopedTimeZone zone(each.zone);
    const auto days = qn_daysOfMonth(each.month, each.year);
    ASSERT_TRUE(days) << each.year << " " << each.month;
    EXPECT_EQ(days->first, each.first) << each.year << " " << each.month << " " << each.zone;
    EXPECT_EQ(days->last, each.last) << each.year << " " << each.month << " " << each.zone;
  }
}

TEST(QNTextDates, AMonthIsOneOfTheGregorianCalendarInEveryLanguage) {
  const QNScopedTimeZone zone("UTC");
  for (const char* const locale : {"th-TH", "fa-IR", "ar-SA", "ja-JP-u-ca-japanese"}) {
    const QNScopedLocale scopedLocale(locale);
    EXPECT_EQ(qn_daysOfMonth(2, 2024)->last, 1709164800) << locale;
  }
}

TEST(QNTextDates, AMonthBeyondTheTwelfthIsOneOfTheNextYear) {
  const QNScopedTimeZone zone("UTC");

  EXPECT_EQ(qn_daysOfMonth(14, 2023)->first, 1706745600);
  EXPECT_EQ(qn_daysOfMonth(14, 2023)->last, 1709164800);
}

TEST(QNTextDates, ADayWithoutMidnightBeginsWithItsFirstHour) {
  const QNScopedTimeZone zone("America/Asuncion");

  // 1 October 2017: clocks went from 0:00 to 1:00, which is 4:00 UTC.
  EXPECT_EQ(qn_daysOfMonth(10, 2017)->first, 1506830400);
  EXPECT_EQ(qn_daysOfMonth(10, 2017)->last, 1509418800);
}

std::string kept(std::string_view text, std::string_view set) {
  return std::string(charactersOfTextInSet(text, set).reveal());
}

TEST(QNTextSets, KeepTheCharactersThatStandInThemInOrder) {
  EXPECT_EQ(kept("DE12 3456", "0123456789"), "123456");
  EXPECT_EQ(kept("abc", ""), "");
  EXPECT_EQ(kept("", "abc"), "");
}

TEST(QNTextSets, KeepWholeCharactersOnly) {
  EXPECT_EQ(kept("\u00E9\u00EA\U0001F511x", "\u00E9\U0001F511"), "\u00E9\U0001F511");
  // These two share their first code unit of UTF-16 and three bytes of UTF-8.
  EXPECT_EQ(kept("\U0001F511", "\U0001F512"), "");
  EXPECT_EQ(kept("a\x9F\x94z\xF0", "\U0001F511az"), "az");
}

}  // namespace
}  // namespace quillon
