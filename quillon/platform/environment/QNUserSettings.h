#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace quillon {

/// Do titles that begin with a digit, a punctuation mark or a symbol stand among the others in a
/// sorted list, and not behind them?
inline constexpr std::string_view QNPrefAdvancedHashSectionIsSortedFirst =
    "QNPrefAdvancedHashSectionIsSortedFirst";

/// The user's settings. The program that uses the library sets and keeps them: nothing is stored
/// here beyond the process. Any thread may use it.
class QNUserSettings final {
 public:
  static QNUserSettings& sharedSettings();

  /// False for what nobody has set.
  [[nodiscard]] bool boolForKey(std::string_view key) const;
  void setBool(bool value, std::string_view forKey);

 private:
  QNUserSettings() = default;
  mutable std::mutex _mutex;  // guards _values
  std::map<std::string, bool, std::less<>> _values;
};

/// Sets one for its lifetime, then puts the earlier value back. For tests.
class QNScopedUserSetting final {
 public:
  QNScopedUserSetting(bool value, std::string_view forKey);
  ~QNScopedUserSetting();
  QNScopedUserSetting(const QNScopedUserSetting&) = delete;
  QNScopedUserSetting& operator=(const QNScopedUserSetting&) = delete;

 private:
  std::string _key;
  bool _before;
};

}  // namespace quillon
