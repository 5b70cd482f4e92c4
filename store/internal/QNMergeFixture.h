#pragma once
// What the tests of a merge share: two stores, and what is expected of both after each merge.

#include <gmock/gmock.h>

#include <map>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/json/QNJsonEquality.h"
#include "store/internal/QNDatabase.h"
#include "store/internal/QNItemParts.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {

/// Two stores. The second is a copy of the first, unless it is made anew.
class QNStoreMerge : public ::testing::Test {
 protected:
  using Kind = QNMergedItem::Kind;
  using Outcome = QNMergedField::Outcome;

  QNStoreMerge() { savedLogin(mine, "first", "https://first.example", "pass 1"); }

  /// From here on there are two files of one vault.
  void copyFile() {
    ASSERT_EQ(errorOf(mine.store->backupTo(theirFile)), "");
    theirs = openSession(theirFile);
  }
  /// From here on there is a second vault of other keys.
  void makeAnother() { theirs = makeSession(theirFile); }

  QNResult<QNMergeReport> tryMerge(QNStore::MergeMode mode = QNStore::MergeMode::write) {
    return QNStore::merge({mine.store.get(), mine.vault, "mine"},
                          {theirs.store.get(), theirs.vault, "theirs"}, mode);
  }
  /// Merges, and expects both sides to be sound, equal, and left alone by a second run.
  QNMergeReport merged() {
    auto report = tryMerge();
    EXPECT_TRUE(report.ok()) << report.error().message;
    if (!report.ok()) return {};
    EXPECT_EQ(problemsIn(mine), std::vector<std::string>());
    EXPECT_EQ(problemsIn(theirs), std::vector<std::string>());
    expectEqualSides();
    const std::string before = bytesOfBoth();
    const auto again = std::move(tryMerge()).value();
    EXPECT_THAT(again.items, testing::IsEmpty());
    EXPECT_EQ(again.opened, 0u);
    EXPECT_TRUE(bytesOfBoth() == before);
    return report.value();
  }
  static void setPasswordOf(QNItem& item, std::string_view password) {
    if (item.categoryUUID() == QNCategoryUUIDPassword) return item.setPassword(password);
    if (item.password()) return item.setStringFieldValue(password, "password");
    const auto field = QNItemConcealedField::fieldWithIdentifier("password");
    field->setValue(password);
    item.fieldSectionWithName("s", "Section")->addField(field);
  }
  std::string bytesOfBoth() const {
    std::string bytes;
    for (const auto& file : {myFile, theirFile}) {
      bytes += bytesOfFile(file) + bytesOfFile(file.string() + "-wal");
    }
    return bytes;
  }
  /// What each item is, by uuid, or when it was deleted.
  static std::map<std::string, JsonObject> itemsOf(Session& session,
                                                   const std::filesystem::path& file) {
    std::map<std::string, JsonObject> items;
    const auto feed = std::move(session.store->changesSince(session.vault, 0)).value();
    for (const auto& change : feed.changes) {
      if (change.kind == QNStoredChange::Kind::deleted) {
        items[change.uuid]["deleted"] = deletionOf(file, change.uuid);
        continue;
      }
      const auto item = std::move(session.store->item(session.vault, change.uuid)).value();
      JsonObject content = contentOf(*item).value();
      content["updated"] = item->updatedAt();
      content["created"] = item->createdAt();
      items.emplace(change.uuid, std::move(content));
    }
    return items;
  }
  static std::uint64_t deletionOf(const std::filesystem::path& file, std::string_view uuid) {
    const auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readOnly)).value();
    QNQuery query = database->query(
        "SELECT updated_at FROM items WHERE uuid = ?1 AND category_uuid = '099'", uuid);
    return query.next() ? query.number(0) : 0;
  }
  void expectEqualSides() {
    const auto own = itemsOf(mine, myFile);
    const auto other = itemsOf(theirs, theirFile);
    EXPECT_EQ(own.size(), other.size());
    for (const auto& [uuid, content] : own) {
      ASSERT_TRUE(other.contains(uuid)) << uuid;
      EXPECT_TRUE(equalJson(content, other.at(uuid))) << uuid;
    }
  }
  /// An item of the first side with two fields in a section.
  std::string uuidOfSections() {
    const auto item = itemIn(mine, uuidOfFirst());
    for (const char* const name : {"pin", "code"}) {
      const auto field = QNItemStringField::fieldWithIdentifier(name);
      field->setValue("before");
      item->fieldSectionWithName("s", "Section")->addField(field);
    }
    EXPECT_EQ(errorOf(mine.store->save(item)), "");
    return *item->uuid();
  }
  static std::vector<std::string> historyOf(QNItem& item) {
    std::vector<std::string> history;
    for (const auto& entry : item.previouslyUsedPasswords()) {
      history.emplace_back(entry.value()->reveal());
    }
    return history;
  }
  /// "IDENTIFIER VALUE" of each copy in the section of conflicts.
  static std::vector<std::string> conflictsIn(Session& session, std::string_view uuid) {
    std::vector<std::string> conflicts;
    const auto section = itemIn(session, uuid)->sectionForConflictsCreatedIfNeeded();
    for (const auto& field : section->fields()) {
      conflicts.push_back(std::string(field->identifier().value_or("")) + " " +
                          std::string(field->displayStringValue().reveal()));
    }
    return conflicts;
  }
  static std::shared_ptr<QNItem> itemIn(Session& session, std::string_view uuid) {
    auto item = session.store->item(session.vault, uuid);
    EXPECT_TRUE(item.ok()) << item.error().message;
    return item.ok() ? item.value() : nullptr;
  }
  std::string uuidOfFirst() {
    return std::move(mine.store->changesSince(mine.vault, 0)).value().changes.at(0).uuid;
  }
  template <class Edit>
  void edit(Session& session, std::string_view uuid, const Edit& change) {
    clock.setSeconds(secondsNow() + 10);
    const auto item = itemIn(session, uuid);
    change(*item);
    ASSERT_EQ(errorOf(session.store->save(item)), "");
  }
  void remove(Session& session, std::string_view uuid) {
    clock.setSeconds(secondsNow() + 10);
    ASSERT_EQ(errorOf(session.store->deleteItem(itemIn(session, uuid))), "");
  }
  static std::map<std::string, Outcome> fieldsOf(const QNMergedItem& item) {
    std::map<std::string, Outcome> fields;
    for (const auto& field : item.fields) fields.emplace(field.name, field.outcome);
    return fields;
  }

  const TemporaryFolder folder;
  const std::filesystem::path myFile = folder / "mine", theirFile = folder / "theirs";
  QNScopedClock clock{1'700'000'000};
  Session mine = makeSession(myFile), theirs;
};

}  // namespace quillon
