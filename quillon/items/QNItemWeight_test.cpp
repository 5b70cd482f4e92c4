#include <malloc.h>

#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/platform/internal/QNSanitizers.h"

namespace quillon {
namespace {

constexpr std::size_t kListedItemLimit = 1200;

// 300 bytes, with the members that an imported login has.
constexpr std::string_view kTypicalOverview =
    R"({"title":"Example Bank, joint account of the whole household, current and savings and reserve funds.",)"
    R"("ainfo":"someone.with.a.long.name@mail.example.com","ps":71,)"
    R"("url":"https://www.example.com/banking/private/login?locale=en&from=start&session=new&step=1",)"
    R"("tags":["household","money/banks","shared"]})";
static_assert(kTypicalOverview.size() == 300);
// The same with a generated password.
constexpr std::string_view kGeneratedOverview =
    R"({"title":"Example Bank, joint account of the whole household, current and reserve funds",)"
    R"("ainfo":"someone.with.a.long.name@mail.example.com","ps":71,"pbe":91.73,"pgrng":true,)"
    R"("url":"https://www.example.com/banking/private/login?locale=en&from=start&step=1",)"
    R"("tags":["household","money/banks","shared"]})";
static_assert(kGeneratedOverview.size() == 300);

// Columns of numbers: row, folder and category ids, favourite, four times, two counters.
constexpr std::size_t kNumbersOfRow = 8 * sizeof(std::uint64_t) + 2 * sizeof(std::int32_t);

std::size_t weightOfListedItem(std::string_view overview) {
  constexpr std::size_t kItems = 1000;
  const auto vault = localVault();
  const Bytes sealed = *vault->encryptOverview(bytesOf(overview));
  std::vector<std::shared_ptr<QNLogin>> items(kItems);
  std::size_t rowBytes = 0;
  const std::size_t before = mallinfo2().uordblks;
  for (auto& item : items) {
    item = std::make_shared<QNLogin>(QNExisting{1});
    item->setProfile(vault);
    item->setUuid(QNItem::uuidForProfileType(kProfileTypeLocalVault));
    item->setCategoryUUID("001");
    item->setSectionName("E");
    item->setOverviewData(sealed);
    EXPECT_EQ(item->title().substr(0, 12), "Example Bank");
    rowBytes += sealed.size() + item->uuid()->size() + item->categoryUUID()->size() +
                item->sectionName().size() + kNumbersOfRow;
  }
  return (mallinfo2().uordblks - before - rowBytes) / kItems;
}

TEST(QNItemWeight, AListedItemWithItsParsedOverviewStaysBelowTheLimit) {
  if (runsUnderSanitizer()) GTEST_SKIP() << "these figures are of another heap";
  const std::size_t weight = weightOfListedItem(kTypicalOverview);

  std::printf(
      "a listed item: %zu bytes beyond its row, %zu with a generated password; "
      "sizeof(QNItem) %zu\n",
      weight, weightOfListedItem(kGeneratedOverview), sizeof(QNItem));
  EXPECT_LE(weight, kListedItemLimit);
}

// The block of a search: a header, and the overview once where folding changes nothing.
TEST(QNItemWeight, ASearchedItemGrowsByItsOverviewAndLittleMore) {
  if (runsUnderSanitizer()) GTEST_SKIP() << "these figures are of another heap";
  constexpr std::size_t kItems = 1000;
  constexpr std::size_t kHeaderLimit = 64;
  const auto vault = localVault();
  const Bytes sealed = *vault->encryptOverview(bytesOf(kTypicalOverview));
  std::vector<std::shared_ptr<QNLogin>> items(kItems);
  for (auto& item : items) {
    item = std::make_shared<QNLogin>(QNExisting{1});
    item->setProfile(vault);
    item->setOverviewData(sealed);
    item->mutableOverview();
  }
  const std::string overview = items[0]->lowercaseOverviewStringForSearch();
  const std::size_t before = mallinfo2().uordblks;

  for (const auto& item : items) EXPECT_FALSE(item->overviewMatchesLowercaseString("no such"));

  const std::size_t grown = (mallinfo2().uordblks - before) / (kItems - 1);
  std::printf("a searched item: %zu bytes more, for an overview of %zu\n", grown, overview.size());
  EXPECT_LE(grown, overview.size() + kHeaderLimit);
}

// One small object, which shares the texts of both identifiers.
TEST(QNItemWeight, AnItemThatWasAskedForItsSpecifierGrowsByLittle) {
  if (runsUnderSanitizer()) GTEST_SKIP() << "these figures are of another heap";
  constexpr std::size_t kItems = 1000;
  constexpr std::size_t kSpecifierLimit = 96;
  const auto vault = localVault();
  std::vector<std::shared_ptr<QNLogin>> items(kItems);
  for (auto& item : items) {
    item = std::make_shared<QNLogin>(QNExisting{1});
    item->setProfile(vault);
    item->setUuid(QNItem::uuidForProfileType(kProfileTypeLocalVault));
  }
  const std::size_t before = mallinfo2().uordblks;

  for (const auto& item : items) EXPECT_NE(item->itemSpecifier(), nullptr);

  const std::size_t grown = (mallinfo2().uordblks - before) / kItems;
  std::printf("an item with its specifier: %zu bytes more\n", grown);
  EXPECT_LE(grown, kSpecifierLimit);
}

}  // namespace
}  // namespace quillon
