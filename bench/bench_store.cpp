#include <fmt/format.h>
#include <malloc.h>
#include <stdlib.h>

#include "bench/bench.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon::bench {
namespace {

// What people have: a word with a year, a phrase, and what a browser made up. Rating a password
// costs more than all the rest of a new item, and it costs by the password's shape.
std::string passwordNumber(std::size_t number) {
  const auto random = static_cast<std::uint32_t>(number * 2654435761u);
  switch (number % 4) {
    case 0:
      return fmt::format("Summer{}!", 1950 + number % 80);
    case 1:
      return fmt::format("jo{:06}", random % 1'000'000);
    default: {
      constexpr std::string_view letters =
          "abcdefghijkmnpqrstuvwxyzABCDEFGHJKLMNPQRSTUVWXYZ23456789";
      std::string text;
      std::uint64_t state = number * 0x9e3779b97f4a7c15u + 1;
      for (int i = 0; i < 15; ++i) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        text += letters[(state >> 33) % letters.size()];
      }
      return text;
    }
  }
}

double perItem(double seconds, std::size_t count) {
  return seconds * 1e6 / double(count);
}

}  // namespace

void fail(const QNError& error) {
  fmt::print(stderr, "{}: {}\n", error.domainCodeString(), error.message);
  std::abort();
}

std::shared_ptr<QNItem> makeLogin(const std::shared_ptr<QNProfile>& vault, std::size_t number) {
  auto item = vault->newItemForCategoryUUID("001");
  item->setProfile(vault);
  item->setTitle(fmt::format("Account {} at Example {}", number, number % 977));
  item->addURLString(
      fmt::format("https://login.example-{}.com/accounts/signin?id={}", number % 9973, number));
  item->setUsername(fmt::format("person{}@example.org", number));
  item->setPassword(passwordNumber(number));
  if (number % 5 == 0) item->setNotesPlain("Security question: the usual one.\nOpened in spring.");
  return item;
}

