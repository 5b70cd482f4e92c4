#include "quillon/platform/environment/QNEnvironment.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <sstream>
#include <utility>
#include <vector>

#include "quillon/platform/text/QNASCII.h"

namespace quillon {
namespace {

struct Settings {
  std::function<std::uint64_t()> clock;
  std::function<double()> steadyClock;
  QNScopedRandom::Source random;
  std::string locale;
  std::string hostName;
  std::string timeZone;
  std::optional<QNUser> user;
};

Settings& settings() {
  static Settings* const it = new Settings;
  return *it;
}

// "de_DE.UTF-8@euro" is "de-DE"; "C" and "POSIX" are English.
std::string tagOfPosixLocale(std::string name) {
  name.resize(std::min(name.find_first_of(".@"), name.size()));
  if (name.empty() || name == "C" || name == "POSIX") return "en-US";
  for (char& c : name) {
    if (c == '_') c = '-';
  }
  return name;
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// A whole path in a variable, or an empty one: the rule for folders of the user says that a part
/// of a path counts for nothing.
std::filesystem::path pathInVariable(const char* name) {
  const char* const value = std::getenv(name);
  std::filesystem::path path = value == nullptr ? "" : value;
  return path.is_absolute() ? path : std::filesystem::path();
}

std::filesystem::path folderOr(const char* variable, const std::filesystem::path& home,
                               std::string_view inHome) {
  const std::filesystem::path set = pathInVariable(variable);
  if (!set.empty() || home.empty()) return set;
  return home / inHome;
}

struct SystemUser {
  std::string name;
  std::filesystem::path home;
};

SystemUser systemUser() {
  std::vector<char> texts(16384);
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(getuid(), &entry, texts.data(), texts.size(), &found) != 0 || found == nullptr) {
    return {};
  }
  return {entry.pw_name, entry.pw_dir};
}

}  // namespace

std::uint64_t secondsNow() {
  if (const auto& clock = settings().clock) return clock();
  return static_cast<std::uint64_t>(std::time(nullptr));
}

double steadySeconds() {
  if (const auto& clock = settings().steadyClock) return clock();
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::string currentLocale() {
  if (!settings().locale.empty()) return settings().locale;
  for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const value = std::getenv(name);
    if (value != nullptr && *value != '\0') return tagOfPosixLocale(value);
  }
  return "en-US";
}

// BCP 47: a language, up to three extensions of it of 3 letters, a script of 4 letters, then a
// country of 2 letters or 3 digits. A single letter begins what has nothing to do with that.
std::optional<std::string> currentCountryCode() {
  std::istringstream subtags(currentLocale());
  std::string subtag;
  std::getline(subtags, subtag, '-');
  while (std::getline(subtags, subtag, '-') && subtag.size() > 1) {
    const bool isNumber = std::all_of(subtag.begin(), subtag.end(), isDigit);
    if (subtag.size() != (isNumber ? 3u : 2u)) continue;
    for (char& c : subtag) c = lowercaseASCII(c);
    return subtag;
  }
  return std::nullopt;
}

std::string currentTimeZone() {
  return settings().timeZone;
}

std::string localHostName() {
  if (!settings().hostName.empty()) return settings().hostName;
  std::array<char, 256> name{};
  if (gethostname(name.data(), name.size() - 1) != 0 || name[0] == '\0') return "localhost";
  return name.data();
}

QNUser currentUser() {
  if (const auto& user = settings().user) return *user;
  const SystemUser known = systemUser();
  const std::filesystem::path set = pathInVariable("HOME");
  const std::filesystem::path& home = set.empty() ? known.home : set;
  return {known.name, folderOr("XDG_DATA_HOME", home, ".local/share"),
          folderOr("XDG_DOCUMENTS_DIR", home, "Documents")};
}

QNScopedClock::QNScopedClock(std::uint64_t seconds) : _before(settings().clock) {
  setSeconds(seconds);
}
QNScopedClock::~QNScopedClock() {
  settings().clock = std::move(_before);
}
void QNScopedClock::setSeconds(std::uint64_t seconds) {
  settings().clock = [seconds] { return seconds; };
}

QNScopedSteadyClock::QNScopedSteadyClock(std::function<double()> clock)
    : _before(std::exchange(settings().steadyClock, std::move(clock))) {}
QNScopedSteadyClock::~QNScopedSteadyClock() {
  settings().steadyClock = std::move(_before);
}

QNScopedRandom::QNScopedRandom(Source source)
    : _before(std::exchange(settings().random, std::move(source))) {}
QNScopedRandom::~QNScopedRandom() {
  settings().random = std::move(_before);
}
const QNScopedRandom::Source& scopedRandomSource() {
  return settings().random;
}

QNScopedLocale::QNScopedLocale(std::string tag)
    : _before(std::exchange(settings().locale, std::move(tag))) {}
QNScopedLocale::~QNScopedLocale() {
  settings().locale = std::move(_before);
}

QNScopedHostName::QNScopedHostName(std::string name)
    : _before(std::exchange(settings().hostName, std::move(name))) {}
QNScopedHostName::~QNScopedHostName() {
  settings().hostName = std::move(_before);
}

QNScopedUser::QNScopedUser(QNUser user)
    : _before(std::exchange(settings().user, std::move(user))) {}
QNScopedUser::~QNScopedUser() {
  settings().user = std::move(_before);
}

QNScopedTimeZone::QNScopedTimeZone(std::string name)
    : _before(std::exchange(settings().timeZone, std::move(name))) {}
QNScopedTimeZone::~QNScopedTimeZone() {
  settings().timeZone = std::move(_before);
}

}  // namespace quillon
