#include <functional>

#include "quillon/files/H9Document.h"
#include "quillon/items/QNFingerprintConstants.h"
#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNItemURL.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

QNSampleItemRef newNote(const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = newItem(vault);
  item->setCategoryUUID("003");
  item->setTitle("T");
  return item;
}

JsonObject documentOf(QNItem& item) {
  return item.fingerprint_jsonDictionary().value();
}
std::string textIn(const JsonObject& document, std::string_view object, std::string_view key) {
  return jsonText(document.at(object).get_object().if_contains(key));
}

TEST(QNItemFingerprint, IsTheHashOfASortedText) {
  const auto item = newNote(accountVault());
  item->setNotesPlain("n");

  EXPECT_EQ(item->fingerprint_jsonString(),
            R"({"details":{"notesPlain":"n"},"overview":{"ps":0,"title":"T"},)"
            R"("templateUUID":"003","trashed":false})");
  // sha256sum of that text.
  EXPECT_EQ(item->fingerprint_fingerprint(),
            "51f5b879a98e22eedece64dae6093535522a44b3c4e03c3df5c49480c1445017");
}

TEST(QNItemFingerprint, HasItsKeysInTheStoredOrder) {
  const auto item = newNote(accountVault());
  item->setFaveIndex(5);
  item->setOverviewObject(jsonValue(R"({"detail":{"fileId":"F","signingKey":{}}})"),
                          kCustomIconAttributes);

  std::vector<std::string> keys;
  for (const auto& member : documentOf(*item)) keys.emplace_back(member.key());

  EXPECT_THAT(keys, ElementsAre("templateUUID", "faveIndex", "trashed", "hasCustomIcon", "overview",
                                "details"));
}

TEST(QNItemFingerprint, OfAnItemWithoutCategoryHasANull) {
  EXPECT_EQ(documentOf(*newItem(accountVault())).at("templateUUID"), Json(nullptr));
}

TEST(QNItemFingerprint, RunsWillSerializeFirst) {
  const auto item = newNote(localVault());
  item->addURLString("https://a.example/");
  item->numberOfSerializations = 0;

  const JsonObject document = documentOf(*item);

  EXPECT_EQ(item->numberOfSerializations, 1);
  EXPECT_EQ(document.at("overview").at("url"), Json("https://a.example/"));
}

// What doesn't count

struct Change {
  const char* name;
  std::function<void(QNSampleItem&)> make;
};
void PrintTo(const Change& change, std::ostream* out) {
  *out << change.name;
}

class QNItemFingerprintOverlooks : public testing::TestWithParam<Change> {};

TEST_P(QNItemFingerprintOverlooks, TheDifference) {
  const auto vault = localVault();
  const auto item = newNote(vault);
  const auto other = newNote(vault);

  GetParam().make(*other);

  EXPECT_EQ(item->fingerprint_fingerprint(), other->fingerprint_fingerprint());
}

INSTANTIATE_TEST_SUITE_P(
    Changes, QNItemFingerprintOverlooks,
    testing::Values(Change{"tags", [](QNSampleItem& item) { item.setTags({"home"}); }},
                    Change{"subtitle",
                           [](QNSampleItem& item) { item.setAdditionalInformation("subtitle"); }},
                    Change{"creation", [](QNSampleItem& item) { item.setCreatedAt(5); }},
                    Change{"update", [](QNSampleItem& item) { item.setUpdatedAt(5); }},
                    Change{"backup keys",
                           [](QNSampleItem& item) {
                             QNSecretSet keys;
                             keys.emplace("b3RoZXI=");
                             item.addBackupKeysBase64Encoded(std::move(keys));
                           }},
                    Change{"no backup keys", [](QNSampleItem& item) { item.clearBackupKeys(); }},
                    Change{"uuid", [](QNSampleItem& item) { item.regenerateUuid(); }},
                    Change{"row", [](QNSampleItem& item) { item._setOid(99); }},
                    Change{"icon of a server", [](QNSampleItem& item) {
                             item.setOverviewObject(jsonValue(R"({"detail":{"fileId":"F"}})"),
                                                    kCustomIconAttributes);
                           }}));

TEST(QNItemFingerprint, OverlooksTheOrderOfMembers) {
  const auto vault = accountVault();
  const auto item = newNote(vault);
  const auto other = newNote(vault);
  item->copyDetails(jsonObject(R"({"a":{"x":1,"y":2},"b":40})"));
  other->copyDetails(jsonObject(R"({"b":4E1,"a":{"y":2,"x":1}})"));

  EXPECT_EQ(item->fingerprint_fingerprint(), other->fingerprint_fingerprint());
}

