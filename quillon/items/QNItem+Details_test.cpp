#include "quillon/items/internal/QNItemTesting.h"

namespace quillon {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

QNSampleItemRef savedItem(const std::shared_ptr<QNGenericProfile>& vault,
                          std::string_view notes = "the notes") {
  auto item = newItem(vault);
  item->setTitle("T");
  item->setNotesPlain(notes);
  save(*item);
  return item;
}

// Reading

TEST(QNItemDetails, AreDecryptedAtTheFirstReadAndNotBefore) {
  const auto vault = localVault();
  const auto row = savedItem(vault);
  const auto item = opened(*row, vault);
  const auto before = vault->numberOfItemKeysUnwrapped();

  EXPECT_EQ(item->notesPlain(), "the notes");
  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), before + 1);
  EXPECT_EQ(item->notesPlain(), "the notes");

  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), before + 1);
}

TEST(QNItemDetails, OfAnAccountItemOpenOnce) {
  const auto vault = accountVault();
  const auto row = savedItem(vault);
  const auto item = opened(*row, vault);
  const auto before = vault->numberOfOpenings();

  EXPECT_EQ(item->notesPlain(), "the notes");
  EXPECT_EQ(item->mutableDetails(), item->details());

  EXPECT_EQ(vault->numberOfOpenings(), before + 1);
}

TEST(QNItemDetails, AreRefusedWhileLoadingEvenWithData) {
  const auto vault = localVault();
  const auto row = savedItem(vault);
  const auto item = opened(*row, vault);
  item->markLoadingDetails();
  const MRCapturingSink sink;

  EXPECT_EQ(item->mutableDetails(), nullptr);

  EXPECT_THAT(assertions(sink), ElementsAre("Failed to provide details info, item " +
                                            item->description() + " is still loading"));
}

TEST(QNItemDetails, ThatAreOpenAreGivenEvenWhileLoading) {
  const auto item = newItem(localVault());
  item->markLoadingDetails();
  const MRCapturingSink sink;

  EXPECT_NE(item->mutableDetails(), nullptr);

  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemDetails, ThatAreOpenAreNotDecryptedAgain) {
  const auto vault = localVault();
  const auto item = opened(*savedItem(vault), vault);
  const JsonObject* const live = item->details();
  item->setDetailsText("changed", "k");
  const MRCapturingSink sink;

  item->decryptDetailsDataIfNeeded();

  EXPECT_EQ(item->details(), live);
  EXPECT_NE(item->detailsObjectForKey("k"), nullptr);
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemDetails, WithoutDataInALocalVaultAreReported) {
  const auto vault = localVault();
  const auto item = opened(*savedItem(vault), vault);
  item->setDetailsData(std::nullopt);
  const MRCapturingSink sink;

  item->decryptDetailsDataIfNeeded();

  EXPECT_THAT(errors(sink),
              ElementsAre("Unable to parse details: MRErrorDomain 114. Details data is nil"));
}

TEST(QNItemDetails, AreRefusedWhenNotLoaded) {
  const auto vault = localVault();
  const auto item = listed(*savedItem(vault), vault);
  const MRCapturingSink sink;

  EXPECT_EQ(item->mutableDetails(), nullptr);
  EXPECT_EQ(item->detailsCopy(), std::nullopt);
  EXPECT_EQ(item->notesPlain(), std::nullopt);

  EXPECT_THAT(assertions(sink), Each("Failed to provide details info, item " + item->description() +
                                     " is not loaded"));
}

TEST(QNItemDetails, WithoutAProfileSayThatItIsMissing) {
  const auto row = savedItem(localVault());
  const auto item = std::make_shared<QNSampleItem>(QNExisting{1});
  item->setProfileType(kProfileTypeLocalVault);
  item->setDetailsData(row->detailsData());
  item->markDetailsLoaded();
  const MRCapturingSink sink;

  EXPECT_EQ(item->mutableDetails(), nullptr);

  EXPECT_THAT(assertions(sink), ElementsAre("Item is missing its profile"));
  EXPECT_THAT(errors(sink), ElementsAre("Unable to parse details: MRErrorDomain 114. Details data "
                                        "is not nil"));
}

