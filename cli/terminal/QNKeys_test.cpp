#include "cli/terminal/QNKeys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillon {
namespace {

using ::testing::ElementsAre;

// All keys of the bytes; what waits for more isn't among them.
std::vector<QNKey> keysOf(std::string_view bytes) {
  QNKeyReader reader;
  reader.add(bytes);
  std::vector<QNKey> keys;
  while (const auto press = reader.take()) keys.push_back(press->key);
  return keys;
}

TEST(Keys, AreReadFromTheSequencesOfUsualTerminals) {
  EXPECT_THAT(keysOf("\x1b[A\x1b[B\x1bOA\x1bOB"),
              ElementsAre(QNKey::up, QNKey::down, QNKey::up, QNKey::down));
  EXPECT_THAT(keysOf("\x1b[5~\x1b[6~"), ElementsAre(QNKey::pageUp, QNKey::pageDown));
  EXPECT_THAT(
      keysOf("\x1b[H\x1b[F\x1b[1~\x1b[4~\x1bOH\x1bOF"),
      ElementsAre(QNKey::home, QNKey::end, QNKey::home, QNKey::end, QNKey::home, QNKey::end));
  EXPECT_THAT(keysOf("\r\x03\x07\x04\x1a\x0e\x10\x7f\x08\x17\x15"),
              ElementsAre(QNKey::enter, QNKey::leave, QNKey::leave, QNKey::endOfInput,
                          QNKey::suspend, QNKey::down, QNKey::up, QNKey::erase, QNKey::erase,
                          QNKey::eraseWord, QNKey::eraseAll));
}

TEST(Keys, AreUnknownWhereNobodyNamedThem) {
  EXPECT_THAT(keysOf("\x1b[1;5C"), ElementsAre(QNKey::unknown));
  EXPECT_THAT(keysOf("\x1bx"), ElementsAre(QNKey::unknown));
  EXPECT_THAT(keysOf("\x02"), ElementsAre(QNKey::unknown));
  EXPECT_THAT(keysOf("\xff"), ElementsAre(QNKey::unknown));
}

TEST(Keys, OfTextAreWholeCharacters) {
  QNKeyReader reader;
  reader.add("aü日\xf0\x9f");

  EXPECT_EQ(reader.take()->text, "a");
  EXPECT_EQ(reader.take()->text, "ü");
  EXPECT_EQ(reader.take()->text, "日");
  EXPECT_FALSE(reader.take());
  reader.add("\x8f\xa6");
  EXPECT_EQ(reader.take()->text, "🏦");
}

TEST(Keys, WaitForTheRestOfASequence) {
  QNKeyReader reader;
  reader.add("\x1b");
  EXPECT_FALSE(reader.take());
  EXPECT_TRUE(reader.isWaiting());
  reader.add("[");
  EXPECT_FALSE(reader.take());
  reader.add("A");
  EXPECT_EQ(reader.take()->key, QNKey::up);
  EXPECT_FALSE(reader.isWaiting());
}

TEST(Keys, AreLeaveWhereNothingFollowsAnEscape) {
  QNKeyReader reader;
  reader.add("\x1b");
  EXPECT_EQ(reader.takeWaiting().key, QNKey::leave);
  reader.add("\x1b[");
  EXPECT_EQ(reader.takeWaiting().key, QNKey::unknown);
  EXPECT_FALSE(reader.isWaiting());
}

TEST(Keys, NeverWaitForASequenceWithoutAnEnd) {
  EXPECT_THAT(keysOf("\x1b[" + std::string(100, '1')), ElementsAre(QNKey::unknown));
}

}  // namespace
}  // namespace quillon
