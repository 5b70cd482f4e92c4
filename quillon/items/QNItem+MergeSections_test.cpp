#include "quillon/fields/QNItemStringField.h"
#include "quillon/items/internal/QNMergeTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;

class QNItemMergeSections : public testing::Test {
 protected:
  void merge() {
    _mine->didSave();
    _mine->mergeSectionsWithConflict(_theirs->fieldSections());
  }

  std::shared_ptr<QNProfile> _vault = localVault();
  QNSampleItemRef _mine = versionIn(_vault);
  QNSampleItemRef _theirs = versionIn(_vault);
};

// Comparing

TEST_F(QNItemMergeSections, AreEqualByTheirValuesInOrder) {
  addField(*_mine, "s", "x", "a");
  addField(*_theirs, "other", "y", "a");

  EXPECT_TRUE(_mine->hasFieldSectionsEqualTo(_theirs->fieldSections()));

  addField(*_theirs, "another", "z", "b");

  EXPECT_FALSE(_mine->hasFieldSectionsEqualTo(_theirs->fieldSections()));

  addField(*_mine, "other", "z", "c");

  EXPECT_FALSE(_mine->hasFieldSectionsEqualTo(_theirs->fieldSections()));
}

TEST_F(QNItemMergeSections, DirtyNothingWhenTheirValuesAreEqual) {
  addField(*_mine, "s", "x", "a");
  addField(*_theirs, "other", "y", "a");

  merge();

  EXPECT_FALSE(_mine->dirtyRow());
  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("s/x=a"));
}

TEST_F(QNItemMergeSections, DirtyTheRowWhenTheyDifferThoughNothingComesOver) {
  addField(*_mine, "s", "x", "a");

  merge();

  EXPECT_TRUE(_mine->dirtyRow());
  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("s/x=a"));
}

// Real conflicts

TEST_F(QNItemMergeSections, KeepAnotherValueAsAConflict) {
  addField(*_mine, "s", "x", "a");
  const auto field = addField(*_theirs, "s", "x", "b");
  field->setTitle("Title");

  merge();

  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("s/x=a", "conflicts/x_conflict_1=b"));
  const auto conflicts = _mine->findSectionWithName("conflicts");
  EXPECT_EQ(conflicts->title(), "Conflicts");
  EXPECT_EQ(conflicts->fieldAtIndex(0)->title(), "Title");
  EXPECT_NE(conflicts->fieldAtIndex(0), field);
  EXPECT_TRUE(_mine->dirtyRow());
}

TEST_F(QNItemMergeSections, KeepAGuardedFieldsValueWithoutItsGuard) {
  addField(*_mine, "s", "x", "a", "concealed");
  const auto field = addField(*_theirs, "s", "x", "b", "concealed");
  const JsonObject attributes = jsonObject(R"({"guarded":"yes"})");
  field->setAttributes(&attributes);

  merge();

  const auto copy = _mine->findFieldWithIdentifier("x_conflict_1");
  ASSERT_NE(copy, nullptr);
  EXPECT_FALSE(copy->isGuarded());
  EXPECT_TRUE(copy->isConcealedField());
}

TEST_F(QNItemMergeSections, KeepAnEmptyOwnValue) {
  addField(*_mine, "s", "x", "");
  addField(*_theirs, "s", "x", "b");

  merge();

  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("s/x=", "conflicts/x_conflict_1=b"));
}

TEST_F(QNItemMergeSections, LookForAFieldInTheWholeItem) {
  addField(*_mine, "one", "x", "a");
  addField(*_theirs, "two", "x", "a");
  addField(*_theirs, "two", "y", "b");

  merge();

  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("one/x=a", "two/y=b"));
}

TEST_F(QNItemMergeSections, SkipEmptyFields) {
  addField(*_mine, "s", "x", "a");
  addField(*_theirs, "s", "x", "");
  addField(*_theirs, "s", "y", "");

  merge();

  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("s/x=a"));
}

TEST_F(QNItemMergeSections, NumberTheConflictsOfOneField) {
  addField(*_mine, "s", "x", "a");
  for (const std::string_view value : {"b", "c"}) {
    const auto theirs = versionIn(_vault);
    addField(*theirs, "s", "x", value);
    _mine->mergeSectionsWithConflict(theirs->fieldSections());
  }

  EXPECT_THAT(fieldsOf(*_mine),
              ElementsAre("s/x=a", "conflicts/x_conflict_1=b", "conflicts/x_conflict_2=c"));
}

TEST_F(QNItemMergeSections, AddNoSecondCopyForTheSameMerge) {
  addField(*_mine, "s", "x", "a");
  addField(*_theirs, "s", "x", "b");

  merge();
  merge();

  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("s/x=a", "conflicts/x_conflict_1=b"));
}

