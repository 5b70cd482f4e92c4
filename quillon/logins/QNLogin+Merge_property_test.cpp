// What a merge promises, for random histories: two to four replicas of one item are edited, saved
// and read again, each by itself, and then brought together in a random order, as a synchronisation
// would. docs/merge.md says the same in words.
//
//   QUILLON_MERGE_SEED        the seed, a number; drawn and printed without it
//   QUILLON_MERGE_HISTORIES   how many histories; kDefaultHistories without it

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>
#include <set>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/items/QNTombstone.h"
#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"
#include "quillon/logins/internal/QNTestRows.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/urls/QNURLTools.h"

namespace quillon {
namespace {

using Texts = std::set<std::string>;
using ItemRef = std::shared_ptr<QNItem>;

constexpr std::uint64_t kDefaultHistories = 1000;

std::optional<std::uint64_t> numberFromEnvironment(const char* name) {
  const char* const text = std::getenv(name);
  return text == nullptr ? std::nullopt : std::optional(std::strtoull(text, nullptr, 10));
}

bool containsAll(const Texts& all, const Texts& some) {
  return std::includes(all.begin(), all.end(), some.begin(), some.end());
}

Texts unionOf(const Texts& a, const Texts& b) {
  Texts both = a;
  both.insert(b.begin(), b.end());
  return both;
}

// What an item holds

struct Content {
  std::string title, notes, username, password;
  Texts fields;     // "IDENTIFIER=VALUE", one-time passwords as "TOTP=VALUE"
  Texts values;     // of fields
  Texts addresses;  // whole
  std::vector<std::string> addressesInOrder;
  Texts history;    // "VALUE@TIME"
  Texts passwords;  // present and former
  Texts entries;    // values of form entries
  Texts keys;

  /// Where any value that was typed may stand after a merge.
  [[nodiscard]] Texts everyValue() const {
    Texts all = unionOf(unionOf(values, passwords), entries);
    if (!username.empty()) all.insert(username);
    return all;
  }
};

void readFields(QNItem& item, Content& content) {
  for (const auto& section : item.fieldSections()) {
    for (const auto& field : section->fields()) {
      if (field->isEmpty()) continue;
      const std::string value(field->stringValue()->reveal());
      const std::string identifier(field->isTOTPField() ? "TOTP"
                                                        : field->identifier().value_or("(none)"));
      content.fields.insert(identifier + "=" + value);
      content.values.insert(value);
    }
  }
}

void readPasswords(QNItem& item, Content& content) {
  if (const auto present = item.password()) content.password = present->reveal();
  if (!content.password.empty()) content.passwords.insert(content.password);
  for (const auto& entry : item.previouslyUsedPasswords()) {
    const std::string value(entry.value()->reveal());
    content.history.insert(value + "@" + std::to_string(entry.retiredAt()));
    content.passwords.insert(value);
  }
}

Content contentOf(QNItem& item) {
  Content content;
  content.title = item.title();
  content.notes = item.notesPlain().value_or("");
  content.username = item.username().value_or("");
  readFields(item, content);
  readPasswords(item, content);
  for (const auto& url : item.URLs()) {
    content.addresses.insert(*url->URLString());
    content.addressesInOrder.push_back(*url->URLString());
  }
  if (auto* const login = dynamic_cast<QNLogin*>(&item)) {
    for (const auto& entry : login->loginFields().fields()) {
      const auto value = entry->value();
      if (value && !value->empty()) content.entries.emplace(value->reveal());
    }
  }
  for (const QNSecret& key : item.backupKeysBase64Encoded()) content.keys.emplace(key.reveal());
  return content;
}

// They are drawn anew at each reading.
std::string withoutDrawnIdentifiers(std::string text) {
  constexpr std::string_view kPrefix = "TOTP_";
  constexpr std::size_t kUUIDSize = 36;
  for (std::size_t at = text.find(kPrefix); at != std::string::npos; at = text.find(kPrefix, at)) {
    at += kPrefix.size();
    text.erase(at, kUUIDSize);
  }
  return text;
}

/// All of it, byte by byte, but for what names rows and moments of saving.
std::string printOf(QNItem& item) {
  static_cast<void>(item.hasLoginFields());  // a list of form fields is written once it was read
  item.willSerialize();
  auto overview = item.overviewCopy();
  std::string text = mr_JSONStringWithError(*overview).value_or("") + "\n" +
                     mr_JSONStringWithError(*item.detailsCopy()).value_or("");
  for (const auto& url : item.URLs()) {
    text += "\n" + url->URLString().value_or("") + " " + url->label().value_or("");
  }
  text += "\n" + item.folderUUID().value_or("") + " " + item.scope().value_or("") +
          (item.trashed() ? " trashed" : "");
  return withoutDrawnIdentifiers(std::move(text));
}

// Rows

/// What a replica's database holds of the item.
struct Row {
  QNTestItemRow row;
  std::uint64_t updatedAt = 0;
  std::optional<std::string> folderUUID, scope;
  bool trashed = false;
};

Row savedRow(QNItem& item) {
  item.setUpdatedAt(secondsNow());
  return {saveInTestRow(item), item.updatedAt(), item.folderUUID(), item.scope(), item.trashed()};
}

ItemRef openedRow(const Row& row, const std::shared_ptr<QNProfile>& vault) {
  auto item = itemFromTestRow(row.row, vault);
  item->setUpdatedAt(row.updatedAt);
  item->setFolderUUID(row.folderUUID);
  item->setScope(row.scope);
  item->setTrashed(row.trashed);
  item->didLoad();
  return item;
}

// Random edits

class Editor final {
 public:
  Editor(std::uint64_t seed, std::shared_ptr<QNProfile> vault)
      : _random(seed), _vault(std::move(vault)) {}

