#include "quillon/items/internal/QNMergeTesting.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kUser =
    R"({"name":"username","value":"ann","type":"T","designation":"username"})";
constexpr std::string_view kPassword =
    R"({"name":"password","value":"pw","type":"P","designation":"password"})";

class QNLoginMerge : public testing::Test {
 protected:
  void SetUp() override { QNLocalization::sharedLocalization().setLanguage("en"); }

  template <class Class>
  std::shared_ptr<Class> clean() {
    auto item = std::make_shared<Class>(initNew);
    item->setProfile(_vault);
    item->setCreatedAt(5);
    item->setUpdatedAt(6);
    item->didSave();
    return item;
  }
  /// A clean login with these objects as form fields.
  std::shared_ptr<QNLogin> loginWith(std::initializer_list<std::string_view> fields) {
    std::string list;
    for (const auto field : fields) list += (list.empty() ? "" : ",") + std::string(field);
    auto login = clean<QNLogin>();
    login->setDetailsObject(jsonValue("[" + list + "]"), kDetailsFields);
    login->didSave();
    return login;
  }
  std::shared_ptr<QNLogin> loginOf(std::string_view user, std::string_view password) {
    auto login = clean<QNLogin>();
    login->setUsername(user);
    login->setPassword(password);
    login->didSave();
    return login;
  }
  /// "NAME=VALUE" of each form field, with its designation behind it.
  static std::vector<std::string> formOf(QNLogin& login) {
    std::vector<std::string> texts;
    for (const auto& entry : login.loginFields().fields()) {
      const auto value = entry->value();
      texts.push_back(entry->name().value_or("(none)") + "=" +
                      (value ? std::string(value->reveal()) : "(none)") +
                      (entry->designation() ? " " + *entry->designation() : ""));
    }
    return texts;
  }
  /// "TITLE=VALUE (TYPE)" of each field in the section of conflicts.
  static std::vector<std::string> conflictsOf(QNItem& item) {
    std::vector<std::string> texts;
    const auto section = item.findSectionWithName("conflicts");
    if (section == nullptr) return texts;
    for (const auto& field : section->fields()) {
      texts.push_back(std::string(field->title()) + "=" +
                      std::string(field->stringValue()->reveal()) + " (" + shown(field->type()) +
                      ")");
    }
    return texts;
  }

  std::shared_ptr<QNProfile> _vault = localVault();
};

// What may be merged

TEST_F(QNLoginMerge, OfWhatIsNoItemChangesNothing) {
  const auto login = loginOf("ann", "pw");
  const MRCapturingSink sink;

  EXPECT_EQ(login->mergeWithConflict(nullptr), login);

  EXPECT_FALSE(login->dirtyRow());
  EXPECT_THAT(errors(sink), ElementsAre("Attempted to merge (null) into " + login->description() +
                                        ". Avoiding that as it doesn't make sense to do so."));
}

TEST_F(QNLoginMerge, OfAnotherCategoryGivesNothingAndChangesNothing) {
  const auto login = loginOf("ann", "pw");
  const auto note = versionIn(_vault);
  note->setNotesPlain("notes");
  note->_setOid(9);
  const MRCapturingSink sink;

  EXPECT_EQ(login->mergeWithConflict(note), nullptr);

  EXPECT_FALSE(login->dirtyRow());
  EXPECT_FALSE(login->hasOid());
  EXPECT_EQ(login->notesPlain(), std::nullopt);
  EXPECT_THAT(assertions(sink), ElementsAre("Attempt to merge login " + login->description() +
                                            " (001) with item from different category " +
                                            note->description() + " (003)"));
}

TEST_F(QNLoginMerge, OfWhatIsNoLoginThoughItSaysSoGivesNothing) {
  const auto login = loginOf("ann", "pw");
  const auto item = versionIn(_vault);
  item->setCategoryUUID("001");
  const MRCapturingSink sink;

  EXPECT_EQ(login->mergeWithConflict(item), nullptr);

  EXPECT_EQ(assertions(sink).size(), 1u);
}

TEST_F(QNLoginMerge, OfALoginOfAnotherCategoryGivesNothing) {
  const auto login = loginOf("ann", "pw");
  const MRCapturingSink sink;

  EXPECT_EQ(login->mergeWithConflict(clean<QNPrivacyComLogin>()), nullptr);

  EXPECT_EQ(assertions(sink).size(), 1u);
}