TEST_F(QNItemMergeSections, DoNotGrowWhenTwoItemsMergeEachOthersConflicts) {
  addField(*_mine, "s", "x", "a");
  addField(*_mine, "conflicts", "x_conflict_1", "b");
  addField(*_theirs, "s", "x", "a");
  addField(*_theirs, "conflicts", "x_conflict_1", "c");

  merge();
  merge();

  EXPECT_THAT(fieldsOf(*_mine),
              ElementsAre("s/x=a", "conflicts/x_conflict_1=b", "conflicts/x_conflict_2=c"));
}

TEST_F(QNItemMergeSections, AddNoSecondCopyOfAnUnknownFieldWithoutAValue) {
  addField(*_mine, "s", "u", "", "future");
  addField(*_theirs, "s", "u", "", "future");
  addField(*_theirs, "s", "x", "a");

  merge();

  EXPECT_FALSE(_mine->hasSectionForConflicts());
}

TEST_F(QNItemMergeSections, CompareUnknownFieldsByWhatIsStored) {
  const Json mine = jsonValue(R"({"a":1})");
  const Json theirs = jsonValue(R"({"a":2})");
  addField(*_mine, "s", "u", "", "future")->setJsonValue(&mine);
  addField(*_theirs, "s", "u", "", "future")->setJsonValue(&theirs);

  merge();
  merge();

  const auto conflicts = _mine->findSectionWithName("conflicts");
  ASSERT_NE(conflicts, nullptr);
  ASSERT_EQ(conflicts->numberOfFields(), 1u);
  const auto value = conflicts->fieldAtIndex(0)->jsonValue();
  EXPECT_EQ(jsonText(value ? &*value : nullptr), R"({"a":2})");
  EXPECT_EQ(conflicts->fieldAtIndex(0)->type(), "future");
}

// New fields

TEST_F(QNItemMergeSections, TakeOverANewFieldItself) {
  addField(*_mine, "s", "x", "a");
  const auto field = addField(*_theirs, "s", "y", "b");

  merge();

  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("s/x=a", "s/y=b"));
  EXPECT_EQ(_mine->findFieldWithIdentifier("y"), field);
  EXPECT_TRUE(_mine->dirtyRow());
}

TEST_F(QNItemMergeSections, MakeTheSectionOfANewField) {
  addField(*_theirs, "s", "y", "b");
  _theirs->findSectionWithName("s")->setTitle("Title");

  merge();

  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("s/y=b"));
  EXPECT_EQ(_mine->findSectionWithName("s")->title(), "Title");
}

TEST_F(QNItemMergeSections, MakeOneSectionForAllFieldsOfOneWithoutAName) {
  const auto section = std::make_shared<QNFieldSection>();
  section->setTitle("Title");
  section->addField(QNItemField::fieldWithType("string", "x"));
  section->addField(QNItemField::fieldWithType("string", "y"));
  for (const auto& field : section->fields()) field->setRawValue("a");
  _theirs->addFieldSection(section);

  merge();

  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("(none)/x=a", "(none)/y=a"));
  ASSERT_EQ(_mine->numberOfFieldSections(), 1u);
  EXPECT_EQ(_mine->fieldSectionAtIndex(0)->title(), "Title");
}

TEST_F(QNItemMergeSections, DropAFieldWithoutIdentifierWhoseValueIsThere) {
  addField(*_mine, "one", "x", "a");
  addField(*_theirs, "two", std::nullopt, "a");
  addField(*_theirs, "two", "y", "b");

  merge();

  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("one/x=a", "two/y=b"));
}

TEST_F(QNItemMergeSections, AddAFieldWithoutIdentifierToTheSectionOfItsName) {
  addField(*_mine, "s", "x", "a");
  addField(*_theirs, "s", std::nullopt, "b");

  merge();

  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("s/x=a", "s/(none)=b"));
}

// One-time passwords, whose identifiers are drawn at each reading

TEST_F(QNItemMergeSections, RecogniseAOneTimePasswordByItsValue) {
  addField(*_mine, "s", "TOTP_1", "seed", "concealed");
  addField(*_theirs, "s", "TOTP_1", "seed", "concealed");
  addField(*_theirs, "s", "x", "a");

  merge();

  EXPECT_EQ(_mine->findSectionWithName("s")->numberOfFields(), 2u);
}