  std::size_t below(std::size_t bound) { return static_cast<std::size_t>(_random() % bound); }
  bool oneIn(std::size_t many) { return below(many) == 0; }

  ItemRef newItem() {
    static constexpr std::string_view kCategories[] = {"001", "001", "005", "003", "112"};
    auto item = _vault->newItemForCategoryUUID(kCategories[below(std::size(kCategories))]);
    item->setProfile(_vault);
    for (std::size_t edits = below(6); edits > 0; --edits) edit(*item);
    return item;
  }

  void edit(QNItem& item) {
    switch (below(10)) {
      case 0:
        return item.setTitle(word("title"));
      case 1:
        return editNotes(item);
      case 2:
      case 3:
        return editURLs(item);
      case 4:
      case 5:
        return editFields(item);
      case 6:
        return editPassword(item);
      case 7:
        return editForm(item);
      case 8:
        return item.setFolderUUID(oneIn(4) ? std::nullopt : std::optional(word("folder")));
      default:
        return oneIn(2) ? item.setTrashed(oneIn(2)) : item.setScope(word("scope"));
    }
  }

  /// A generated password may have become a login on one device.
  ItemRef edited(ItemRef item) {
    if (item->categoryUUID() == "005" && oneIn(6)) item = item->convertToLogin();
    edit(*item);
    return item;
  }

 private:
  /// Mostly one that nobody else has typed.
  std::string word(std::string_view kind) {
    return std::string(kind) + std::to_string(oneIn(3) ? below(3) : 100 + ++_words) + ".";
  }

  void editNotes(QNItem& item) {
    if (oneIn(5)) return item.setNotesPlain(std::nullopt);
    const std::string before = oneIn(2) ? "" : item.notesPlain().value_or("") + "\n";
    item.setNotesPlain(before + word("note") + (oneIn(4) ? " \n" : ""));
  }

  void editURLs(QNItem& item) {
    const std::size_t count = item.numberOfURLs();
    if (count > 0 && oneIn(4)) return item.removeURLAtIndex(below(count));
    if (count > 1 && oneIn(3)) return item.moveURL(item.URLAtIndex(below(count)), below(count));
    item.addURLString("https://" + word("host") + "example/" + word("page"), word("label"));
  }

  void editFields(QNItem& item) {
    item.markRowDirty();  // a change of a field dirties nothing
    const auto section = item.fieldSectionWithName(oneIn(2) ? "s" : "t", "Section");
    const std::size_t count = section->numberOfFields();
    if (count > 0 && oneIn(3)) return section->removeFieldAtIndex(below(count));
    if (count > 0 && oneIn(2)) {
      const auto field = section->fieldAtIndex(below(count));
      const std::string value = word(field->isTOTPField() ? "seed" : "value");
      if (!field->isDateField()) field->setRawValue(std::string_view(value));
      return;
    }
    const std::string identifier = "f" + std::to_string(below(5));
    if (item.findFieldWithIdentifier(identifier) == nullptr) addField(*section, identifier);
  }

