#include <limits>

#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/vaults/internal/QNVaultTesting.h"

namespace quillon {
namespace {

Bytes pngOfSize(std::size_t size) {
  Bytes bytes{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
  bytes.resize(size, 0);
  return bytes;
}

std::shared_ptr<QNProfile> cleanVault() {
  return QNProfile::initExistingWithID(5);
}

// Icon

TEST(QNProfileAppearance, KeepsAnIconAsItIsEncoded) {
  const auto vault = cleanVault();

  vault->setCustomIcon(QNImage::imageWithData(pngOfSize(49152)));

  EXPECT_EQ(vault->iconData(), pngOfSize(49152));
  EXPECT_EQ(toBytes(vault->customIcon()->data()), pngOfSize(49152));
  EXPECT_TRUE(vault->dirtyRow());
}

TEST(QNProfileAppearance, RefusesAnIconThatIsTooLarge) {
  const auto vault = cleanVault();
  vault->setIconData(pngOfSize(100));
  const MRCapturingSink sink;

  vault->setCustomIcon(QNImage::imageWithData(pngOfSize(49153)));

  EXPECT_EQ(sink.texts(MRLogKind::error),
            std::vector<std::string>{
                "Failed to set custom icon, JPEG data is too large: 49153 bytes. Giving up"});
  EXPECT_EQ(vault->iconData(), pngOfSize(100));
  EXPECT_FALSE(vault->dirtyRow());
}

TEST(QNProfileAppearance, AnAbsentIconClearsAndDirties) {
  const auto vault = cleanVault();
  vault->setIconData(pngOfSize(100));

  vault->setCustomIcon(nullptr);

  EXPECT_EQ(vault->iconData(), std::nullopt);
  EXPECT_EQ(vault->customIcon(), nullptr);
  EXPECT_TRUE(vault->dirtyRow());
}

TEST(QNProfileAppearance, MakesNoIconOfForeignData) {
  const auto vault = cleanVault();

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
