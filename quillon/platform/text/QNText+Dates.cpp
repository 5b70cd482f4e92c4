#include <unicode/datefmt.h>
#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNFormat.h"
#include "quillon/platform/text/QNSecretText.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/platform/text/internal/QNLocale.h"

namespace quillon {
namespace {

// Milliseconds; what ICU's calendars reach to, a year left out at each end.
constexpr double kFirstMoment = -184303902528000000.0 + 31536000000.0;
constexpr double kLastMoment = 183882168921600000.0 - 31536000000.0;

constexpr std::int32_t kFirstYear = 1000;  // of those with four digits
constexpr std::int32_t kLastYear = 9999;

// Hours of UTC at which a day is kept; the first that is of that day in the user's time zone. The
// first is of one day from UTC-11 to UTC+12:59. The others are for who lives beyond: UTC+13,
// UTC+14, and UTC-12.
constexpr std::array kHoursOfDay = {11, 10, 9, 12};
constexpr std::array kPartsOfMoment = {UCAL_EXTENDED_YEAR, UCAL_MONTH,  UCAL_DATE,
                                       UCAL_HOUR_OF_DAY,   UCAL_MINUTE, UCAL_SECOND};

// The caller's to delete.
icu::TimeZone* usersTimeZone() {
  const std::string zone = currentTimeZone();
  return zone.empty() ? icu::TimeZone::createDefault()
                      : icu::TimeZone::createTimeZone(zone.c_str());
}

double clampedMoment(std::int64_t seconds) {
  return std::clamp(static_cast<double>(seconds) * 1000, kFirstMoment, kLastMoment);
}

// A formatter costs hundreds of times one date to make, so each thread keeps its own until the
// locale or the time zone changes.
struct KeptFormat {
  std::string locale;
  std::string zone;
  std::unique_ptr<icu::DateFormat> format;
};

const icu::DateFormat* upToDate(KeptFormat& kept, icu::DateFormat::EStyle timeStyle) {
  std::string locale = currentLocale();
  std::string zone = currentTimeZone();
  if (kept.format == nullptr || kept.locale != locale || kept.zone != zone) {
    kept = {locale, zone,
            std::unique_ptr<icu::DateFormat>(icu::DateFormat::createDateTimeInstance(
                icu::DateFormat::kMedium, timeStyle, localeForTag(locale)))};
    if (kept.format == nullptr) return nullptr;
    kept.format->adoptTimeZone(usersTimeZone());
  }
  return kept.format.get();
}

const icu::DateFormat* dayFormatOfThread() {
  thread_local KeptFormat kept;
  return upToDate(kept, icu::DateFormat::kNone);
}

const icu::DateFormat* dayAndTimeFormatOfThread() {
  thread_local KeptFormat kept;
  return upToDate(kept, icu::DateFormat::kMedium);
}

bool isDayOf(icu::Calendar& calendar, double moment, const std::array<std::int32_t, 3>& day) {
  UErrorCode status = U_ZERO_ERROR;
  calendar.setTime(moment, status);
  const std::array<std::int32_t, 3> seen{calendar.get(UCAL_EXTENDED_YEAR, status),
                                         calendar.get(UCAL_MONTH, status),
                                         calendar.get(UCAL_DATE, status)};
  return U_SUCCESS(status) && seen == day;
}

// The day that the calendar is set to, in the user's time zone. Nothing if there is no such day.
std::optional<std::int64_t> momentOfDay(icu::Calendar& calendar) {
  UErrorCode status = U_ZERO_ERROR;
  calendar.set(UCAL_HOUR_OF_DAY, 12);
  for (const auto field : {UCAL_MINUTE, UCAL_SECOND, UCAL_MILLISECOND}) calendar.set(field, 0);
  const double noon = calendar.getTime(status);
  const std::array<std::int32_t, 3> day{calendar.get(UCAL_EXTENDED_YEAR, status),
                                        calendar.get(UCAL_MONTH, status),
                                        calendar.get(UCAL_DATE, status)};
  if (U_FAILURE(status) || day[0] < kFirstYear || day[0] > kLastYear) return std::nullopt;
  icu::GregorianCalendar everywhere(*icu::TimeZone::getGMT(), icu::Locale::getRoot(), status);
  everywhere.clear();
  everywhere.set(day[0], day[1], day[2]);
  const double midnight = everywhere.getTime(status);
  for (const int hour : kHoursOfDay) {
    const double moment = midnight + hour * 3600000.0;
    if (U_SUCCESS(status) && isDayOf(calendar, moment, day)) {
      return static_cast<std::int64_t>(std::floor(moment / 1000));
    }
  }
  return static_cast<std::int64_t>(std::floor(noon / 1000));
}

// Nothing for a text of another form; an empty inner value for a day that isn't there.
std::optional<std::optional<std::int64_t>> isoDay(std::string_view text) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  constexpr std::string_view kForm = "0000-00-00";
  const bool fits =
      std::equal(text.begin(), text.end(), kForm.begin(), kForm.end(),
                 [&](char c, char form) { return form == '-' ? c == '-' : isDigit(c); });
  if (!fits) return std::nullopt;
  const auto number = [text](std::size_t at, std::size_t size) {
    std::int32_t read = 0;
    for (const char c : text.substr(at, size)) read = read * 10 + (c - '0');
    return read;
  };
  UErrorCode status = U_ZERO_ERROR;
  icu::GregorianCalendar calendar(usersTimeZone(), icu::Locale::getRoot(), status);
  if (U_FAILURE(status)) return std::optional<std::int64_t>();
  calendar.clear();
  calendar.setLenient(false);
  calendar.set(number(0, 4), number(5, 2) - 1, number(8, 2));
  return momentOfDay(calendar);
}

// "4.7.2024" in German. Null if the locale has no such form.
std::unique_ptr<icu::DateFormat> dayFormatInNumbers() {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Locale locale = localeForTag(currentLocale());
  const std::unique_ptr<icu::DateTimePatternGenerator> patterns(
      icu::DateTimePatternGenerator::createInstance(locale, status));
  if (U_FAILURE(status)) return nullptr;
  const icu::UnicodeString pattern = patterns->getBestPattern("yMd", status);
  auto format = std::make_unique<icu::SimpleDateFormat>(pattern, locale, status);
  if (U_FAILURE(status)) return nullptr;
  format->adoptTimeZone(usersTimeZone());
  return format;
}

// Four digits in a row. A year of two would be guessed by the parser, and a birthday go wrong.
bool hasFullYear(const icu::UnicodeString& text) {
  int digits = 0;
  for (int32_t i = 0; i < text.length() && digits < 4; ++i) {
    digits = u_isdigit(text.charAt(i)) != 0 ? digits + 1 : 0;
  }
  return digits == 4;
}

// Marks of direction, which Arabic and Hebrew dates have and nobody types.
icu::UnicodeString withoutMarks(const icu::UnicodeString& text) {
  constexpr std::array<UChar, 3> kMarks = {0x200E, 0x200F, 0x061C};
  icu::UnicodeString kept;
  for (int32_t i = 0; i < text.length(); ++i) {
    const UChar unit = text.charAt(i);
    if (std::find(kMarks.begin(), kMarks.end(), unit) == kMarks.end()) kept += unit;
  }
  return kept;
}

// The whole text must be the date. Marks count in neither of the two.
std::optional<std::int64_t> dayReadBy(const icu::DateFormat& format, std::string_view text) {
  const auto typed = withoutMarks(icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<int32_t>(text.size()))));
  icu::UnicodeString pattern;
  const std::unique_ptr<icu::DateFormat> strict(format.clone());
  strict->setLenient(false);
  if (auto* const simple = dynamic_cast<icu::SimpleDateFormat*>(strict.get())) {
    simple->applyPattern(withoutMarks(simple->toPattern(pattern)));
  }
  icu::ParsePosition end(0);
  const UDate moment = strict->parse(typed, end);
  const bool isWhole = end.getErrorIndex() == -1 && end.getIndex() == typed.length();
  if (!isWhole || !hasFullYear(typed)) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  icu::GregorianCalendar calendar(usersTimeZone(), icu::Locale::getRoot(), status);
  calendar.setTime(moment, status);
  return U_FAILURE(status) ? std::nullopt : momentOfDay(calendar);
}

}  // namespace