  void addField(QNFieldSection& section, const std::string& identifier) {
    static constexpr std::string_view kTypes[] = {"string", "concealed", "email",    "URL",
                                                  "future", "date",      "concealed"};
    const std::size_t kind = below(std::size(kTypes));
    const bool isTOTP = kind + 1 == std::size(kTypes);
    const auto field = QNItemField::fieldWithType(kTypes[kind], isTOTP ? "TOTP_" : identifier);
    if (field->isDateField()) {
      field->setRawValue(QNFieldValue::ofNumber(static_cast<std::int64_t>(86400 * below(1000))));
    } else {
      const Json value(word(isTOTP ? "seed" : "value"), jsonStorage());
      field->setJsonValue(&value);
    }
    section.addField(field);
  }

  void editPassword(QNItem& item) {
    if (item.categoryUUID() != "001" && item.categoryUUID() != "005") return;
    if (oneIn(6)) return item.setPassword(std::nullopt);
    item.setPassword(word("password"));
  }

  void editForm(QNItem& item) {
    auto* const login = dynamic_cast<QNLogin*>(&item);
    if (login == nullptr) return;
    if (oneIn(2)) return login->setUsername(oneIn(8) ? "" : word("user"));
    login->markRowDirty();
    const auto fields = login->loginFields().fields();
    if (!fields.empty() && oneIn(2)) {
      const auto entry = fields[below(fields.size())];
      if (!entry->designatedAsPassword()) entry->setValue(word("entry"));
      return;
    }
    auto entry = std::make_shared<QNLoginField>();
    if (!oneIn(4)) entry->setName("n" + std::to_string(below(4)));
    entry->setType(oneIn(2) ? QNLoginFieldTypePassword : QNLoginFieldTypeText);
    entry->setValue(word("entry"));
    login->loginFields().addLoginField(entry);
  }

  std::mt19937_64 _random;
  std::shared_ptr<QNProfile> _vault;
  std::uint64_t _words = 0;
};

// One history

struct Replica {
  Row row;
  bool isTombstone = false;
  Texts typedPasswords;
};

class History final {
 public:
  History(std::uint64_t seed, std::shared_ptr<QNProfile> vault)
      : _vault(std::move(vault)), _editor(seed, _vault) {}

  void run() {
    const auto first = _editor.newItem();
    _clock.setSeconds(++_now);
    const Row base = savedRow(*first);
    const Texts typed = contentOf(*openedRow(base, _vault)).passwords;
    for (std::size_t count = 2 + _editor.below(3); count > 0; --count) {
      _replicas.push_back({base, false, typed});
      live(_replicas.back());
    }
    std::swap(_replicas.front(), _replicas[_editor.below(_replicas.size())]);
    bringTogether();
  }

 private:
  // Edits

  void live(Replica& replica) {
    for (std::size_t saves = _editor.below(5); saves > 0; --saves) {
      _clock.setSeconds(++_now);
      auto item = openedRow(replica.row, _vault);
      for (std::size_t edits = 1 + _editor.below(3); edits > 0; --edits)
        item = _editor.edited(item);
      replica.row = savedRow(*item);
      const auto saved = openedRow(replica.row, _vault);
      if (const auto present = saved->password(); present && !present->empty()) {
        if (saved->categoryUUID() == "001" || saved->categoryUUID() == "005") {
          replica.typedPasswords.emplace(present->reveal());
        }
      }
      ASSERT_TRUE(containsAll(contentOf(*saved).passwords, replica.typedPasswords));
    }
    if (_editor.oneIn(8)) {
      replica.row = savedRow(*openedRow(replica.row, _vault)->makeTombstone());
      replica.isTombstone = true;
    }
  }

  // Merges

  void bringTogether() {
    const bool mergesOnly = !_editor.oneIn(3);
    Replica result = _replicas.front();
    for (std::size_t i = 1; i < _replicas.size() && !testing::Test::HasFatalFailure(); ++i) {
      _clock.setSeconds(++_now);
      if (mergesOnly || _editor.oneIn(2)) {
        merge(result, _replicas[i]);
      } else {
        replace(result, _replicas[i]);
      }
    }
    if (!testing::Test::HasFatalFailure() && !result.isTombstone) checkAgainstItself(result);
  }

  void keep(Replica& result, const ItemRef& item) {
    result.isTombstone = item->isTombstone();
    result.row = savedRow(*item);
  }

