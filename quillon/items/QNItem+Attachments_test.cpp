#include "quillon/items/internal/QNItemTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(QNItemAttachments, MustBeLoaded) {
  const auto vault = localVault();
  const auto item = std::make_shared<QNSampleItem>(QNExisting{1});
  item->setProfile(vault);
  const MRCapturingSink sink;

  EXPECT_TRUE(item->attachmentsIncludeTombstones(true).empty());
  EXPECT_TRUE(item->attachmentsAwaitingBurial().empty());

  EXPECT_THAT(assertions(sink),
              ElementsAre("Item attachments must be loaded", "Item attachments must be loaded"));
}

TEST(QNItemAttachments, MayBeAskedWhileLoadingAndWhenLoaded) {
  const auto item = newItem(localVault());
  const MRCapturingSink sink;

  item->markLoadingAttachments();
  EXPECT_TRUE(item->attachmentsIncludeTombstones(false).empty());
  item->markAttachmentsLoaded();
  EXPECT_TRUE(item->attachmentsAwaitingBurial().empty());

  EXPECT_THAT(assertions(sink), IsEmpty());
}

TEST(QNItemAttachments, OfAnAccountItemAreNoneWithoutACheck) {
  const auto item = std::make_shared<QNSampleItem>(QNExisting{1});
  item->setProfile(accountVault());
  const MRCapturingSink sink;

  EXPECT_TRUE(item->attachmentsIncludeTombstones(true).empty());
  EXPECT_TRUE(item->attachmentsAwaitingBurial().empty());

  EXPECT_THAT(assertions(sink), IsEmpty());
}

TEST(QNItemAttachments, AreCountedInTheRowOfALocalItemAndInTheFieldsOfAnAccountItem) {
  const auto local = newItem(localVault());
  local->setNumberOfAttachments(3);
  const auto account = newItem(accountVault());
  account->setNumberOfAttachments(3);

  EXPECT_EQ(local->numberOfAttachments(), 3);
  EXPECT_EQ(account->numberOfAttachments(), 0);
  EXPECT_TRUE(account->h9Attachments().empty());
}

}  // namespace
}  // namespace quillon