QNSecret qn_formatDate(std::int64_t seconds) {
  const icu::DateFormat* const format = dayFormatOfThread();
  if (format == nullptr) return {};
  icu::UnicodeString shown;
  format->format(clampedMoment(seconds), shown);
  std::string text;
  shown.toUTF8String(text);
  return secretOf(std::move(text));
}

std::optional<std::string> qn_formatDateAndTime(std::int64_t seconds) {
  const icu::DateFormat* const format = dayAndTimeFormatOfThread();
  if (format == nullptr) return std::nullopt;
  icu::UnicodeString shown;
  format->format(clampedMoment(seconds), shown);
  std::string text;
  return shown.toUTF8String(text);
}

QNSecret qn_formatISODate(std::int64_t seconds) {
  UErrorCode status = U_ZERO_ERROR;
  icu::GregorianCalendar calendar(usersTimeZone(), icu::Locale::getRoot(), status);
  calendar.setTime(clampedMoment(seconds), status);
  const std::int32_t year = calendar.get(UCAL_EXTENDED_YEAR, status);
  const std::int32_t month = calendar.get(UCAL_MONTH, status) + 1;
  const std::int32_t day = calendar.get(UCAL_DATE, status);
  if (U_FAILURE(status)) return {};
  return secretOf(formatted("{:04}-{:02}-{:02}", year, month, day));
}

