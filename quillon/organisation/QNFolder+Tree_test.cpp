#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/organisation/internal/QNFolderTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/internal/QNMemoryWatch.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using Folder = std::shared_ptr<QNFolder>;

std::vector<std::string> titlesOf(const std::vector<Folder>& folders) {
  std::vector<std::string> titles;
  for (const Folder& folder : folders) titles.push_back(folder->title().value_or("(none)"));
  return titles;
}

Folder childOf(const Folder& parent, std::string_view title) {
  auto child = folderTitled(title);
  parent->addSubfolder(child);
  return child;
}

TEST(QNFolderTree, LinksBothWays) {
  const auto parent = folderTitled("A");
  const auto child = childOf(parent, "B");

  EXPECT_EQ(child->parentFolder(), parent);
  ASSERT_EQ(parent->subfolders().size(), 1u);
  EXPECT_EQ(parent->subfolders()[0], child);
}

TEST(QNFolderTree, HoldsAParentWeakly) {
  auto parent = folderTitled("A");
  const auto child = childOf(parent, "B");

  parent.reset();

  EXPECT_EQ(child->parentFolder(), nullptr);
  EXPECT_EQ(child->indentationLevel(), 0u);
}

TEST(QNFolderTree, CountsTheFoldersAbove) {
  const auto top = folderTitled("A");
  const auto middle = childOf(top, "B");
  const auto bottom = childOf(middle, "C");

  EXPECT_EQ(top->indentationLevel(), 0u);
  EXPECT_EQ(middle->indentationLevel(), 1u);
  EXPECT_EQ(bottom->indentationLevel(), 2u);
}

TEST(QNFolderTree, AsksForAParentUpwardsFromItself) {
  const auto c = folderTitled("C");
  const auto b = childOf(c, "B");
  const auto a = childOf(b, "A");
  const auto childOfB = childOf(b, "other");

  EXPECT_FALSE(c->isParentOfFolder(*a));
  EXPECT_TRUE(a->isParentOfFolder(*childOfB));
  EXPECT_TRUE(b->isParentOfFolder(*a));
  EXPECT_TRUE(a->isParentOfFolder(*b));
  EXPECT_FALSE(a->isParentOfFolder(*c));
}

TEST(QNFolderTree, FlattensInTheOrderOfTitlesWhateverTheirCase) {
  const QNScopedLocale locale("en-US");
  const auto top = folderTitled("top");
  for (const char* const title : {"gamma", "alpha", "Beta"}) childOf(top, title);
  childOf(top->subfolders()[1], "below alpha");

  EXPECT_THAT(titlesOf(top->flattenedAndSorted()),
              ElementsAre("top", "alpha", "below alpha", "Beta", "gamma"));
}

TEST(QNFolderTree, FlattensAFolderWithoutSubfoldersToItself) {
  EXPECT_THAT(titlesOf(folderTitled("alone")->flattenedAndSorted()), ElementsAre("alone"));
}

TEST(QNFolderTree, ListsAFolderThatWasAddedTwiceTwice) {
  const auto top = folderTitled("top");
  const auto child = childOf(top, "child");
  top->addSubfolder(child);

  EXPECT_THAT(titlesOf(top->flattenedAndSorted()), ElementsAre("top", "child", "child"));
}

TEST(QNFolderTree, EndsOnARing) {
  const auto a = folderTitled("a");
  const auto b = childOf(a, "b");
  b->addSubfolder(Folder(Folder(), a.get()));  // not held: a ring that holds itself never goes

  EXPECT_EQ(a->indentationLevel(), 1u);
  EXPECT_EQ(b->indentationLevel(), 1u);
  EXPECT_THAT(titlesOf(a->flattenedAndSorted()), ElementsAre("a", "b"));
  EXPECT_FALSE(a->isParentOfFolder(*folderTitled("other")));
}

TEST(QNFolderTree, CountsEachFolderOfARingAboveOnce) {
  const auto a = folderTitled("a");
  const auto c = childOf(childOf(a, "b"), "c");
  const auto below = childOf(c, "below");
  c->addSubfolder(Folder(Folder(), a.get()));

  EXPECT_EQ(below->indentationLevel(), 3u);
  EXPECT_EQ(childOf(below, "more")->indentationLevel(), 4u);
  EXPECT_EQ(a->indentationLevel(), 2u);
}

TEST(QNFolderTree, IsSortedWithoutCopiesOfTitlesThatStayBehind) {
  constexpr std::string_view kTitle = "a title that is too long for a place inside an object";
  const auto top = folderTitled("top");
  for (int i = 0; i < 3; ++i) childOf(top, kTitle);
  const QNFreedBlockWatch watch(kTitle);

  EXPECT_EQ(top->flattenedAndSorted().size(), 4u);

  EXPECT_EQ(watch.found(), 0u);
}

TEST(QNFolderTree, HoldsATreeThatIsDeeperThanAStack) {
  const auto top = folderTitled("top");
  std::vector<Folder> chain = {top};
  const auto vault = localVault();
  for (int i = 0; i < 20'000; ++i) {
    auto folder = std::make_shared<QNFolder>(initNew);
    folder->setProfile(vault);
    chain.back()->addSubfolder(folder);
    chain.push_back(std::move(folder));
  }

  EXPECT_EQ(top->flattenedAndSorted().size(), 20'001u);
  EXPECT_EQ(chain.back()->indentationLevel(), 20'000u);
  chain.resize(1);  // each is held by its parent alone when the tree goes
}

struct SubtitleCase {
  std::uint64_t children, items;
  const char* text;
};
class QNFolderSubtitle : public testing::TestWithParam<SubtitleCase> {};

TEST_P(QNFolderSubtitle, CountsSubfoldersAsItems) {
  const QNScopedLocale locale("en-US");
  QNLocalization::sharedLocalization().setLanguage("en-US");
  QNFolder folder(initNew);
  folder.setNumberOfChildren(GetParam().children);
  folder.setNumberOfItems(GetParam().items);

  EXPECT_EQ(folder.localizedSubtitle(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Counts, QNFolderSubtitle,
                         testing::Values(SubtitleCase{0, 0, "empty"}, SubtitleCase{1, 0, "1 item"},
                                         SubtitleCase{0, 1, "1 item"},
                                         SubtitleCase{1, 1, "2 items"},
                                         SubtitleCase{1000, 234, "1,234 items"}));

}  // namespace
}  // namespace quillon
