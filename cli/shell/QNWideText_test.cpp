#include "cli/shell/QNWideText.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(WideText, GoesThereAndBack) {
  for (const std::string_view text : {"", "Bank", "ümläut", "日本銀行", "🏦 e\u0301", "السلام"}) {
    EXPECT_EQ(textOfWide(wideText(text)), text);
  }
  EXPECT_EQ(wideText("日a").size(), 2u);
  EXPECT_EQ(wideText("🏦").size(), 1u);
}

TEST(WideText, ShowsWhatIsNoTextAsSuch) {
  EXPECT_EQ(wideText("a\xff"
                     "b"),
            L"a\xFFFD"
            L"b");
  EXPECT_EQ(textOfWide(std::wstring(1, static_cast<wchar_t>(0xD800))), "\xEF\xBF\xBD");
  EXPECT_EQ(textOfWide(std::wstring(1, static_cast<wchar_t>(0x110000))), "\xEF\xBF\xBD");
}

}  // namespace
}  // namespace quillon
