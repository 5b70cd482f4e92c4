#include "quillon/kinds/QNSecureNote.h"

#include <gmock/gmock.h>

#include "quillon/fields/QNItemStringField.h"
#include "quillon/items/QNQuickAccessShortcut.h"
#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/kinds/QNMedicalRecord.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/internal/QNMemoryWatch.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

std::shared_ptr<QNSecureNote> noteOf(std::optional<std::string_view> text) {
  auto note = std::make_shared<QNSecureNote>(initNew);
  note->setProfile(localVault());
  if (text) note->setNotesPlain(*text);
  return note;
}

TEST(QNSecureNote, HasItsCategoryAndNoSections) {
  const auto note = noteOf(std::nullopt);

  EXPECT_EQ(note->categoryUUID(), "003");
  EXPECT_EQ(note->className(), "QNSecureNote");
  EXPECT_EQ(note->numberOfFieldSections(), 0u);
  EXPECT_EQ(QNSecureNote(QNExisting{4}).categoryUUID(), "003");
}

TEST(QNSecureNote, ShowsItsFirstLineOfEightyCharacters) {
  EXPECT_EQ(noteOf("a\nb")->_additionalInformation(), "a");
  EXPECT_EQ(noteOf(std::string(100, 'x'))->_additionalInformation(), std::string(80, 'x'));
  EXPECT_EQ(noteOf(std::string(80, 'x'))->_additionalInformation(), std::string(80, 'x'));
  EXPECT_EQ(noteOf(std::string(90, 'x') + "\nb")->_additionalInformation(), std::string(80, 'x'));
}

TEST(QNSecureNote, OfEmptyNotesShowsNothingAndWithoutAnyWhatTheBaseDoes) {
  const auto empty = noteOf("");
  empty->setAdditionalInformation("from before");
  const auto absent = noteOf(std::nullopt);
  absent->setAdditionalInformation("from before");

  EXPECT_EQ(empty->_additionalInformation(), "");
  EXPECT_EQ(absent->_additionalInformation(), "from before");
}

TEST(QNSecureNote, CopiesItsNotes) {
  EXPECT_TRUE(noteOf("a\nb")->clipboardValue()->equals("a\nb"));
  EXPECT_FALSE(noteOf(std::nullopt)->clipboardValue());
}

TEST(QNSecureNote, GivesItsNotesAsAFieldOfNoSection) {
  const QNScopedLanguage language("en");
  const auto note = noteOf("a\nb");

  const auto field = note->itemFieldForNotes();

  ASSERT_NE(field, nullptr);
  EXPECT_EQ(field->className(), "QNItemStringField");
  EXPECT_EQ(field->identifier(), "notes");
  EXPECT_EQ(field->title(), "notes");
  EXPECT_TRUE(field->stringValue()->equals("a\nb"));
  EXPECT_EQ(note->findFieldWithIdentifier("notes"), nullptr);
}

TEST(QNSecureNote, WithoutNotesGivesNoField) {
  EXPECT_EQ(noteOf(std::nullopt)->itemFieldForNotes(), nullptr);
  EXPECT_EQ(noteOf("")->itemFieldForNotes(), nullptr);
}

TEST(QNSecureNote, OffersItsNotesToQuickAccess) {
  const auto offered = noteOf("a\nb")->quickAccessFields();

  ASSERT_EQ(offered.size(), 1u);
  EXPECT_EQ(offered[0].field()->identifier(), "notes");
  EXPECT_TRUE(offered[0].field()->stringValue()->equals("a\nb"));
  EXPECT_EQ(offered[0].keyCommand(), 2u);
}

TEST(QNSecureNote, WithoutNotesOffersQuickAccessNothing) {
  EXPECT_TRUE(noteOf(std::nullopt)->quickAccessFields().empty());
  EXPECT_TRUE(noteOf("")->quickAccessFields().empty());
}

// Of a length that lies inside a JSON value, and of one that lies outside; behind the first line,
// which lists show.
class QNSecureNoteSecrets : public testing::TestWithParam<std::string_view> {};

void useNote(const std::shared_ptr<QNSecureNote>& note, std::string_view secret) {
  ASSERT_TRUE(note->clipboardValue()->reveal().ends_with(secret));
  ASSERT_TRUE(note->itemFieldForNotes()->stringValue()->reveal().ends_with(secret));
  ASSERT_EQ(note->_additionalInformation(), "a");
}

