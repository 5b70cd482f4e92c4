#include "quillon/files/H9Document.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(H9Document, HasTheDocumentCategoryFromItsCreation) {
  const auto document = std::make_shared<H9Document>(initNew);

  EXPECT_EQ(document->className(), "H9Document");
  EXPECT_EQ(document->categoryUUID(), "006");
}

TEST(H9Document, HasTheDocumentCategoryAsAShell) {
  const auto document = std::make_shared<H9Document>(QNExisting{21});

  EXPECT_EQ(document->categoryUUID(), "006");
  EXPECT_EQ(document->oid(), 21u);
}

}  // namespace
}  // namespace quillon