TEST(QNItemDetails, LoadedWithoutDataAreEmpty) {
  const auto vault = localVault();
  const auto item = std::make_shared<QNSampleItem>(QNExisting{1});
  item->setProfile(vault);
  item->markDetailsLoaded();

  ASSERT_NE(item->details(), nullptr);
  EXPECT_TRUE(item->details()->empty());
}

TEST(QNItemDetails, OfAnyOtherTypeOfProfileAreReported) {
  const auto vault = localVault();
  const auto item = opened(*savedItem(vault), vault);
  item->setProfileType(4);
  const MRCapturingSink sink;

  EXPECT_EQ(item->mutableDetails(), nullptr);

  EXPECT_THAT(assertions(sink), ElementsAre("Unsupported profile type: 4"));
  EXPECT_THAT(errors(sink),
              ElementsAre("Unable to parse details: (null). Details data is not nil"));
}

TEST(QNItemDetails, OfAnAccountItemWithoutDataAreReported) {
  const auto item = std::make_shared<QNSampleItem>(QNExisting{1});
  item->setProfile(accountVault());
  const MRCapturingSink sink;

  item->decryptDetailsDataIfNeeded();

  EXPECT_THAT(assertions(sink),
              ElementsAre("nil details data for item: " + item->description() + "!"));
  EXPECT_THAT(errors(sink), ElementsAre("Unable to parse details: (null). Details data is nil"));
}

TEST(QNItemDetails, OfAnAccountItemThatAreNoJsonAreReported) {
  const auto vault = accountVault();
  const auto item = opened(*savedItem(vault), vault);
  item->setDetailsData(mr_asData("{"));
  const MRCapturingSink sink;

  EXPECT_EQ(item->mutableDetails(), nullptr);

  EXPECT_THAT(errors(sink),
              ElementsAre("Error serializing details data for item " + item->description() +
                              ": MRErrorDomain, 114",
                          "Failed to decrypt details for item " + item->description(),
                          "Unable to parse details: MRErrorDomain 114. Details data is not nil"));
}

TEST(QNItemDetails, OfALockedAccountSurviveForALaterAttempt) {
  const auto vault = accountVault();
  const auto item = opened(*savedItem(vault), vault);
  vault->setLocked(true);
  const MRCapturingSink sink;
  ASSERT_EQ(item->mutableDetails(), nullptr);
  EXPECT_THAT(errors(sink),
              ElementsAre("Failed to decrypt details for item " + item->description(),
                          "Unable to parse details: MRErrorDomain 114. Details data is not nil"));

  vault->setLocked(false);

  EXPECT_EQ(item->notesPlain(), "the notes");
}

TEST(QNItemDetails, OfAnAccountItemWhoseClearTextIsNoJsonAreReported) {
  const auto vault = accountVault();
  const auto item = opened(*savedItem(vault), vault);
  item->setDetailsData(
      mr_JSONDataWithError(*vault->encryptWithMasterSymmetricKey(bytesOf("no json"))));
  const MRCapturingSink sink;

  EXPECT_EQ(item->mutableDetails(), nullptr);

  EXPECT_THAT(errors(sink), Contains("Failed to decrypt details for item " + item->description()));
}

TEST(QNItemDetails, OfALocalVaultOpenedByAnAccountNameTheTwoKindsOfProfile) {
  const auto row = savedItem(localVault());
  const auto item = opened(*row, accountVault());
  const MRCapturingSink sink;

  EXPECT_EQ(item->mutableDetails(), nullptr);

  std::vector<std::string> texts;
  for (const auto& record : sink.records()) texts.push_back(record.text);
  EXPECT_THAT(texts,
              ElementsAre("Error serializing details data for item " + item->description() +
                              ": MRErrorDomain, 114",
                          "Details data is encrypted by an QNProfile, not a H9Profile.",
                          "Unable to parse details: MRErrorDomain 114. Details data is not nil"));
  EXPECT_EQ(item->detailsData(), row->detailsData());
}

