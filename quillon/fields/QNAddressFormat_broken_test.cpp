// A resource folder with a file that breaks off, and without the other.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "quillon/fields/QNAddressFormat.h"
#include "quillon/fields/internal/QNFieldTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

[[maybe_unused]] const int kResources =
    setenv("QUILLON_RESOURCES", QUILLON_TESTDATA "/broken-addresses", 1);

TEST(QNBrokenAddressFormats, CostALogLine) {
  const MRCapturingSink sink;

  EXPECT_EQ(QNAddressFormat::addressFormats(), nullptr);

  EXPECT_THAT(errors(sink), ElementsAre("Error parsing address formats: MRErrorDomain 114"));
  EXPECT_EQ(sink.records().at(0).subsystem, DEBUG_APP);
}

TEST(QNBrokenAddressFormats, LeaveTheBuiltInFormat) {
  QNAddressValue address;
  address.setStreet("s");
  address.setCountry("de");
  const MRCapturingSink sink;

  const auto format = QNAddressFormat::addressFormatForCountryCode("de");

  EXPECT_EQ(format.displayFormat(), "Street\nCity Region State\nZIP\nCountry");
  EXPECT_EQ(address.stringValue().reveal(), "s\n  \n\nde");
}

TEST(QNBrokenAddressFormats, WithoutCountriesThereAreNoCodes) {
  const MRCapturingSink sink;

  EXPECT_THAT(QNAddressFormat::countryCodes(), IsEmpty());

  EXPECT_THAT(errors(sink), ElementsAre("Failed to obtain the country codes: <MRErrorDomain 114>"));
  EXPECT_EQ(sink.records().at(0).subsystem, DEBUG_APP);
}

}  // namespace
}  // namespace quillon