  void merge(Replica& result, const Replica& other) {
    const auto mine = openedRow(result.row, _vault);
    const auto theirs = openedRow(other.row, _vault);
    const auto merged = asItem(mine->mergeWithConflict(theirs));
    ASSERT_NE(merged, nullptr);
    ASSERT_EQ(merged->oid(), mine->oid());
    ASSERT_TRUE(merged->isTombstone() || merged->dirtyRow() || isEqualRow(result, other));
    if (result.isTombstone || other.isTombstone) {
      checkTombstones(result, other, merged);
    } else {
      checkMerged(result, other, *merged);
      if (!testing::Test::HasFatalFailure()) checkMoreMerges(other, merged);
      result.typedPasswords = unionOf(result.typedPasswords, other.typedPasswords);
    }
    if (result.isTombstone) result.typedPasswords = other.typedPasswords;
    keep(result, merged);
    if (result.isTombstone) return;
    const Content stored = contentOf(*openedRow(result.row, _vault));
    ASSERT_TRUE(containsAll(stored.passwords, result.typedPasswords));
  }

  // A live item beats a tombstone, whole.
  void checkTombstones(const Replica& mine, const Replica& theirs, const ItemRef& merged) {
    ASSERT_EQ(merged->isTombstone(), mine.isTombstone && theirs.isTombstone);
    if (merged->isTombstone()) return;
    const auto live = openedRow((mine.isTombstone ? theirs : mine).row, _vault);
    ASSERT_EQ(printOf(*merged), printOf(*live));
  }

  void checkMerged(const Replica& mineRow, const Replica& theirRow, QNItem& merged) {
    const Content mine = contentOf(*openedRow(mineRow.row, _vault));
    const Content theirs = contentOf(*openedRow(theirRow.row, _vault));
    const Content both = contentOf(merged);
    checkOwnValues(*openedRow(mineRow.row, _vault), mine, merged, both);
    ASSERT_NE(both.notes.find(mine.notes), std::string::npos);
    ASSERT_NE(both.notes.find(theirs.notes), std::string::npos);
    ASSERT_TRUE(containsAll(both.history, unionOf(mine.history, theirs.history)));
    ASSERT_TRUE(containsAll(both.passwords, unionOf(mine.passwords, theirs.passwords)));
    ASSERT_TRUE(containsAll(both.keys, unionOf(mine.keys, theirs.keys)));
    // Nothing that was typed is lost, and nothing comes out of nowhere: whatever the order of
    // merges, the same values are in the end.
    ASSERT_EQ(both.everyValue(), unionOf(mine.everyValue(), theirs.everyValue()));
    checkAddresses(mine, theirs, both, merged);
    for (const std::string& field : theirs.fields) {
      ASSERT_TRUE(!field.starts_with("TOTP=") || both.fields.contains(field)) << field;
    }
  }

  void checkOwnValues(QNItem& before, const Content& mine, QNItem& merged, const Content& both) {
    ASSERT_EQ(both.title, mine.title);
    ASSERT_TRUE(both.password == mine.password || mine.password.empty());
    ASSERT_TRUE(both.username == mine.username || mine.username.empty());
    ASSERT_TRUE(containsAll(both.fields, mine.fields));
    ASSERT_EQ(merged.folderUUID(), before.folderUUID());
    ASSERT_EQ(merged.scope(), before.scope());
    ASSERT_EQ(merged.createdAt(), before.createdAt());
    ASSERT_EQ(merged.updatedAt(), before.updatedAt());
  }

  // A generated password that becomes a login leaves its only address at the site.
  void checkAddresses(const Content& mine, const Content& theirs, const Content& both,
                      QNItem& merged) {
    const Texts all = unionOf(mine.addresses, theirs.addresses);
    ASSERT_EQ(both.addressesInOrder.size(), both.addresses.size());
    ASSERT_TRUE(merged.className() == "QNLogin" || both.addresses == all);
    for (const std::string& address : all) {
      const auto host = QNURLTools::shared().extractHostFromURLString(address);
      ASSERT_TRUE(both.addresses.contains(address) || both.addresses.contains("https://" + *host))
          << address;
    }
  }

  // The second time, a field may still come over whose value was there under another identifier:
  // sections of equal values aren't looked at before something else made them differ.
  void checkMoreMerges(const Replica& other, const ItemRef& merged) {
    const Content once = contentOf(*merged);
    const ItemRef second = mergedAgain(other, merged);
    const Content twice = contentOf(*second);
    ASSERT_EQ(twice.notes, once.notes);
    ASSERT_EQ(twice.everyValue(), once.everyValue());
    ASSERT_EQ(twice.history, once.history);
    ASSERT_EQ(twice.entries, once.entries);
    ASSERT_EQ(twice.addressesInOrder, once.addressesInOrder);
    ASSERT_EQ(twice.keys, once.keys);
    const std::string before = printOf(*second);
    ASSERT_EQ(printOf(*mergedAgain(other, second)), before);
  }

