#include "quillon/vaults/internal/QNActionTable.h"

#include "quillon/vaults/internal/QNTestServerProfile.h"

namespace quillon {
namespace {

using Masks = std::vector<std::uint64_t>;

// The masks that are asked for an action while all before `refused` are granted.
Masks askedFor(const QNActionTable& table, std::uint32_t action, std::uint64_t refused = 0) {
  Masks asked;
  permitsAction(table, action, [&asked, refused](std::uint64_t mask) {
    asked.push_back(mask);
    return mask != refused;
  });
  return asked;
}

struct ActionCase {
  std::uint32_t action;
  Masks local, account;
};
class QNActionTableRows : public testing::TestWithParam<ActionCase> {};

TEST_P(QNActionTableRows, AskMaskByMaskInOrder) {
  EXPECT_EQ(askedFor(kLocalVaultActions, GetParam().action), GetParam().local);
  EXPECT_EQ(askedFor(kAccountVaultActions, GetParam().action), GetParam().account);
}

TEST_P(QNActionTableRows, NeedEveryMaskAndAskNoneAfterARefusal) {
  const Masks& needed = GetParam().account;
  for (auto refused = needed.begin(); refused != needed.end(); ++refused) {
    EXPECT_EQ(askedFor(kAccountVaultActions, GetParam().action, *refused),
              Masks(needed.begin(), refused + 1));
    EXPECT_FALSE(permitsAction(kAccountVaultActions, GetParam().action,
                               [refused](std::uint64_t mask) { return mask != *refused; }));
  }
}

TEST_P(QNActionTableRows, AreThoseOfAnAccountVault) {
  QNTestServerProfile vault;
  for (std::uint64_t lacking = 1; lacking != 0; lacking <<= 1) {
    vault.setPermissions(~lacking);
    bool isNeeded = false;
    for (const std::uint64_t mask : GetParam().account) isNeeded |= (mask & lacking) != 0;

    EXPECT_EQ(vault.hasPermissionToPerformAction(GetParam().action), !isNeeded) << lacking;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Actions, QNActionTableRows,
    testing::Values(ActionCase{1, {0x100000}, {0x100000}}, ActionCase{2, {0x80}, {0x80}},
                    ActionCase{3, {0x100000, 0x40}, {0x100000, 0x40}},
                    ActionCase{4, {0x80}, {0x80}}, ActionCase{5, {0x100}, {0x100}},
                    ActionCase{6, {0x40}, {0x40}}, ActionCase{7, {0x200}, {0x200}},
                    ActionCase{8, {2}, {2}}, ActionCase{9, {0x40}, {2}},
                    ActionCase{10, {0x300}, {2}}, ActionCase{11, {0x80}, {0x80}},
                    ActionCase{12, {0x80, 0x10, 0x400}, {0x80, 0x10, 0x400}},
                    ActionCase{13, {0x100000, 0x10, 0x400}, {0x100000, 0x10, 0x400}},
                    ActionCase{
                        14, {0x800000, 0x100000, 0x10, 0x400}, {0x800000, 0x100000, 0x10, 0x400}},
                    ActionCase{15, {0x100000, 0x400}, {0x10, 0x100000}}));

TEST(QNActionTable, PermitsNothingOutsideItsNumbers) {
  for (const std::uint32_t action : {0u, 16u, 4294967295u}) {
    EXPECT_FALSE(permitsAction(kLocalVaultActions, action, [](std::uint64_t) { return true; }));
    EXPECT_TRUE(askedFor(kLocalVaultActions, action).empty());
    EXPECT_FALSE(QNTestServerProfile().hasPermissionToPerformAction(action));
  }
}

TEST(QNActionTable, ARowEndsAtItsFirstZero) {
  Masks asked;

  const bool isPermitted = permitsRow({1, 0, 2, 0}, [&asked](std::uint64_t mask) {
    asked.push_back(mask);
    return true;
  });

  EXPECT_TRUE(isPermitted);
  EXPECT_EQ(asked, Masks{1});
}

TEST(QNTestServerProfile, RefusesActionsWhileLockedAndActionTenByItsType) {
  QNTestServerProfile vault;
  EXPECT_TRUE(vault.hasPermissionToPerformAction(10));

  vault.setVaultType("P");
  EXPECT_FALSE(vault.hasPermissionToPerformAction(10));
  EXPECT_TRUE(vault.hasPermissionToPerformAction(9));
  vault.lock();

  for (std::uint32_t action = 0; action < 18; ++action) {
    EXPECT_FALSE(vault.hasPermissionToPerformAction(action)) << action;
  }
}

TEST(QNTestServerProfile, KeepsItemIconsOnAServerAndNotLocally) {
  const QNTestServerProfile vault;

  EXPECT_TRUE(vault.supportsFeature(kFeatureServerIcons));
  EXPECT_FALSE(vault.supportsFeature(kFeatureLocalIcons));
}

}  // namespace
}  // namespace quillon