TEST(QNItemFingerprint, TellsAFavouriteFromAnotherItemButNotItsPlace) {
  const auto vault = localVault();
  const auto plain = newNote(vault);
  const auto first = newNote(vault);
  const auto second = newNote(vault);
  first->setFaveIndex(100);
  second->setFaveIndex(200);

  EXPECT_EQ(first->fingerprint_fingerprint(), second->fingerprint_fingerprint());
  EXPECT_NE(first->fingerprint_fingerprint(), plain->fingerprint_fingerprint());
  EXPECT_EQ(documentOf(*first).at("faveIndex"), Json(true));
}

// What counts

class QNItemFingerprintTells : public testing::TestWithParam<Change> {};

TEST_P(QNItemFingerprintTells, TheDifference) {
  const auto vault = accountVault();
  const auto item = newNote(vault);
  const auto other = newNote(vault);
  for (const auto& each : {item, other}) each->addURLString("https://a.example/", "A");
  ASSERT_EQ(item->fingerprint_fingerprint(), other->fingerprint_fingerprint());

  GetParam().make(*other);

  EXPECT_NE(item->fingerprint_fingerprint(), other->fingerprint_fingerprint());
}

INSTANTIATE_TEST_SUITE_P(
    Changes, QNItemFingerprintTells,
    testing::Values(Change{"title", [](QNSampleItem& item) { item.setTitle("U"); }},
                    Change{"notes", [](QNSampleItem& item) { item.setNotesPlain("n"); }},
                    Change{"category", [](QNSampleItem& item) { item.setCategoryUUID("005"); }},
                    Change{"scope", [](QNSampleItem& item) { item.setScope("Never"); }},
                    Change{"trash", [](QNSampleItem& item) { item.setTrashed(true); }},
                    Change{"label", [](QNSampleItem& item) { item.URLAtIndex(0)->setLabel("B"); }},
                    Change{"second address",
                           [](QNSampleItem& item) { item.addURLString("https://b.example/"); }},
                    Change{"icon with a signing key", [](QNSampleItem& item) {
                             item.setOverviewObject(jsonValue(R"({"detail":{"signingKey":{}}})"),
                                                    kCustomIconAttributes);
                           }}));

// The overview

TEST(QNItemFingerprint, HoldsTheHashOfAnIconAndNotTheIcon) {
  const auto item = newNote(localVault());
  item->setOverviewText("abc", kCustomIcon);

  const JsonObject document = documentOf(*item);

  // FIPS 180-2, B.1.
  EXPECT_EQ(document.at("overview").at("iconHash"),
            Json("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"));
  EXPECT_FALSE(document.at("overview").get_object().contains("icon"));
}

TEST(QNItemFingerprint, HashesAnIconThatIsNoTextByItsJson) {
  const auto item = newNote(localVault());
  item->setOverviewObject(jsonValue("[1]"), kCustomIcon);

  EXPECT_EQ(documentOf(*item).at("overview").at("iconHash"), Json(mr_SHA256hex(mr_asData("[1]"))));
}

