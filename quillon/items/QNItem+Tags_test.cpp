#include "quillon/items/internal/QNItemTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Tags = std::set<std::string>;

/// A clean item with these tags.
QNSampleItemRef itemTagged(const Tags& tags) {
  auto item = newItem(localVault());
  item->setTags(tags);
  item->didSave();
  return item;
}

std::string processed(std::optional<std::string_view> tag) {
  return QNItem::processTagForAdding(tag).value_or("(none)");
}

TEST(QNItemTags, TagsAreASet) {
  const auto item = newItem(localVault());
  EXPECT_THAT(item->tags(), IsEmpty());

  item->setTags({"b", "a"});

  EXPECT_THAT(item->tags(), ElementsAre("a", "b"));
  EXPECT_EQ(jsonText(item->overviewObjectForKey(kTags)), R"(["a","b"])");
}

TEST(QNItemTags, WhatIsNoListReadsAsNoTags) {
  const auto item = newItem(localVault());
  for (const char* const stored : {R"("a")", "{}", "[]", "7", "[1,null]"}) {
    item->setOverviewObject(jsonValue(stored), kTags);

    EXPECT_THAT(item->tags(), IsEmpty()) << stored;
  }
}

TEST(QNItemTags, TheSameTagsInAnotherOrderAreNotWritten) {
  const auto item = newItem(localVault());
  item->setOverviewObject(jsonValue(R"(["b","a","b"])"), kTags);
  item->didSave();

  item->setTags({"a", "b"});
  EXPECT_FALSE(item->dirtyRow());
  EXPECT_EQ(jsonText(item->overviewObjectForKey(kTags)), R"(["b","a","b"])");
  item->setTags({"a"});

  EXPECT_TRUE(item->dirtyRow());
}

TEST(QNItemTags, AreCounted) {
  EXPECT_FALSE(itemTagged({})->hasTags());
  EXPECT_EQ(itemTagged({})->numberOfTags(), 0u);
  EXPECT_TRUE(itemTagged({"a", "b"})->hasTags());
  EXPECT_EQ(itemTagged({"a", "b"})->numberOfTags(), 2u);
}

TEST(QNItemTags, ArePlainTextWithCommas) {
  EXPECT_EQ(itemTagged({})->tagsPlain(), std::nullopt);
  EXPECT_EQ(itemTagged({"a"})->tagsPlain(), "a");
  EXPECT_EQ(itemTagged({"a", "b/c"})->tagsPlain(), "a, b/c");
}

TEST(QNItemTags, ASearchGetsWhatIsStored) {
  const auto item = newItem(localVault());
  for (const char* const stored :
       {R"(["b","a","b"])", R"("a")", R"({"a":1})", "7", "[1,null]", "false"}) {
    item->setOverviewObject(jsonValue(stored), kTags);

    const Json found = item->tagsForSearch();

    EXPECT_EQ(jsonText(&found), stored);
  }
}

TEST(QNItemTags, ASearchGetsAnEmptyListOfWhatHasNoElements) {
  const auto item = newItem(localVault());
  EXPECT_EQ(item->tagsForSearch(), Json(JsonArray()));
  for (const char* const stored : {"[]", "{}", R"("")", "null"}) {
    item->setOverviewObject(jsonValue(stored), kTags);

    EXPECT_EQ(item->tagsForSearch(), Json(JsonArray())) << stored;
  }
}

TEST(QNItemTags, AreCleanedOfWhiteSpaceOtherThanBlanks) {
  EXPECT_EQ(processed("my\ttag\n"), "mytag");
  EXPECT_EQ(processed("a\u00A0b\u2028c\u3000d"), "abcd");
  EXPECT_EQ(processed("my tag"), "my tag");
}

TEST(QNItemTags, HaveOneSeparatorBetweenTwoLevels) {
  EXPECT_EQ(processed("a//b"), "a/b");
  EXPECT_EQ(processed("a\\\\/b"), "a/b");
  EXPECT_EQ(processed("a\\b"), "a/b");
  EXPECT_EQ(processed("a\\/\\/\\b"), "a/b");
  EXPECT_EQ(processed("a/\t/b"), "a/b");
  EXPECT_EQ(processed("a// b / c"), "a/b/c");
  EXPECT_EQ(processed("a/ / /b"), "a/b");
}

TEST(QNItemTags, LoseBlanksAndSeparatorsAtTheirEnds) {
  EXPECT_EQ(processed(" /a / "), "a");
  EXPECT_EQ(processed("/a/b/"), "a/b");
  EXPECT_EQ(processed("  a b  "), "a b");
}

TEST(QNItemTags, KeepEveryOtherCharacter) {
  EXPECT_EQ(processed("銀行/Zürich"), "銀行/Zürich");
  EXPECT_EQ(processed("\x1B[31m"), "\x1B[31m");
  EXPECT_EQ(processed("\u202Eabc"), "\u202Eabc");
  const std::string long_(1 << 20, 'x');
  EXPECT_EQ(processed(long_), long_);
}

TEST(QNItemTags, OfSeparatorsAndBlanksAloneAreNone) {
  for (const char* const tag : {"", " ", "/", "// /", "\\ \\", "\n\t"}) {
    const MRCapturingSink sink;

    EXPECT_EQ(QNItem::processTagForAdding(tag), std::nullopt) << tag;

    EXPECT_THAT(errors(sink), ElementsAre("Trying to add a nil or empty tag: not nil"));
    EXPECT_EQ(sink.records()[0].subsystem, DEBUG_DATABASE);
  }
}

