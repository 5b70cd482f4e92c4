#pragma once
// What the library takes from the world around it: clock, random source, locale, time zone,
// host name, the user. A test sets each for its own duration; nothing else may be global.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace quillon {

/// Whole seconds since 1970, fractions cut off.
std::uint64_t secondsNow();
/// Seconds of a steady clock, for elapsed times only.
double steadySeconds();
/// The user's locale as a BCP 47 tag, "en-US" by default; from LC_ALL, LC_MESSAGES or LANG.
std::string currentLocale();
/// The country of that locale in small letters: "us" for "en-US". Nothing if it names none.
std::optional<std::string> currentCountryCode();
/// An Olson name, or empty for the system's zone.
std::string currentTimeZone();
/// The machine's local host name; "localhost" if it has none.
std::string localHostName();

/// Whose process this is: the name to log in with, and where programs and the person keep things.
struct QNUser {
  std::string loginName;
  std::filesystem::path libraryFolder;    // of what programs keep for the user
  std::filesystem::path documentsFolder;  // of the user's own files
};
/// From the system's list of users; folders follow HOME, XDG_DATA_HOME and XDG_DOCUMENTS_DIR where
/// these name whole paths: ~/.local/share and ~/Documents without them. What nobody knows is empty.
QNUser currentUser();

/// Each sets a source for its lifetime, then puts the earlier one back. For tests and tools;
/// not while another thread reads.
class QNScopedClock final {
 public:
  explicit QNScopedClock(std::uint64_t seconds);
  ~QNScopedClock();
  QNScopedClock(const QNScopedClock&) = delete;
  QNScopedClock& operator=(const QNScopedClock&) = delete;
  void setSeconds(std::uint64_t seconds);

 private:
  std::function<std::uint64_t()> _before;
};

/// What steadySeconds() gives while this lives: a test that measures time decides how long.
class QNScopedSteadyClock final {
 public:
  explicit QNScopedSteadyClock(std::function<double()> clock);
  ~QNScopedSteadyClock();
  QNScopedSteadyClock(const QNScopedSteadyClock&) = delete;
  QNScopedSteadyClock& operator=(const QNScopedSteadyClock&) = delete;

 private:
  std::function<double()> _before;
};

/// Every random byte of the process comes from `source` while this lives: keys, nonces,
/// identifiers. For frozen vectors; never in a program that keeps secrets.
class QNScopedRandom final {
 public:
  using Source = std::function<void(std::span<std::uint8_t>)>;
  explicit QNScopedRandom(Source source);
  ~QNScopedRandom();
  QNScopedRandom(const QNScopedRandom&) = delete;
  QNScopedRandom& operator=(const QNScopedRandom&) = delete;

 private:
  Source _before;
};
/// The source that is set, or an empty function.
const QNScopedRandom::Source& scopedRandomSource();

class QNScopedLocale final {
 public:
  explicit QNScopedLocale(std::string tag);
  ~QNScopedLocale();
  QNScopedLocale(const QNScopedLocale&) = delete;
  QNScopedLocale& operator=(const QNScopedLocale&) = delete;

 private:
  std::string _before;
};

class QNScopedHostName final {
 public:
  explicit QNScopedHostName(std::string name);
  ~QNScopedHostName();
  QNScopedHostName(const QNScopedHostName&) = delete;
  QNScopedHostName& operator=(const QNScopedHostName&) = delete;

 private:
  std::string _before;
};

class QNScopedUser final {
 public:
  explicit QNScopedUser(QNUser user);
  ~QNScopedUser();
  QNScopedUser(const QNScopedUser&) = delete;
  QNScopedUser& operator=(const QNScopedUser&) = delete;

 private:
  std::optional<QNUser> _before;
};

class QNScopedTimeZone final {
 public:
  explicit QNScopedTimeZone(std::string name);
  ~QNScopedTimeZone();
  QNScopedTimeZone(const QNScopedTimeZone&) = delete;
  QNScopedTimeZone& operator=(const QNScopedTimeZone&) = delete;

 private:
  std::string _before;
};

}  // namespace quillon