BenchStore::BenchStore() {
  std::string pattern = (std::filesystem::temp_directory_path() / "quillon-bench-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) std::abort();
  _folder = pattern;
  _store = orFail(QNStore::create(file()));
  _vault = QNProfile::profileWithName(QNProfile::primaryProfileName(), DEMO_PASSWORD, std::nullopt);
  orFail(_store->saveVault(*_vault));
}

BenchStore::~BenchStore() {
  _store.reset();
  std::filesystem::remove_all(_folder);
}

double BenchStore::import(std::size_t count) {
  std::vector<std::shared_ptr<QNItem>> items;  // released behind the measurement
  items.reserve(count);
  return secondsOf([&] {
    for (std::size_t i = 0; i < count; ++i) items.push_back(makeLogin(_vault, _made++));
    orFail(_store->saveAll(items));
  });
}

void benchImport(std::size_t count) {
  BenchStore bench;
  const double seconds = bench.import(count);
  fmt::print("import   {:>9} items  {:8.3f} s  {:9.0f} items/s  (wanted: 15000 items/s)\n", count,
             seconds, double(count) / seconds);
}

void benchList(std::size_t count) {
  BenchStore bench;
  bench.import(count);
  const ListFloors floors = measureListFloors(bench);
  const std::uint64_t keysBefore = bench.vault()->numberOfItemKeysUnwrapped();
  const std::uint64_t detailsBefore = bench.store().detailsRead();
  std::size_t titles = 0;
  const double seconds = bestSecondsOf(3, [&] {
    const auto report = orFail(bench.store().list(bench.vault(), QNStore::Which::normal,
                                                  [&](const std::shared_ptr<QNItem>& item) {
                                                    titles += item->title().size();
                                                    use(item->additionalInformation()->data());
                                                  }));
    if (report.listed != count) std::abort();
  });
  fmt::print(
      "list     {:>9} items  {:8.3f} s  {:6.2f} us an item  ratio to floors {:4.2f}  "
      "(wanted: 2.5)\n",
      count, seconds, perItem(seconds, count), seconds / floors.sum());
  fmt::print(
      "  floors: row {:.2f} + open {:.2f} + parse {:.2f} + seal {:.2f} = {:.2f} us an item; "
      "keys unwrapped {}, details read {}\n",
      perItem(floors.rowRead, count), perItem(floors.open, count), perItem(floors.parse, count),
      perItem(floors.seal, count), perItem(floors.sum(), count),
      bench.vault()->numberOfItemKeysUnwrapped() - keysBefore,
      bench.store().detailsRead() - detailsBefore);
}

void benchSave(std::size_t count) {
  BenchStore bench;
  bench.import(count);
  std::string uuid;
  orFail(bench.store().list(bench.vault(), QNStore::Which::normal,
                            [&](const std::shared_ptr<QNItem>& item) { uuid = *item->uuid(); }));
  const auto item = orFail(bench.store().item(bench.vault(), uuid));
  constexpr int kSaves = 100;
  const double edit = secondsOf([&] {
    for (int i = 0; i < kSaves; ++i) {
      item->setTitle(fmt::format("Edited {}", i));
      orFail(bench.store().save(item));
    }
  });
  const double load = secondsOf([&] {
    for (int i = 0; i < kSaves; ++i) orFail(bench.store().item(bench.vault(), uuid));
  });
  fmt::print(
      "save     {:>9} items  {:8.3f} ms a durable save of one item; load of one item {:.3f} ms\n",
      count, edit * 1e3 / kSaves, load * 1e3 / kSaves);
}

void benchMerge(std::size_t count) {
  BenchStore bench;
  bench.import(count);
  const std::filesystem::path other = bench.file().string() + "-other";
  orFail(bench.store().backupTo(other));
  const auto theirs = orFail(QNStore::open(other));
  const auto vault = orFail(theirs->vaultNamed(QNProfile::primaryProfileName()));
  if (!orFail(theirs->unlock(*vault, DEMO_PASSWORD))) std::abort();
  const auto merge = [&] {
    return orFail(
        QNStore::merge({&bench.store(), bench.vault(), "mine"}, {theirs.get(), vault, "theirs"}));
  };
  merge();
  std::vector<std::string> uuids;
  const auto listBoth = [&] {
    uuids.clear();
    const auto visit = [&](const std::shared_ptr<QNItem>& item) { uuids.push_back(*item->uuid()); };
    orFail(theirs->list(vault, QNStore::Which::all, visit));
    orFail(bench.store().list(bench.vault(), QNStore::Which::all, visit));
  };
  const double lists = bestSecondsOf(3, listBoth);
  std::size_t changed = 0;
  orFail(bench.store().inTransaction([&]() -> QNResult<QNDone> {
    for (std::size_t i = 0; i < count; i += 100, ++changed) {
      const auto item = orFail(bench.store().item(bench.vault(), uuids[i]));
      item->setTitle(fmt::format("Changed {}", i));
      orFail(bench.store().save(item));
    }
    return QNDone{};
  }));
  QNMergeReport report;
  const double seconds = secondsOf([&] { report = merge(); });
  if (report.items.size() != changed) std::abort();
  const double unchanged = bestSecondsOf(3, [&] { merge(); });
  fmt::print(
      "merge    {:>9} items  {:8.3f} s with {} changed, {:.3f} s with none; both lists {:.3f} s  "
      "ratio {:4.2f}  (wanted: 1.5)\n",
      count, seconds, changed, unchanged, lists, seconds / lists);
}

void benchMemory(std::size_t count) {
  BenchStore bench;
  bench.import(count);
  malloc_trim(0);
  std::vector<std::shared_ptr<QNItem>> kept;
  kept.reserve(count);
  std::size_t rowBytes = 0;
  const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
  orFail(bench.store().list(bench.vault(), QNStore::Which::normal,
                            [&](const std::shared_ptr<QNItem>& item) {
                              use(item->title().data());
                              rowBytes += item->overviewData()->size();
                              kept.push_back(item);
                            }));
  const std::size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
  fmt::print(
      "memory   {:>9} items  {:6.0f} bytes a listed item beyond its row's {:.0f}  "
      "(wanted: 1200); sizeof(QNItem) {}, sizeof(QNLogin) {}\n",
      count, double(after - before - rowBytes) / double(count), double(rowBytes) / double(count),
      sizeof(QNItem), sizeof(QNLogin));
}

}  // namespace quillon::bench
