#include "cli/commands/QNKeptVaults.h"

#include <gtest/gtest.h>

#include "quillon/vaults/QNProfile.h"

namespace quillon {
namespace {

TEST(KeptVaults, AreLockedWhoeverElseHoldsThem) {
  const auto vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);
  const auto primary = QNProfile::initNewWithPassword(DEMO_PASSWORD);
  const auto open = std::make_shared<QNOpenVault>(nullptr, vault, primary);
  QNKeptVaults kept("/nowhere");
  kept.keep("work", open);
  ASSERT_TRUE(vault->isUnlocked());
  ASSERT_TRUE(primary->isUnlocked());

  kept.lock();

  EXPECT_TRUE(vault->isLocked());
  EXPECT_TRUE(primary->isLocked());
  EXPECT_TRUE(kept.isLocked());
}

}  // namespace
}  // namespace quillon
