#include "quillon/platform/images/internal/QNImageHeader.h"

#include <gtest/gtest.h>

#include "quillon/platform/images/internal/QNTestPictures.h"

namespace quillon {
namespace {

std::string faultOf(ByteView encoded, QNImageFormat format) {
  const auto header = readImageHeader(encoded, format);
  return header ? "" : header.error().message;
}

QNSize sizeOf(ByteView encoded, QNImageFormat format) {
  const auto header = readImageHeader(encoded, format);
  EXPECT_TRUE(header.ok());
  return header.ok() ? header.value().size : QNSize{};
}

// A JPEG's beginning: a segment before the frame, then the frame of 640 by 480.
const Bytes kJPEG{0xff, 0xd8, 0xff, 0xe0, 0,    4, 'J',  'F', 0xff, 0xff, 0xc0,
                  0,    11,   8,    1,    0xe0, 2, 0x80, 1,   1,    0x11, 0};

TEST(QNImageHeader, KnowsAFormatByItsFirstBytes) {
  EXPECT_EQ(imageFormatOf(pngOf(1, 1, 0)), QNImageFormat::png);
  EXPECT_EQ(imageFormatOf(kJPEG), QNImageFormat::jpeg);
  for (const char* text :
       {"<svg/>", " \r\n\t<svg/>", "\xef\xbb\xbf<svg/>", "<?xml?>", "<!-- -->", "<!DOCTYPE svg>"}) {
    EXPECT_EQ(imageFormatOf(bytesOf(text)), QNImageFormat::svg) << text;
  }
}

TEST(QNImageHeader, KnowsNoOtherFormat) {
  Bytes brokenByTextTransfer = pngOf(1, 1, 0);
  brokenByTextTransfer[4] = '\n';
  EXPECT_EQ(imageFormatOf(brokenByTextTransfer), std::nullopt);
  EXPECT_EQ(imageFormatOf(ByteView(pngOf(1, 1, 0)).first(7)), std::nullopt);
  EXPECT_EQ(imageFormatOf(ByteView(kJPEG).first(2)), std::nullopt);
  for (const char* text : {"", "GIF89a....", "RIFF....WEBP", "%PDF-1.4", "<html>", "svg"}) {
    EXPECT_EQ(imageFormatOf(bytesOf(text)), std::nullopt) << text;
  }
}

TEST(QNImageHeader, ReadsTheSizeOfAPNG) {
  EXPECT_EQ(sizeOf(pngOf(3, 2, 0), QNImageFormat::png), (QNSize{3, 2}));
  EXPECT_EQ(sizeOf(pngBeginning(100'000, 70'000), QNImageFormat::png), (QNSize{100'000, 70'000}));
}

TEST(QNImageHeader, RefusesABrokenPNG) {
  const Bytes png = pngBeginning(3, 2);
  for (std::size_t length = 8; length < png.size(); ++length) {
    EXPECT_NE(faultOf(ByteView(png).first(length), QNImageFormat::png), "") << length;
  }
  EXPECT_EQ(faultOf(pngBeginning(0, 2), QNImageFormat::png), "it has no width or no height");
  EXPECT_EQ(faultOf(pngBeginning(2, 0), QNImageFormat::png), "it has no width or no height");
  Bytes otherChunkFirst = png;
  otherChunkFirst[12] = 'X';
  EXPECT_EQ(faultOf(otherChunkFirst, QNImageFormat::png), "a PNG that doesn't begin with IHDR");
}

TEST(QNImageHeader, ReadsTheSizeOfAJPEG) {
  EXPECT_EQ(sizeOf(kJPEG, QNImageFormat::jpeg), (QNSize{640, 480}));
}

TEST(QNImageHeader, TakesTablesForNoFrame) {
  for (const std::uint8_t table : Bytes{0xc4, 0xc8, 0xcc}) {
    Bytes jpeg{0xff, 0xd8, 0xff, table, 0, 10, 8, 0, 9, 0, 9, 1, 1, 1};
    jpeg.insert(jpeg.end(), kJPEG.begin() + 2, kJPEG.end());
    EXPECT_EQ(sizeOf(jpeg, QNImageFormat::jpeg), (QNSize{640, 480})) << int{table};
  }
}

TEST(QNImageHeader, RefusesABrokenJPEG) {
  for (std::size_t length = 3; length < kJPEG.size(); ++length) {
    EXPECT_NE(faultOf(ByteView(kJPEG).first(length), QNImageFormat::jpeg), "") << length;
  }
  EXPECT_EQ(faultOf(Bytes{0xff, 0xd8, 0xff, 0xda, 0, 8}, QNImageFormat::jpeg),
            "a JPEG that tells no size");
  EXPECT_EQ(faultOf(Bytes{0xff, 0xd8, 0xff, 0xe0, 0, 1, 0, 0}, QNImageFormat::jpeg),
            "a JPEG header cut short");
  EXPECT_EQ(faultOf(Bytes{0xff, 0xd8, 0xff, 0xe0, 0, 2, 0, 0}, QNImageFormat::jpeg),
            "a JPEG of broken segments");
  EXPECT_EQ(faultOf(Bytes{0xff, 0xd8, 0xff, 0xc0, 0, 7, 8, 0, 1, 0, 1}, QNImageFormat::jpeg),
            "a JPEG frame cut short");
  Bytes withoutHeight = kJPEG;
  withoutHeight[14] = withoutHeight[15] = 0;
  EXPECT_EQ(faultOf(withoutHeight, QNImageFormat::jpeg), "it has no width or no height");
}

TEST(QNImageHeader, RefusesWhatIsTooLong) {
  Bytes png = pngOf(1, 1, 0);
  png.resize(kMaxImageBytes, 0);
  EXPECT_EQ(faultOf(png, QNImageFormat::png), "");
  png.push_back(0);
  EXPECT_EQ(faultOf(png, QNImageFormat::png), "it is too long: 33554433 bytes, more than 33554432");

  std::string svg = "<svg width='1' height='1'/>";
  svg.resize(kMaxSVGBytes, ' ');
  EXPECT_EQ(faultOf(bytesOf(svg), QNImageFormat::svg), "");
  svg += ' ';
  EXPECT_EQ(faultOf(bytesOf(svg), QNImageFormat::svg),
            "it is too long: 65537 bytes, more than 65536");
}

}  // namespace
}  // namespace quillon
