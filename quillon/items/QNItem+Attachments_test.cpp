#include "quillon/fields/QNItemField.h"
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

TEST(QNItemAttachments, OfAnAccountItemAreItsFileFieldsInOrder) {
  const auto item = newItem(accountVault());
  item->setDetailsObject(jsonValue(R"([{"fields":[{"k":"file","n":"1"},{"k":"string","n":"2"}]},)"
                                   R"({"fields":[{"k":"file","n":"3"}]}])"),
                         kDetailsSections);

  const auto files = item->h9Attachments();

  ASSERT_EQ(files.size(), 2u);
  EXPECT_EQ(files[0]->identifier(), "1");
  EXPECT_EQ(files[1]->identifier(), "3");
  EXPECT_EQ(item->numberOfAttachments(), 2);
  EXPECT_TRUE(item->hasFileFields());
}

}  // namespace
}  // namespace quillon
