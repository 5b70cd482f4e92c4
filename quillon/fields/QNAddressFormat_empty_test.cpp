// A resource folder without the formats, and with no country.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "quillon/fields/QNAddressFormat.h"
#include "quillon/fields/internal/QNFieldTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

[[maybe_unused]] const int kResources =
    setenv("QUILLON_RESOURCES", QUILLON_TESTDATA "/empty-addresses", 1);

TEST(QNEmptyAddressFormats, AreReportedAtEachTry) {
  const MRCapturingSink sink;

  EXPECT_EQ(QNAddressFormat::addressFormats(), nullptr);
  EXPECT_EQ(QNAddressFormat::addressFormats(), nullptr);

  ASSERT_THAT(sink.records(), SizeIs(2));
  EXPECT_EQ(sink.records()[0].subsystem, DEBUG_APP);
  EXPECT_THAT(errors(sink).at(0), StartsWith("Error parsing address formats: MRErrorDomain "));
}

TEST(QNEmptyAddressFormats, LeaveTheBuiltInFormat) {
  const MRCapturingSink sink;

  const auto format = QNAddressFormat::addressFormatForCountryCode("de");

  EXPECT_EQ(format.addressFormatDict(), nullptr);
  EXPECT_EQ(format.displayFormat(), "Street\nCity Region State\nZIP\nCountry");
  EXPECT_THAT(format.keyboardSettings(), IsEmpty());
}

TEST(QNEmptyAddressFormats, WithNoCountryThereAreNoCodesAndNoReason) {
  const MRCapturingSink sink;

  EXPECT_THAT(QNAddressFormat::countryCodes(), IsEmpty());

  EXPECT_THAT(errors(sink), ElementsAre("Failed to obtain the country codes: <(null)>"));
  EXPECT_EQ(sink.records().at(0).subsystem, DEBUG_APP);
}

}  // namespace
}  // namespace quillon
