#include "store/internal/QNMergeRest.h"

#include <gmock/gmock.h>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemField.h"
#include "quillon/platform/json/QNJson.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

class QNMergeRestOfALogin : public ::testing::Test {
 protected:
  std::shared_ptr<QNItem> login(std::string_view title) { return makeLogin(vault, title); }
  const std::shared_ptr<QNProfile> vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);
};

TEST_F(QNMergeRestOfALogin, AddsATitleThatLostOnce) {
  const auto joined = login("later"), earlier = login("earlier");

  QNMergeRest(*earlier).addTo(*joined);
  QNMergeRest(*earlier).addTo(*joined);

  EXPECT_EQ(joined->title(), "later");
  const auto section = joined->findSectionWithName("conflicts");
  ASSERT_EQ(section->fields().size(), 1u);
  EXPECT_EQ(section->fields()[0]->identifier(), "overview.title_conflict_1");
  EXPECT_TRUE(section->fields()[0]->stringValue()->equals("earlier"));
}

TEST_F(QNMergeRestOfALogin, GivesATitleToAnItemThatHasNone) {
  const auto joined = login("later"), earlier = login("earlier");
  joined->setTitle(std::nullopt);

  QNMergeRest(*earlier).addTo(*joined);

  EXPECT_EQ(joined->title(), "earlier");
  EXPECT_FALSE(joined->hasSectionForConflicts());
}

TEST_F(QNMergeRestOfALogin, ReplacesNothingAndAddsNothingThatIsDerived) {
  const auto joined = login("same"), earlier = login("same");
  joined->setDetailsObject(Json("joined"), "member");
  earlier->setDetailsObject(Json("earlier"), "member");
  earlier->setDetailsObject(Json("earlier"), kDetailsPassword);
  earlier->setOverviewObject(Json(9), QNItemOverviewPasswordBitsEntropyKey);

  QNMergeRest(*earlier).addTo(*joined);

  EXPECT_EQ(*joined->detailsObjectForKey("member"), Json("joined"));
  EXPECT_EQ(joined->detailsObjectForKey(kDetailsPassword), nullptr);
  EXPECT_EQ(joined->overviewObjectForKey(QNItemOverviewPasswordBitsEntropyKey), nullptr);
  EXPECT_FALSE(joined->hasSectionForConflicts());
}

}  // namespace
}  // namespace quillon