  ItemRef mergedAgain(const Replica& other, const ItemRef& merged) {
    Replica kept;
    keep(kept, merged);
    const auto again = openedRow(kept.row, _vault);
    return asItem(again->mergeWithConflict(openedRow(other.row, _vault)));
  }

  void checkAgainstItself(const Replica& replica) {
    const auto item = openedRow(replica.row, _vault);
    item->removeDuplicateURLs();  // a merge may not leave them
    const std::string before = printOf(*item);
    item->didSave();
    const auto merged = asItem(item->mergeWithConflict(openedRow(replica.row, _vault)));
    ASSERT_EQ(merged, item);
    ASSERT_FALSE(item->dirtyRow());
    ASSERT_EQ(printOf(*item), before);
  }

  // Replacing

  void replace(Replica& result, const Replica& other) {
    const auto mine = openedRow(result.row, _vault);
    const auto theirs = openedRow(other.row, _vault);
    const auto replaced = asItem(mine->objectByReplacingWith(theirs));
    ASSERT_NE(replaced, nullptr);
    ASSERT_EQ(replaced->oid(), mine->oid());
    ASSERT_EQ(*replaced->uuid(), *mine->uuid());
    ASSERT_EQ(replaced->isTombstone(), other.isTombstone);
    result.typedPasswords = other.typedPasswords;
    if (!other.isTombstone) checkReplaced(result, other, *replaced);
    keep(result, replaced);
    if (result.isTombstone) return;
    ASSERT_TRUE(containsAll(contentOf(*openedRow(result.row, _vault)).passwords,
                            contentOf(*openedRow(other.row, _vault)).passwords));
  }

  void checkReplaced(const Replica& mineRow, const Replica& theirRow, QNItem& replaced) {
    const auto winner = openedRow(theirRow.row, _vault);
    if (!mineRow.isTombstone) winner->removeDuplicateURLs();  // in place of one it comes as it is
    const Content theirs = contentOf(*winner);
    const Content now = contentOf(replaced);
    ASSERT_EQ(now.title, theirs.title);
    ASSERT_EQ(now.notes, theirs.notes);
    ASSERT_EQ(now.username, theirs.username);
    ASSERT_EQ(now.password, theirs.password);
    ASSERT_EQ(now.fields, theirs.fields);
    ASSERT_EQ(now.history, theirs.history);
    ASSERT_EQ(replaced.folderUUID(), winner->folderUUID());
    ASSERT_EQ(replaced.scope(), winner->scope());
    // What becomes a login on the way leaves the trash, and its only address at the site.
    if (winner->className() == replaced.className()) {
      ASSERT_EQ(replaced.trashed(), winner->trashed());
      ASSERT_EQ(now.addressesInOrder, theirs.addressesInOrder);
    } else {
      ASSERT_EQ(now.addressesInOrder.size(), theirs.addressesInOrder.size());
    }
    if (mineRow.isTombstone) return;
    const Content mine = contentOf(*openedRow(mineRow.row, _vault));
    ASSERT_TRUE(containsAll(now.keys, unionOf(mine.keys, theirs.keys)));
  }

  static ItemRef asItem(const std::shared_ptr<QNDatabaseObject>& object) {
    return std::dynamic_pointer_cast<QNItem>(object);
  }
  bool isEqualRow(const Replica& a, const Replica& b) {
    return printOf(*openedRow(a.row, _vault)) == printOf(*openedRow(b.row, _vault));
  }

  QNScopedClock _clock{1000};
  std::uint64_t _now = 1000;
  std::shared_ptr<QNProfile> _vault;
  Editor _editor;
  std::vector<Replica> _replicas;
};

TEST(QNMergeProperty, NothingThatWasTypedIsLost) {
  const std::uint64_t seed =
      numberFromEnvironment("QUILLON_MERGE_SEED").value_or(std::random_device{}());
  const std::uint64_t histories =
      numberFromEnvironment("QUILLON_MERGE_HISTORIES").value_or(kDefaultHistories);
  std::cout << "QUILLON_MERGE_SEED=" << seed << " QUILLON_MERGE_HISTORIES=" << histories << '\n';
  const auto vault = localVault();
  const MRCapturingSink sink;
  for (std::uint64_t i = 0; i < histories; ++i) {
    History(seed + i, vault).run();
    ASSERT_FALSE(testing::Test::HasFailure()) << "QUILLON_MERGE_SEED=" << seed + i;
    ASSERT_TRUE(sink.records().empty())
        << sink.records().front().text << " QUILLON_MERGE_SEED=" << seed + i;
  }
}

}  // namespace
}  // namespace quillon
