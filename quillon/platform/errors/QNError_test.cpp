#include "quillon/platform/errors/QNError.h"

#include <gtest/gtest.h>

#include <memory>

namespace quillon {
namespace {

TEST(QNError, ShowsDomainAndCodeInLogs) {
  EXPECT_EQ((QNError{"QNErrorDomain", -103, "hidden"}.domainCodeString()), "QNErrorDomain -103");
}

TEST(QNError, TellsWhereWithoutChangingWhat) {
  const QNError error = QNError::unreadable("no tab").within("line 3").within("notes");

  EXPECT_EQ(error.message, "notes: line 3: no tab");
  EXPECT_EQ(error.domainCodeString(), "MRErrorDomain 114");
}

TEST(QNError, IsStoredOnlyWhereASlotIs) {
  QNError slot;

  setError(&slot, QNError::unreadable("no tab"));
  setError(nullptr, QNError::unreadable("nobody asked"));

  EXPECT_EQ(slot.message, "no tab");
}

TEST(QNResult, HoldsAValueOrTheReason) {
  const QNResult<int> value = 7;
  const QNResult<int> reason = QNError::unreadable("no number");

  EXPECT_TRUE(value.ok());
  EXPECT_EQ(value.value(), 7);
  EXPECT_FALSE(reason);
  EXPECT_EQ(reason.error().message, "no number");
}

TEST(QNResult, GivesAwayWhatCanOnlyBeMoved) {
  QNResult<std::unique_ptr<int>> result = std::make_unique<int>(7);

  const std::unique_ptr<int> taken = std::move(result).value();

  EXPECT_EQ(*taken, 7);
}

}  // namespace
}  // namespace quillon
