// The road of a login through a local vault: made, edited, saved, listed, opened, edited again.

#include <gtest/gtest.h>

#include "quillon/items/QNItemConstants.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/internal/QNRandomFields.h"
#include "quillon/logins/internal/QNTestRows.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/urls/QNURLTools.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {
namespace {

class QNLoginInAVault : public testing::Test {
 protected:
  std::shared_ptr<QNLogin> newLogin() {
    auto item = _vault->newItemForCategoryUUID("001");
    item->setProfile(_vault);
    return std::dynamic_pointer_cast<QNLogin>(item);
  }
  std::shared_ptr<QNLogin> filledLogin() {
    auto login = newLogin();
    login->setTitle("Example");
    login->addURLString("https://www.example.com/login", "work");
    login->addURLString("https://example.org/");
    login->setUsername("ann");
    login->setPassword("correct horse");
    return login;
  }
  std::shared_ptr<QNLogin> opened(const QNTestItemRow& row) {
    return std::dynamic_pointer_cast<QNLogin>(itemFromTestRow(row, _vault));
  }

  std::shared_ptr<QNProfile> _vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);
};

TEST_F(QNLoginInAVault, IsMadeByItsCategoryWithAKeyAndNoUuid) {
  const auto item = _vault->newItemForCategoryUUID("001");

  ASSERT_NE(std::dynamic_pointer_cast<QNLogin>(item), nullptr);
  EXPECT_EQ(item->categoryUUID(), "001");
  EXPECT_EQ(item->uuid(), nullptr);
  EXPECT_EQ(item->profileType(), 0u);
}

TEST_F(QNLoginInAVault, GetsUuidAndProfileTypeWithItsVault) {
  const auto login = newLogin();

  ASSERT_NE(login->uuid(), nullptr);
  EXPECT_EQ(login->uuid()->size(), 36u);
  EXPECT_EQ(login->profileType(), kProfileTypeLocalVault);
  EXPECT_EQ(login->backupKeysBase64Encoded().size(), 1u);
}

TEST_F(QNLoginInAVault, EncryptsNothingBeforeItsSave) {
  const auto login = filledLogin();

  EXPECT_TRUE(login->dirtyRow());
  EXPECT_FALSE(login->overviewData());
  EXPECT_FALSE(login->detailsData());
  EXPECT_EQ(toBytes(login->encryptedKey()), Bytes(112, 0));
}

TEST_F(QNLoginInAVault, BringsWhatIsDerivedUpToDateInItsSave) {
  const auto login = filledLogin();

  login->willSave();

  EXPECT_EQ(login->sectionName(), "E");
  EXPECT_EQ(login->overviewTextForKey(kOverviewURLString), "https://www.example.com/login");
  EXPECT_EQ(login->additionalInformation(), "ann");
  EXPECT_NE(login->overviewObjectForKey(QNItemOverviewPasswordStrengthKey), nullptr);
  EXPECT_EQ(mr_JSONStringWithError(*login->detailsObjectForKey("fields")),
            R"([{"name":"username","value":"ann","type":"T","designation":"username"},)"
            R"({"name":"password","value":"correct horse","type":"P","designation":"password"}])");
  EXPECT_EQ(login->numberOfPreviouslyUsedPasswords(), 0u);
}

TEST_F(QNLoginInAVault, IsSealedUnderTheKeysOfItsVault) {
  const auto login = filledLogin();

  login->willSave();

  const auto overview = _vault->decryptOverview(*login->overviewData());
  const auto key = _vault->decryptItemKey(login->encryptedKey());
  ASSERT_TRUE(overview);
  ASSERT_NE(key, nullptr);
  const auto details = key->decrypt(*login->detailsData());
  ASSERT_TRUE(details);
  EXPECT_NE(textOf(*overview).find(R"("title":"Example")"), std::string_view::npos);
  EXPECT_EQ(textOf(*overview).find("correct horse"), std::string_view::npos);
  EXPECT_NE(textOf(*details).find("correct horse"), std::string_view::npos);
}

TEST_F(QNLoginInAVault, HashesItsAddressesUnderTheVaultsUuid) {
  const auto login = filledLogin();

  const auto row = saveInTestRow(*login);

  const QNURLTools& tools = QNURLTools::shared();
  ASSERT_EQ(row.urls.size(), 2u);
  EXPECT_EQ(row.urls[0].nakedHash, tools.nakedHashWithSalt(*_vault->uuid(), "https://example.com"));
  EXPECT_EQ(row.urls[0].derivedHash,
            tools.derivedHashWithSalt(*_vault->uuid(), "https://www.example.com"));
  EXPECT_EQ(row.urls[0].hashVersion, tools.hashVersion());
  EXPECT_EQ(row.urls[0].displayOrder, 100u);
  EXPECT_EQ(row.urls[1].displayOrder, 200u);
}

TEST_F(QNLoginInAVault, IsCleanAfterItsSave) {
  const auto login = filledLogin();

  saveInTestRow(*login);

  EXPECT_FALSE(login->dirtyRow());
  for (const auto& url : login->URLs()) EXPECT_FALSE(url->dirtyRow());
}

