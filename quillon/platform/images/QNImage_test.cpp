#include "quillon/platform/images/QNImage.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

const Bytes kPng{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n', 'x'};
const Bytes kJpeg{0xff, 0xd8, 0xff, 0xe0};

TEST(QNImage, KeepsTheBytesOfAPicture) {
  for (const Bytes& encoded : {kPng, kJpeg}) {
    const auto image = QNImage::imageWithData(encoded);

    ASSERT_NE(image, nullptr);
    EXPECT_EQ(toBytes(image->data()), encoded);
  }
}

TEST(QNImage, IsNothingForOtherBytes) {
  EXPECT_EQ(QNImage::imageWithData({}), nullptr);
  EXPECT_EQ(QNImage::imageWithData(bytesOf("GIF89a....")), nullptr);
  EXPECT_EQ(QNImage::imageWithData(bytesOf("<svg>")), nullptr);
}

TEST(QNImage, IsNothingForABeginningCutShort) {
  EXPECT_EQ(QNImage::imageWithData(ByteView(kPng).first(7)), nullptr);
  EXPECT_EQ(QNImage::imageWithData(ByteView(kJpeg).first(2)), nullptr);
}

TEST(QNImage, IsNothingForABeginningThatTextTransferBroke) {
  Bytes broken = kPng;
  broken[4] = '\n';

  EXPECT_EQ(QNImage::imageWithData(broken), nullptr);
}

}  // namespace
}  // namespace quillon