TEST_F(QNLoginMerge, OfAnotherCategoryLeavesAGeneratedPasswordAsItIs) {
  const auto mine = clean<QNPrivacyComLogin>();
  const auto password = clean<QNPassword>();
  password->addURLString("https://a.example/deep");
  password->didSave();
  const MRCapturingSink sink;

  EXPECT_EQ(mine->mergeWithConflict(password), nullptr);

  EXPECT_FALSE(mine->dirtyRow());
  EXPECT_FALSE(password->dirtyRow());
  EXPECT_EQ(password->URLAtIndex(0)->item(), password);
  EXPECT_THAT(addressesOf(*password), ElementsAre("https://a.example/deep"));
  EXPECT_THAT(assertions(sink), ElementsAre("Attempt to merge login " + mine->description() +
                                            " (800) with item from different category " +
                                            password->description() + " (005)"));
}

TEST_F(QNLoginMerge, BeatsATombstoneAndTakesItsRow) {
  const auto login = loginOf("ann", "pw");
  const auto tombstone = std::make_shared<QNTombstone>(QNExisting{9});
  tombstone->setProfile(_vault);

  EXPECT_EQ(login->mergeWithConflict(tombstone), login);

  EXPECT_TRUE(login->dirtyRow());
  EXPECT_EQ(login->oid(), 9u);
}

TEST_F(QNLoginMerge, TakesTheOthersRowIfItHasNone) {
  const auto mine = loginOf("ann", "pw");
  const auto theirs = loginOf("ann", "pw");
  theirs->_setOid(9);

  mine->mergeWithConflict(theirs);

  EXPECT_EQ(mine->oid(), 9u);
  EXPECT_EQ(mine->key(), theirs->key());
}

TEST_F(QNLoginMerge, KeepsItsOwnRow) {
  const auto mine = loginOf("ann", "pw");
  mine->_setOid(4);
  const auto theirs = loginOf("ann", "pw");
  theirs->_setOid(9);

  mine->mergeWithConflict(theirs);

  EXPECT_EQ(mine->oid(), 4u);
}

TEST_F(QNLoginMerge, WithItselfLeavesTheRowClean) {
  const auto login = loginWith({kUser, kPassword, R"({"value":"nameless"})"});

  EXPECT_EQ(login->mergeWithConflict(login), login);

  EXPECT_FALSE(login->dirtyRow());
  EXPECT_EQ(login->loginFields().count(), 3u);
}

TEST_F(QNLoginMerge, JoinsWhatEveryItemHas) {
  const auto mine = loginOf("ann", "pw");
  const auto theirs = loginOf("ann", "pw");
  mine->setNotesPlain("mine");
  theirs->setNotesPlain("theirs");

  mine->mergeWithConflict(theirs);

  EXPECT_EQ(mine->notesPlain(), "mine\n\n===\n\ntheirs");
}

// Usernames

TEST_F(QNLoginMerge, KeepsItsUsernameAndTheOtherAsAConflict) {
  const auto mine = loginOf("ann", "pw");
  const auto theirs = loginOf("bob", "pw");

  mine->mergeWithConflict(theirs);

  EXPECT_EQ(mine->username(), "ann");
  EXPECT_THAT(conflictsOf(*mine), ElementsAre("username=bob (string)"));
  EXPECT_TRUE(mine->dirtyRow());
}

TEST_F(QNLoginMerge, AddsTheOtherUsernameOnce) {
  const auto mine = loginOf("ann", "pw");
  const auto theirs = loginOf("bob", "pw");

  mine->mergeWithConflict(theirs);
  mine->mergeWithConflict(theirs);

  EXPECT_THAT(conflictsOf(*mine), ElementsAre("username=bob (string)"));
  EXPECT_THAT(formOf(*mine), ElementsAre("username=ann username", "password=pw password"));
}

TEST_F(QNLoginMerge, FindsAUsernameThatAFieldHoldsAlready) {
  const auto mine = loginOf("ann", "pw");
  addField(*mine, "s", "x", "bob");
  const auto theirs = loginOf("bob", "pw");

  mine->mergeUsernameWithConflict(*theirs);

  EXPECT_THAT(conflictsOf(*mine), IsEmpty());
  EXPECT_TRUE(mine->dirtyRow());
}