TEST_F(QNLoginInAVault, IsListedFromItsOverviewAlone) {
  const auto row = saveInTestRow(*filledLogin());
  const auto unwrapped = _vault->numberOfItemKeysUnwrapped();

  const auto shell = shellFromTestRow(row, _vault);

  EXPECT_EQ(shell->title(), "Example");
  EXPECT_EQ(shell->additionalInformation(), "ann");
  EXPECT_EQ(shell->URLString(), "https://www.example.com/login");
  EXPECT_FALSE(shell->dirtyRow());
  EXPECT_EQ(_vault->numberOfItemKeysUnwrapped(), unwrapped);
}

TEST_F(QNLoginInAVault, IsOpenedWithOneUnwrappingOfItsKey) {
  const auto row = saveInTestRow(*filledLogin());
  const auto unwrapped = _vault->numberOfItemKeysUnwrapped();

  const auto login = opened(row);

  EXPECT_EQ(login->username(), "ann");
  EXPECT_TRUE(login->password()->equals("correct horse"));
  EXPECT_EQ(login->numberOfURLs(), 2u);
  EXPECT_EQ(login->URLAtIndex(0)->label(), "work");
  EXPECT_EQ(login->URLAtIndex(1)->URLString(), "https://example.org/");
  EXPECT_EQ(_vault->numberOfItemKeysUnwrapped(), unwrapped + 1);
  EXPECT_FALSE(login->dirtyRow());
}

TEST_F(QNLoginInAVault, RetiresItsPasswordWhenItIsEditedAndSavedAgain) {
  const auto login = opened(saveInTestRow(*filledLogin()));
  login->setPassword("battery staple");
  const QNScopedClock clock(1700000000);

  const auto again = opened(saveInTestRow(*login));

  EXPECT_TRUE(again->password()->equals("battery staple"));
  ASSERT_EQ(again->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_TRUE(again->previouslyUsedPasswordAtIndex(0)->value()->equals("correct horse"));
  EXPECT_EQ(again->previouslyUsedPasswordAtIndex(0)->retiredAt(), 1700000000u);
}

TEST_F(QNLoginInAVault, OpensAfterALockAndAnUnlock) {
  const auto row = saveInTestRow(*filledLogin());
  _vault->lock();
  ASSERT_TRUE(_vault->_unlockWithPassword(DEMO_PASSWORD));

  const auto login = opened(row);

  EXPECT_EQ(login->title(), "Example");
  EXPECT_TRUE(login->password()->equals("correct horse"));
}

TEST_F(QNLoginInAVault, KeepsTheHashesOfAnUnchangedAddressOverSaves) {
  const auto login = opened(saveInTestRow(*filledLogin()));

  const auto row = saveInTestRow(*login);

  EXPECT_EQ(row.urls[0].nakedHash, login->URLAtIndex(0)->nakedHash());
  EXPECT_TRUE(row.urls[0].nakedHash);
}

TEST_F(QNLoginInAVault, GetsNewHashesWhenItMovesToAnotherVault) {
  const auto login = filledLogin();
  const auto here = saveInTestRow(*login);
  const auto other = QNProfile::initNewWithPassword(DEMO_PASSWORD);

  login->setProfile(other);
  const auto there = saveInTestRow(*login);

  EXPECT_NE(there.urls[0].nakedHash, here.urls[0].nakedHash);
  EXPECT_NE(there.uuid, here.uuid);
  EXPECT_EQ(std::dynamic_pointer_cast<QNLogin>(itemFromTestRow(there, other))->username(), "ann");
}

// What a list of form fields must read as after the rule of designations: the newest entry keeps
// a designation as username or password, everything else stays.
JsonArray withTheDesignationRule(const JsonArray& fields) {
  JsonArray expected(fields, jsonStorage());
  for (const std::string_view designation : {"username", "password"}) {
    bool taken = false;
    for (std::size_t i = expected.size(); i-- > 0;) {
      JsonObject& field = expected[i].get_object();
      const auto found = field.find("designation");
      if (found == field.end() || found->value() != Json(designation)) continue;
      if (taken) field.stable_erase(found);
      taken = true;
    }
  }
  return expected;
}

TEST_F(QNLoginInAVault, AnyFormFieldsSurviveASaveButForTheDesignationRule) {
  for (std::uint32_t seed = 0; seed < 100; ++seed) {
    QNRandomFields random(seed);
    const JsonArray fields = random.fields(12);
    const auto login = newLogin();
    login->copyDetails(JsonObject{{"fields", fields}});
    login->loginFields();

    const auto again = opened(saveInTestRow(*login));
    again->loginFields();
    const auto twice = opened(saveInTestRow(*again));

    const auto expected = mr_JSONStringWithError(Json(withTheDesignationRule(fields)));
    ASSERT_EQ(mr_JSONStringWithError(*again->detailsObjectForKey("fields")), expected) << seed;
    ASSERT_EQ(mr_JSONStringWithError(*twice->detailsObjectForKey("fields")), expected) << seed;
  }
}

}  // namespace
}  // namespace quillon
