#include "cli/fields/QNItemEditing.h"

#include <gmock/gmock.h>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {
namespace {

using testing::HasSubstr;

// What a newer version may have written, by hand: kinds and members that this one doesn't know, at
// every level, and elements that are no objects.
constexpr std::string_view kDetails = R"({
  "future": {"deep": [1, null, 0.1]},
  "notesPlain": "N",
  "sections": [
    7,
    {"name": "", "title": "", "mood": "blue", "fields": [
      {"n": "bankName", "t": "Bank", "k": "string", "v": "Old", "a": {"guarded": "yes", "b": 1},
       "x": true},
      null,
      {"n": "h", "t": "Hologram", "k": "hologram", "v": {"frames": [1, 2]}, "y": null},
      {"k": "sshKey", "v": "PRIVATE"},
      {"n": "branchAddress", "t": "A", "k": "address", "v": {"city": "Ulm", "planet": "earth"}}
    ]},
    {"name": "later", "shape": "round"}
  ]
})";

// The details as they are after a save.
std::string savedDetails(QNItem& item) {
  item.willSave();
  return mr_JSONStringWithError(*item.details()).value_or("(no form)");
}

std::string compact(std::string_view json) {
  return mr_JSONStringWithError(*mr_objectFromJSONStringWithError(json)).value_or("(no form)");
}

std::string replaced(std::string text, std::string_view part, std::string_view with) {
  const auto at = text.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return at == std::string::npos ? text : text.replace(at, part.size(), with);
}

QNItemEdits setting(std::initializer_list<std::pair<const char*, const char*>> values) {
  QNItemEdits edits;
  for (const auto& [field, value] : values) {
    edits.settings.push_back({field, {QNGivenValue::From::argument, value, {}}});
  }
  return edits;
}

class QNItemEditing : public testing::Test {
 protected:
  QNItemEditing() {
    QNLocalization::sharedLocalization().setLanguage("en");
    account->setProfile(vault);
    account->copyDetails(*mr_objectFromJSONStringWithError(kDetails));
    account->willSave();
    account->didSave();
  }
  std::shared_ptr<QNProfile> vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);
  std::shared_ptr<QNItem> account = vault->newItemForCategoryUUID("101");
};

TEST_F(QNItemEditing, ChangesWhatIsNamedAndNothingElse) {
  const std::string before = savedDetails(*account);
  account->didSave();
  ASSERT_FALSE(account->dirtyRow());

  ASSERT_TRUE(editItem(*account, setting({{"bankName", "New"}, {"A.street", "S"}})).ok());

  EXPECT_TRUE(account->dirtyRow());
  std::string expected = replaced(compact(before), "\"Old\"", "\"New\"");
  expected = replaced(expected, R"("planet":"earth")", R"("planet":"earth","street":"S")");
  EXPECT_EQ(savedDetails(*account), expected);
  for (const char* const kept :
       {R"("future":{"deep":[1,null,)", R"("sections":[7,)", R"("mood":"blue")", R"("b":1)",
        R"("x":true},null,)", R"({"n":"h","t":"Hologram","k":"hologram",)",
        R"("v":{"frames":[1,2]},"y":null})", R"("planet":"earth")",
        R"({"k":"sshKey","v":"PRIVATE"})", R"({"name":"later","shape":"round"})"}) {
    EXPECT_THAT(savedDetails(*account), HasSubstr(kept));
  }
}

TEST_F(QNItemEditing, AnEqualValueDirtiesNothing) {
  ASSERT_FALSE(account->dirtyRow());

  ASSERT_TRUE(editItem(*account, setting({{"bankName", "Old"}})).ok());

  EXPECT_FALSE(account->dirtyRow());
}

TEST_F(QNItemEditing, RemovesWhatTheUserNamesAndKeepsWhatIsGuarded) {
  QNItemEdits unknown;
  unknown.removals = {"Hologram"};
  QNItemEdits guarded;
  guarded.removals = {"bankName"};

  EXPECT_TRUE(editItem(*account, unknown).ok());
  const auto refused = editItem(*account, guarded);

  EXPECT_TRUE(account->dirtyRow());
  EXPECT_EQ(account->findFieldWithIdentifier("h"), nullptr);
  EXPECT_NE(account->findFieldWithIdentifier("bankName"), nullptr);
  ASSERT_FALSE(refused.ok());
  EXPECT_EQ(exitFor(refused.error()), QNExit::wrongUsage);
  EXPECT_TRUE(editItem(*account, setting({{"bankName", ""}})).ok());
  EXPECT_EQ(savedDetails(*account).find("\"Old\""), std::string::npos);
}

TEST_F(QNItemEditing, AddsFieldsToSectionsByTitleAndMakesThoseThatAreMissing) {
  QNItemEdits edits;
  for (const char* const title : {"One", "Two"}) {
    edits.additions.push_back(
        {"Extra", title, "string", {QNGivenValue::From::argument, "value", {}}});
  }
  edits.additions.push_back({"", "Three", "date", {QNGivenValue::From::argument, "", {}}});

  ASSERT_TRUE(editItem(*account, edits).ok());

  const auto extra = account->findSectionWithTitle("Extra");
  ASSERT_NE(extra, nullptr);
  EXPECT_EQ(extra->numberOfFields(), 2u);
  EXPECT_NE(extra->fieldAtIndex(0)->identifier(), extra->fieldAtIndex(1)->identifier());
  EXPECT_EQ(account->fieldSectionAtIndex(0)->fields().back()->title(), "Three");
  EXPECT_TRUE(account->dirtyRow());
}

TEST_F(QNItemEditing, ASecretInAnArgumentIsRefused) {
  const auto server = vault->newItemForCategoryUUID("110");
  server->setProfile(vault);

  const auto refused = editItem(*server, setting({{"admin_console_password", "hunter2"}}));

  ASSERT_FALSE(refused.ok());
  EXPECT_EQ(exitFor(refused.error()), QNExit::wrongUsage);
  EXPECT_THAT(refused.error().message, HasSubstr("isn't taken from an argument"));
  EXPECT_EQ(refused.error().message.find("hunter2"), std::string::npos);
}

TEST_F(QNItemEditing, APasswordOfASectionKeepsItsHistory) {
  const auto server = vault->newItemForCategoryUUID("110");
  server->setProfile(vault);
  server->findFieldWithIdentifier("password")->setRawValue("first");
  server->_setOid(7);
  server->willSave();
  server->didSave();
  server->setDetailsData(Bytes(*server->detailsData()));  // as they are read from a store
  QNItemEdits edits;
  edits.generate = true;

  ASSERT_TRUE(editItem(*server, edits).ok());
  server->willSave();

  EXPECT_FALSE(server->password()->equals("first"));
  EXPECT_NE(server->previouslyUsedPasswordWithValue("first"), nullptr);
}

}  // namespace
}  // namespace quillon