TEST_F(QNLoginMerge, TakesTheOthersUsernameEntryIfItHasNone) {
  const auto mine = loginWith({});
  const auto theirs = loginWith({kUser});
  const auto entry = theirs->loginFields().usernameField();

  mine->mergeUsernameWithConflict(*theirs);

  EXPECT_EQ(mine->username(), "ann");
  EXPECT_EQ(mine->loginFields().usernameField(), entry);
  EXPECT_TRUE(mine->dirtyRow());
}

TEST_F(QNLoginMerge, KeepsItsUsernameWithoutAConflictIfTheOtherHasNone) {
  for (const std::string_view fields :
       {"", R"({"name":"u","value":"","designation":"username"})"}) {
    const auto mine = loginOf("ann", "pw");
    const auto theirs = fields.empty() ? loginWith({}) : loginWith({fields});

    mine->mergeUsernameWithConflict(*theirs);

    EXPECT_EQ(mine->username(), "ann");
    EXPECT_THAT(conflictsOf(*mine), IsEmpty());
    EXPECT_TRUE(mine->dirtyRow());
  }
}

TEST_F(QNLoginMerge, DirtiesNothingForAnEqualUsername) {
  const auto mine = loginOf("ann", "pw");

  mine->mergeUsernameWithConflict(*loginOf("ann", "other"));

  EXPECT_FALSE(mine->dirtyRow());
}

// Passwords

TEST_F(QNLoginMerge, KeepsItsPasswordAndTheOtherAsHistoryOfItsLastChange) {
  const auto mine = loginOf("ann", "pw");
  const auto theirs = loginOf("ann", "other");

  mine->mergeWithConflict(theirs);

  EXPECT_TRUE(mine->password()->equals("pw"));
  EXPECT_THAT(historyOf(*mine), ElementsAre("other@6"));
  EXPECT_THAT(conflictsOf(*mine), IsEmpty());
  EXPECT_TRUE(mine->dirtyRow());
}

TEST_F(QNLoginMerge, AddsTheOtherPasswordOnce) {
  const auto mine = loginOf("ann", "pw");
  const auto theirs = loginOf("ann", "other");

  mine->mergeWithConflict(theirs);
  mine->mergeWithConflict(theirs);

  EXPECT_THAT(historyOf(*mine), ElementsAre("other@6"));
}

TEST_F(QNLoginMerge, FindsAPasswordThatIsHistoryAlready) {
  const auto mine = loginOf("ann", "pw");
  mine->addPreviouslyUsedPassword({QNSecret("other"), 1});
  mine->didSave();

  mine->mergePasswordWithConflict(*loginOf("ann", "other"));

  EXPECT_THAT(historyOf(*mine), ElementsAre("other@1"));
  EXPECT_TRUE(mine->dirtyRow());
}

TEST_F(QNLoginMerge, DirtiesTheRowIfTheOtherHasNoPassword) {
  const auto mine = loginOf("ann", "pw");

  mine->mergePasswordWithConflict(*loginWith({}));

  EXPECT_THAT(historyOf(*mine), IsEmpty());
  EXPECT_TRUE(mine->dirtyRow());
}

TEST_F(QNLoginMerge, DirtiesNothingForAnEqualPassword) {
  const auto mine = loginOf("ann", "pw");

  mine->mergePasswordWithConflict(*loginOf("bob", "pw"));

  EXPECT_FALSE(mine->dirtyRow());
}

// Form fields

TEST_F(QNLoginMerge, TakesTheEntriesWhoseNamesItLacks) {
  const auto mine = loginWith({kUser, kPassword});
  const auto theirs = loginWith({kUser, R"({"name":"pin","value":"1234","type":"P"})"});
  const auto entry = theirs->loginFields().loginFieldAtIndex(1);

  mine->mergeLoginFieldsWithConflict(*theirs);

  EXPECT_EQ(mine->loginFields().loginFieldAtIndex(2), entry);
  EXPECT_TRUE(mine->dirtyRow());
  EXPECT_THAT(conflictsOf(*mine), IsEmpty());
}

TEST_F(QNLoginMerge, SkipsEntriesWithoutAValueAndOfAValueThatItHas) {
  const auto mine = loginWith({kUser, kPassword});
  const auto theirs = loginWith({R"({"name":"a","value":""})", R"({"name":"b"})",
                                 R"({"name":"button","value":"ann","type":"B"})"});

  mine->mergeLoginFieldsWithConflict(*theirs);

  EXPECT_EQ(mine->loginFields().count(), 2u);
  EXPECT_THAT(conflictsOf(*mine), IsEmpty());
  EXPECT_FALSE(mine->dirtyRow());
}

