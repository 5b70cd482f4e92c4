#include "quillon/items/QNTombstone.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(QNTombstone, IsTrashedFromItsCreation) {
  const auto tombstone = std::make_shared<QNTombstone>(initNew);

  EXPECT_EQ(tombstone->className(), "QNTombstone");
  EXPECT_EQ(tombstone->categoryUUID(), "099");
  EXPECT_TRUE(tombstone->trashed());
  EXPECT_TRUE(tombstone->isTombstone());
}

TEST(QNTombstone, IsTrashedAsAShell) {
  const auto tombstone = std::make_shared<QNTombstone>(QNExisting{21});

  EXPECT_EQ(tombstone->categoryUUID(), "099");
  EXPECT_TRUE(tombstone->trashed());
  EXPECT_EQ(tombstone->oid(), 21u);
}

}  // namespace
}  // namespace quillon
