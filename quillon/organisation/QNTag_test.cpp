#include "quillon/organisation/QNTag.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::array kClasses = {QNDecodableClass{
    "QNTag",
    [](QNDecoder& coder) -> std::shared_ptr<QNCoding> { return std::make_shared<QNTag>(coder); }}};

std::shared_ptr<QNTag> tag(std::string title, std::uint64_t count = 0) {
  auto made = std::make_shared<QNTag>(QNExisting{3});
  made->setTitle(std::move(title));
  made->setNumberOfItems(count);
  return made;
}

std::string archived(QNTag& object) {
  const auto archive = QNKeyedArchiver::archivedDataWithRootObject(object);
  return archive.ok() ? std::string(textOf(archive.value())) : archive.error().message;
}

std::shared_ptr<QNTag> unarchived(std::string_view archive) {
  const auto made = QNKeyedUnarchiver::unarchivedObjectOfClasses(kClasses, bytesOf(archive));
  return made.ok() ? std::dynamic_pointer_cast<QNTag>(made.value()) : nullptr;
}

std::string archiveWith(std::string_view members) {
  return R"({"quillon-archive":1,"root":{"$class":"QNTag","oid":3,"objectFlags":256,)"
         R"("profileID":0,"profileType":0)" +
         std::string(members) + "}}";
}

TEST(QNTag, NamesTheTagsThatProgramsKnow) {
  EXPECT_EQ(QNTagSeparatorString, "/");
  EXPECT_EQ(QN2FATag, "2FA");
  EXPECT_EQ(QNHttpTag, "HTTP");
  EXPECT_EQ(QNAppleWatchTag, "Apple Watch");
  EXPECT_EQ(QNTag::starterKitTagTitle(), "Starter Kit");
}

TEST(QNTag, StartsWithoutATitle) {
  const QNTag made(initNew);

  EXPECT_EQ(made.title(), std::nullopt);
  EXPECT_EQ(made.numberOfItems(), 0u);
  EXPECT_EQ(made.nestDepth(), 0u);
  EXPECT_THAT(made.titleComponents(), IsEmpty());
}

TEST(QNTag, HasALevelForEachPartOfItsPath) {
  const auto made = tag("Travel/2024/Tickets");

  EXPECT_EQ(made->nestDepth(), 3u);
  EXPECT_THAT(made->titleComponents(), ElementsAre("Travel", "2024", "Tickets"));
}

TEST(QNTag, KeepsEmptyLevels) {
  EXPECT_THAT(tag("/a//")->titleComponents(), ElementsAre("", "a", "", ""));
  EXPECT_THAT(tag("")->titleComponents(), ElementsAre(""));
}

TEST(QNTag, SplitsEachNewTitleAnew) {
  const auto made = tag("a/b");

  made->setTitle("c");
  EXPECT_THAT(made->titleComponents(), ElementsAre("c"));
  made->setTitle("c");
  EXPECT_THAT(made->titleComponents(), ElementsAre("c"));
  made->setTitle(std::nullopt);
  EXPECT_THAT(made->titleComponents(), IsEmpty());
}

TEST(QNTag, StaysCleanWhateverIsSet) {
  QNTag made(QNExisting{3});

  made.setTitle("a");
  made.setNumberOfItems(7);

  EXPECT_FALSE(made.dirtyRow());
}

TEST(QNTag, GivesThePathDownToALevel) {
  const auto made = tag("Travel/2024/Tickets");

  EXPECT_EQ(made->titleComponentAtNestPosition(0, true), "Travel");
  EXPECT_EQ(made->titleComponentAtNestPosition(1, true), "Travel/2024");
  EXPECT_EQ(made->titleComponentAtNestPosition(2, true), "Travel/2024/Tickets");
}

TEST(QNTag, GivesOneLevelAlone) {
  const auto made = tag("Travel/2024/Tickets");

  EXPECT_EQ(made->titleComponentAtNestPosition(0, false), "Travel");
  EXPECT_EQ(made->titleComponentAtNestPosition(2, false), "Tickets");
}

