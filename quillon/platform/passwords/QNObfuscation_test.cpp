#include "quillon/platform/passwords/QNObfuscation.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(QNObfuscation, HasItsFrozenForm) {
  // Worked by hand: 'a' ^ A7 = C6, 'b' ^ C6 = A4, 'c' ^ E5 = 86.
  EXPECT_TRUE(persistentObfuscatedString("abc").equals("1:xqSG"));
  EXPECT_TRUE(persistentObfuscatedString("").equals("1:"));
}

TEST(QNObfuscation, IsUndone) {
  for (const std::string_view text :
       {"", "a", "try quillon", "p\xc3\xa4ss\n",
        "a long one, longer than the pattern before it is "
        "back at its beginning, which takes two hundred and fifty-six bytes: aaaaaaaaaaaaaaaaaaaaa"
        "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"
        "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"}) {
    const auto undone = persistentDeobfuscatedString(persistentObfuscatedString(text).reveal());

    ASSERT_TRUE(undone);
    EXPECT_TRUE(undone->equals(text));
  }
}

TEST(QNObfuscation, HidesTheText) {
  EXPECT_EQ(persistentObfuscatedString("try quillon").reveal().find("quillon"),
            std::string_view::npos);
}

TEST(QNObfuscation, RefusesEveryOtherForm) {
  for (const std::string_view text : {"", "1", "2:xqSG", "xqSG", "1:xqS", "1:xq!G", "1:xqSG\n"}) {
    EXPECT_FALSE(persistentDeobfuscatedString(text)) << text;
  }
}

}  // namespace
}  // namespace quillon
