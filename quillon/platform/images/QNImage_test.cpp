#include "quillon/platform/images/QNImage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "quillon/platform/images/internal/QNTestPictures.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

const std::string kSVG = "<svg xmlns='http://www.w3.org/2000/svg' width='24.5' height='12'/>";

TEST(QNImage, KeepsTheBytesOfAPictureAndItsSize) {
  const Bytes encoded = pngOf(3, 2, 0xff336699);

  const auto image = QNImage::imageWithData(encoded);

  ASSERT_NE(image, nullptr);
  EXPECT_EQ(toBytes(image->data()), encoded);
  EXPECT_EQ(image->source().format, QNImageFormat::png);
  EXPECT_EQ(image->pixelWidth(), 3u);
  EXPECT_EQ(image->pixelHeight(), 2u);
  EXPECT_EQ(image->size(), (QNSize{3, 2}));
  EXPECT_TRUE(image->hasRepresentation());
  EXPECT_FALSE(image->isTemplate());
}

TEST(QNImage, RoundsThePixelsOfAnSVGUp) {
  const auto image = QNImage::imageWithData(bytesOf(kSVG));

  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->pixelWidth(), 25u);
  EXPECT_EQ(image->pixelHeight(), 12u);
  EXPECT_EQ(image->size(), (QNSize{24.5, 12}));
}

TEST(QNImage, IsNothingForOtherBytes) {
  const MRCapturingSink sink;

  EXPECT_EQ(QNImage::imageWithData({}), nullptr);
  EXPECT_EQ(QNImage::imageWithData(bytesOf("GIF89a....")), nullptr);

  EXPECT_TRUE(sink.records().empty());
}

TEST(QNImage, IsNothingWithAReportForAHeaderThatCantBeRead) {
  const MRCapturingSink sink;

  EXPECT_EQ(QNImage::imageWithData(ByteView(pngOf(1, 1, 0)).first(20)), nullptr);
  EXPECT_EQ(QNImage::imageWithData(bytesOf("<svg><script/></svg>")), nullptr);

  EXPECT_EQ(sink.texts(MRLogKind::error),
            (std::vector<std::string>{
                "Failed to read a picture: a PNG header cut short",
                "Failed to read a picture: an SVG that is more than plain shapes"}));
  EXPECT_EQ(sink.records().at(0).subsystem, DEBUG_IMAGESERVICE);
}

TEST(QNImage, HasNoRepresentationWhenItIsTooLargeToDecode) {
  struct Case {
    std::uint32_t width, height;
    bool readable;
  };
  for (const auto& [width, height, readable] :
       {Case{4096, 4096, true}, Case{4097, 4096, false}, Case{32767, 1, true},
        Case{32768, 1, false}, Case{1, 32768, false}, Case{100'000, 100'000, false},
        Case{0xffffffff, 0xffffffff, false}}) {
    const auto image = QNImage::imageWithData(pngBeginning(width, height));
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->hasRepresentation(), readable) << width << " by " << height;
    EXPECT_EQ(image->pixelWidth(), width);
  }
}

TEST(QNImage, GivesACopyOfAnotherSizeWithTheSamePixels) {
  const auto image = QNImage::imageWithData(pngOf(3, 2, 0));

  const auto copy = image->imageWithSize({300, 200});

  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->size(), (QNSize{300, 200}));
  EXPECT_EQ(copy->pixelWidth(), 3u);
  EXPECT_EQ(copy->data().data(), image->data().data()) << "shared, not copied";
  EXPECT_EQ(image->size(), (QNSize{3, 2})) << "the first one stays as it is";
}

TEST(QNImage, HasNoSizeThatIsntAboveZero) {
  const auto image = QNImage::imageWithData(pngOf(3, 2, 0));
  const double nan = std::nan(""), infinite = std::numeric_limits<double>::infinity();

  for (const QNSize size :
       {QNSize{0, 1}, QNSize{1, 0}, QNSize{-1, 1}, QNSize{1, nan}, QNSize{infinite, 1}}) {
    EXPECT_EQ(image->imageWithSize(size), nullptr) << size.width << " by " << size.height;
  }
}

TEST(QNImage, GivesACopyWithTheMarkOfATemplate) {
  const auto image = QNImage::imageWithData(pngOf(3, 2, 0))->imageWithSize({6, 4});

  const auto marked = image->imageWithTemplate(true);

  EXPECT_TRUE(marked->isTemplate());
  EXPECT_FALSE(image->isTemplate());
  EXPECT_EQ(marked->size(), image->size());
  EXPECT_TRUE(marked->imageWithSize({1, 1})->isTemplate());
  EXPECT_FALSE(marked->imageWithTemplate(false)->isTemplate());
}

}  // namespace
}  // namespace quillon
