#include <gtest/gtest.h>

#include "quillon/platform/images/internal/QNTestDrawing.h"

// What is damaged, hostile or too much gives nothing, and a report.

namespace quillon {
namespace {

TEST(QNImageRefused, APNGThatIsCutShort) {
  const Bytes png = pngOf(16, 16, noise());
  for (const std::size_t length :
       {png.size() - 13, png.size() / 2, std::size_t{60}, std::size_t{33}}) {
    expectUndrawable(imageOf(ByteView(png).first(length)), "a damaged PNG");
  }
}

TEST(QNImageRefused, ADamagedPNG) {
  Bytes brokenHeader = pngOf(16, 16, noise());
  brokenHeader[24] = 7;  // the depth of its pixels
  expectUndrawable(imageOf(brokenHeader), "a damaged PNG");

  Bytes brokenSum = pngOf(16, 16, noise());
  brokenSum[100] ^= 1;
  expectUndrawable(imageOf(brokenSum), "a damaged PNG");

  Bytes noStream = pngBeginning(16, 16);
  appendChunk(noStream, "IDAT", bytesOf("no zlib stream at all"));
  appendChunk(noStream, "IEND", {});
  expectUndrawable(imageOf(noStream), "a damaged PNG");
}

TEST(QNImageRefused, ALargePNGOfFewBytes) {
  // Within what may be decoded, but without the pixels.
  Bytes png = pngBeginning(4096, 4096);
  appendChunk(png, "IDAT", storedStream(Bytes(100, 0)));
  appendChunk(png, "IEND", {});
  expectUndrawable(imageOf(png), "a damaged PNG");
}

TEST(QNImageRefused, APictureThatClaimsTooManyPixels) {
  expectUndrawable(imageOf(pngBeginning(100'000, 100'000)), "it has too many pixels");
  expectUndrawable(imageOf(pngBeginning(0xffffffff, 1)), "it has too many pixels");

  Bytes jpeg = jpegOf(8, 8, {});
  const Bytes frame{0xff, 0xc0, 0, 17, 8};
  const auto found = std::search(jpeg.begin(), jpeg.end(), frame.begin(), frame.end());
  ASSERT_NE(found, jpeg.end());
  std::fill_n(found + 5, 4, 0xff);  // 65,535 by 65,535
  expectUndrawable(imageOf(jpeg), "it has too many pixels");
}

TEST(QNImageRefused, AnSVGAtTheSizeThatItClaims) {
  const auto image = svgImage("width='100000' height='100000'", "");
  ASSERT_NE(image, nullptr);
  const MRCapturingSink sink;

  EXPECT_EQ(QNImagePNGRepresentation(image), std::nullopt);
  EXPECT_EQ(QNImageJPGRepresentation(image, 0.5f), std::nullopt);
  EXPECT_EQ(sink.records().size(), 2u);

  EXPECT_NE(mr_imageByScalingProportionallyToSize(image, {8, 8}), nullptr);
}

constexpr const char* kJPEGFault = "a JPEG that is damaged, of too many passes or of a rare kind";

TEST(QNImageRefused, AJPEGThatIsCutShort) {
  const Bytes jpeg = jpegOf(64, 64, {200, 100, 50, 0});
  for (const std::size_t length : {jpeg.size() - 2, jpeg.size() - 9, jpeg.size() * 9 / 10}) {
    expectUndrawable(imageOf(ByteView(jpeg).first(length)), kJPEGFault);
  }
}

TEST(QNImageRefused, ADamagedJPEG) {
  Bytes withoutTables = jpegOf(64, 64, {200, 100, 50, 0});
  for (std::size_t i = 0; i + 1 < withoutTables.size(); ++i) {
    if (withoutTables[i] == 0xff && withoutTables[i + 1] == 0xdb) withoutTables[i + 1] = 0xfe;
  }
  expectUndrawable(imageOf(withoutTables), kJPEGFault);

  Bytes endsEarly = jpegOf(64, 64, {200, 100, 50, 0});
  std::fill(endsEarly.end() - 20, endsEarly.end() - 2, 0xff);
  expectUndrawable(imageOf(endsEarly), kJPEGFault);
}

TEST(QNImageRefused, AJPEGOfTwoSizes) {
  // The header that was read says one size, and the decoder would go by the other.
  Bytes jpeg{0xff, 0xd8, 0xff, 0xc0, 0, 11, 8, 0, 8, 0, 8, 1, 1, 0x11, 0};
  const Bytes other = jpegOf(64, 64, {});
  jpeg.insert(jpeg.end(), other.begin() + 2, other.end());
  expectUndrawable(imageOf(jpeg), kJPEGFault);
}

TEST(QNImageRefused, AJPEGOfTooManyPasses) {
  EXPECT_NE(QNImagePNGRepresentation(imageOf(jpegOf(64, 64, {}, QNTestJPEG::color, 40))),
            std::nullopt);
  expectUndrawable(imageOf(jpegOf(64, 64, {}, QNTestJPEG::color, 60)), kJPEGFault);
}

TEST(QNImageRefused, AJPEGForPrinting) {
  expectUndrawable(imageOf(jpegOf(8, 8, {}, QNTestJPEG::cmyk)), kJPEGFault);
}

TEST(QNImageRefused, IsntAJPEGWithStrayBytesBeforeItsScan) {
  Bytes jpeg = jpegOf(8, 8, {200, 100, 50, 0});
  const Bytes scan{0xff, 0xda}, stray{0, 0, 0};
  const auto found = std::search(jpeg.begin(), jpeg.end(), scan.begin(), scan.end());
  ASSERT_NE(found, jpeg.end());
  jpeg.insert(found, stray.begin(), stray.end());

  expectAll(pixelsOf(QNImagePNGRepresentation(imageOf(jpeg))), 0xffc86432, 3);
}

TEST(QNImageRefused, ADamagedSVG) {
  expectUndrawable(svgImage("width='8' height='8'", "<g></q>"), "a damaged SVG");
  expectUndrawable(svgImage("width='8' height='8' width='9'", ""), "a damaged SVG");
}

TEST(QNImageRefused, AnSVGThatIsTooMuchToDraw) {
  std::string elements;
  for (int i = 0; i < 6000; ++i) elements += "<path/>";
  const auto many = svgImage("width='8' height='8'", elements);
  EXPECT_NE(QNImagePNGRepresentation(many), std::nullopt);
  EXPECT_EQ(pixelsOf(QNImagePNGRepresentation(many->imageWithSize({250, 250}))).width, 250);
  const MRCapturingSink sink;
  EXPECT_EQ(QNImagePNGRepresentation(many->imageWithSize({300, 300})), std::nullopt);
  EXPECT_EQ(faultsIn(sink), std::vector<std::string>{"it is an SVG of too much to draw"});

  std::string circles = "<path d='M0 0";
  for (int i = 0; i < 300; ++i) circles += "a9e5 9e5 0 1 1 9 9";
  expectUndrawable(svgImage("width='8' height='8'", circles + "'/>"),
                   "it is an SVG of too much to draw");
}

TEST(QNImageRefused, ToDrawAnSVGLargerThanItsLayersMayBe) {
  const auto image = svgImage("width='8' height='8'", kLeftHalf);
  EXPECT_EQ(pixelsOf(QNImagePNGRepresentation(image->imageWithSize({2048, 2048}))).width, 2048);
  const MRCapturingSink sink;

  EXPECT_EQ(QNImagePNGRepresentation(image->imageWithSize({2049, 2049})), std::nullopt);
  EXPECT_EQ(QNImagePNGRepresentation(image->imageWithSize({1e300, 1e300})), std::nullopt);

  EXPECT_EQ(faultsIn(sink), std::vector<std::string>(2, "too many pixels are asked for"));
}

}  // namespace
}  // namespace quillon
