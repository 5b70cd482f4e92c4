#include "quillon/templates/QNTemplateManager.h"

#include <gtest/gtest.h>

#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

TEST(QNTemplateManager, FindsATemplateByItsCategoryUnderBothNames) {
  const QNScopedTemplate bank("101");
  const QNTemplateManager& manager = QNTemplateManager::sharedManager();

  EXPECT_EQ(manager.findTemplateWithUUID("101"), bank.added());
  EXPECT_EQ(manager.templateWithUUID("101"), bank.added());
}

TEST(QNTemplateManager, FindsNothingForAnUnknownOrAbsentCategory) {
  const QNScopedTemplate bank("101");

  EXPECT_EQ(QNTemplateManager::sharedManager().findTemplateWithUUID("102"), nullptr);
  EXPECT_EQ(QNTemplateManager::sharedManager().findTemplateWithUUID(std::nullopt), nullptr);
}

TEST(QNTemplateManager, ForgetsARemovedTemplate) {
  QNTemplateManager& manager = QNTemplateManager::sharedManager();
  manager.addTemplate(std::make_shared<QNTemplate>("101"));

  manager.removeTemplateWithUUID("101");

  EXPECT_EQ(manager.findTemplateWithUUID("101"), nullptr);
  EXPECT_TRUE(manager.templates().empty());
}

TEST(QNTemplateManager, ListsEachCategoryOnceWithItsLatestTemplate) {
  const QNScopedTemplate earlier("101");
  const QNScopedTemplate later("101");

  const auto all = QNTemplateManager::sharedManager().templates();

  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(all.front(), later.added());
}

TEST(QNTemplate, ShowsTheKeysOfItsNamesWithoutNames) {
  const QNTemplate nameless("101");

  EXPECT_EQ(nameless.localizedTitle(), "__title__");
  EXPECT_EQ(nameless.localizedPluralTitle(), "__pluralTitle__");
  EXPECT_FALSE(nameless.hidden());
}

}  // namespace
}  // namespace quillon
