// A program of its own: the language of the names is decided once in a process, and the resource
// folder is asked for once. Its German table has a broken line, and its report is the moment at
// which the language changes: between the first name and the rest.

#include <gtest/gtest.h>

#include <cstdlib>

#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/QNCategoryHelper.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

class BrokenTable final : public testing::Environment {
  void SetUp() override { setenv("QUILLON_RESOURCES", QUILLON_TESTDATA "/broken-line", 1); }
};
[[maybe_unused]] testing::Environment* const kBrokenTable =
    testing::AddGlobalTestEnvironment(new BrokenTable);

TEST(QNCategoryHelper, NamesAllInOneLanguageThoughItChangesMeanwhile) {
  const QNScopedLanguage german("de");
  int reports = 0;
  auto before = MRLogger::sharedLogger().setSink([&reports](const MRLogRecord&) {
    ++reports;
    QNLocalization::sharedLocalization().setLanguage("en");
  });

  const auto first = QNCategoryHelper::defaultSingularNameFor("001");
  MRLogger::sharedLogger().setSink(std::move(before));

  ASSERT_EQ(reports, 1);
  ASSERT_EQ(QNLocalization::sharedLocalization().language(), "en");
  EXPECT_EQ(first, "Anmeldung");
  EXPECT_EQ(QNCategoryHelper::defaultPluralNameFor("001"), "Anmeldungen");
  EXPECT_EQ(QNCategoryHelper::defaultPluralNameFor("005"), "Passwörter");
  EXPECT_EQ(QNCategoryHelper::defaultSingularNameFor("099"), "Grabstein");
  EXPECT_EQ(QNCategoryHelper::defaultPluralNameFor("099"), "Grabsteine");
}

}  // namespace
}  // namespace quillon
