#include <fmt/format.h>

#include "bench/bench.h"
#include "quillon/organisation/QNFolder.h"
#include "quillon/organisation/QNTag.h"

namespace quillon::bench {
namespace {

constexpr std::size_t kFolders = 100;
constexpr std::size_t kTags = 50;
constexpr std::size_t kItemsAtOnce = 10'000;
// Of overviews alone.
constexpr std::string_view kQuestion =
    R"(title CONTAINS[cd] "example 5" AND passwordStrength > 1 AND NOT title == "a" AND )"
    R"(ANY tagsForSearch == "Tag 7" AND categoryUUID == "001")";

std::vector<std::string> addFolders(BenchStore& bench) {
  std::vector<std::string> uuids;
  for (std::size_t i = 0; i < kFolders; ++i) {
    const auto folder = std::make_shared<QNFolder>(initNew);
    folder->setProfile(bench.vault());
    folder->setTitle(fmt::format("Folder {}", i));
    if (i >= 10) folder->setParentUUID(uuids[i / 10]);
    orFail(bench.store().saveFolder(folder));
    uuids.push_back(*folder->uuid());
  }
  return uuids;
}

/// Each in a folder, each third with two tags.
void addItems(BenchStore& bench, std::size_t count, const std::vector<std::string>& folders) {
  for (std::size_t made = 0; made < count;) {
    std::vector<std::shared_ptr<QNItem>> items;
    for (; made < count && items.size() < kItemsAtOnce; ++made) {
      const auto item = makeLogin(bench.vault(), made);
      item->setFolderUUID(folders[made % kFolders]);
      if (made % 3 == 0) {
        item->setTags({fmt::format("Tag {}", made % kTags), fmt::format("Tag {}", made % 7)});
      }
      items.push_back(item);
    }
    orFail(bench.store().saveAll(items));
  }
}

}  // namespace

void benchFolders(std::size_t count) {
  BenchStore bench;
  const auto folders = addFolders(bench);
  addItems(bench, count, folders);
  QNStore& store = bench.store();
  constexpr auto kNormal = QNStore::Which::normal;
  const auto readTitle = [](const std::shared_ptr<QNItem>& item) { use(item->title().data()); };
  const auto predicate = orFail(QNPredicate::predicateWithFormat(kQuestion));
  const std::uint64_t detailsBefore = store.detailsRead();

  const double list =
      bestSecondsOf(3, [&] { orFail(store.list(bench.vault(), kNormal, readTitle)); });
  const double tags = bestSecondsOf(3, [&] { orFail(store.tags(bench.vault())); });
  const double matching = bestSecondsOf(
      3, [&] { orFail(store.listMatching(bench.vault(), kNormal, *predicate, readTitle)); });
  const double tree = bestSecondsOf(3, [&] { orFail(store.folders(bench.vault())); });
  const double inOne = bestSecondsOf(
      3, [&] { orFail(store.listFolder(bench.vault(), folders[42], kNormal, readTitle)); });

  fmt::print(
      "folders  {:>9} items  list {:.3f} s; tags {:.3f} s (x{:.2f}); a question of five "
      "comparisons {:.3f} s (x{:.2f}); details read {}\n",
      count, list, tags, tags / list, matching, matching / list,
      store.detailsRead() - detailsBefore);
  fmt::print(
      "folders  {:>9} items  {} folders with their counts {:.2f} ms; the items of one {:.2f} ms, "
      "of {:.2f} ms for its part of a list\n",
      count, kFolders, tree * 1e3, inOne * 1e3, list * 1e3 / double(kFolders));
}

}  // namespace quillon::bench