TEST(QNItemDetails, OfALockedLocalVaultSurviveForALaterAttempt) {
  const auto vault = localVault();
  const auto item = opened(*savedItem(vault), vault);
  const Bytes master(vault->masterKey()->begin(), vault->masterKey()->end());
  const Bytes overview(vault->overviewKey()->begin(), vault->overviewKey()->end());
  vault->lock();
  const MRCapturingSink sink;
  EXPECT_EQ(item->mutableDetails(), nullptr);

  vault->setMasterKey(master);
  vault->setOverviewKey(overview);

  EXPECT_EQ(item->notesPlain(), "the notes");
}

TEST(QNItemDetails, EveryFlippedBitOfSmallDetailsReadsAsNothingAndLeavesTheData) {
  for (const auto& vault : {std::shared_ptr<QNGenericProfile>(localVault()),
                            std::shared_ptr<QNGenericProfile>(accountVault())}) {
    const auto row = newItem(vault);
    row->setDetailsObject(Json(1), "n");
    row->clearBackupKeys();
    row->setBackupKeysDisabled(true);
    save(*row);
    const Bytes sound = *row->detailsData();
    const auto item = opened(*row, vault);
    const MRCapturingSink sink;
    for (std::size_t bit = 0; bit < sound.size() * 8; ++bit) {
      Bytes damaged = sound;
      damaged[bit / 8] ^= static_cast<std::uint8_t>(1u << (bit % 8));

      item->setDetailsData(damaged);

      ASSERT_EQ(item->mutableDetails(), nullptr) << bit;
      ASSERT_EQ(item->detailsData(), damaged) << bit;
    }
  }
}

TEST(QNItemDetails, EveryCutAndEveryExtraByteReadsAsNothing) {
  const auto vault = localVault();
  const auto row = savedItem(vault);
  const Bytes sound = *row->detailsData();
  const auto item = opened(*row, vault);
  const MRCapturingSink sink;
  for (std::size_t size = 0; size <= sound.size() + 1; ++size) {
    if (size == sound.size()) continue;
    Bytes damaged = sound;
    damaged.resize(size);

    item->setDetailsData(damaged);

    ASSERT_EQ(item->mutableDetails(), nullptr) << size;
  }
}

TEST(QNItemDetails, OfAnotherItemDontOpen) {
  const auto vault = localVault();
  const auto item = opened(*savedItem(vault), vault);
  const MRCapturingSink sink;

  item->setDetailsData(savedItem(vault)->detailsData());

  EXPECT_EQ(item->mutableDetails(), nullptr);
}

// Writing

TEST(QNItemDetails, AnEqualObjectChangesNothing) {
  const auto item = newItem(localVault());
  item->setDetailsObject(jsonValue(R"({"a":[1,"x"]})"), "k");
  item->didSave();

  item->setDetailsObject(jsonValue(R"({"a":[1,"x"]})"), "k");
  EXPECT_FALSE(item->dirtyRow());
  item->setDetailsObject(jsonValue(R"({"a":[1.0,"x"]})"), "k");
  EXPECT_FALSE(item->dirtyRow());
  item->setDetailsObject(std::nullopt, "absent");
  EXPECT_FALSE(item->dirtyRow());
  item->setDetailsObject(jsonValue(R"({"a":[1,"y"]})"), "k");

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(jsonText(item->detailsObjectForKey("k")), R"({"a":[1,"y"]})");
}

TEST(QNItemDetails, NothingRemovesTheKey) {
  const auto item = newItem(localVault());
  item->setDetailsObject(jsonValue("null"), "k");
  EXPECT_EQ(item->detailsObjectForKey("k"), nullptr);
  ASSERT_TRUE(item->details()->contains("k"));
  item->didSave();

  item->setDetailsObject(std::nullopt, "k");

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_FALSE(item->details()->contains("k"));
}

TEST(QNItemDetails, AnEqualTextChangesNothing) {
  const auto item = newItem(localVault());
  item->setDetailsText("x", "k");
  item->didSave();

  item->setDetailsText("x", "k");
  EXPECT_FALSE(item->dirtyRow());
  item->setDetailsText(std::nullopt, "k");

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_FALSE(item->details()->contains("k"));
}

