#include "quillon/kinds/QNUnknownItem.h"

#include "quillon/fields/QNItemField.h"
#include "quillon/items/internal/QNItemTesting.h"

// An item of a category that this version doesn't know, in a vault: what a later version wrote must
// come through an edit by this one.

namespace quillon {
namespace {

constexpr std::string_view kDetails =
    R"({"future":{"deep":[1,2.5,null,true,"x"]},"notesPlain":"the notes","sections":[)"
    R"({"name":"s","title":"S","layout":"grid","fields":[)"
    R"({"k":"hologram","n":"h","v":{"a":[1]},"later":2},)"
    R"({"k":"string","n":"t","t":"Text","v":"value","later":{"x":null}}]},)"
    R"({"kind":"of a later version","rows":[[]]}],"fields":[{"later":1}]})";
constexpr std::string_view kUnknownInOverview = R"({"badge":{"color":7},"list":[1,null]})";
constexpr std::string_view kCategory = "zzz";

/// A row as the later version left it.
std::shared_ptr<QNItem> storedRow(const std::shared_ptr<QNProfile>& vault) {
  auto row = vault->newItemForCategoryUUID(kCategory);
  row->setProfile(vault);
  row->setTitle("before");
  row->copyDetails(jsonObject(kDetails));
  for (const auto& member : jsonObject(kUnknownInOverview)) {
    row->setOverviewObject(member.value(), member.key());
  }
  save(*row);
  return row;
}

std::shared_ptr<QNItem> openedThrough(const std::shared_ptr<QNProfile>& vault, QNItem& row) {
  auto item = vault->existingItemWithID(row.oid(), kCategory);
  item->setProfile(vault);
  item->setUuid(row.uuid());
  item->setOverviewData(row.overviewData());
  item->markLoadingDetails();
  item->setEncryptedKey(row.encryptedKey());
  item->setDetailsData(row.detailsData());
  item->markDetailsLoaded();
  item->didLoad();
  return item;
}

std::optional<JsonObject> foreignDetails(QNItem& item) {
  auto details = item.detailsCopy();
  if (details) details->erase(kDetailsBackupKeys);  // an item's own
  return details;
}

void expectUntouched(QNItem& item) {
  EXPECT_EQ(item.className(), "QNUnknownItem");
  EXPECT_EQ(item.categoryUUID(), kCategory);
  const auto details = foreignDetails(item);
  ASSERT_TRUE(details);
  EXPECT_EQ(mr_JSONStringWithError(*details),
            mr_JSONStringWithError(jsonObject(kDetails)));  // order too
  const auto overview = item.overviewCopy();
  ASSERT_TRUE(overview);
  for (const auto& member : jsonObject(kUnknownInOverview)) {
    ASSERT_TRUE(overview->contains(member.key())) << member.key();
    EXPECT_TRUE(overview->at(member.key()) == member.value()) << member.key();
  }
}

TEST(QNUnknownItem, KeepsWhatALaterVersionWroteThroughAnEdit) {
  const auto vault = localVault();
  const auto item = openedThrough(vault, *storedRow(vault));

  item->setTitle("after");
  save(*item);

  const auto read = openedThrough(vault, *item);
  EXPECT_EQ(read->title(), "after");
  expectUntouched(*read);
}

TEST(QNUnknownItem, KeepsItWhereItsFieldsWereAskedForAndItsNotesChanged) {
  const auto vault = localVault();
  const auto item = openedThrough(vault, *storedRow(vault));

  ASSERT_NE(item->findFieldWithIdentifier("h"), nullptr);
  ASSERT_TRUE(item->findFieldWithIdentifier("t")->stringValue()->equals("value"));
  item->setNotesPlain("other notes");
  save(*item);
  const auto changed = openedThrough(vault, *item);
  ASSERT_EQ(changed->notesPlain(), "other notes");
  changed->setNotesPlain("the notes");
  save(*changed);

  expectUntouched(*openedThrough(vault, *changed));
}

}  // namespace
}  // namespace quillon
