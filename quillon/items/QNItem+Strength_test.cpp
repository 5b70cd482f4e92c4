#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/platform/passwords/QNSPG.h"

namespace quillon {
namespace {

std::int16_t cut(double strength) {
  return static_cast<std::int16_t>(strength);
}

std::string stored(QNItem& item, std::string_view key) {
  return jsonText(item.overviewObjectForKey(key));
}

TEST(QNItemStrength, AGeneratedPasswordStoresItsEntropy) {
  const auto item = newItem(localVault());

  item->updatePassword("generated", true, 64.5);

  EXPECT_TRUE(item->password()->equals("generated"));
  EXPECT_EQ(item->passwordBitsEntropy(), 64.5);
  EXPECT_TRUE(item->passwordGeneratedByRandomNumberGenerator());
  EXPECT_EQ(stored(*item, "pgrng"), "true");
}

TEST(QNItemStrength, ATypedPasswordRemovesBothMarks) {
  const auto item = newItem(localVault());
  item->updatePassword("generated", true, 64.5);

  item->updatePassword("typed", false, 99);

  EXPECT_TRUE(item->password()->equals("typed"));
  EXPECT_EQ(item->passwordBitsEntropy(), std::nullopt);
  EXPECT_FALSE(item->passwordGeneratedByRandomNumberGenerator());
  EXPECT_EQ(stored(*item, "pbe"), "(none)");
  EXPECT_EQ(stored(*item, "pgrng"), "(none)");
}

TEST(QNItemStrength, AGeneratedPasswordIsRatedByItsEntropy) {
  const auto item = newItem(localVault());
  item->updatePassword("a", true, 50.0);

  EXPECT_EQ(item->passwordStrength(), cut(QNSPG::calcStrengthWithBitsEntropy(50.0)));
}

TEST(QNItemStrength, AnyOtherReadsTheStoredStrengthAsA16BitNumber) {
  const auto item = newItem(localVault());
  EXPECT_EQ(item->passwordStrength(), 0);
  const std::pair<const char*, std::int16_t> cases[] = {
      {"57", 57}, {"57.9", 57}, {"-1", -1}, {"1e30", 32767}, {"-99999", -32768}, {R"("57")", 0}};
  for (const auto& [json, strength] : cases) {
    item->setOverviewObject(jsonValue(json), QNItemOverviewPasswordStrengthKey);

    EXPECT_EQ(item->passwordStrength(), strength) << json;
  }
}

TEST(QNItemStrength, TheMarkOfTheGeneratorMayBeANumber) {
  const auto item = newItem(localVault());
  const std::pair<const char*, bool> cases[] = {
      {"true", true}, {"false", false}, {"1", true}, {"0", false}, {R"("true")", false}};
  for (const auto& [json, generated] : cases) {
    item->setOverviewObject(jsonValue(json), "pgrng");

    EXPECT_EQ(item->passwordGeneratedByRandomNumberGenerator(), generated) << json;
  }
}

TEST(QNItemStrength, IsShownForAPasswordThatQualifies) {
  const auto item = newItem(localVault());
  EXPECT_FALSE(item->shouldShowPasswordStrength());

  item->setPassword("x");
  EXPECT_FALSE(item->shouldShowPasswordStrength());
  item->setPassword("a proper password");

  EXPECT_TRUE(item->shouldShowPasswordStrength());
}

TEST(QNItemStrength, ASaveRatesATypedPasswordAsAWholeNumber) {
  const auto item = newItem(localVault());
  constexpr std::string_view password = "Tr0ub4dour&3 and more";
  item->setPassword(password);

  save(*item);

  const auto expected = cut(*LTPasswordStrengthWrapper::passwordStrength(password));
  ASSERT_GT(expected, 0);
  EXPECT_EQ(stored(*item, "ps"), std::to_string(expected));
}

TEST(QNItemStrength, ASaveTurnsNewEntropyIntoAStrength) {
  const auto item = newItem(localVault());
  item->updatePassword("generated", true, 50.0);

  save(*item);

  const auto strength = cut(QNSPG::calcStrengthWithBitsEntropy(50.0));
  EXPECT_EQ(stored(*item, "ps"), std::to_string(strength));
}

TEST(QNItemStrength, EntropyThatHardlyDiffersKeepsItsStrength) {
  const auto item = newItem(localVault());
  item->updatePassword("generated", true, 50.0);
  save(*item);
  item->setOverviewObject(Json(3), "ps");  // to see whether it is written again

  item->setOverviewObject(Json(50.09), "pbe");
  save(*item);
  EXPECT_EQ(stored(*item, "ps"), "3");
  item->setOverviewObject(Json(50.2), "pbe");
  save(*item);

  EXPECT_NE(stored(*item, "ps"), "3");
}

TEST(QNItemStrength, AnUnchangedPasswordIsNotRatedAgain) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setPassword("a password");
  save(*row);
  const auto item = opened(*row, vault);
  item->setOverviewObject(Json(3), "ps");

