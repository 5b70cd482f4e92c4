// What a password leaves in memory that nobody owns any more: nothing.

#include <gtest/gtest.h>

#include "quillon/fields/QNItemField.h"
#include "quillon/items/QNQuickAccessShortcut.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"
#include "quillon/platform/internal/QNMemoryWatch.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {
namespace {

// The first fits into a short text inside a JSON value, the second doesn't.
constexpr std::string_view kShort = "s3cret-Pw-9";
constexpr std::string_view kLong = "long-secret-that-no-short-text-buffer-holds-0123456789";

class QNLoginMemory : public testing::TestWithParam<std::string_view> {
 protected:
  std::shared_ptr<QNProfile> _vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);
};

TEST(QNLoginMemoryWatch, SeesATextThatIsLeftBehind) {
  const QNFreedBlockWatch watch(kLong);

  { const std::string careless(kLong); }

  EXPECT_EQ(watch.found(), 1u);
}

TEST_P(QNLoginMemory, ALoginLeavesNoPasswordOnTheHeap) {
  const QNFreedBlockWatch watch(GetParam());

  {
    const auto login = std::make_shared<QNLogin>(initNew);
    login->setProfile(_vault);
    login->setPassword(GetParam());
    login->willSave();
    ASSERT_TRUE(login->password()->equals(GetParam()));
    login->setPassword("another");
    login->willSave();
  }

  EXPECT_EQ(watch.found(), 0u);
}

TEST_P(QNLoginMemory, AStoredLoginLeavesNoPasswordOnTheHeap) {
  const auto login = std::make_shared<QNLogin>(initNew);
  login->setProfile(_vault);
  login->setPassword(GetParam());
  login->willSave();
  const QNFreedBlockWatch watch(GetParam());

  login->setDetailsData(login->detailsData());
  ASSERT_TRUE(login->password()->equals(GetParam()));
  login->setDetailsData(std::nullopt);

  EXPECT_EQ(watch.found(), 0u);
}

TEST_P(QNLoginMemory, ALoginLeavesNoPasswordOnTheStack) {
  const auto login = std::make_shared<QNLogin>(initNew);
  login->setProfile(_vault);

  const std::size_t found = remainsOnStack(GetParam(), [&] {
    login->setPassword(GetParam());
    login->willSave();
    login->setDetailsData(login->detailsData());
    static_cast<void>(login->password());
  });

  EXPECT_EQ(found, 0u);
}

TEST_P(QNLoginMemory, AFormFieldMadeOfPartsLeavesNoValueBehind) {
  const Json objects[] = {Json(JsonArray{Json(GetParam())}), Json(GetParam()), Json("another")};
  const std::string_view keys[] = {"x", "value", "value"};  // the last text replaces the secret
  const QNFreedBlockWatch watch(GetParam());
  std::optional<QNLoginField> field;  // goes later: its end would write over what its making left

  const std::size_t found = remainsOnStack(GetParam(), [&] { field.emplace(objects, keys); });
  field.reset();

  EXPECT_EQ(found, 0u);
  EXPECT_EQ(watch.found(), 0u);
}

TEST_P(QNLoginMemory, APasswordItemLeavesNoPasswordBehind) {
  const QNFreedBlockWatch watch(GetParam());

  const std::size_t found = remainsOnStack(GetParam(), [&] {
    const auto item = std::make_shared<QNPassword>(initNew);
    item->setProfile(_vault);
    item->setPassword(GetParam());
    item->willSave();
    static_cast<void>(item->password());
    item->setPassword(std::nullopt);
  });

  EXPECT_EQ(found, 0u);
  EXPECT_EQ(watch.found(), 0u);
}

template <class Item>
void expectNothingLeftByQuickAccess(const std::shared_ptr<QNProfile>& vault,
                                    std::string_view password) {
  const auto item = std::make_shared<Item>(initNew);
  item->setProfile(vault);
  item->setPassword(password);
  const QNFreedBlockWatch watch(password);

  const std::size_t found = remainsOnStack(password, [&item] {
    ASSERT_EQ(item->quickAccessFields().size(), 1u);
    ASSERT_NE(item->itemFieldForPassword(), nullptr);
  });

  EXPECT_EQ(found, 0u);
  EXPECT_EQ(watch.found(), 0u);
}

TEST_P(QNLoginMemory, QuickAccessToALoginLeavesNoPasswordBehind) {
  expectNothingLeftByQuickAccess<QNLogin>(_vault, GetParam());
}

TEST_P(QNLoginMemory, QuickAccessToAPasswordItemLeavesNoPasswordBehind) {
  expectNothingLeftByQuickAccess<QNPassword>(_vault, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Lengths, QNLoginMemory, testing::Values(kShort, kLong),
                         [](const auto& tested) {
                           return tested.param == kShort ? "Short" : "Long";
                         });

}  // namespace
}  // namespace quillon
