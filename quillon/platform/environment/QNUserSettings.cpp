#include "quillon/platform/environment/QNUserSettings.h"

namespace quillon {

QNUserSettings& QNUserSettings::sharedSettings() {
  static QNUserSettings* const it = new QNUserSettings;
  return *it;
}

bool QNUserSettings::boolForKey(std::string_view key) const {
  const std::lock_guard lock(_mutex);
  const auto found = _values.find(key);
  return found != _values.end() && found->second;
}

void QNUserSettings::setBool(bool value, std::string_view forKey) {
  const std::lock_guard lock(_mutex);
  _values.insert_or_assign(std::string(forKey), value);
}

QNScopedUserSetting::QNScopedUserSetting(bool value, std::string_view forKey)
    : _key(forKey), _before(QNUserSettings::sharedSettings().boolForKey(forKey)) {
  QNUserSettings::sharedSettings().setBool(value, forKey);
}

QNScopedUserSetting::~QNScopedUserSetting() {
  QNUserSettings::sharedSettings().setBool(_before, _key);
}

}  // namespace quillon
