#include <unicode/datefmt.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <memory>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/platform/text/internal/QNLocale.h"

namespace quillon {
namespace {

// Milliseconds; what ICU's calendars reach to, a year left out at each end.
constexpr double kFirstMoment = -184303902528000000.0 + 31536000000.0;
constexpr double kLastMoment = 183882168921600000.0 - 31536000000.0;

// A formatter costs hundreds of times one date to make, so each thread keeps its own until the
// locale or the time zone changes.
struct DayFormat {
  std::string locale;
  std::string zone;
  std::unique_ptr<icu::DateFormat> format;
};

const icu::DateFormat* dayFormatOfThread() {
  thread_local DayFormat kept;
  std::string locale = currentLocale();
  std::string zone = currentTimeZone();
  if (kept.format == nullptr || kept.locale != locale || kept.zone != zone) {
    kept = {locale, zone,
            std::unique_ptr<icu::DateFormat>(icu::DateFormat::createDateInstance(
                icu::DateFormat::kMedium, localeForTag(locale)))};
    if (kept.format == nullptr) return nullptr;
    kept.format->adoptTimeZone(zone.empty() ? icu::TimeZone::createDefault()
                                            : icu::TimeZone::createTimeZone(zone.c_str()));
  }
  return kept.format.get();
}

}  // namespace

QNSecret qn_formatDate(std::int64_t seconds) {
  const icu::DateFormat* const format = dayFormatOfThread();
  if (format == nullptr) return {};
  const double moment = std::clamp(static_cast<double>(seconds) * 1000, kFirstMoment, kLastMoment);
  icu::UnicodeString shown;
  format->format(moment, shown);
  std::string text;
  shown.toUTF8String(text);
  QNSecret secret(text);
  wipe(text.data(), text.size());
  return secret;
}

}  // namespace quillon
