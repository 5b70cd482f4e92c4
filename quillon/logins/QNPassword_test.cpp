#include "quillon/logins/QNPassword.h"

#include <gtest/gtest.h>

#include "quillon/logins/internal/QNTestRows.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {
namespace {

std::shared_ptr<QNPassword> passwordIn(const std::shared_ptr<QNProfile>& vault) {
  auto item = std::make_shared<QNPassword>(initNew);
  item->setProfile(vault);
  item->didLoad();
  return item;
}

class QNPasswordTest : public testing::Test {
 protected:
  std::shared_ptr<QNProfile> _vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);
};

TEST_F(QNPasswordTest, HasItsCategoryAndItsFillContextFromItsCreation) {
  const auto item = std::make_shared<QNPassword>(initNew);

  EXPECT_EQ(item->className(), "QNPassword");
  EXPECT_EQ(item->categoryUUID(), "005");
  EXPECT_EQ(item->fillObjectContext(), "new-password");
}

TEST_F(QNPasswordTest, HasItsCategoryAndItsFillContextAsAShell) {
  const auto item = std::make_shared<QNPassword>(QNExisting{21});

  EXPECT_EQ(item->categoryUUID(), "005");
  EXPECT_EQ(item->fillObjectContext(), "new-password");
  EXPECT_EQ(item->oid(), 21u);
}

TEST_F(QNPasswordTest, HasNoPasswordAtFirst) {
  const auto item = passwordIn(_vault);

  EXPECT_FALSE(item->password());
  EXPECT_FALSE(item->clipboardValue());
  EXPECT_FALSE(item->hasPassword());
}

TEST_F(QNPasswordTest, KeepsItsPasswordInItsDetails) {
  const auto item = passwordIn(_vault);

  item->setPassword("pw");

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(*item->detailsObjectForKey("password"), Json("pw"));
  EXPECT_TRUE(item->password()->equals("pw"));
  EXPECT_TRUE(item->clipboardValue()->equals("pw"));
}

TEST_F(QNPasswordTest, DirtiesNothingForAnEqualPassword) {
  const auto item = passwordIn(_vault);
  item->setPassword("pw");
  item->didSave();

  item->setPassword("pw");

  EXPECT_FALSE(item->dirtyRow());
}

TEST_F(QNPasswordTest, RemovesItsPasswordForNothing) {
  const auto item = passwordIn(_vault);
  item->setPassword("pw");

  item->setPassword(std::nullopt);

  EXPECT_EQ(item->detailsObjectForKey("password"), nullptr);
  EXPECT_FALSE(item->password());
}

TEST_F(QNPasswordTest, ReadsAPasswordThatIsNoTextAsNone) {
  const auto item = passwordIn(_vault);

  item->setDetailsObject(Json(1234), "password");

  EXPECT_FALSE(item->password());
}

TEST_F(QNPasswordTest, ComesBackFromItsRow) {
  const auto item = passwordIn(_vault);
  item->setPassword("pw");

  const auto reloaded = itemFromTestRow(saveInTestRow(*item), _vault);

  EXPECT_EQ(reloaded->className(), "QNPassword");
  ASSERT_TRUE(reloaded->password());
  EXPECT_TRUE(reloaded->password()->equals("pw"));
}

}  // namespace
}  // namespace quillon