TEST(QNItemDetails, OfAnItemThatDoesntOpenTakeNoChange) {
  const auto vault = localVault();
  const auto item = listed(*savedItem(vault), vault);
  const MRCapturingSink sink;

  item->setDetailsObject(Json(1), "k");
  item->setDetailsText("x", "k");

  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemDetails, ACopySharesNothing) {
  const auto item = newItem(localVault());
  item->setDetailsText("x", "k");

  auto copy = item->detailsCopy();
  ASSERT_TRUE(copy);
  (*copy)["k"] = "y";

  EXPECT_EQ(jsonText(item->detailsObjectForKey("k")), R"("x")");
}

TEST(QNItemDetails, CopyDetailsReplacesTheWhole) {
  const auto item = newItem(localVault());
  item->setDetailsText("x", "k");
  item->didSave();

  item->copyDetails(jsonObject(R"({"n":1})"));

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(mr_JSONStringWithError(*item->details()), R"({"n":1})");
}

TEST(QNItemDetails, CopyingEqualDetailsChangesNothing) {
  const auto item = newItem(localVault());
  item->copyDetails(jsonObject(R"({"n":1})"));
  item->didSave();

  item->copyDetails(jsonObject(R"({"n":1})"));
  EXPECT_FALSE(item->dirtyRow());
  item->copyDetails(jsonObject(R"({"n":1.0})"));
  EXPECT_FALSE(item->dirtyRow());
  item->copyDetails(*item->details());

  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemDetails, NewDataDropsTheParsedFormAndDirtiesNothing) {
  const auto vault = localVault();
  const auto row = savedItem(vault);
  const Bytes first = *row->detailsData();
  row->setNotesPlain("other notes");
  save(*row);
  const auto item = opened(*row, vault);
  ASSERT_EQ(item->notesPlain(), "other notes");

  item->setDetailsData(first);

  EXPECT_FALSE(item->dirtyRow());
  EXPECT_EQ(item->notesPlain(), "the notes");
}

TEST(QNItemDetails, NotesLoseTrailingWhiteSpaceOnTheWayIn) {
  const auto item = newItem(localVault());

  item->setNotesPlain("  a b \t\n\n");

  EXPECT_EQ(jsonText(item->detailsObjectForKey(kDetailsNotesPlain)), R"("  a b")");
}

TEST(QNItemDetails, NotesLoseTrailingWhiteSpaceOnTheWayOut) {
  const auto item = newItem(localVault());
  item->setDetailsText("a \n", kDetailsNotesPlain);

  EXPECT_EQ(item->notesPlain(), "a");
  item->setDetailsObject(Json(7), kDetailsNotesPlain);

  EXPECT_EQ(item->notesPlain(), std::nullopt);
}

TEST(QNItemDetails, NotesThatAreEqualAfterTheCutDirtyNothing) {
  const auto item = newItem(localVault());
  item->setNotesPlain("a");
  item->didSave();

  item->setNotesPlain("a\n");
  EXPECT_FALSE(item->dirtyRow());
  item->setNotesPlain(std::nullopt);

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(item->notesPlain(), std::nullopt);
}

// Cleansing

std::string cleansed(std::string_view details, QNItem& item) {
  JsonObject object = jsonObject(details);
  item.cleanseDetailsFieldsFromDetails(object);
  return *mr_JSONStringWithError(object);
}

TEST(QNItemDetails, CleansingLeavesSoundDetailsAlone) {
  const auto item = newItem(accountVault());
  const MRCapturingSink sink;
  constexpr std::string_view sound =
      R"({"x":null,"sections":[{"name":"s","title":null,"fields":[{"n":"1","v":"x","a":{}}]}]})";

  EXPECT_EQ(cleansed(sound, *item), sound);

  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemDetails, CleansingLeavesMissingSectionsMissing) {
  EXPECT_EQ(cleansed(R"({"a":1})", *newItem(accountVault())), R"({"a":1})");
}

TEST(QNItemDetails, CleansingTurnsNullSectionsIntoAnEmptyList) {
  EXPECT_EQ(cleansed(R"({"sections":null})", *newItem(accountVault())), R"({"sections":[]})");
}

TEST(QNItemDetails, CleansingLeavesSectionsOfAnotherKindAlone) {
  EXPECT_EQ(cleansed(R"({"sections":"x"})", *newItem(accountVault())), R"({"sections":"x"})");
}

