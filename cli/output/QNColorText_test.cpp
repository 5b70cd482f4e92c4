#include "cli/output/QNColorText.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(QNColorText, ReadsColorsAsHueSaturationAndBrightness) {
  EXPECT_EQ(colorFromText("#FF0000"), (QNColor{0, 1, 1, 1}));
  EXPECT_EQ(colorFromText("#00ff00"), (QNColor{2.0F / 6, 1, 1, 1}));
  EXPECT_EQ(colorFromText("0000FF"), (QNColor{4.0F / 6, 1, 1, 1}));
  EXPECT_EQ(colorFromText("#FF00FF"), (QNColor{5.0F / 6, 1, 1, 1}));
  EXPECT_EQ(colorFromText("#000000"), (QNColor{0, 0, 0, 1}));
  EXPECT_EQ(colorFromText("#ffffff"), (QNColor{0, 0, 1, 1}));
  EXPECT_EQ(colorFromText("#330000"), (QNColor{0, 1, 0.2F, 1}));
}

TEST(QNColorText, IsNothingForOtherTexts) {
  for (const char* const text : {"", "#", "red", "#12345", "#1234567", "##123456", "#12345g",
                                 "#FF00FFFF", " #FF00FF", "#FF00FF "}) {
    EXPECT_EQ(colorFromText(text), std::nullopt) << text;
  }
}

TEST(QNColorText, WritesWhatItHasRead) {
  // Every 5th value of each component, and with it 0 and 255.
  for (int red = 0; red < 256; red += 5) {
    for (int green = 0; green < 256; green += 5) {
      for (int blue = 0; blue < 256; blue += 5) {
        const auto text = fmt::format("#{:02X}{:02X}{:02X}", red, green, blue);
        ASSERT_EQ(textOfColor(*colorFromText(text)), text);
      }
    }
  }
}

TEST(QNColorText, WritesColorsThatHaveNoNumberOfTheirOwn) {
  EXPECT_EQ(textOfColor({0.5F, 0.25F, 1, 0.5F}), "#BFFFFF");
  EXPECT_EQ(textOfColor({1, 1, 1, 1}), "#FF0000");  // the circle is closed
  EXPECT_EQ(textOfColor({0, 0, 0.999F, 1}), "#FFFFFF");
}

}  // namespace
}  // namespace quillon
