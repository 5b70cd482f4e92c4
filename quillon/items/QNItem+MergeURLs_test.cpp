#include "quillon/items/internal/QNMergeTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class QNItemMergeURLs : public testing::Test {
 protected:
  void merge() {
    _mine->didSave();
    _mine->mergeURLsWithConflict(_theirs->URLs());
  }

  std::shared_ptr<QNProfile> _vault = localVault();
  QNSampleItemRef _mine = versionIn(_vault);
  QNSampleItemRef _theirs = versionIn(_vault);
};

TEST_F(QNItemMergeURLs, AreTheUnionInTheOrderOfArrival) {
  _mine->addURLString("https://b.example");
  _theirs->addURLString("https://z.example");
  _theirs->addURLString("https://b.example");
  _theirs->addURLString("https://a.example");

  merge();

  EXPECT_THAT(addressesOf(*_mine),
              ElementsAre("https://b.example", "https://z.example", "https://a.example"));
  EXPECT_TRUE(_mine->dirtyRow());
}

TEST_F(QNItemMergeURLs, ComeOverAsNewObjectsWithTheirLabels) {
  _theirs->addURLString("https://a.example", "work");
  _theirs->URLAtIndex(0)->_setOid(8);

  merge();

  const auto url = _mine->URLAtIndex(0);
  ASSERT_NE(url, nullptr);
  EXPECT_NE(url, _theirs->URLAtIndex(0));
  EXPECT_EQ(url->label(), "work");
  EXPECT_EQ(url->item(), _mine);
  EXPECT_EQ(url->profile(), _vault);
  EXPECT_FALSE(url->hasOid());
  EXPECT_EQ(_theirs->URLAtIndex(0)->item(), _theirs);
}

TEST_F(QNItemMergeURLs, KeepTheirOwnLabel) {
  _mine->addURLString("https://a.example", "mine");
  _theirs->addURLString("https://a.example", "theirs");

  merge();

  EXPECT_EQ(_mine->URLAtIndex(0)->label(), "mine");
  EXPECT_EQ(_mine->numberOfURLs(), 1u);
  EXPECT_FALSE(_mine->dirtyRow());
}

TEST_F(QNItemMergeURLs, TakeTheRowOfAnEqualOneAndDirtyNothing) {
  _mine->addURLString("https://a.example");
  _theirs->addURLString("https://a.example");
  _theirs->URLAtIndex(0)->_setOid(8);
  _mine->URLAtIndex(0)->didSave();

  merge();

  EXPECT_EQ(_mine->URLAtIndex(0)->oid(), 8u);
  EXPECT_FALSE(_mine->dirtyRow());
  EXPECT_FALSE(_mine->URLAtIndex(0)->dirtyRow());
}

TEST_F(QNItemMergeURLs, KeepTheirOwnRow) {
  _mine->addURLString("https://a.example");
  _mine->URLAtIndex(0)->_setOid(3);
  _theirs->addURLString("https://a.example");
  _theirs->URLAtIndex(0)->_setOid(8);

  merge();

  EXPECT_EQ(_mine->URLAtIndex(0)->oid(), 3u);
}

TEST_F(QNItemMergeURLs, ThatTookARowKeepItFromBeingDeleted) {
  _mine->addURLString("https://a.example");
  _mine->URLAtIndex(0)->_setOid(8);
  _mine->removeURLAtIndex(0);
  _mine->addURLString("https://a.example");
  _theirs->addURLString("https://a.example");
  _theirs->URLAtIndex(0)->_setOid(8);

  _mine->mergeURLsWithConflict(_theirs->URLs());

  EXPECT_EQ(_mine->URLAtIndex(0)->oid(), 8u);
  EXPECT_THAT(_mine->deletedURLs(), IsEmpty());
}

TEST_F(QNItemMergeURLs, OfOtherRowsStayToBeDeleted) {
  _mine->addURLString("https://a.example");
  _mine->addURLString("https://b.example");
  _mine->URLAtIndex(1)->_setOid(8);
  _mine->removeURLAtIndex(1);
  _theirs->addURLString("https://c.example");

  _mine->mergeURLsWithConflict(_theirs->URLs());

  EXPECT_EQ(_mine->deletedURLs().size(), 1u);
}

TEST_F(QNItemMergeURLs, DifferByCaseAndByASlash) {
  _mine->addURLString("https://a.example");
  _theirs->addURLString("https://A.example");
  _theirs->addURLString("https://a.example/");

  merge();

  EXPECT_EQ(_mine->numberOfURLs(), 3u);
}

TEST_F(QNItemMergeURLs, AddNothingTheSecondTime) {
  _theirs->addURLString("https://a.example");

  merge();
  merge();

  EXPECT_EQ(_mine->numberOfURLs(), 1u);
  EXPECT_FALSE(_mine->dirtyRow());
}

TEST_F(QNItemMergeURLs, WithoutATextAreToldApartByTheirLabels) {
  addLabel(*_mine, "both");
  addLabel(*_theirs, "both");
  addLabel(*_theirs, "theirs");
  _theirs->addURLString("both");

  merge();
  merge();

  ASSERT_THAT(addressesOf(*_mine), ElementsAre("(none)", "(none)", "both"));
  EXPECT_EQ(_mine->URLAtIndex(1)->label(), "theirs");
  EXPECT_FALSE(_mine->dirtyRow());
}

TEST_F(QNItemMergeURLs, WithAnEmptyTextAreEqualWhateverTheirLabels) {
  addLabel(*_mine, "mine")->setURLString("");
  addLabel(*_theirs, "theirs")->setURLString("");
  addLabel(*_theirs, "no text");

  merge();

  ASSERT_THAT(addressesOf(*_mine), ElementsAre("", "(none)"));
  EXPECT_EQ(_mine->URLAtIndex(0)->label(), "mine");
  EXPECT_EQ(_mine->URLAtIndex(1)->label(), "no text");
}

TEST_F(QNItemMergeURLs, ThatDoNotOpenAreLeftAlone) {
  _mine->addURLString("https://a.example");
  const auto broken = std::make_shared<QNItemURL>(QNExisting{8});
  broken->setProfile(_vault);
  broken->setOverviewData(Bytes(64, 1));
  _theirs->addURL(broken);
  const MRCapturingSink sink;

  merge();

  EXPECT_THAT(addressesOf(*_mine), ElementsAre("https://a.example"));
}

TEST_F(QNItemMergeURLs, LoseTheirDuplicatesOnBothSides) {
  for (const auto& item : {_mine, _theirs}) {
    item->addURLString("https://a.example", "first");
    item->addURLString("https://b.example");
    item->addURLString("https://a.example", "second");
    item->URLAtIndex(2)->_setOid(8);
  }

  _mine->mergeWithConflict(_theirs);

  for (const auto& item : {_mine, _theirs}) {
    EXPECT_THAT(addressesOf(*item), ElementsAre("https://a.example", "https://b.example"));
    EXPECT_EQ(item->URLAtIndex(0)->label(), "first");
    EXPECT_EQ(item->deletedURLs().size(), 1u);
  }
}

}  // namespace
}  // namespace quillon