TEST(QNItemFingerprint, ListsAddressesWithWhatTheyHave) {
  const auto item = newNote(localVault());
  item->addURLString("https://a.example/", "A");
  item->addURLString("https://b.example/");
  item->addURLString("https://c.example/", "C");
  item->addURLString("https://d.example/");
  item->URLAtIndex(2)->setURLString("");
  item->URLAtIndex(3)->setURLString(std::nullopt);

  EXPECT_EQ(textIn(documentOf(*item), "overview", "urls"),
            R"([{"l":"A","u":"https://a.example/"},{"u":"https://b.example/"},{"l":"C"}])");
}

TEST(QNItemFingerprint, HasNoListOfAddressesThatHaveNothing) {
  const auto item = newNote(localVault());
  item->addURLString("https://a.example/");
  item->URLAtIndex(0)->setURLString(std::nullopt);

  EXPECT_FALSE(documentOf(*item).at("overview").get_object().contains("urls"));
  EXPECT_FALSE(documentOf(*newNote(localVault())).at("overview").get_object().contains("urls"));
}

TEST(QNItemFingerprint, HasTheScopeInTheOverview) {
  const auto item = newNote(localVault());
  item->setScope("Always");

  EXPECT_EQ(documentOf(*item).at("overview").at("scope"), Json("Always"));
}

TEST(QNItemFingerprint, OfALockedAccountOverlooksTheIcon) {
  const auto vault = accountVault();
  const auto item = newNote(vault);
  item->setOverviewObject(jsonValue(R"({"detail":{"signingKey":{}}})"), kCustomIconAttributes);
  vault->lock();

  EXPECT_FALSE(documentOf(*item).contains("hasCustomIcon"));
}

// The details

TEST(QNItemFingerprint, OverlooksAnEmptyHtmlId) {
  const auto item = newNote(accountVault());
  item->copyDetails(jsonObject(
      R"({"fields":[{"name":"a","id":""},{"name":"b","id":"x"},{"name":"c","id":0},"loose"]})"));

  EXPECT_EQ(textIn(documentOf(*item), "details", "fields"),
            R"([{"name":"a"},{"name":"b","id":"x"},{"name":"c","id":0},"loose"])");
}

std::string sectionsFingerprinted(std::string_view sections) {
  const auto item = newNote(accountVault());
  item->copyDetails(jsonObject("{\"sections\":" + std::string(sections) + "}"));
  item->willSerialize();
  return textIn(documentOf(*item), "details", "sections");
}

TEST(QNItemFingerprint, OfAOneTimePasswordLosesItsIdentifierAlone) {
  EXPECT_EQ(sectionsFingerprinted(
                R"([{"name":"s","fields":[{"k":"concealed","n":"TOTP_1","t":"t","v":"seed"}]}])"),
            R"([{"name":"s","fields":[{"k":"concealed","t":"t","v":"seed"}]}])");
}

TEST(QNItemFingerprint, KeepsTheIdentifiersOfOtherFields) {
  const std::string_view sections =
      R"([{"name":"s","fields":[{"k":"string","n":"TOTP_1","t":"","v":"x"},)"
      R"({"k":"concealed","n":"pin","t":"","v":"y"},{"k":"concealed","n":"xTOTP_","t":"","v":"z"}]}])";

  EXPECT_EQ(sectionsFingerprinted(sections), sections);
}

TEST(QNItemFingerprint, ComparesOneTimePasswordsByTheirValue) {
  const auto vault = accountVault();
  const auto withSeed = [&vault](std::string_view identifier, std::string_view seed) {
    const auto item = newNote(vault);
    item->copyDetails(jsonObject(fmt::format(
        R"({{"sections":[{{"fields":[{{"k":"concealed","n":"{}","t":"t","v":"{}"}}]}}]}})",
        identifier, seed)));
    return item->fingerprint_fingerprint();
  };

  EXPECT_EQ(withSeed("TOTP_1", "seed"), withSeed("TOTP_2", "seed"));
  EXPECT_NE(withSeed("TOTP_1", "seed"), withSeed("TOTP_1", "other"));
}

TEST(QNItemFingerprint, LeavesDetailsOfOtherFormsAlone) {
  for (const auto* const text :
       {R"({"fields":{"id":""},"sections":[1,{"fields":[3]}]})", R"({"sections":{"fields":2}})"}) {
    const auto item = newNote(accountVault());
    item->copyDetails(jsonObject(text));

    const JsonObject document = documentOf(*item);

    EXPECT_EQ(jsonText(&document.at("details")), text);
  }
}

TEST(QNItemFingerprint, OfALocalItemMarksItsAttachmentsAsLoaded) {
  const auto vault = localVault();
  const auto row = newNote(vault);
  save(*row);
  const auto item = opened(*row, vault);
  item->markLoadingAttachments();

  const JsonObject document = documentOf(*item);

  EXPECT_TRUE(item->attachmentsLoaded());
  EXPECT_EQ(jsonText(&document.at("details").at("attachments")), "[]");
}

TEST(QNItemFingerprint, OfAnAccountItemLeavesItsAttachmentsAlone) {
  const auto vault = accountVault();
  const auto row = newNote(vault);
  save(*row);
  const auto item = opened(*row, vault);
  item->markLoadingAttachments();

  const JsonObject document = documentOf(*item);

  EXPECT_FALSE(item->attachmentsLoaded());
  EXPECT_FALSE(document.at("details").get_object().contains("attachments"));
}

TEST(QNItemFingerprint, ChangesNothingOfTheItem) {
  const auto item = newNote(localVault());
  item->setTags({"home"});
  item->setOverviewText("abc", kCustomIcon);
  item->setScope("Always");
  item->willSerialize();
  const auto overview = item->overviewCopy();
  const auto details = item->detailsCopy();

  ASSERT_TRUE(item->fingerprint_fingerprint());

  EXPECT_EQ(item->overviewCopy(), overview);
  EXPECT_EQ(item->detailsCopy(), details);
}

// Documents

TEST(QNItemFingerprint, OfADocumentIsNewAtEachCallUnlessIgnored) {
  const auto item = std::make_shared<H9Document>(initNew);
  item->setProfile(accountVault());
  item->setTitle("T");

  EXPECT_NE(item->fingerprint_fingerprint(), item->fingerprint_fingerprint());
  EXPECT_EQ(documentOf(*item).at("documentFingerprint").get_string().size(), 36u);
  EXPECT_EQ(item->fingerprint_jsonStringIgnoringDocumentFingerprint(true),
            item->fingerprint_jsonStringIgnoringDocumentFingerprint(true));
  EXPECT_FALSE(item->fingerprint_jsonDictionaryIgnoringDocumentFingerprint(true)->contains(
      "documentFingerprint"));
}

TEST(QNItemFingerprint, IsStableUnlessBothClassAndCategoryAreADocuments) {
  const auto vault = accountVault();
  const auto document = std::make_shared<H9Document>(initNew);
  document->setProfile(vault);
  document->setCategoryUUID("003");
  const auto note = newNote(vault);
  note->setCategoryUUID("006");

  EXPECT_EQ(document->fingerprint_fingerprint(), document->fingerprint_fingerprint());
  EXPECT_EQ(note->fingerprint_fingerprint(), note->fingerprint_fingerprint());
}

// Debugging and failure

TEST(QNItemFingerprint, StandsBesideItsTextForDebugging) {
  const auto item = newNote(accountVault());

  EXPECT_EQ(item->fingerprint_debugJSON(), "[" + *item->fingerprint_jsonString() + ", \"" +
                                               *item->fingerprint_fingerprint() + "\"]");
}

TEST(QNItemFingerprint, OfWhatHasNoJsonFormIsNothingAndAnError) {
  const auto item = newNote(localVault());
  item->setTitle("\xff");
  const std::string error = "Failed to obtain JSON from item: " + item->description();
  const MRCapturingSink sink;

  EXPECT_EQ(item->fingerprint_jsonString(), std::nullopt);
  EXPECT_EQ(item->fingerprint_fingerprint(), std::nullopt);
  EXPECT_EQ(item->fingerprint_debugJSON(), std::nullopt);

  EXPECT_THAT(errors(sink), ElementsAre(error, error, error));
}

TEST(QNItemFingerprint, OfDetailsThatDontOpenIsNothing) {
  const auto vault = localVault();
  const auto row = newNote(vault);
  save(*row);
  const auto item = opened(*row, vault);
  vault->lock();
  const MRCapturingSink sink;

  EXPECT_EQ(item->fingerprint_jsonDictionary(), std::nullopt);
  EXPECT_EQ(item->fingerprint_fingerprint(), std::nullopt);
}

TEST(QNItemFingerprint, OfAnAddressThatDoesNotOpenIsNothing) {
  const auto item = newNote(localVault());
  item->addURLString("https://a.example/");
  item->addURLString("https://b.example/");
  item->URLAtIndex(1)->setOverviewData(localVault()->encryptOverview(bytesOf("{}")));
  const MRCapturingSink sink;

  EXPECT_EQ(item->fingerprint_jsonDictionary(), std::nullopt);
  EXPECT_EQ(item->fingerprint_fingerprint(), std::nullopt);
}

TEST(QNItemFingerprint, HasConstantsThatNeverChange) {
  const std::pair<std::string_view, std::string_view> names[] = {
      {FingerprintCategoryUUID, "templateUUID"},
      {FingerprintFaveIndex, "faveIndex"},
      {FingerprintTrashed, "trashed"},
      {FingerprintHasCustomIcon, "hasCustomIcon"},
      {FingerprintDocumentFingerprint, "documentFingerprint"},
      {FingerprintOverview, "overview"},
      {FingerprintDetails, "details"},
      {FingerprintOverviewTags, "tags"},
      {FingerprintOverviewIcons, "icons"},
      {FingerprintOverviewAdditionalInformation, "ainfo"},
      {FingerprintOverviewIcon, "icon"},
      {FingerprintOverviewIconHash, "iconHash"},
      {FingerprintOverviewURLs, "urls"},
      {FingerprintOverviewScope, "scope"},
      {FingerprintDetailsBackupKeys, "backupKeys"},
      {FingerprintDetailsLoginFields, "fields"},
      {FingerprintDetailsSections, "sections"},
      {FingerprintDetailsSectionFields, "fields"},
      {FingerprintDetailsSectionFieldConcealedKey, "k"},
      {FingerprintDetailsSectionFieldConcealedValue, "concealed"},
      {FingerprintDetailsSectionFieldTOTPKey, "n"},
      {FingerprintDetailsSectionFieldTOTPValuePrefix, "TOTP_"},
      {FingerprintDetailsAttachments, "attachments"},
      {FingerprintDetailsAttachmentsFilename, "filename"},
      {FingerprintDetailsAttachmentsContentHash, "contentHash"},
      {FingerprintDetailsAttachmentsIconHash, "iconHash"},
  };
  for (const auto& [name, stored] : names) EXPECT_EQ(name, stored);
}

}  // namespace
}  // namespace quillon
