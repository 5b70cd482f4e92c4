#include "quillon/items/internal/QNItemTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(QNItemAccount, PropertiesAreMadeAtTheFirstRead) {
  const auto item = newItem(accountVault());

  H9ItemProperties* const properties = item->h9ItemProperties();

  ASSERT_NE(properties, nullptr);
  EXPECT_EQ(properties->itemVersion(), 0u);
  EXPECT_EQ(properties->localEditCount(), 0u);
  EXPECT_EQ(item->h9ItemProperties(), properties);
}

TEST(QNItemAccount, ALocalItemHasNoneOfItAndSaysSo) {
  const auto item = newItem(localVault());
  const MRCapturingSink sink;

  EXPECT_EQ(item->h9ItemProperties(), nullptr);
  EXPECT_EQ(item->encryptedExportOverview(), std::nullopt);
  EXPECT_EQ(item->encryptedExportDetails(), std::nullopt);

  EXPECT_THAT(errors(sink),
              ElementsAre("Unsupported profile type: 2", "Unsupported profile type: 2",
                          "Unsupported profile type: 2"));
}

TEST(QNItemAccount, AnItemThatWasNotExportedHasNoExport) {
  const auto item = newItem(accountVault());
  const MRCapturingSink sink;

  EXPECT_EQ(item->encryptedExportOverview(), std::nullopt);
  EXPECT_EQ(item->encryptedExportDetails(), std::nullopt);

  EXPECT_THAT(errors(sink), IsEmpty());
}

}  // namespace
}  // namespace quillon
