#include <gtest/gtest.h>

#include "quillon/platform/images/internal/QNNamedPictures.h"
#include "quillon/templates/H9Category.h"
#include "quillon/templates/QNCategory.h"
#include "quillon/templates/internal/QNTestCategories.h"

// The pictures are those of the resource folder: one that is asked for by name is the same object.

namespace quillon {
namespace {

std::shared_ptr<QNCategory> category(std::optional<std::string> uuid,
                                     std::optional<std::string> listIconName) {
  auto made = std::make_shared<QNCategory>(initNew);
  made->setUuid(std::move(uuid));
  made->setListIconName(std::move(listIconName));
  return made;
}

TEST(QNCategoryIcons, AreThoseOfItsNames) {
  const auto login = category("001", "type-login-list");
  login->setDetailIconName("type-login-details");

  EXPECT_TRUE(isPictureNamed(login->listIcon(), "type-login-list"));
  EXPECT_TRUE(isPictureNamed(login->detailIcon(), "type-login-details"));
  EXPECT_TRUE(isPictureNamed(login->menuIcon(), "type-login-source"));
  EXPECT_TRUE(isPictureNamed(login->touchBarIcon(), "type-login-dark-color"));
  EXPECT_TRUE(isPictureNamed(login->sourceIconForBackgroundStyle(1), "sidebar-login"));
  EXPECT_TRUE(
      isPictureNamed(login->sourceIconForBackgroundStyle(0), "sidebar-login-light-background"));
}

TEST(QNCategoryIcons, OnlyASidebarIconIsATemplate) {
  const auto login = category("001", "type-login-list");

  EXPECT_TRUE(login->sourceIconForBackgroundStyle(1)->isTemplate());
  EXPECT_FALSE(login->listIcon()->isTemplate());
  EXPECT_FALSE(login->menuIcon()->isTemplate());
}

TEST(QNCategoryIcons, FallBackOnTheListIconUnmarked) {
  const auto card = category("002", "type-visa-list");  // there is no sidebar picture of a brand

  EXPECT_TRUE(isPictureNamed(card->sourceIconForBackgroundStyle(1), "type-visa-list"));
  EXPECT_FALSE(card->sourceIconForBackgroundStyle(1)->isTemplate());
  EXPECT_TRUE(isPictureNamed(card->touchBarIcon(), "type-visa-list"));
}

TEST(QNCategoryIcons, WithoutAnIdentifierAreThoseOfAllItems) {
  const auto all = category(std::nullopt, std::nullopt);
  EXPECT_TRUE(isPictureNamed(all->menuIcon(), "type-generic-source"));

  EXPECT_TRUE(isPictureNamed(all->listIcon(), "type-allitems-list"));

  EXPECT_EQ(all->listIconName(), "type-allitems-list");
  EXPECT_TRUE(isPictureNamed(all->menuIcon(), "type-allitems-source"));
}

TEST(QNCategoryIcons, WithAnIdentifierAndNoNameAreNone) {
  EXPECT_EQ(category("001", std::nullopt)->listIcon(), nullptr);
  EXPECT_EQ(category("001", std::nullopt)->detailIcon(), nullptr);
  EXPECT_EQ(category("001", "no-such-list")->listIcon(), nullptr);
}

// Categories of an account

TEST(H9CategoryIcons, AreThoseOfTheSharedTemplate) {
  const QNScopedTemplates templates{
      R"({"uuid":"101","icons":{"list":"type-server-list","detail":"type-server-details"}})"};
  const auto bank = H9Category::initAdHocWithUUID("101");

  EXPECT_TRUE(isPictureNamed(bank->listIcon(), "type-server-list"));
  EXPECT_TRUE(isPictureNamed(bank->detailIcon(), "type-server-details"));
  EXPECT_TRUE(isPictureNamed(bank->menuIcon(), "type-server-source"));
  EXPECT_TRUE(isPictureNamed(bank->touchBarIcon(), "type-server-dark-color"));
  EXPECT_TRUE(isPictureNamed(bank->sourceIconForBackgroundStyle(1), "sidebar-server"));
}

TEST(H9CategoryIcons, WithoutATemplateAreThoseOfTheIdentifier) {
  const QNScopedTemplates none;

  EXPECT_TRUE(isPictureNamed(H9Category::initAdHocWithUUID("001")->listIcon(), "type-login-list"));
  EXPECT_TRUE(
      isPictureNamed(H9Category::initAdHocWithUUID("001")->detailIcon(), "type-login-details"));
  EXPECT_TRUE(
      isPictureNamed(H9Category::initAdHocWithUUID("zzz")->listIcon(), "type-generic-list"));
  EXPECT_TRUE(
      isPictureNamed(H9Category::initAdHocWithUUID("zzz")->detailIcon(), "type-generic-detail"));
}

TEST(H9CategoryIcons, AreTemplatesAlsoWhereTheListIconStandsIn) {
  const QNScopedTemplates templates{R"({"uuid":"002","icons":{"list":"type-visa-list"}})"};
  const auto card = H9Category::initAdHocWithUUID("002");

  const auto sidebar = card->sourceIconForBackgroundStyle(1);

  EXPECT_TRUE(isPictureNamed(sidebar, "type-visa-list"));
  EXPECT_TRUE(sidebar->isTemplate());
  EXPECT_TRUE(card->menuIcon()->isTemplate());
  EXPECT_FALSE(card->listIcon()->isTemplate());
}

TEST(QNCategoryIcons, OfAMenuFallBackOnTheListIconToo) {
  const auto odd = category("001", "sidebar-login");  // it derives its own name

  EXPECT_TRUE(isPictureNamed(odd->menuIcon(), "sidebar-login"));
  const auto none = category("001", std::nullopt);
  EXPECT_TRUE(isPictureNamed(none->menuIcon(), "type-generic-source"));
  EXPECT_TRUE(isPictureNamed(none->touchBarIcon(), "type-allitems-dark-color"));
  EXPECT_FALSE(none->touchBarIcon()->isTemplate());
}

TEST(H9CategoryIcons, OfDetailsFallBackOnTheListIcon) {
  const QNScopedTemplates templates{
      R"({"uuid":"101","icons":{"list":"type-server-list","detail":"no-such-picture"}})"};

  EXPECT_TRUE(
      isPictureNamed(H9Category::initAdHocWithUUID("101")->detailIcon(), "type-server-list"));
}

TEST(H9CategoryIcons, OfATouchBarAreTemplates) {
  const QNScopedTemplates templates{R"({"uuid":"002","icons":{"list":"type-visa-list"}})"};

  EXPECT_TRUE(H9Category::initAdHocWithUUID("001")->touchBarIcon()->isTemplate());
  const auto fallback = H9Category::initAdHocWithUUID("002")->touchBarIcon();
  EXPECT_TRUE(isPictureNamed(fallback, "type-visa-list"));
  EXPECT_TRUE(fallback->isTemplate());
}

}  // namespace
}  // namespace quillon
