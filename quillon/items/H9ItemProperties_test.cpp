#include "quillon/items/H9ItemProperties.h"

#include <gmock/gmock.h>

#include "quillon/platform/archive/QNKeyedArchiver.h"

namespace quillon {
namespace {

std::shared_ptr<H9ItemProperties> propertiesIn(ByteView archive) {
  constexpr QNDecodableClass classes[] = {
      {"H9ItemProperties", [](QNDecoder& coder) -> std::shared_ptr<QNCoding> {
         return std::make_shared<H9ItemProperties>(coder);
       }}};
  const auto read = QNKeyedUnarchiver::unarchivedObjectOfClasses(classes, archive);
  return read.ok() ? std::dynamic_pointer_cast<H9ItemProperties>(read.value()) : nullptr;
}

TEST(H9ItemProperties, AreWrittenInTheStoredForm) {
  H9ItemProperties properties;
  properties.setItemVersion(7);
  properties.setLocalEditCount(2);
  properties.setRejectedBuildVersion(18'446'744'073'709'551'615u);
  properties.setRejectionReason("too old");
  properties.setChangerUUID("USER");

  const auto archive = QNKeyedArchiver::archivedDataWithRootObject(properties);

  ASSERT_TRUE(archive.ok());
  EXPECT_EQ(textOf(archive.value()),
            R"({"quillon-archive":1,"root":{"$class":"H9ItemProperties","itemVersion":7,)"
            R"("localEditCount":2,"rejectedBuildVersion":18446744073709551615,)"
            R"("rejectionReason":"too old","changerUUID":"USER"}})");
}

TEST(H9ItemProperties, AreReadWithEveryField) {
  const auto read = propertiesIn(
      bytesOf(R"({"quillon-archive":1,"root":{"$class":"H9ItemProperties","itemVersion":7,)"
              R"("localEditCount":2,"rejectedBuildVersion":9,)"
              R"("rejectionReason":"too old","changerUUID":"USER"}})"));

  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->itemVersion(), 7u);
  EXPECT_EQ(read->localEditCount(), 2u);
  EXPECT_EQ(read->rejectedBuildVersion(), 9u);
  EXPECT_EQ(read->rejectionReason(), "too old");
  EXPECT_EQ(read->changerUUID(), "USER");
}

TEST(H9ItemProperties, AreEmptyWhereNothingIsStored) {
  const auto read =
      propertiesIn(bytesOf(R"({"quillon-archive":1,"root":{"$class":"H9ItemProperties",)"
                           R"("itemVersion":"7","changerUUID":3}})"));

  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->itemVersion(), 0u);
  EXPECT_EQ(read->localEditCount(), 0u);
  EXPECT_EQ(read->rejectedBuildVersion(), 0u);
  EXPECT_EQ(read->rejectionReason(), std::nullopt);
  EXPECT_EQ(read->changerUUID(), std::nullopt);
}

TEST(H9ItemProperties, AreSetByEitherName) {
  H9ItemProperties properties;

  properties._setItemVersion(3);
  properties._setLocalEditCount(4);
  properties._setChangerUUID("USER");

  EXPECT_EQ(properties.itemVersion(), 3u);
  EXPECT_EQ(properties.localEditCount(), 4u);
  EXPECT_EQ(properties.changerUUID(), "USER");
}

}  // namespace
}  // namespace quillon