TEST_P(QNSecureNoteSecrets, TheWatchSeesNotesThatAreCopiedPlainly) {
  const auto note = noteOf("a\n" + std::string(40, 'x') + std::string(GetParam()));
  const QNFreedBlockWatch watch(GetParam());

  { const auto plain = note->notesPlain(); }

  EXPECT_EQ(watch.found(), 1u);
}

TEST_P(QNSecureNoteSecrets, NoFreedBlockHoldsTheNotes) {
  const auto note = noteOf("a\n" + std::string(GetParam()));
  const QNFreedBlockWatch watch(GetParam());

  useNote(note, GetParam());

  EXPECT_EQ(watch.found(), 0u);
}

TEST_P(QNSecureNoteSecrets, NoStackKeepsTheNotes) {
  const auto note = noteOf("a\n" + std::string(GetParam()));
  const std::string_view secret = GetParam();

  EXPECT_EQ(remainsOnStack(secret, [&note, secret] { useNote(note, secret); }), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    ShortAndLong, QNSecureNoteSecrets,
    testing::Values("qZ7!xK", "a long secret #481516 that no value holds inside itself"));

// Medical records

constexpr std::string_view kRecord =
    R"({"uuid":"113","contents":[{"set":"","fields":[{"type":"date","name":"date"}]}]})";

std::shared_ptr<QNMedicalRecord> recordOf(std::string_view definition) {
  auto record = QNMedicalRecord::initNewWithTemplate(templateOf(definition));
  record->setProfile(localVault());
  record->setCreatedAt(1'700'000'000);  // 14 November 2023
  return record;
}

TEST(QNMedicalRecord, ShowsTheDayOfItsField) {
  const QNScopedLocale locale("en-US");
  const QNScopedTimeZone zone("UTC");
  const auto record = recordOf(kRecord);
  const Json day(1'600'000'000);

  record->findFieldWithIdentifier("date")->setJsonValue(&day);
  EXPECT_EQ(record->_additionalInformation(), "Sep 13, 2020");
  const Json first(0);
  record->findFieldWithIdentifier("date")->setJsonValue(&first);

  EXPECT_EQ(record->_additionalInformation(), "Jan 1, 1970");
}

TEST(QNMedicalRecord, ShowsItsCreationWithoutADay) {
  const QNScopedLocale locale("en-US");
  const QNScopedTimeZone zone("UTC");

  EXPECT_EQ(recordOf(kRecord)->_additionalInformation(), "Nov 14, 2023");
  EXPECT_EQ(recordOf(R"({"contents":[]})")->_additionalInformation(), "Nov 14, 2023");
}

TEST(QNMedicalRecord, ShowsItsCreationWhereTheFieldHoldsAnotherKindOfValue) {
  const QNScopedLocale locale("en-US");
  const QNScopedTimeZone zone("UTC");
  const MRCapturingSink sink;
  const auto record =
      recordOf(R"({"contents":[{"set":"","fields":[{"type":"string","name":"date"}]}]})");

  record->setStringFieldValue("1600000000", "date");

  EXPECT_EQ(record->_additionalInformation(), "Nov 14, 2023");
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNMedicalRecord, ShowsItsCreationForADayBefore1970) {
  const QNScopedLocale locale("en-US");
  const QNScopedTimeZone zone("UTC");
  const auto record = recordOf(kRecord);
  const Json day(-1);

  record->findFieldWithIdentifier("date")->setJsonValue(&day);

  EXPECT_EQ(record->findFieldWithIdentifier("date")->rawValue().number(), -1);
  EXPECT_EQ(record->_additionalInformation(), "Nov 14, 2023");
}

TEST(QNMedicalRecord, ShowsItsCreationForAMonthInPlaceOfADay) {
  const QNScopedLocale locale("en-US");
  const QNScopedTimeZone zone("UTC");
  const auto record =
      recordOf(R"({"contents":[{"set":"","fields":[{"type":"monthYear","name":"date"}]}]})");
  const Json month(202'009);

  record->findFieldWithIdentifier("date")->setJsonValue(&month);

  EXPECT_EQ(record->_additionalInformation(), "Nov 14, 2023");
}

}  // namespace
}  // namespace quillon
