#include "store/internal/QNItemParts.h"

#include <gmock/gmock.h>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/platform/json/QNJsonEquality.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Outcome = QNMergedField::Outcome;

bool haveEqualContent(QNItem& one, QNItem& other) {
  return equalJson(contentOf(one).value(), contentOf(other).value());
}

class QNItemPartsOfALogin : public ::testing::Test {
 protected:
  std::shared_ptr<QNItem> login() {
    auto item = makeLogin(vault, "Bank");
    item->setUuid(sharedString("uuid"));
    return item;
  }
  const std::shared_ptr<QNProfile> vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);
};

void addField(QNItem& item, std::string_view section, std::string_view name,
              std::string_view value) {
  const auto field = QNItemStringField::fieldWithIdentifier(name);
  field->setValue(value);
  item.fieldSectionWithName(section, section)->addField(field);
}

TEST_F(QNItemPartsOfALogin, AreNamedAfterTheirKeys) {
  const auto item = login();
  addField(*item, "s", "pin", "1234");
  item->setNotesPlain("notes");
  item->setTags({"work"});
  item->setFolderUUID("f");

  const QNItemParts parts = partsOf(*contentOf(*item));

  for (const char* const name :
       {"templateUUID", "trashed", "overview.title", "overview.urls", "username", "password",
        "notesPlain", "s", "s.pin", "tags", "folder"}) {
    EXPECT_TRUE(parts.contains(name)) << name;
  }
}

TEST_F(QNItemPartsOfALogin, HasEqualContentWhateverTheRowSays) {
  const auto one = login(), other = login();
  other->setCreatedAt(1);
  other->setUpdatedAt(2);
  other->setNumberOfTimesUsed(3);
  other->setUuid(sharedString("another"));
  EXPECT_TRUE(haveEqualContent(*one, *other));

  other->setTags({"work"});

  EXPECT_FALSE(haveEqualContent(*one, *other));
}

TEST_F(QNItemPartsOfALogin, HasOtherContentInAnotherOrderAndUnderAnotherTitle) {
  const auto one = login(), other = login(), renamed = login();
  for (const auto& item : {one, renamed}) {
    addField(*item, "s", "pin", "1");
    addField(*item, "s", "code", "1");
  }
  addField(*other, "s", "code", "1");
  addField(*other, "s", "pin", "1");
  renamed->fieldSectionWithName("s", "")->setTitle("renamed");

  EXPECT_FALSE(haveEqualContent(*one, *other));
  EXPECT_FALSE(haveEqualContent(*one, *renamed));
  EXPECT_FALSE(equalJson(partsOf(*contentOf(*one)).at("s"), partsOf(*contentOf(*renamed)).at("s")));
}

TEST_F(QNItemPartsOfALogin, TwoFieldsOfOneNameAreTwoParts) {
  const auto item = login();
  addField(*item, "s", "pin", "1");
  addField(*item, "s", "pin", "2");

  const QNItemParts parts = partsOf(*contentOf(*item));

  EXPECT_TRUE(parts.contains("s.pin"));
  EXPECT_TRUE(parts.contains("s.pin'"));
}

QNItemParts partsWith(std::initializer_list<std::pair<const char*, const char*>> texts) {
  QNItemParts parts;
  for (const auto& [name, text] : texts) parts.emplace(name, Json(text));
  return parts;
}

std::vector<std::pair<std::string, Outcome>> outcomesOf(const QNItemParts& mine,
                                                        const QNItemParts& theirs,
                                                        const QNItemParts& result) {
  std::vector<std::pair<std::string, Outcome>> all;
  for (const auto& field : outcomes(mine, theirs, result)) {
    all.emplace_back(field.name, field.outcome);
  }
  return all;
}

TEST(QNItemParts, ThatWereEqualAreNotTold) {
  const auto both = partsWith({{"a", "1"}});

  EXPECT_THAT(outcomesOf(both, both, partsWith({{"a", "2"}})), IsEmpty());
}

TEST(QNItemParts, AreTakenKeptOrJoined) {
  const auto mine =
      partsWith({{"joined", "m"}, {"kept", "m"}, {"mine alone", "m"}, {"taken", "m"}});
  const auto theirs =
      partsWith({{"joined", "t"}, {"kept", "t"}, {"taken", "t"}, {"theirs alone", "t"}});
  const auto result = partsWith({{"joined", "mt"},
                                 {"kept", "m"},
                                 {"mine alone", "m"},
                                 {"taken", "t"},
                                 {"theirs alone", "t"}});

  EXPECT_THAT(
      outcomesOf(mine, theirs, result),
      ElementsAre(std::pair("joined", Outcome::joined), std::pair("kept", Outcome::kept),
                  std::pair("mine alone", Outcome::kept), std::pair("taken", Outcome::taken),
                  std::pair("theirs alone", Outcome::taken)));
}

TEST(QNItemParts, ThatStandAmongNewConflictsAreCopied) {
  const auto mine = partsWith({{"a", "m"}, {"conflicts.old", "u"}, {"b", "m"}});
  const auto theirs = partsWith({{"a", "t"}, {"conflicts.old", "u"}, {"b", "u"}});
  const auto result =
      partsWith({{"a", "m"}, {"b", "m"}, {"conflicts.old", "u"}, {"conflicts.x", "t"}});

  EXPECT_THAT(outcomesOf(mine, theirs, result),
              ElementsAre(std::pair("a", Outcome::conflictCopy), std::pair("b", Outcome::kept)));
}

}  // namespace
}  // namespace quillon
