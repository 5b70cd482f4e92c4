#include <fmt/format.h>

#include <limits>

#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/images/QNImageOperations.h"
#include "quillon/platform/images/internal/QNTestPictures.h"
#include "quillon/vaults/internal/QNVaultTesting.h"

namespace quillon {
namespace {

std::shared_ptr<QNProfile> cleanVault() {
  return QNProfile::initExistingWithID(5);
}

// Icon. Pictures of noise stay as large as they must be.

constexpr std::size_t kLimit = 49152;
constexpr std::uint32_t kRed = 0xffff0000;

std::shared_ptr<const QNImage> picture(std::uint32_t width, std::uint32_t height,
                                       const QNTestColor& color = harshNoise()) {
  return QNImage::imageWithData(pngOf(width, height, color));
}

std::shared_ptr<const QNImage> plainPicture(std::uint32_t width, std::uint32_t height) {
  return QNImage::imageWithData(pngOf(width, height, kRed));
}

/// What a vault makes of a picture, and reports meanwhile.
struct Outcome {
  std::optional<Bytes> data;
  std::vector<std::string> errors;
  bool dirty;
};

const Bytes kOldIcon = pngOf(1, 1, kRed);

/// Of a vault that has kOldIcon before.
Outcome outcomeOf(const std::shared_ptr<const QNImage>& icon) {
  const auto vault = cleanVault();
  vault->setIconData(kOldIcon);
  const MRCapturingSink sink;
  vault->setCustomIcon(icon);
  return {vault->iconData(), sink.texts(MRLogKind::error), vault->dirtyRow()};
}

QNSize pixelsOf(const std::optional<Bytes>& data) {
  const auto image = data ? QNImage::imageWithData(*data) : nullptr;
  if (image == nullptr) return {};
  return {static_cast<double>(image->pixelWidth()), static_cast<double>(image->pixelHeight())};
}

QNImageFormat formatOf(const std::optional<Bytes>& data) {
  const auto image = data ? QNImage::imageWithData(*data) : nullptr;
  return image != nullptr ? image->source().format : QNImageFormat::svg;
}

std::string text(const char* format, std::size_t bytes, std::size_t more = 0) {
  return fmt::format(fmt::runtime(format), bytes, more);
}
constexpr const char* kTriesJPEG =
    "Failed to set custom vault icon as PNG, data is too large: {} bytes. Trying JPEG: {} bytes.";
constexpr const char* kTriesAgain =
    "Failed to set custom icon, JPEG data is too large: {} bytes. Will try again with less quality";
constexpr const char* kGivesUp =
    "Failed to set custom icon, JPEG data is too large: {} bytes. Giving up";

/// Lengths that the steps go through, for a square picture of up to 300 by 300.
struct Lengths {
  explicit Lengths(const std::shared_ptr<const QNImage>& icon)
      : png(QNImagePNGRepresentation(icon).value().size()),
        jpeg(QNImageJPGRepresentation(icon, 0.4f).value().size()),
        lesserJPEG(QNImageJPGRepresentation(icon, 0.32f).value().size()) {}
  std::size_t png, jpeg, lesserJPEG;
};

TEST(QNProfileAppearance, TheLimitForIconsOfItemsIsAnother) {
  EXPECT_EQ(kMaxCustomQN4IconSize, 32768);
}

TEST(QNProfileAppearance, AnIconIsKeptAsPNG) {
  const auto outcome = outcomeOf(picture(40, 30));

  EXPECT_EQ(formatOf(outcome.data), QNImageFormat::png);
  EXPECT_EQ(pixelsOf(outcome.data), (QNSize{40, 30}));
  EXPECT_TRUE(outcome.errors.empty());
  EXPECT_TRUE(outcome.dirty);
}

TEST(QNProfileAppearance, AnIconIsReadAsAnImage) {
  const auto vault = cleanVault();

  vault->setCustomIcon(plainPicture(40, 30));

  ASSERT_NE(vault->customIcon(), nullptr);
  EXPECT_EQ(toBytes(vault->customIcon()->data()), vault->iconData());
  EXPECT_EQ(vault->customIcon()->size(), (QNSize{40, 30}));
}

TEST(QNProfileAppearance, ASmallSquareIconIsntBlownUp) {
  EXPECT_EQ(pixelsOf(outcomeOf(plainPicture(64, 64)).data), (QNSize{64, 64}));
  EXPECT_EQ(pixelsOf(outcomeOf(plainPicture(299, 299)).data), (QNSize{299, 299}));
}

TEST(QNProfileAppearance, ALargeSquareIconIsBroughtTo300) {
  EXPECT_EQ(pixelsOf(outcomeOf(plainPicture(301, 301)).data), (QNSize{300, 300}));
  EXPECT_EQ(pixelsOf(outcomeOf(plainPicture(1200, 1200)).data), (QNSize{300, 300}));
}

TEST(QNProfileAppearance, ASquareIsToldByPointsAndNotByPixels) {
  // 600 by 300 pixels, shown as a square of 20 points: its size becomes 300 by 300.
  const auto icon = plainPicture(600, 300)->imageWithSize({20, 20});

  EXPECT_EQ(pixelsOf(outcomeOf(icon).data), (QNSize{300, 150}));
}

TEST(QNProfileAppearance, ALargeIconOfAnotherShapeKeepsIt) {
  EXPECT_EQ(pixelsOf(outcomeOf(plainPicture(600, 400)).data), (QNSize{300, 200}));
  EXPECT_EQ(pixelsOf(outcomeOf(plainPicture(400, 600)).data), (QNSize{200, 300}));
  EXPECT_EQ(pixelsOf(outcomeOf(plainPicture(301, 10)).data), (QNSize{300, 10}));
}

TEST(QNProfileAppearance, AnIconOf300OrLessIsntScaled) {
  for (const auto& icon : {picture(300, 200), picture(10, 300), plainPicture(300, 300)}) {
    EXPECT_EQ(QNProfile::downscaleCustomIcon(icon), icon);
  }
  EXPECT_EQ(QNProfile::downscaleCustomIcon(nullptr), nullptr);
}

TEST(QNProfileAppearance, AnIconOfMoreThan300IsScaled) {
  const auto wide = QNProfile::downscaleCustomIcon(plainPicture(301, 10));
  ASSERT_NE(wide, nullptr);
  EXPECT_EQ(wide->size(), (QNSize{300, 10}));

  const auto high = QNProfile::downscaleCustomIcon(plainPicture(10, 301));
  ASSERT_NE(high, nullptr);
  EXPECT_EQ(high->size(), (QNSize{10, 300}));
}

TEST(QNProfileAppearance, AnSVGIconIsDrawn) {
  const auto icon = QNImage::imageWithData(
      bytesOf("<svg xmlns='http://www.w3.org/2000/svg' width='16' height='16'/>"));
  ASSERT_NE(icon, nullptr);

  const auto outcome = outcomeOf(icon);

  EXPECT_EQ(formatOf(outcome.data), QNImageFormat::png);
  EXPECT_EQ(pixelsOf(outcome.data), (QNSize{300, 300}));
}

TEST(QNProfileAppearance, AnSVGIconIsDrawnWhateverSizeItClaims) {
  const auto icon = QNImage::imageWithData(
      bytesOf("<svg xmlns='http://www.w3.org/2000/svg' width='5000' height='5000'/>"));
  ASSERT_NE(icon, nullptr);

  const auto outcome = outcomeOf(icon);

  EXPECT_EQ(formatOf(outcome.data), QNImageFormat::png);
  EXPECT_EQ(pixelsOf(outcome.data), (QNSize{300, 300}));
}

TEST(QNProfileAppearance, AnIconThatIsTooLongAsPNGBecomesAJPEG) {
  const auto icon = picture(300, 300, noise(0x7f7f7f));
  const Lengths lengths(icon);
  ASSERT_GT(lengths.png, kLimit);
  ASSERT_LE(lengths.jpeg, kLimit);

  const auto outcome = outcomeOf(icon);

  EXPECT_EQ(outcome.errors, std::vector<std::string>{text(kTriesJPEG, lengths.png, lengths.jpeg)});
  EXPECT_EQ(outcome.data, QNImageJPGRepresentation(icon, 0.4f));
  EXPECT_TRUE(outcome.dirty);
}

TEST(QNProfileAppearance, AJPEGThatIsTooLongLosesMore) {
  const auto icon = picture(300, 300, noise());
  const Lengths lengths(icon);
  ASSERT_GT(lengths.png, kLimit);
  ASSERT_GT(lengths.jpeg, kLimit);
  ASSERT_LE(lengths.lesserJPEG, kLimit);

  const auto outcome = outcomeOf(icon);

  EXPECT_EQ(outcome.errors, (std::vector<std::string>{text(kTriesJPEG, lengths.png, lengths.jpeg),
                                                      text(kTriesAgain, lengths.jpeg)}));
  EXPECT_EQ(outcome.data, QNImageJPGRepresentation(icon, 0.32f));
  EXPECT_TRUE(outcome.dirty);
}

TEST(QNProfileAppearance, AnIconThatStaysTooLongChangesNothing) {
  const auto icon = picture(300, 300);
  const Lengths lengths(icon);
  ASSERT_GT(lengths.png, kLimit);
  ASSERT_GT(lengths.lesserJPEG, kLimit);

  const auto outcome = outcomeOf(icon);

  EXPECT_EQ(outcome.errors, (std::vector<std::string>{text(kTriesJPEG, lengths.png, lengths.jpeg),
                                                      text(kTriesAgain, lengths.jpeg),
                                                      text(kGivesUp, lengths.lesserJPEG)}));
  EXPECT_EQ(outcome.data, kOldIcon);
  EXPECT_FALSE(outcome.dirty);
}

TEST(QNProfileAppearance, ThePNGIsPreferredUpToTheLimit) {
  // The largest square of noise that still fits: the next one is tried as JPEG.
  std::uint32_t side = 200, tooLarge = 300;
  while (tooLarge - side > 1) {
    const std::uint32_t middle = (side + tooLarge) / 2;
    const auto png = QNImagePNGRepresentation(picture(middle, middle));
    (png.value().size() <= kLimit ? side : tooLarge) = middle;
  }
  ASSERT_GT(side, 200u);

  const auto fits = outcomeOf(picture(side, side));
  EXPECT_EQ(formatOf(fits.data), QNImageFormat::png);
  EXPECT_TRUE(fits.errors.empty());

  const auto icon = picture(side + 1, side + 1);
  const Lengths lengths(icon);
  const auto errors = outcomeOf(icon).errors;
  ASSERT_FALSE(errors.empty());
  EXPECT_EQ(errors[0], text(kTriesJPEG, lengths.png, lengths.jpeg));
}

TEST(QNProfileAppearance, AnAbsentIconClearsAndDirties) {
  const auto outcome = outcomeOf(nullptr);

  EXPECT_EQ(outcome.data, std::nullopt);
  EXPECT_TRUE(outcome.dirty);
}

TEST(QNProfileAppearance, AnIconThatCantBeDrawnChangesNothing) {
  const Bytes whole = pngOf(64, 64, harshNoise());
  for (const auto& icon : {QNImage::imageWithData(ByteView(whole).first(whole.size() / 2)),
                           QNImage::imageWithData(pngBeginning(100'000, 100'000)),
                           QNImage::imageWithData(pngBeginning(100'000, 90'000))}) {
    ASSERT_NE(icon, nullptr);

    const auto outcome = outcomeOf(icon);

    EXPECT_EQ(outcome.errors.size(), 1u);
    EXPECT_EQ(outcome.data, kOldIcon);
    EXPECT_FALSE(outcome.dirty);
  }
}

TEST(QNProfileAppearance, MakesNoIconOfForeignData) {
  const auto vault = cleanVault();
  EXPECT_EQ(vault->customIcon(), nullptr);

  vault->setIconData(Bytes{1, 2, 3});

  EXPECT_EQ(vault->customIcon(), nullptr);
  EXPECT_FALSE(vault->dirtyRow());
}

// Colour

TEST(QNProfileAppearance, AVaultStartsWithoutAColour) {
  const auto vault = cleanVault();

  EXPECT_EQ(vault->profileColor(), std::nullopt);
  EXPECT_EQ(vault->profileColorText(), std::nullopt);
}

TEST(QNProfileAppearance, WritesAColourAsFourNumbers) {
  const auto vault = cleanVault();

  vault->setProfileColor(QNColor{0.5f, 0.25f, 1, 0.75f});

  const auto text = mr_objectFromJSONStringWithError(vault->profileColorText().value());
  ASSERT_TRUE(text.has_value());
  EXPECT_EQ(*text, (JsonObject{{"h", 0.5}, {"s", 0.25}, {"b", 1.0}, {"a", 0.75}}));
}

TEST(QNProfileAppearance, ReadsBackTheColourThatItWrote) {
  const auto vault = cleanVault();
  const QNColor color{0.1f, 0.2f, 0.3f, 0.9f};
  vault->setProfileColor(color);

  const auto other = cleanVault();
  other->setProfileColorText(vault->profileColorText());

  EXPECT_EQ(other->profileColor(), color);
}

struct ColorCase {
  std::optional<std::string> text;
  std::optional<QNColor> color;
};
class QNProfileColorTexts : public testing::TestWithParam<ColorCase> {};

TEST_P(QNProfileColorTexts, AreReadTolerantly) {
  const auto vault = cleanVault();
  vault->setProfileColor(QNColor{1, 1, 1, 1});

  vault->setProfileColorText(GetParam().text);

  EXPECT_EQ(vault->profileColor(), GetParam().color);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, QNProfileColorTexts,
    testing::Values(
        ColorCase{R"({"h":0.5,"s":0.25,"b":1,"a":0.75})", QNColor{0.5f, 0.25f, 1, 0.75f}},
        ColorCase{R"({"h":"0.5","s":" .25","b":"+1","a":"0.75x"})", QNColor{0.5f, 0.25f, 1, 0.75f}},
        ColorCase{R"({"h":0.1})", QNColor{0.1f, 0, 0, 0}}, ColorCase{"{}", QNColor{0, 0, 0, 0}},
        ColorCase{R"({"h":true,"s":null,"b":[1],"a":"red"})", QNColor{0, 0, 0, 0}},
        ColorCase{R"({"h":1e300,"s":-3,"b":7,"a":"nan"})", QNColor{1, 0, 1, 0}},
        ColorCase{R"({"h":"","s":" ","b":"inf","a":"-"})", QNColor{0, 0, 0, 0}},
        ColorCase{"[0.5]", std::nullopt}, ColorCase{"red", std::nullopt},
        ColorCase{"", std::nullopt}, ColorCase{std::nullopt, std::nullopt}));

TEST(QNProfileAppearance, KeepsAColourThatCanBeStored) {
  const float infinite = std::numeric_limits<float>::infinity();
  const float none = std::numeric_limits<float>::quiet_NaN();
  const auto vault = cleanVault();

  vault->setProfileColor(QNColor{none, infinite, -0.5F, 1.5F});

  EXPECT_EQ(vault->profileColor(), (QNColor{0, 0, 0, 1}));
  EXPECT_TRUE(vault->blob());
  EXPECT_TRUE(QNKeyedArchiver::archivedDataWithRootObject(*vault).ok());
  vault->setProfileColor(QNColor{-infinite, 0.5F, 1, none});
  EXPECT_EQ(vault->profileColor(), (QNColor{0, 0.5F, 1, 0}));
  vault->setProfileColor(std::nullopt);
  EXPECT_EQ(vault->profileColor(), std::nullopt);
}

}  // namespace
}  // namespace quillon
