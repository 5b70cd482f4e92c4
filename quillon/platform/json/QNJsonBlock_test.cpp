#include "quillon/platform/json/QNJsonBlock.h"

namespace quillon {
namespace {

constexpr std::string_view kText =
    R"({"title":"A title that is longer than what lies inside a value","n":7,"i":-1,"t":true,)"
    R"("tags":["short","a tag that is longer than what lies inside"],"o":{"key":null},"e":{}})";

TEST(QNJsonBlock, HoldsWhatWasRead) {
  QNJsonBlock block;

  const auto object = mr_compactObjectFromJSONDataWithError(bytesOf(kText), block);

  ASSERT_TRUE(object);
  EXPECT_EQ(mr_JSONStringWithError(*object), kText);
}

TEST(QNJsonBlock, IsJustLargeEnough) {
  QNJsonBlock block;

  const auto object = mr_compactObjectFromJSONDataWithError(bytesOf(kText), block);

  ASSERT_TRUE(object);
  EXPECT_EQ(block.used(), block.size());
}

TEST(QNJsonBlock, TakesChangesLargerThanItself) {
  QNJsonBlock block;
  auto object = mr_compactObjectFromJSONDataWithError(bytesOf(kText), block);
  ASSERT_TRUE(object);
  const std::string longText(5000, 'x');

  setJsonText(*object, "title", longText);
  setJsonText(*object, "new", "a text of some length, too long for the inside");
  object->erase("tags");

  EXPECT_EQ(mr_validStringValueForKey(*object, "title"), longText);
  EXPECT_EQ(mr_validStringValueForKey(*object, "new"),
            "a text of some length, too long for the inside");
  EXPECT_FALSE(object->contains("tags"));
  EXPECT_EQ(mr_unsignedValueForKey(*object, "n"), 7u);
}

TEST(QNJsonBlock, AMemberThatChangesAgainAndAgainTakesNoMore) {
  QNJsonBlock block;
  auto object = mr_compactObjectFromJSONDataWithError(bytesOf(kText), block);
  ASSERT_TRUE(object);
  setJsonText(*object, "title", std::string(100, 'a'));
  const std::size_t size = block.size();

  for (int i = 0; i < 1000; ++i) setJsonText(*object, "title", std::string(100, 'b'));

  EXPECT_EQ(block.size(), size);
}

TEST(QNJsonBlock, APlaceOfWideAlignmentNeverCostsALaterOneItsOwn) {
  QNJsonBlock block;
  void* const wide = block.allocate(16, 16);
  auto* const later = static_cast<unsigned char*>(block.allocate(8, 8));

  block.deallocate(wide, 16, 16);
  auto* const next = static_cast<unsigned char*>(block.allocate(24, 8));

  EXPECT_TRUE(next + 24 <= later || later + 8 <= next);
}

TEST(QNJsonBlock, ThePlaceAtTheEndIsGivenOutAgain) {
  QNJsonBlock block;
  block.allocate(8, 8);
  void* const last = block.allocate(24, 8);

  block.deallocate(last, 24, 8);

  EXPECT_EQ(block.allocate(16, 4), last);
}

TEST(QNJsonBlock, WipesWhatAChangeReplaces) {
  QNJsonBlock block;
  auto object = mr_compactObjectFromJSONDataWithError(bytesOf(kText), block);
  ASSERT_TRUE(object);
  const char* const before = object->at("title").get_string().data();
  ASSERT_EQ(std::string_view(before, 7), "A title");

  object->erase("title");

  EXPECT_EQ(std::string_view(before, 7), std::string_view("\0\0\0\0\0\0\0", 7));
}

std::size_t releasedBytes = 0;
std::size_t releasedNotZero = 0;

TEST(QNJsonBlock, IsWipedAtItsEnd) {
  releasedBytes = releasedNotZero = 0;
  QNJsonBlock block;
  auto object = mr_compactObjectFromJSONDataWithError(bytesOf(kText), block);
  ASSERT_TRUE(object);
  const std::size_t size = block.size();
  setReleasedBlockObserver([](const void* released, std::size_t bytes) {
    releasedBytes += bytes;
    const auto* const at = static_cast<const unsigned char*>(released);
    for (std::size_t i = 0; i < bytes; ++i) releasedNotZero += at[i] != 0;
  });

  object.reset();
  block.release();
  setReleasedBlockObserver(nullptr);

  EXPECT_GE(releasedBytes, size);
  EXPECT_EQ(releasedNotZero, 0u);
}

TEST(QNJsonBlock, RefusesWhatIsNoObjectAndLeavesNoBlock) {
  for (const std::string_view text : {"", "[]", "{", "{}x", "7"}) {
    QNJsonBlock block;
    QNError error;

    EXPECT_FALSE(mr_compactObjectFromJSONDataWithError(bytesOf(text), block, &error)) << text;

    EXPECT_EQ(error.code, kErrorUnreadableData) << text;
    EXPECT_EQ(block.size(), 0u) << text;
  }
}

TEST(QNJsonBlock, HoldsAnObjectLargerThanItsScratchMemory) {
  std::string text = R"({"list":[)";
  for (int i = 0; i < 5000; ++i) text += R"("an element that is long enough to lie outside",)";
  text += "0]}";
  QNJsonBlock block;

  const auto object = mr_compactObjectFromJSONDataWithError(bytesOf(text), block);

  ASSERT_TRUE(object);
  EXPECT_EQ(mr_JSONStringWithError(*object), text);
}

}  // namespace
}  // namespace quillon