TEST_F(QNLoginMerge, TakesAnEntryWithoutItsDesignationIfThatIsInUse) {
  const auto mine = loginWith({kUser, kPassword});
  const auto theirs = loginWith({R"({"name":"login","value":"bob","designation":"username"})",
                                 R"({"name":"code","value":"1","designation":"totp"})"});

  mine->mergeLoginFieldsWithConflict(*theirs);

  EXPECT_THAT(formOf(*mine), ElementsAre("username=ann username", "password=pw password",
                                         "login=bob", "code=1 totp"));
  EXPECT_EQ(mine->username(), "ann");
}

TEST_F(QNLoginMerge, KeepsAThirdDesignationThatBothUse) {
  const auto mine = loginWith({R"({"name":"code","value":"1","designation":"totp"})"});
  const auto theirs = loginWith({R"({"name":"otp","value":"2","designation":"totp"})"});

  mine->mergeLoginFieldsWithConflict(*theirs);

  EXPECT_THAT(formOf(*mine), ElementsAre("code=1 totp", "otp=2"));
}

TEST_F(QNLoginMerge, KeepsAValueThatItHasUnderAnotherNameAsAConflict) {
  const auto mine = loginWith({R"({"name":"town","value":"Ulm"})"});
  const auto theirs = loginWith({R"({"name":"city","value":"Ulm"})"});

  mine->mergeLoginFieldsWithConflict(*theirs);
  mine->mergeLoginFieldsWithConflict(*theirs);

  EXPECT_THAT(formOf(*mine), ElementsAre("town=Ulm"));
  EXPECT_THAT(conflictsOf(*mine), ElementsAre("city=Ulm (string)"));
}

TEST_F(QNLoginMerge, TakesEntriesWithoutANameIfItHasNone) {
  const auto mine = loginWith({kUser});
  const auto theirs = loginWith({R"({"value":"1"})", R"({"value":"2"})"});

  mine->mergeLoginFieldsWithConflict(*theirs);
  mine->mergeLoginFieldsWithConflict(*theirs);

  EXPECT_THAT(formOf(*mine), ElementsAre("username=ann username", "(none)=1", "(none)=2"));
  EXPECT_THAT(conflictsOf(*mine), IsEmpty());
}

TEST_F(QNLoginMerge, KeepsEntriesWithoutANameAsConflictsIfItHasOneToo) {
  const auto mine = loginWith({R"({"value":"mine"})"});
  const auto theirs =
      loginWith({R"({"value":"mine","x":1})", R"({"value":"1","type":"P"})", R"({"value":"2"})",
                 R"({"value":""})", R"({"x":2})", R"({"value":"on","type":"C"})"});

  mine->mergeLoginFieldsWithConflict(*theirs);
  EXPECT_TRUE(mine->dirtyRow());
  mine->didSave();
  mine->mergeLoginFieldsWithConflict(*theirs);

  EXPECT_THAT(formOf(*mine), ElementsAre("(none)=mine"));
  EXPECT_THAT(conflictsOf(*mine), ElementsAre("=1 (concealed)", "=2 (string)"));
  EXPECT_FALSE(mine->dirtyRow());
}

TEST_F(QNLoginMerge, TakesAPasswordEntryAsItsOwnIfItHasNone) {
  const auto mine = loginWith({kUser});
  const auto theirs = loginWith({kUser, kPassword});

  mine->mergeLoginFieldsWithConflict(*theirs);

  ASSERT_TRUE(mine->password());
  EXPECT_TRUE(mine->password()->equals("pw"));
}

TEST_F(QNLoginMerge, KeepsTheOtherValueOfAnEntryAsAConflict) {
  const auto mine = loginWith(
      {R"({"name":"pin","value":"1","type":"P"})", R"({"name":"city","value":"Bonn","type":"T"})"});
  const auto theirs = loginWith(
      {R"({"name":"pin","value":"2","type":"P"})", R"({"name":"city","value":"Ulm","type":"T"})"});

  mine->mergeLoginFieldsWithConflict(*theirs);
  mine->mergeLoginFieldsWithConflict(*theirs);

  EXPECT_THAT(formOf(*mine), ElementsAre("pin=1", "city=Bonn"));
  EXPECT_THAT(conflictsOf(*mine), ElementsAre("pin=2 (concealed)", "city=Ulm (string)"));
  EXPECT_TRUE(mine->dirtyRow());
}

