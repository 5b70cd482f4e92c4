#include "quillon/objects/H9DatabaseObject.h"

#include <fmt/format.h>

#include "quillon/objects/internal/QNObjectsTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

class Account final : public H9DatabaseObject {
 public:
  explicit Account(QNNew) : H9DatabaseObject(initNew) {}
  explicit Account(QNExisting existing) : H9DatabaseObject(existing) {}
  explicit Account(QNDecoder& coder) : H9DatabaseObject(coder) {}
  std::string_view className() const override { return "Account"; }
};

TEST(H9DatabaseObject, ANewOneHasNoRowAndNoTimes) {
  const Account account(initNew);

  EXPECT_EQ(account.oid(), 0u);
  EXPECT_FALSE(account.hasOid());
  EXPECT_EQ(account.createdAt(), 0u);
  EXPECT_EQ(account.updatedAt(), 0u);
}

TEST(H9DatabaseObject, AnExistingOneHasItsRow) {
  const Account account(QNExisting{9});

  EXPECT_EQ(account.oid(), 9u);
  EXPECT_TRUE(account.hasOid());
}

TEST(H9DatabaseObject, BothSettersStoreTheRow) {
  Account account(initNew);

  account.setOid(4);
  EXPECT_EQ(account.oid(), 4u);
  account._setOid(5);
  EXPECT_EQ(account.oid(), 5u);
}

TEST(H9DatabaseObject, DescribesItselfByClassRowAndAddress) {
  const Account account(QNExisting{9});

  EXPECT_EQ(account.description(), fmt::format("<Account-9 {}>", fmt::ptr(&account)));
}

struct TimesCase {
  std::uint64_t createdAt, updatedAt, createdAtSaved, updatedAtSaved;
};
class H9DatabaseObjectTimes : public testing::TestWithParam<TimesCase> {};

TEST_P(H9DatabaseObjectTimes, AreFilledInAtASaveAndNeverMoved) {
  const QNScopedClock clock(1000);
  Account account(initNew);
  account.setCreatedAt(GetParam().createdAt);
  account.setUpdatedAt(GetParam().updatedAt);

  account.willSave();

  EXPECT_EQ(account.createdAt(), GetParam().createdAtSaved);
  EXPECT_EQ(account.updatedAt(), GetParam().updatedAtSaved);
}

INSTANTIATE_TEST_SUITE_P(Times, H9DatabaseObjectTimes,
                         testing::Values(TimesCase{0, 0, 1000, 1000}, TimesCase{0, 5, 1000, 5},
                                         TimesCase{3, 0, 3, 3}, TimesCase{3, 5, 3, 5}));

TEST(H9DatabaseObject, DidSaveChangesNothing) {
  Account account(QNExisting{9});

  account.didSave();

  EXPECT_EQ(account.oid(), 9u);
  EXPECT_EQ(account.createdAt(), 0u);
  EXPECT_EQ(account.updatedAt(), 0u);
}

TEST(H9DatabaseObject, ArchivesItsRowAndNotItsTimes) {
  Account account(QNExisting{9});
  account.setCreatedAt(1);
  account.setUpdatedAt(2);

  const std::string archive = archiveOf(account);

  EXPECT_EQ(archive, R"({"quillon-archive":1,"root":{"$class":"Account","oid":9}})");
}

TEST(H9DatabaseObject, ComesBackFromItsArchive) {
  const auto account = unarchived<Account>(
      "Account", R"({"quillon-archive":1,"root":{"$class":"Account","oid":18446744073709551615}})");

  EXPECT_EQ(account->oid(), 18446744073709551615u);
  EXPECT_EQ(account->createdAt(), 0u);
}

}  // namespace
}  // namespace quillon
