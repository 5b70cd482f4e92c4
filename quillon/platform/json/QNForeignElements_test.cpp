#include "quillon/platform/json/QNForeignElements.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

// "own0", "own1" and so on beside the foreign ones; `skipped` makes none.
std::string listed(const QNForeignElements& foreign, std::size_t count, std::size_t skipped = 99) {
  std::string text;
  foreign.interleave(
      count,
      [&](std::size_t i) {
        if (i == skipped) return false;
        text += "own" + std::to_string(i) + " ";
        return true;
      },
      [&](const Json& element) { text += boost::json::serialize(element) + " "; });
  return text;
}

TEST(QNForeignElements, StandInTheirPlaces) {
  QNForeignElements foreign;
  foreign.add(0, Json(1));
  foreign.add(2, Json(2));
  foreign.add(3, Json(3));

  EXPECT_EQ(listed(foreign, 3), "1 own0 2 3 own1 own2 ");
}

TEST(QNForeignElements, OfAListThatBecameShorterStandAtItsEnd) {
  QNForeignElements foreign;
  foreign.add(5, Json(1));
  foreign.add(9, Json(2));

  EXPECT_EQ(listed(foreign, 1), "own0 1 2 ");
  EXPECT_EQ(listed(foreign, 0), "1 2 ");
}

TEST(QNForeignElements, AreNotCountedForElementsThatWereLeftOut) {
  QNForeignElements foreign;
  foreign.add(1, Json(1));

  EXPECT_EQ(listed(foreign, 3, 0), "own1 1 own2 ");
}

TEST(QNForeignElements, LieInTheWipingResource) {
  QNForeignElements foreign;
  const Json element({1, "x"});

  foreign.add(0, element);

  foreign.interleave(
      0, [](std::size_t) { return true; },
      [](const Json& kept) { EXPECT_EQ(kept.storage(), jsonStorage()); });
  EXPECT_EQ(foreign.count(), 1u);
  foreign.clear();
  EXPECT_TRUE(foreign.empty());
}

}  // namespace
}  // namespace quillon
