#include "quillon/items/internal/QNItemTesting.h"

namespace quillon {
namespace {

constexpr std::string_view kSections =
    R"([{"name":"s1","title":"Section","fields":[{"k":"concealed","n":"1","v":"x","t":"pin",)"
    R"("a":{"guarded":"yes"},"future":[1,2.5E0,null]}]},{"name":"s2"}])";

TEST(QNItemSections, SurviveASaveByteForByte) {
  for (const auto& vault : {std::shared_ptr<QNGenericProfile>(localVault()),
                            std::shared_ptr<QNGenericProfile>(accountVault())}) {
    const auto row = newItem(vault);
    row->setDetailsObject(jsonValue(kSections), kDetailsSections);
    save(*row);
    const auto item = opened(*row, vault);
    const MRCapturingSink sink;
    item->setTitle("T");

    save(*item);

    ASSERT_NE(opened(*item, vault)->detailsObjectForKey(kDetailsSections), nullptr);
    EXPECT_TRUE(*opened(*item, vault)->detailsObjectForKey(kDetailsSections) ==
                jsonValue(kSections));
    EXPECT_EQ(jsonText(opened(*item, vault)->detailsObjectForKey(kDetailsSections)), kSections);
  }
}

TEST(QNItemSections, AreNotReadAsFields) {
  const auto item = newItem(localVault());
  item->setDetailsObject(jsonValue(kSections), kDetailsSections);

  EXPECT_EQ(item->findNonEmptyPasswordField(), nullptr);
  EXPECT_EQ(item->findNonEmptyConcealedField(), nullptr);
  EXPECT_EQ(item->findFastmailAliasField(), nullptr);
  EXPECT_FALSE(item->hasFileFields());
  EXPECT_FALSE(item->QNItem::password());
}

}  // namespace
}  // namespace quillon
