#include "quillon/platform/environment/QNUserSettings.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(QNUserSettings, AreFalseUntilTheyAreSet) {
  QNUserSettings& settings = QNUserSettings::sharedSettings();

  EXPECT_FALSE(settings.boolForKey(QNPrefAdvancedHashSectionIsSortedFirst));
  EXPECT_FALSE(settings.boolForKey("no such setting"));
}

TEST(QNUserSettings, AreSetOneByOne) {
  QNUserSettings& settings = QNUserSettings::sharedSettings();

  settings.setBool(true, "a setting");
  EXPECT_TRUE(settings.boolForKey("a setting"));
  EXPECT_FALSE(settings.boolForKey("another setting"));

  settings.setBool(false, "a setting");
  EXPECT_FALSE(settings.boolForKey("a setting"));
}

TEST(QNScopedUserSetting, SetsOneAndPutsTheEarlierValueBack) {
  const QNUserSettings& settings = QNUserSettings::sharedSettings();
  const QNScopedUserSetting outer(true, "a setting");
  {
    const QNScopedUserSetting inner(false, "a setting");
    EXPECT_FALSE(settings.boolForKey("a setting"));
  }

  EXPECT_TRUE(settings.boolForKey("a setting"));
}

}  // namespace
}  // namespace quillon
