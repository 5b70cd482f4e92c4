#include "quillon/platform/crypto/QNEncryptedString.h"

#include <gtest/gtest.h>

#include <cstring>

namespace quillon {
namespace {

TEST(QNEncryptedString, GivesTheSameTextBack) {
  const std::string withZero("a\0b", 3);
  for (const std::string& text :
       {std::string(), std::string("x"), withZero, std::string("p\xc3\xa4ssw\xc3\xb6rd"),
        std::string(70'000, 'y')}) {
    const auto sealed = QNEncryptedString::encryptedStringWithString(text);

    ASSERT_NE(sealed, nullptr);
    EXPECT_EQ(sealed->stringValue().reveal(), text);
    EXPECT_EQ(sealed->stringValue().reveal(), text) << "a second time";
  }
}

TEST(QNEncryptedString, LeavesItsKeyMemoryAsItWas) {
  const std::size_t before = lockedBytesInUse();

  auto sealed = QNEncryptedString::encryptedStringWithString("secret words");
  EXPECT_EQ(lockedBytesInUse(), before + 32);
  sealed.reset();

  EXPECT_EQ(lockedBytesInUse(), before);
}

}  // namespace
}  // namespace quillon