TEST_F(QNLoginMerge, KeepsNoConflictOfWhatCanNotConflictOrIsEmpty) {
  const auto mine = loginWith(
      {R"({"name":"stay","value":"on","type":"C"})", R"({"name":"city","value":"Bonn"})"});
  const auto theirs =
      loginWith({R"({"name":"stay","value":"off","type":"C"})", R"({"name":"city","value":""})"});

  mine->mergeLoginFieldsWithConflict(*theirs);

  EXPECT_THAT(conflictsOf(*mine), IsEmpty());
  EXPECT_FALSE(mine->dirtyRow());
}

TEST_F(QNLoginMerge, KeepsNoConflictOfAValueThatAFieldHolds) {
  const auto mine = loginWith({R"({"name":"city","value":"Bonn"})"});
  addField(*mine, "s", "x", "Ulm");
  const auto theirs = loginWith({R"({"name":"city","value":"Ulm"})"});

  mine->mergeLoginFieldsWithConflict(*theirs);

  EXPECT_THAT(conflictsOf(*mine), IsEmpty());
  EXPECT_FALSE(mine->dirtyRow());
}

TEST_F(QNLoginMerge, KeepsNoConflictOfAUsernameOrPasswordThatItHas) {
  const auto mine = loginWith({kUser, kPassword});
  const auto theirs = loginWith(
      {R"({"name":"username","value":"ann","designation":"username","id":"u"})",
       R"({"name":"password","value":"pw","type":"P","designation":"password","id":"p"})"});

  mine->mergeLoginFieldsWithConflict(*theirs);

  EXPECT_THAT(conflictsOf(*mine), IsEmpty());
  EXPECT_FALSE(mine->dirtyRow());
}

TEST_F(QNLoginMerge, KeepsNoConflictOfAPasswordThatIsHistory) {
  const auto mine = loginWith({kUser, kPassword});
  mine->addPreviouslyUsedPassword({QNSecret("old"), 1});
  mine->didSave();
  const auto theirs =
      loginWith({R"({"name":"password","value":"old","type":"P","designation":"password"})"});

  mine->mergeLoginFieldsWithConflict(*theirs);

  EXPECT_THAT(conflictsOf(*mine), IsEmpty());
  EXPECT_FALSE(mine->dirtyRow());
}

TEST_F(QNLoginMerge, IsSavedWithAllThatCameOver) {
  const auto mine = loginOf("ann", "pw");
  const auto theirs = loginWith({R"({"name":"username","value":"bob","designation":"username"})",
                                 R"({"name":"pin","value":"1","type":"P"})"});
  mine->mergeWithConflict(theirs);

  save(*mine);

  const auto text = detailsTextOf(*mine);
  EXPECT_NE(text.find("bob"), std::string::npos);
  EXPECT_NE(text.find(R"({"name":"pin","value":"1","type":"P"})"), std::string::npos);
}

// Generated passwords

TEST_F(QNLoginMerge, TakesAGeneratedPasswordAsHistory) {
  const auto mine = loginOf("ann", "pw");
  const auto password = clean<QNPassword>();
  password->setPassword("generated");
  password->addURLString("https://a.example/deep");
  password->didSave();

  EXPECT_EQ(mine->mergeWithConflict(password), mine);

  EXPECT_EQ(mine->username(), "ann");
  EXPECT_TRUE(mine->password()->equals("pw"));
  EXPECT_THAT(historyOf(*mine), ElementsAre("generated@6"));
  EXPECT_THAT(addressesOf(*mine), ElementsAre("https://a.example"));
  EXPECT_TRUE(password->dirtyRow());
}

TEST_F(QNLoginMerge, IsDirtyAfterAGeneratedPasswordThatBroughtNothing) {
  const auto vault = accountVault();  // without backup keys, which differ
  const auto mine = std::make_shared<QNLogin>(initNew);
  const auto password = std::make_shared<QNPassword>(initNew);
  for (QNItem* const item : std::initializer_list<QNItem*>{mine.get(), password.get()}) {
    item->setProfile(vault);
    item->setCreatedAt(5);
    item->setUpdatedAt(6);
    item->setPassword("pw");
    item->didSave();
  }

  mine->setUsername("");
  mine->didSave();

  mine->mergeWithConflict(password);

  EXPECT_TRUE(mine->dirtyRow());
  EXPECT_TRUE(password->dirtyRow());
}

