#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using Texts = std::vector<std::string>;

Texts sorted(Texts texts) {
  std::sort(texts.begin(), texts.end(),
            [](const auto& a, const auto& b) { return localizedCaseInsensitiveCompare(a, b) < 0; });
  return texts;
}

std::string longText(char end) {
  std::string text(300, 'x');
  text += end;
  return text;
}

TEST(QNTextComparing, PutsAccentedAndCapitalLettersWhereAReaderLooksForThem) {
  const QNScopedLocale locale("en-US");

  EXPECT_EQ(sorted({"zoo", "Éclair", "apple", "Zebra", "eclipse", "echo"}),
            (Texts{"apple", "echo", "Éclair", "eclipse", "Zebra", "zoo"}));
}

TEST(QNTextComparing, FollowsTheUsersLocale) {
  const Texts names{"zebra", "ärta", "arm", "öl"};
  {
    const QNScopedLocale locale("de-DE");
    EXPECT_EQ(sorted(names), (Texts{"arm", "ärta", "öl", "zebra"}));
  }
  {
    const QNScopedLocale locale("sv-SE");
    EXPECT_EQ(sorted(names), (Texts{"arm", "zebra", "ärta", "öl"}));
  }
  {
    const QNScopedLocale locale("de-DE-u-co-phonebk");
    EXPECT_EQ(sorted({"Ofen", "Öl", "Oder"}), (Texts{"Oder", "Öl", "Ofen"}));
  }
}

TEST(QNTextComparing, CaseCountsInTheOneAndNotInTheOther) {
  const QNScopedLocale locale("en-US");

  EXPECT_LT(localizedCompare("title", "Title"), 0);
  EXPECT_GT(localizedCompare("Title", "title"), 0);
  EXPECT_EQ(localizedCaseInsensitiveCompare("Title", "tITLE"), 0);
  EXPECT_NE(localizedCaseInsensitiveCompare("resume", "résumé"), 0);
}

TEST(QNTextComparing, TheSameCharactersComposedDifferentlyAreEqual) {
  EXPECT_EQ(localizedCompare("é", "e\u0301"), 0);
}

TEST(QNTextComparing, OrdersEmptyAndUnreadableTextsWithoutFailing) {
  EXPECT_EQ(localizedCompare("", ""), 0);
  EXPECT_LT(localizedCompare("", "a"), 0);
  EXPECT_EQ(localizedCompare("\xFF", "\xFE"), 0);
}

TEST(QNTextComparing, AnUnknownLocaleComparesByTheRootRules) {
  const QNScopedLocale locale("no such locale!");

  EXPECT_EQ(sorted({"b", "Á", "c"}), (Texts{"Á", "b", "c"}));
}

TEST(QNTextComparing, ManyThreadsCompareAtOnce) {
  const QNScopedLocale locale("en-US");
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};

  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&wrong] {
      for (int k = 0; k < 1000; ++k) {
        if (localizedCaseInsensitiveCompare("Ä", "b") >= 0) ++wrong;
        if (firstComposedCharacter("e\u0301x") != "e\u0301") ++wrong;
      }
    });
  }
  for (auto& thread : threads) thread.join();

  EXPECT_EQ(wrong, 0);
}

TEST(QNTextComparing, CollationKeysSortAsTheComparisonsDo) {
  const Texts texts{"",     "a",       "A",      "ab",  "Äb",   "zebra",       "ärta",       "öl",
                    "日本", "e\u0301", "\u00e9", "a b", "a\nb", "\xff",        "10",         "9",
                    "ß",    "ss",      "🙂",   "a-b", "A-B",  longText('a'), longText('b')};
  for (const std::string tag : {"en-US", "sv-SE", "de-DE", "ja-JP"}) {
    const QNScopedLocale locale(tag);
    const auto sign = [](int order) { return order < 0 ? -1 : order > 0; };
    for (const std::string& a : texts) {
      for (const std::string& b : texts) {
        EXPECT_EQ(sign(collationKey(a).compare(collationKey(b))), sign(localizedCompare(a, b)))
            << tag << " " << a << " " << b;
        EXPECT_EQ(sign(caseInsensitiveCollationKey(a).compare(caseInsensitiveCollationKey(b))),
                  sign(localizedCaseInsensitiveCompare(a, b)))
            << tag << " " << a << " " << b;
      }
    }
  }
}

}  // namespace
}  // namespace quillon