TEST(QNTag, GivesNothingOfALevelThatItDoesNotHave) {
  const auto made = tag("a/b");

  for (const bool path : {true, false}) {
    EXPECT_EQ(made->titleComponentAtNestPosition(-1, path), "");
    EXPECT_EQ(made->titleComponentAtNestPosition(2, path), "");
    EXPECT_EQ(made->titleComponentAtNestPosition(std::numeric_limits<std::int64_t>::min(), path),
              "");
    EXPECT_EQ(QNTag(initNew).titleComponentAtNestPosition(0, path), "");
  }
}

TEST(QNTag, ComparesByTitleAsAPersonDoesCaseApart) {
  const QNScopedLocale locale("en-US");

  EXPECT_LT(tag("alpha")->localizedCompare(*tag("Beta")), 0);
  EXPECT_GT(tag("Zebra")->localizedCompare(*tag("éclair")), 0);
  EXPECT_EQ(tag("Travel")->localizedCompare(*tag("tRAVEL")), 0);
  EXPECT_EQ(QNTag(initNew).localizedCompare(QNTag(initNew)), 0);
}

TEST(QNTag, TellsItsNumberOfItems) {
  const QNScopedLocale locale("en-US");

  EXPECT_EQ(tag("a", 0)->localizedSubtitle(), "empty");
  EXPECT_EQ(tag("a", 1)->localizedSubtitle(), "1 item");
  EXPECT_EQ(tag("a", 1234)->localizedSubtitle(), "1,234 items");
}

// The form as docs/formats.md tells it.
TEST(QNTag, IsArchivedByTitleAndCount) {
  const auto made = tag("Travel/Tickets", 12);

  const std::string archive = archived(*made);

  EXPECT_EQ(archive, archiveWith(R"(,"title":"Travel/Tickets","numberOfItems":12)"));
  const auto read = unarchived(archive);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->title(), "Travel/Tickets");
  EXPECT_EQ(read->numberOfItems(), 12u);
  EXPECT_EQ(read->oid(), 3u);
  EXPECT_EQ(read->nestDepth(), 2u);
}

TEST(QNTag, IsArchivedWithoutWhatItDoesNotHave) {
  QNTag made(QNExisting{3});

  const std::string archive = archived(made);

  EXPECT_EQ(archive, archiveWith(""));
  const auto read = unarchived(archive);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->title(), std::nullopt);
  EXPECT_EQ(read->numberOfItems(), 0u);
  EXPECT_THAT(read->titleComponents(), IsEmpty());
}

TEST(QNTag, ReadsValuesOfOtherKindsInAnArchiveAsAbsent) {
  const auto read = unarchived(archiveWith(R"(,"title":7,"numberOfItems":"many")"));

  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->title(), std::nullopt);
  EXPECT_EQ(read->numberOfItems(), 0u);
}

TEST(QNTag, GivesItsRowAndTakesItBack) {
  const auto made = tag("Travel/Tickets", std::numeric_limits<std::uint64_t>::max());

  const JsonObject row = made->allAttributes();

  EXPECT_EQ(mr_JSONStringWithError(row),
            R"({"title":"Travel/Tickets","numberOfItems":18446744073709551615})");
  QNTag other(initNew);
  other.setAllAttributes(row);
  EXPECT_EQ(other.title(), "Travel/Tickets");
  EXPECT_EQ(other.numberOfItems(), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(other.nestDepth(), 2u);
}

TEST(QNTag, LeavesOutOfItsRowWhatItDoesNotHave) {
  EXPECT_THAT(QNTag(initNew).allAttributes(), IsEmpty());
}

TEST(QNTag, LosesWhatARowDoesNotHave) {
  const auto made = tag("a/b", 2);

  made->setAllAttributes({});

  EXPECT_EQ(made->title(), std::nullopt);
  EXPECT_EQ(made->numberOfItems(), 0u);
  EXPECT_THAT(made->titleComponents(), IsEmpty());
}

TEST(QNTag, ReadsValuesOfOtherKindsInARowAsAbsent) {
  const auto made = tag("a/b", 2);

  made->setAllAttributes(*mr_objectFromJSONStringWithError(R"({"title":[],"numberOfItems":"2"})"));

  EXPECT_EQ(made->title(), std::nullopt);
  EXPECT_EQ(made->numberOfItems(), 0u);
}

}  // namespace
}  // namespace quillon