TEST(QNItemTags, NothingIsNoTag) {
  const MRCapturingSink sink;

  EXPECT_EQ(QNItem::processTagForAdding(std::nullopt), std::nullopt);

  EXPECT_THAT(errors(sink), ElementsAre("Attempt to process a nil tag."));
  EXPECT_EQ(sink.records()[0].subsystem, DEBUG_DATABASE);
}

TEST(QNItemTags, FromAUserReplaceTheOldOnes) {
  const auto item = itemTagged({"old"});
  const MRCapturingSink sink;

  item->setTagsFromUI({" new ", "a//b", "/"});

  EXPECT_THAT(item->tags(), ElementsAre("a/b", "new"));
  EXPECT_TRUE(item->dirtyRow());
  EXPECT_THAT(errors(sink), ElementsAre("Trying to add a nil or empty tag: not nil"));
}

TEST(QNItemTags, NoneFromAUserClearsThem) {
  const auto item = itemTagged({"old"});

  item->setTagsFromUI({});

  EXPECT_THAT(item->tags(), IsEmpty());
  EXPECT_TRUE(item->dirtyRow());
}

TEST(QNItemTags, AnAddedOneIsCleaned) {
  const auto item = itemTagged({"old"});

  item->addTag(" new/ ");

  EXPECT_THAT(item->tags(), ElementsAre("new", "old"));
  EXPECT_TRUE(item->dirtyRow());
}

TEST(QNItemTags, AddingWhatIsThereOrNothingChangesNothing) {
  const auto item = itemTagged({"old"});
  const MRCapturingSink sink;

  item->addTag("old/");
  item->addTag(std::nullopt);
  EXPECT_THAT(errors(sink), IsEmpty());
  item->addTag(" / ");

  EXPECT_THAT(errors(sink), ElementsAre("Trying to add a nil or empty tag: not nil"));
  EXPECT_THAT(item->tags(), ElementsAre("old"));
  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemTags, ARemovedOneIsTakenAsItIsWritten) {
  const auto item = itemTagged({"2FA", " odd "});

  item->removeTag("2fa");
  EXPECT_FALSE(item->dirtyRow());
  item->removeTag("odd");
  EXPECT_FALSE(item->dirtyRow());
  item->removeTag(" odd ");

  EXPECT_THAT(item->tags(), ElementsAre("2FA"));
  EXPECT_TRUE(item->dirtyRow());
}

TEST(QNItemTags, ThoseBelowALevelAreRemovedWithoutTheLevel) {
  const auto item = itemTagged({"a", "a/b", "a/b/c", "ab/c", "A/x"});

  item->removeTagsWithPrefix("a/");

  EXPECT_THAT(item->tags(), ElementsAre("A/x", "a", "ab/c"));
  EXPECT_TRUE(item->dirtyRow());
}

TEST(QNItemTags, APrefixWithoutASeparatorRemovesNothing) {
  const auto item = itemTagged({"a", "a/b"});

  item->removeTagsWithPrefix("a");
  item->removeTagsWithPrefix("");

  EXPECT_THAT(item->tags(), ElementsAre("a", "a/b"));
  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemTags, MatchWithoutRegardToCase) {
  const auto item = itemTagged({"2FA", "2fa", "Été", "2FA/x"});

  EXPECT_THAT(item->tagsMatchingTag("2Fa"), ElementsAre("2FA", "2fa"));
  EXPECT_THAT(item->tagsMatchingTag("éTÉ"), ElementsAre("Été"));
  EXPECT_THAT(item->tagsMatchingTag("ete"), IsEmpty());
}

TEST(QNItemTags, TheWatchMindsCase) {
  EXPECT_TRUE(itemTagged({"Apple Watch"})->isTaggedForAppleWatch());
  EXPECT_FALSE(itemTagged({"apple watch", "Apple Watch/x"})->isTaggedForAppleWatch());
}

TEST(QNItemTags, TheWatchIsToggledByItsExactTag) {
  const auto item = itemTagged({"apple watch"});

  item->toggleTagForAppleWatch();
  EXPECT_THAT(item->tags(), ElementsAre("Apple Watch", "apple watch"));
  item->toggleTagForAppleWatch();

  EXPECT_THAT(item->tags(), ElementsAre("apple watch"));
}

TEST(QNItemTags, OtherMarksDoNotMindCase) {
  EXPECT_TRUE(itemTagged({"2fa"})->isTaggedFor2FA());
  EXPECT_FALSE(itemTagged({"2fa/x"})->isTaggedFor2FA());
  EXPECT_TRUE(itemTagged({"Http"})->isTaggedForHttp());
  EXPECT_FALSE(itemTagged({"2FA"})->isTaggedForHttp());
}

TEST(QNItemTags, OtherMarksAreToggledWhateverTheirCase) {
  const auto item = itemTagged({"2FA", "2fa", "http", "x"});

  item->toggleTagFor2FA();
  item->toggleTagForHttp();
  EXPECT_THAT(item->tags(), ElementsAre("x"));
  item->toggleTagFor2FA();
  item->toggleTagForHttp();

  EXPECT_THAT(item->tags(), ElementsAre("2FA", "HTTP", "x"));
}

// Where the overview doesn't open nothing else tells that something was to change.
TEST(QNItemTags, EveryToggleDirtiesTheRow) {
  using Toggle = void (QNItem::*)();
  for (const Toggle toggle :
       {&QNItem::toggleTagForAppleWatch, &QNItem::toggleTagFor2FA, &QNItem::toggleTagForHttp}) {
    const auto item = itemTagged({});
    item->setOverviewData(Bytes(60, 1));
    const MRCapturingSink sink;

    ((*item).*toggle)();

    EXPECT_TRUE(item->dirtyRow());
  }
}

}  // namespace
}  // namespace quillon
