#include "quillon/platform/images/QNImageOperations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <thread>

#include "quillon/platform/images/internal/QNTestDrawing.h"

namespace quillon {
namespace {

// PNG

TEST(QNImageOperations, APNGKeepsPixelsAndTransparency) {
  const QNTestColor colors = [](std::uint32_t x, std::uint32_t y) {
    return x == 0 ? (y == 0 ? kRed : 0x00000000u) : (y == 0 ? 0x80ffffffu : kBlue);
  };

  const QNTestPixels pixels = pixelsOf(QNImagePNGRepresentation(imageOf(pngOf(2, 2, colors))));

  EXPECT_EQ(pixels.argb, (std::vector<std::uint32_t>{kRed, 0x80808080, 0, kBlue}));
}

TEST(QNImageOperations, APNGHasNoMorePixelsThanTheSizeHasPoints) {
  const auto image = plainImage(600, 400)->imageWithSize({300, 200});

  const QNTestPixels pixels = pixelsOf(QNImagePNGRepresentation(image));

  EXPECT_EQ(pixels.width, 300);
  EXPECT_EQ(pixels.height, 200);
  expectAll(pixels, kRed);  // to the very edge
}

TEST(QNImageOperations, APNGKeepsTheShapeWhenTheSizeHasAnother) {
  const QNTestPixels wide =
      pixelsOf(QNImagePNGRepresentation(plainImage(400, 100)->imageWithSize({100, 100})));
  EXPECT_EQ(wide.width, 100);
  EXPECT_EQ(wide.height, 25);

  const QNTestPixels high =
      pixelsOf(QNImagePNGRepresentation(plainImage(100, 400)->imageWithSize({200, 100})));
  EXPECT_EQ(high.width, 25);
  EXPECT_EQ(high.height, 100);
}

TEST(QNImageOperations, APNGIsntBlownUp) {
  const auto image = imageOf(pngOf(10, 10, noise()));

  const auto png = QNImagePNGRepresentation(image->imageWithSize({300, 300}));

  const QNTestPixels pixels = pixelsOf(png);
  EXPECT_EQ(pixels.width, 10);
  EXPECT_EQ(pixels.height, 10);
  EXPECT_EQ(pixels.argb, pixelsOf(QNImagePNGRepresentation(image)).argb) << "nor drawn anew";
  EXPECT_EQ(pixels.at(3, 7), noise()(3, 7));
}

TEST(QNImageOperations, ScalingDownAverages) {
  // Columns that take turns: a pixel of the result that took single pixels would be red or blue.
  const QNTestColor columns = [](std::uint32_t x, std::uint32_t) {
    return x % 2 == 0 ? kRed : kBlue;
  };
  for (const std::uint32_t width : {64u, 400u, 4000u}) {
    const auto image = imageOf(pngOf(width, 4, columns))->imageWithSize({10, 10});

    const QNTestPixels pixels = pixelsOf(QNImagePNGRepresentation(image));

    EXPECT_EQ(pixels.width, 10);
    EXPECT_EQ(pixels.height, 1);
    for (int x = 1; x < 9; ++x) EXPECT_LE(differenceOf(pixels.at(x, 0), 0xff800080), 28) << width;
  }
}

TEST(QNImageOperations, ALineOfManyPixelsStaysAPixelHigh) {
  const QNTestPixels pixels =
      pixelsOf(QNImagePNGRepresentation(plainImage(30'000, 2)->imageWithSize({300, 300})));

  EXPECT_EQ(pixels.width, 300);
  EXPECT_EQ(pixels.height, 1);
  expectAll(pixels, kRed, 1);
}

TEST(QNImageOperations, LeaveOutWhatTheFileSaysBesideItsPixels) {
  Bytes png = pngBeginning(1, 1);
  appendChunk(png, "tEXt", bytesOf(std::string_view("Comment\0at home", 15)));
  appendChunk(png, "IDAT", storedStream(Bytes{0, 1, 2, 3, 255}));
  appendChunk(png, "IEND", {});

  const auto result = QNImagePNGRepresentation(imageOf(png));

  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(textOf(*result).find("at home"), std::string_view::npos);
  EXPECT_EQ(pixelsOf(result).at(0, 0), 0xff010203u);
}

TEST(QNImageOperations, AnAbsentImageGivesNothingWithoutAReport) {
  const MRCapturingSink sink;

  EXPECT_EQ(QNImagePNGRepresentation(nullptr), std::nullopt);
  EXPECT_EQ(QNImageJPGRepresentation(nullptr, 1), std::nullopt);
  EXPECT_EQ(mr_imageByScalingProportionallyToSize(nullptr, {1, 1}), nullptr);

  EXPECT_TRUE(sink.records().empty());
}

// JPEG

TEST(QNImageOperations, AJPEGHasWhiteWhereThePictureIsTransparent) {
  const QNTestColor halves = [](std::uint32_t x, std::uint32_t) {
    return x < 32 ? 0x00ff0000u : kBlue;
  };

  const auto jpeg = QNImageJPGRepresentation(imageOf(pngOf(64, 64, halves)), 1);

  ASSERT_TRUE(jpeg.has_value());
  const auto image = imageOf(*jpeg);
  EXPECT_EQ(image->source().format, QNImageFormat::jpeg);
  const QNTestPixels pixels = pixelsOf(QNImagePNGRepresentation(image));
  EXPECT_LE(differenceOf(pixels.at(8, 8), kWhite), 3);
  EXPECT_LE(differenceOf(pixels.at(56, 8), kBlue), 3);
}

TEST(QNImageOperations, AJPEGKeepsColoursApartPixelByPixel) {
  const QNTestColor columns = [](std::uint32_t x, std::uint32_t) {
    return x % 2 == 0 ? kRed : kBlue;
  };

  const auto jpeg = QNImageJPGRepresentation(imageOf(pngOf(16, 16, columns)), 1);

  const QNTestPixels pixels = pixelsOf(QNImagePNGRepresentation(imageOf(jpeg.value())));
  EXPECT_LE(differenceOf(pixels.at(4, 4), kRed), 16);
  EXPECT_LE(differenceOf(pixels.at(5, 4), kBlue), 16);
}

TEST(QNImageOperations, AJPEGHasNoMorePixelsThanTheSizeHasPoints) {
  const auto jpeg = QNImageJPGRepresentation(plainImage(60, 40)->imageWithSize({30, 30}), 1);

  const auto image = imageOf(jpeg.value());
  EXPECT_EQ(image->pixelWidth(), 30u);
  EXPECT_EQ(image->pixelHeight(), 20u);
}

TEST(QNImageOperations, AJPEGOfLessQualityIsShorter) {
  const auto image = imageOf(pngOf(64, 64, noise()));
  const auto sizeAt = [&](float quality) {
    return QNImageJPGRepresentation(image, quality)->size();
  };

  EXPECT_LT(sizeAt(0.32f), sizeAt(0.4f));
  EXPECT_LT(sizeAt(0.4f), sizeAt(0.9f));
}

TEST(QNImageOperations, AQualityOutsideItsRangeIsBroughtInto) {
  const auto image = imageOf(pngOf(16, 16, noise()));
  const auto none = QNImageJPGRepresentation(image, 0), full = QNImageJPGRepresentation(image, 1);
  ASSERT_TRUE(none && full);
  ASSERT_NE(none, full);

  EXPECT_EQ(QNImageJPGRepresentation(image, -3), none);
  EXPECT_EQ(QNImageJPGRepresentation(image, std::numeric_limits<float>::quiet_NaN()), none);
  EXPECT_EQ(QNImageJPGRepresentation(image, 7), full);
  EXPECT_EQ(QNImageJPGRepresentation(image, std::numeric_limits<float>::infinity()), full);
}

TEST(QNImageOperations, ReadJPEGsOfColourAndOfGrey) {
  expectAll(pixelsOf(QNImagePNGRepresentation(imageOf(jpegOf(20, 10, {200, 100, 50, 0})))),
            0xffc86432, 3);
  expectAll(
      pixelsOf(QNImagePNGRepresentation(imageOf(jpegOf(20, 10, {99, 0, 0, 0}, QNTestJPEG::grey)))),
      0xff636363, 2);
}

TEST(QNImageOperations, ReadProgressiveJPEGs) {
  expectAll(pixelsOf(QNImagePNGRepresentation(
                imageOf(jpegOf(20, 10, {200, 100, 50, 0}, QNTestJPEG::color, 10)))),
            0xffc86432, 3);
}

// SVG

void expectLeftHalfRed(const QNTestPixels& pixels, int width, int height) {
  ASSERT_EQ(pixels.width, width);
  ASSERT_EQ(pixels.height, height);
  EXPECT_EQ(pixels.at(0, 0), kRed);
  EXPECT_EQ(pixels.at(width / 2 - 1, height - 1), kRed);
  EXPECT_EQ(pixels.at(width / 2, 0), 0u);
  EXPECT_EQ(pixels.at(width - 1, height - 1), 0u);
}

TEST(QNImageOperations, AnSVGIsDrawnAtItsSize) {
  for (const char* attributes :
       {"width='8' height='8' viewBox='0 0 8 8'", "width='8' height='8'", "viewBox='0 0 8 8'"}) {
    const auto image = svgImage(attributes, kLeftHalf);
    expectLeftHalfRed(pixelsOf(QNImagePNGRepresentation(image)), 8, 8);
    expectLeftHalfRed(pixelsOf(QNImagePNGRepresentation(image->imageWithSize({300, 300}))), 300,
                      300);
    expectLeftHalfRed(pixelsOf(QNImagePNGRepresentation(image->imageWithSize({4, 2}))), 2, 2);
  }
}

TEST(QNImageOperations, AnSVGMayBeMeasuredInUnits) {
  const auto image = svgImage("width='1in' height='72pt' viewBox='0 0 8 8'", kLeftHalf);

  expectLeftHalfRed(pixelsOf(QNImagePNGRepresentation(image)), 96, 96);
}

TEST(QNImageOperations, AnSVGMayHaveGradients) {
  const auto image = svgImage("width='2' height='1'",
                              "<linearGradient id='a'><stop stop-color='red'/></linearGradient>"
                              "<rect width='2' height='1' fill='url(#a)'/>");

  expectAll(pixelsOf(QNImagePNGRepresentation(image)), kRed);
}

// Scaling

struct ScaleCase {
  std::uint32_t width, height;
  QNSize into;
  double backingScale;
  std::uint32_t pixelWidth, pixelHeight;
  QNSize size;
};
class QNImageScaling : public testing::TestWithParam<ScaleCase> {};

TEST_P(QNImageScaling, FitsIntoTheSizeAndKeepsTheShape) {
  const ScaleCase& scale = GetParam();

  const auto scaled = mr_imageByScalingProportionallyToSize(plainImage(scale.width, scale.height),
                                                            scale.into, {}, {}, scale.backingScale);

  ASSERT_NE(scaled, nullptr);
  EXPECT_EQ(scaled->source().format, QNImageFormat::png);
  EXPECT_EQ(scaled->pixelWidth(), scale.pixelWidth);
  EXPECT_EQ(scaled->pixelHeight(), scale.pixelHeight);
  EXPECT_EQ(scaled->size(), scale.size);
  expectAll(pixelsOf(toBytes(scaled->data())), kRed);
}

INSTANTIATE_TEST_SUITE_P(Sizes, QNImageScaling,
                         testing::Values(ScaleCase{600, 400, {300, 300}, 1, 300, 200, {300, 200}},
                                         ScaleCase{400, 600, {300, 300}, 1, 200, 300, {200, 300}},
                                         ScaleCase{600, 400, {300, 300}, 2, 600, 400, {300, 200}},
                                         ScaleCase{10, 20, {300, 300}, 1, 150, 300, {150, 300}},
                                         ScaleCase{300, 300, {300, 300}, 1, 300, 300, {300, 300}},
                                         ScaleCase{301, 300, {300, 300}, 1, 300, 299, {300, 299}},
                                         ScaleCase{1000, 1, {10, 10}, 1, 10, 1, {10, 1}},
                                         ScaleCase{8, 8, {3, 9}, 0.5, 2, 2, {4, 4}}));

TEST(QNImageOperations, ScalingGoesByTheSizeInPoints) {
  const auto scaled = mr_imageByScalingProportionallyToSize(
      plainImage(600, 600)->imageWithSize({60, 60}), {30, 30});

  ASSERT_NE(scaled, nullptr);
  EXPECT_EQ(scaled->pixelWidth(), 30u);
}

TEST(QNImageOperations, ScalingKeepsTheMarkOfATemplate) {
  const auto image = plainImage(8, 8);

  EXPECT_FALSE(mr_imageByScalingProportionallyToSize(image, {4, 4})->isTemplate());
  EXPECT_TRUE(
      mr_imageByScalingProportionallyToSize(image->imageWithTemplate(true), {4, 4})->isTemplate());
}

TEST(QNImageOperations, PassesDrawBeforeAndAfterThePicture) {
  // The picture: left half clear, right half red.
  const QNTestColor halves = [](std::uint32_t x, std::uint32_t) { return x < 4 ? 0u : kRed; };
  std::vector<std::string> calls;
  const auto scaled = mr_imageByScalingProportionallyToSize(
      imageOf(pngOf(8, 8, halves)), {4, 4},
      [&](QNPixels pixels) {
        calls.push_back("before " + std::to_string(pixels.argb[0]));
        std::fill(pixels.argb.begin(), pixels.argb.end(), kBlue);
      },
      [&](QNPixels pixels) {
        calls.push_back("after");
        EXPECT_EQ(pixels.argb.size(), std::size_t{pixels.width} * pixels.height);
        pixels.argb[pixels.argb.size() - 1] = kWhite;  // the last one, below on the right
      },
      2);

  EXPECT_EQ(calls, (std::vector<std::string>{"before 0", "after"}));
  ASSERT_NE(scaled, nullptr);
  const QNTestPixels pixels = pixelsOf(toBytes(scaled->data()));
  ASSERT_EQ(pixels.width, 8);
  EXPECT_EQ(pixels.at(0, 0), kBlue);
  EXPECT_EQ(pixels.at(7, 0), kRed);
  EXPECT_EQ(pixels.at(7, 7), kWhite);
}

TEST(QNImageOperations, APassThatThrowsEndsTheDrawing) {
  const QNPixelPass thrower = [](QNPixels) { throw std::runtime_error("no"); };
  const auto image = plainImage(8, 8);
  const MRCapturingSink sink;

  EXPECT_EQ(mr_imageByScalingProportionallyToSize(image, {4, 4}, thrower), nullptr);
  EXPECT_EQ(mr_imageByScalingProportionallyToSize(image, {4, 4}, {}, thrower), nullptr);

  EXPECT_EQ(faultsIn(sink),
            (std::vector<std::string>{"the pass before it failed", "the pass after it failed"}));
}

TEST(QNImageOperations, ScalingNeedsASizeAboveZero) {
  const auto image = plainImage(8, 8);
  const double nan = std::nan("");
  const MRCapturingSink sink;

  EXPECT_EQ(mr_imageByScalingProportionallyToSize(image, {0, 8}), nullptr);
  EXPECT_EQ(mr_imageByScalingProportionallyToSize(image, {8, -8}), nullptr);
  EXPECT_EQ(mr_imageByScalingProportionallyToSize(image, {nan, 8}), nullptr);
  EXPECT_EQ(mr_imageByScalingProportionallyToSize(image, {8, 8}, {}, {}, 0), nullptr);
  EXPECT_EQ(mr_imageByScalingProportionallyToSize(image, {8, 8}, {}, {}, nan), nullptr);

  EXPECT_EQ(faultsIn(sink), std::vector<std::string>(5, "its new size isn't above zero"));
}

TEST(QNImageOperations, ScalingEndsAtTheMostPixels) {
  const auto image = plainImage(1, 1);
  const MRCapturingSink sink;

  EXPECT_NE(mr_imageByScalingProportionallyToSize(image, {4096, 4096}), nullptr);
  EXPECT_TRUE(sink.records().empty());
  EXPECT_EQ(mr_imageByScalingProportionallyToSize(image, {4097, 4097}), nullptr);
  EXPECT_EQ(mr_imageByScalingProportionallyToSize(image, {1e308, 1e308}, {}, {}, 1e308), nullptr);

  EXPECT_EQ(faultsIn(sink), std::vector<std::string>(2, "too many pixels are asked for"));
}

void expectSameOnSeveralThreads(const std::vector<std::shared_ptr<const QNImage>>& images) {
  const auto drawAll = [&images] {
    std::vector<std::optional<Bytes>> results;
    for (const auto& image : images) {
      const auto scaled = mr_imageByScalingProportionallyToSize(image, {20, 20});
      results.push_back(QNImagePNGRepresentation(scaled));
      results.push_back(QNImageJPGRepresentation(scaled, 0.5f));
    }
    return results;
  };
  const auto expected = drawAll();
  for (const auto& result : expected) EXPECT_TRUE(result.has_value());
  std::vector<std::vector<std::optional<Bytes>>> drawn(4);
  std::vector<std::thread> threads;
  for (auto& results : drawn) {
    threads.emplace_back([&results, &drawAll] {
      for (int i = 0; i < 10; ++i) results = drawAll();
    });
  }
  for (auto& thread : threads) thread.join();

  for (const auto& results : drawn) EXPECT_EQ(results, expected);
}

TEST(QNImageOperations, ReadPixelsOnSeveralThreads) {
  expectSameOnSeveralThreads(
      {imageOf(pngOf(40, 40, noise())), imageOf(jpegOf(40, 40, {200, 100, 50, 0}))});
}

// Left out under the thread sanitizer: it doesn't see the locks of GLib, on which librsvg stands.
TEST(QNImageOperations, DrawSVGsOnSeveralThreads) {
  expectSameOnSeveralThreads({svgImage("width='8' height='8'", kLeftHalf)});
}

}  // namespace
}  // namespace quillon