std::string qn_describedDate(std::uint64_t seconds) {
  UErrorCode status = U_ZERO_ERROR;
  icu::GregorianCalendar calendar(*icu::TimeZone::getGMT(), icu::Locale::getRoot(), status);
  calendar.setTime(std::min(static_cast<double>(seconds) * 1000, kLastMoment), status);
  std::array<std::int32_t, 6> parts{};
  std::transform(kPartsOfMoment.begin(), kPartsOfMoment.end(), parts.begin(),
                 [&](UCalendarDateFields part) { return calendar.get(part, status); });
  if (U_FAILURE(status)) return {};
  const auto& [year, month, day, hour, minute, second] = parts;
  return formatted("{:04}-{:02}-{:02} {:02}:{:02}:{:02} +0000", year, month + 1, day, hour, minute,
                   second);
}

std::optional<std::int64_t> qn_parseDate(std::string_view text) {
  const std::string_view typed = trimmedView(text);
  if (const auto read = isoDay(typed)) return *read;
  const auto numbers = dayFormatInNumbers();
  if (numbers != nullptr) {
    if (const auto read = dayReadBy(*numbers, typed)) return read;
  }
  const icu::DateFormat* const shown = dayFormatOfThread();
  if (shown == nullptr) return std::nullopt;
  return dayReadBy(*shown, typed);
}

std::optional<QNMonthDays> qn_daysOfMonth(std::int32_t month, std::int32_t ofYear) {
  UErrorCode status = U_ZERO_ERROR;
  icu::GregorianCalendar calendar(usersTimeZone(), icu::Locale::getRoot(), status);
  if (U_FAILURE(status)) return std::nullopt;
  calendar.clear();
  calendar.set(ofYear, month - 1, 1);
  const double first = calendar.getTime(status);
  // Set, not counted from the first: that one may begin at another hour.
  const std::int32_t lastDay = calendar.getActualMaximum(UCAL_DATE, status);
  calendar.clear();
  calendar.set(ofYear, month - 1, lastDay);
  const double last = calendar.getTime(status);
  if (U_FAILURE(status)) return std::nullopt;
  return QNMonthDays{static_cast<std::int64_t>(std::floor(first / 1000)),
                     static_cast<std::int64_t>(std::floor(last / 1000))};
}

std::string qn_exampleOfDate() {
  const auto format = dayFormatInNumbers();
  std::string text;
  if (format == nullptr) return text;
  icu::UnicodeString shown;
  format->format(static_cast<double>(secondsNow()) * 1000, shown);
  return shown.toUTF8String(text);
}

}  // namespace quillon