  save(*item);
  EXPECT_EQ(stored(*item, "ps"), "3");
  item->setPassword("another password");
  save(*item);

  EXPECT_NE(stored(*item, "ps"), "3");
}

TEST(QNItemStrength, AStrengthBelowOneIsRatedAgain) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setPassword("a good long password, 7 words of it");
  save(*row);
  const auto item = opened(*row, vault);
  item->setOverviewObject(Json(0), "ps");

  save(*item);

  EXPECT_GT(item->passwordStrength(), 0);
}

TEST(QNItemStrength, AnItemWithoutAPasswordRatesZeroWithoutAWord) {
  const auto item = newItem(localVault());
  const MRCapturingSink sink;

  save(*item);

  EXPECT_EQ(stored(*item, "ps"), "0");
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemStrength, TheStrengthIsNotTouchedWithoutDetails) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setPassword("a password");
  save(*row);
  const auto item = listed(*row, vault);
  item->setOverviewObject(Json(3), "ps");

  item->willSerialize();

  EXPECT_EQ(stored(*item, "ps"), "3");
}

TEST(QNItemStrength, EntropyOfAListedItemIsRatedWithoutDetails) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  save(*row);
  const auto item = listed(*row, vault);
  item->setOverviewObject(Json(50.0), "pbe");

  item->willSerialize();

  EXPECT_EQ(stored(*item, "ps"), std::to_string(cut(QNSPG::calcStrengthWithBitsEntropy(50.0))));
}

TEST(QNItemStrength, APasswordThatCantBeRatedIsReportedAndStoredAsZero) {
  const auto item = newItem(localVault());
  item->setPassword("\xff\xfe");
  const MRCapturingSink sink;

  item->willSerialize();

  EXPECT_EQ(errors(sink),
            std::vector<std::string>{"Failed to calculate password strength: QNErrorDomain 114"});
  EXPECT_EQ(stored(*item, "ps"), "0");
}

TEST(QNItemStrength, OfAnItemThatNeverHadAPasswordIsKept) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  save(*row);
  const auto item = opened(*row, vault);
  item->setOverviewObject(Json(3), "ps");

  save(*item);

  EXPECT_EQ(stored(*item, "ps"), "3");
}

TEST(QNItemStrength, AChangedPasswordOfNearlyTheSameEntropyKeepsItsStrength) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->updatePassword("generated", true, 50.0);
  save(*row);
  row->setOverviewObject(Json(3), "ps");  // to see whether it is written again

  row->updatePassword("another", true, 50.05);
  save(*row);

  EXPECT_EQ(stored(*row, "ps"), "3");
}

TEST(QNItemStrength, AnEntropyThatIsNoNumberIsLeftOutAndReported) {
  for (const double bits :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    const auto vault = localVault();
    const auto item = newItem(vault);
    const MRCapturingSink sink;

    item->updatePassword("generated", true, bits);
    save(*item);

    EXPECT_EQ(assertions(sink), std::vector<std::string>{"Invalid password entropy"});
    EXPECT_TRUE(opened(*item, vault)->password()->equals("generated"));
    EXPECT_FALSE(item->passwordGeneratedByRandomNumberGenerator());
  }
}

}  // namespace
}  // namespace quillon