TEST(QNItemDetails, CleansingRemovesWhatIsNoSection) {
  const auto item = newItem(accountVault());
  const MRCapturingSink sink;

  EXPECT_EQ(cleansed(R"({"sections":["x",{"name":"a"},null,7,"x",{"name":"b"}]})", *item),
            R"({"sections":[{"name":"a"},{"name":"b"}]})");

  constexpr std::string_view end = "; removing from details!";
  const auto line = [end](std::string_view kind) {
    return "Section is not an NSDictionary but instead a " + std::string(kind) + std::string(end);
  };
  EXPECT_THAT(errors(sink),
              ElementsAre(line("string"), line("null"), line("int64"), line("string")));
}

TEST(QNItemDetails, CleansingRemovesWhatIsNoField) {
  const auto item = newItem(accountVault());
  const MRCapturingSink sink;

  EXPECT_EQ(cleansed(R"({"sections":[{"fields":[[],{"n":"1"},true]},{"fields":"x"}]})", *item),
            R"({"sections":[{"fields":[{"n":"1"}]},{"fields":"x"}]})");

  EXPECT_THAT(
      errors(sink),
      ElementsAre("Field is not an NSDictionary but instead a array; removing from section!",
                  "Field is not an NSDictionary but instead a bool; removing from section!"));
}

TEST(QNItemDetails, CleansingGivesAFieldWithoutIdentifierANewOne) {
  const auto item = newItem(accountVault());
  JsonObject details = jsonObject(R"({"sections":[{"fields":[{"n":null,"v":"x"}]}]})");
  const MRCapturingSink sink;

  item->cleanseDetailsFieldsFromDetails(details);

  const JsonObject& field =
      details.at("sections").get_array()[0].get_object().at("fields").get_array()[0].get_object();
  EXPECT_EQ(mr_validStringValueForKey(field, "n").value_or("").size(), 36u);
  EXPECT_EQ(mr_validStringValueForKey(field, "v"), "x");
  EXPECT_THAT(errors(sink),
              ElementsAre("Field for item " + item->description() + " has NSNull for field key: n",
                          "Found a null field identifier in item " + *item->uuid()));
}

TEST(QNItemDetails, CleansingRemovesNullTraitsAndKeepsOtherNulls) {
  const auto item = newItem(accountVault());
  const MRCapturingSink sink;

  EXPECT_EQ(cleansed(R"({"sections":[{"fields":[{"a":null,"v":null,"inputTraits":null,"t":1}]}]})",
                     *item),
            R"({"sections":[{"fields":[{"v":null,"t":1}]}]})");

  const std::string start = "Field for item " + item->description() + " has NSNull for field key: ";
  EXPECT_THAT(errors(sink), ElementsAre(start + "a", start + "v", start + "inputTraits"));
}

TEST(QNItemDetails, CleansingReportsInTheOrderOfTheList) {
  const auto item = newItem(accountVault());
  const MRCapturingSink sink;

  cleansed(R"({"sections":[{"fields":[{"v":null},7]},"x"]})", *item);

  EXPECT_THAT(
      errors(sink),
      ElementsAre("Field for item " + item->description() + " has NSNull for field key: v",
                  "Field is not an NSDictionary but instead a int64; removing from section!",
                  "Section is not an NSDictionary but instead a string; removing from details!"));
}

TEST(QNItemDetails, AreCleansedWhenAnAccountItemIsOpened) {
  const auto vault = accountVault();
  const auto row = newItem(vault);
  row->setDetailsObject(jsonValue(R"([7,{"name":"a"}])"), kDetailsSections);
  save(*row);
  const Bytes sealed = *row->detailsData();
  const MRCapturingSink sink;

  const auto item = opened(*row, vault);

  EXPECT_EQ(jsonText(item->detailsObjectForKey(kDetailsSections)), R"([{"name":"a"}])");
  EXPECT_EQ(item->detailsData(), sealed);
  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemDetails, AreNotCleansedInALocalVault) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setDetailsObject(jsonValue(R"([7,{"name":"a"}])"), kDetailsSections);
  save(*row);

  EXPECT_EQ(jsonText(opened(*row, vault)->detailsObjectForKey(kDetailsSections)),
            R"([7,{"name":"a"}])");
}

}  // namespace
}  // namespace quillon
