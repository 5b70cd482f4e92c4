#include "store/internal/QNItemParts.h"

#include <gmock/gmock.h>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemStringField.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Outcome = QNMergedField::Outcome;

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

  const QNItemParts parts = partsOf(*item).value();

  for (const char* const name : {"templateUUID", "trashed", "overview.title", "overview.urls",
                                 "username", "password", "notesPlain", "s.pin", "tags", "folder"}) {
    EXPECT_TRUE(parts.contains(name)) << name;
  }
}

TEST_F(QNItemPartsOfALogin, AreEqualWhateverTheRowSays) {
  const auto one = login(), other = login();
  other->setCreatedAt(1);
  other->setUpdatedAt(2);
  other->setNumberOfTimesUsed(3);
  other->setUuid(sharedString("another"));
  EXPECT_TRUE(equalParts(partsOf(*one).value(), partsOf(*other).value()));

  other->setTags({"work"});

  EXPECT_FALSE(equalParts(partsOf(*one).value(), partsOf(*other).value()));
}

TEST_F(QNItemPartsOfALogin, TwoFieldsOfOneNameAreTwoParts) {
  const auto item = login();
  addField(*item, "s", "pin", "1");
  addField(*item, "s", "pin", "2");

  const QNItemParts parts = partsOf(*item).value();

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