TEST_F(QNItemMergeSections, KeepAnotherOneTimePasswordBesideTheOwn) {
  addField(*_mine, "s", "TOTP_1", "mine", "concealed");
  addField(*_theirs, "s", "TOTP_1", "theirs", "concealed");

  merge();
  merge();

  const auto section = _mine->findSectionWithName("s");
  ASSERT_EQ(section->numberOfFields(), 2u);
  EXPECT_TRUE(section->fieldAtIndex(1)->isTOTPField());
  EXPECT_TRUE(section->fieldAtIndex(1)->stringValue()->equals("theirs"));
  EXPECT_FALSE(_mine->hasSectionForConflicts());
}

TEST_F(QNItemMergeSections, TakeOverAOneTimePasswordWhoseSeedStandsInATextHere) {
  addField(*_mine, "s", "x", "seed");
  addField(*_theirs, "s", "TOTP_1", "seed", "concealed");
  addField(*_theirs, "s", "x", "seed");

  merge();

  EXPECT_TRUE(_mine->hasTOTP());
}

// Other kinds of values

TEST_F(QNItemMergeSections, CompareDatesByTheirMoment) {
  const auto mine = addField(*_mine, "s", "d", "", "date");
  const auto theirs = addField(*_theirs, "s", "d", "", "date");
  mine->setRawValue(QNFieldValue::ofNumber(86400));
  theirs->setRawValue(QNFieldValue::ofNumber(0));

  merge();

  const auto copy = _mine->findFieldWithIdentifier("d_conflict_1");
  ASSERT_NE(copy, nullptr);
  EXPECT_TRUE(copy->isDateField());
  EXPECT_TRUE(copy->isValueEqualTo(QNFieldValue::ofNumber(0)));
}

// Identifiers of copies

class QNConflictIdentifier : public testing::Test {
 protected:
  std::string of(std::string_view identifier) {
    return QNItem::uniqueFieldIdentifierForConflict(
        *QNItemField::fieldWithType("string", identifier), _section);
  }
  void take(std::string_view identifier) {
    _section.addField(QNItemField::fieldWithType("string", identifier));
  }
  void takeAllOf(const std::string& base) {
    for (int n = 1; n <= 99; ++n) take(base + "_conflict_" + std::to_string(n));
  }

  QNFieldSection _section;
};

TEST_F(QNConflictIdentifier, IsTheFirstFreeNumber) {
  EXPECT_EQ(of("x"), "x_conflict_1");

  take("x_conflict_1");
  take("x_conflict_3");

  EXPECT_EQ(of("x"), "x_conflict_2");
}

TEST_F(QNConflictIdentifier, StaysForACopyWhileItIsFree) {
  EXPECT_EQ(of("x_conflict_5"), "x_conflict_5");
}

TEST_F(QNConflictIdentifier, IsNumberedAnewForACopyThatIsTaken) {
  take("x_conflict_5");

  EXPECT_EQ(of("x_conflict_5"), "x_conflict_1");
}

TEST_F(QNConflictIdentifier, IsCutAtTheFirstMark) {
  take("x_conflict_1_conflict_101");

  EXPECT_EQ(of("x_conflict_1_conflict_101"), "x_conflict_1");
}

TEST_F(QNConflictIdentifier, Is101OnceAllNumbersAreTaken) {
  takeAllOf("x");

  EXPECT_EQ(of("x"), "x_conflict_101");

  take("x_conflict_101");

  EXPECT_EQ(of("x"), "x_conflict_101");
}

TEST_F(QNConflictIdentifier, IsTheLastNumberBefore101) {
  takeAllOf("x");
  _section.removeFieldAtIndex(98);

  EXPECT_EQ(of("x"), "x_conflict_99");
}

TEST_F(QNConflictIdentifier, Is101BehindTheWholeOfACopyOnceAllNumbersAreTaken) {
  takeAllOf("x");

  EXPECT_EQ(of("x_conflict_5"), "x_conflict_5_conflict_101");
}

TEST_F(QNConflictIdentifier, OfNoIdentifierIsANumberedMark) {
  const auto field = QNItemField::fieldWithType("string");
  field->setIdentifier(std::nullopt);

  EXPECT_EQ(QNItem::uniqueFieldIdentifierForConflict(*field, _section), "_conflict_1");
}

TEST_F(QNConflictIdentifier, IsThatOfANewConflictField) {
  const auto field = QNItemField::fieldWithType("string", "x");
  field->setRawValue("value");

  const auto copy = QNItem::newConflictFieldBasedOnField(*field, _section);

  EXPECT_EQ(copy->identifier(), "x_conflict_1");
  EXPECT_TRUE(copy->isValueEqualTo("value"));
  EXPECT_EQ(_section.numberOfFields(), 0u);
}

}  // namespace
}  // namespace quillon
