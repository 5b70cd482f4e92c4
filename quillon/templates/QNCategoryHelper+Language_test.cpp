// A program of its own: the language of the names is decided once in a process.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "quillon/templates/QNCategoryHelper.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

TEST(QNCategoryHelper, TakesTheLanguageOfItsFirstUseOnAnyThreadAndKeepsIt) {
  const QNScopedLanguage english("en");
  ASSERT_EQ(QNCategoryHelper::defaultListIconNameFor(std::nullopt), "type-allitems-list");
  const QNScopedLanguage german("de");  // the names are asked for only now
  std::vector<std::string> names(4);

  std::vector<std::thread> threads;
  for (std::string& name : names) {
    threads.emplace_back(
        [&name] { name = QNCategoryHelper::defaultPluralNameFor("005").value_or(""); });
  }
  for (std::thread& thread : threads) thread.join();
  QNLocalization::sharedLocalization().setLanguage("en");

  EXPECT_THAT(names, testing::Each("Passwörter"));
  EXPECT_EQ(QNCategoryHelper::defaultSingularNameFor("002"), "Kreditkarte");
  EXPECT_EQ(QNCategoryHelper::defaultPluralNameFor("002"), "Kreditkarten");
}

}  // namespace
}  // namespace quillon