TEST_F(QNLoginMerge, OfAGeneratedPasswordThatDoesNotOpenGivesNothing) {
  const auto mine = loginOf("ann", "pw");
  const auto password = damagedTwinOf<QNPassword>(*clean<QNPassword>(), _vault);
  const MRCapturingSink sink;

  EXPECT_EQ(mine->mergeWithConflict(password), nullptr);

  EXPECT_FALSE(mine->dirtyRow());
  EXPECT_FALSE(mine->hasOid());
  EXPECT_EQ(password->URLAtIndex(0)->item(), password);
  EXPECT_THAT(errors(sink), Contains("Attempted to merge " + password->description() + " into " +
                                     mine->description() + ", which don't both open"));
}

TEST_F(QNLoginMerge, ThatDoesNotOpenLeavesAGeneratedPasswordItsAddresses) {
  const auto mine = damagedTwinOf<QNLogin>(*loginOf("ann", "pw"), _vault);
  const auto password = clean<QNPassword>();
  password->addURLString("https://a.example/deep");
  password->didSave();
  const MRCapturingSink sink;

  EXPECT_EQ(mine->mergeWithConflict(password), nullptr);

  EXPECT_FALSE(password->dirtyRow());
  EXPECT_THAT(addressesOf(*password), ElementsAre("https://a.example/deep"));
  EXPECT_EQ(password->URLAtIndex(0)->item(), password);
}

TEST_F(QNLoginMerge, OfALoginThatDoesNotOpenGivesNothing) {
  const auto mine = loginOf("ann", "pw");
  const auto theirs = damagedTwinOf<QNLogin>(*loginOf("bob", "other"), _vault);
  const MRCapturingSink sink;

  EXPECT_EQ(mine->mergeWithConflict(theirs), nullptr);

  EXPECT_FALSE(mine->dirtyRow());
  EXPECT_EQ(mine->username(), "ann");
}

TEST_F(QNLoginMerge, TakesTheRowOfAGeneratedPassword) {
  const auto mine = loginOf("ann", "pw");
  const auto password = clean<QNPassword>();
  password->_setOid(9);

  mine->mergeWithConflict(password);

  EXPECT_EQ(mine->oid(), 9u);
}

// Replacing

TEST_F(QNLoginMerge, IsReplacedByALoginWithItsForm) {
  const auto mine = loginOf("ann", "pw");
  ASSERT_EQ(mine->username(), "ann");
  const auto theirs = loginOf("bob", "other");
  theirs->willSerialize();

  EXPECT_EQ(mine->objectByReplacingWith(theirs), mine);

  EXPECT_EQ(mine->username(), "bob");
  EXPECT_TRUE(mine->password()->equals("other"));
}

TEST_F(QNLoginMerge, IsReplacedByAGeneratedPasswordAsALogin) {
  const auto mine = loginOf("ann", "pw");
  const auto password = clean<QNPassword>();
  password->setTitle("generated title");
  password->setPassword("generated");
  password->addURLString("https://a.example/deep");

  EXPECT_EQ(mine->objectByReplacingWith(password), mine);

  EXPECT_EQ(mine->categoryUUID(), "001");
  EXPECT_EQ(mine->title(), "generated title");
  EXPECT_TRUE(mine->password()->equals("generated"));
  EXPECT_THAT(addressesOf(*mine), ElementsAre("https://a.example"));
}

TEST_F(QNLoginMerge, IsNotReplacedByAGeneratedPasswordThatDoesNotOpen) {
  const auto mine = loginOf("ann", "pw");
  mine->addURLString("https://a.example");
  const auto password = damagedTwinOf<QNPassword>(*clean<QNPassword>(), _vault);
  const MRCapturingSink sink;
  mine->didSave();

  EXPECT_EQ(mine->objectByReplacingWith(password), mine);

  EXPECT_FALSE(mine->dirtyRow());
  EXPECT_EQ(mine->username(), "ann");
  EXPECT_TRUE(mine->password()->equals("pw"));
  EXPECT_THAT(addressesOf(*mine), ElementsAre("https://a.example"));
  EXPECT_EQ(password->URLAtIndex(0)->item(), password);
}

}  // namespace
}  // namespace quillon
