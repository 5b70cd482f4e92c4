#include "quillon/platform/memory/QNSecret.h"

#include <gtest/gtest.h>

#include <sstream>

#include "quillon/platform/internal/QNMemoryWatch.h"

namespace quillon {
namespace {

constexpr std::string_view kShort = "hunter2!";  // a std::string would keep this inside itself
constexpr std::string_view kLong = "a pass phrase that is longer than any small buffer";

static_assert(!std::is_copy_constructible_v<QNSecret> && !std::is_copy_assignable_v<QNSecret>);
static_assert(std::is_nothrow_move_constructible_v<QNSecret>);

TEST(QNSecret, PrintsNothingOfItself) {
  std::ostringstream out;

  out << QNSecret(kShort);

  EXPECT_EQ(out.str(), "[secret]");
}

TEST(QNSecret, LeavesNothingBehindWhenDestroyed) {
  const QNFreedBlockWatch shortWatch(kShort), longWatch(kLong);

  const std::size_t onStack = remainsOnStack(kShort, [] { const QNSecret secret(kShort); });
  { const QNSecret secret(kLong); }

  EXPECT_EQ(onStack, 0u);
  EXPECT_EQ(shortWatch.found(), 0u);
  EXPECT_EQ(longWatch.found(), 0u);
}

TEST(QNSecret, LeavesNothingBehindWhenOutgrownMovedOrReplaced) {
  const QNFreedBlockWatch watch(kShort);
  {
    QNSecret grown;
    for (int i = 0; i < 100; ++i) grown.append(kShort);
    QNSecret moved(std::move(grown));
    moved = QNSecret("another");
    EXPECT_EQ(moved.reveal(), "another");
  }

  EXPECT_EQ(watch.found(), 0u);
}

TEST(QNSecret, LosesItsLastByte) {
  QNSecret secret("ab");

  secret.removeLast();
  EXPECT_EQ(secret.reveal(), "a");
  secret.removeLast();
  secret.removeLast();

  EXPECT_TRUE(secret.empty());
  EXPECT_EQ(secret.size(), 0u);
}

TEST(QNSecret, IsEqualToTheSameTextOnly) {
  const QNSecret secret(kShort);

  EXPECT_TRUE(secret.equals(kShort));
  EXPECT_TRUE(secret.equals(secret.clone()));
  EXPECT_FALSE(secret.equals("hunter2?"));
  EXPECT_FALSE(secret.equals("hunter2"));
  EXPECT_FALSE(secret.equals(""));
  EXPECT_TRUE(QNSecret().equals(""));
}

TEST(QNSecret, IsApartFromItsClone) {
  QNSecret secret(kShort);
  const QNSecret clone = secret.clone();

  secret.append("x");

  EXPECT_EQ(clone.reveal(), kShort);
}

}  // namespace
}  // namespace quillon
