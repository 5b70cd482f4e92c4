#include "store/internal/QNMergeRest.h"

#include <gmock/gmock.h>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemStringField.h"
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

// It would go with the title, when somebody settles that conflict.
TEST_F(QNMergeRestOfALogin, ATitleThatLostStandsForNoUsernameInALaterMerge) {
  const auto joined = login("title"), earlier = login("lost");
  QNMergeRest(*earlier).addTo(*joined);
  for (int i = 0; i < 2; ++i) {
    const auto other = login("title");
    other->setUsername("lost");
    ASSERT_EQ(joined->mergeWithConflict(other), joined);
  }

  const auto section = joined->findSectionWithName("conflicts");
  ASSERT_EQ(section->fields().size(), 2u);
  EXPECT_EQ(section->fields()[0]->identifier(), "overview.title_conflict_1");
  EXPECT_NE(section->fields()[1]->identifier(), "overview.title_conflict_2");
  EXPECT_TRUE(section->fields()[1]->stringValue()->equals("lost"));
}

TEST_F(QNMergeRestOfALogin, ATitleThatLostStandsForNoFieldInALaterMerge) {
  const auto joined = login("title"), earlier = login("lost"), other = login("title");
  QNMergeRest(*earlier).addTo(*joined);
  for (const char* const value : {"other", "lost"}) {
    const auto nameless = std::make_shared<QNItemStringField>();
    nameless->setIdentifier(std::nullopt);
    nameless->setValue(value);
    other->fieldSectionWithName("s", "Section")->addField(nameless);
  }

  ASSERT_EQ(joined->mergeWithConflict(other), joined);

  const auto section = joined->findSectionWithName("s");
  ASSERT_NE(section, nullptr);
  EXPECT_EQ(section->fields().size(), 2u);
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
