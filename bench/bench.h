#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "quillon/platform/memory/QNBytes.h"
#include "store/QNStore.h"

namespace quillon::bench {

/// Seconds that `work` takes.
template <class Work>
double secondsOf(const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// The smallest of `rounds` measurements: the one that least else disturbed.
template <class Work>
double bestSecondsOf(int rounds, const Work& work) {
  double best = 1e300;
  for (int i = 0; i < rounds; ++i) best = std::min(best, secondsOf(work));
  return best;
}

/// Keeps a result from being optimised away.
void use(const void* result);

/// Prints the error, and ends the benchmark.
[[noreturn]] void fail(const QNError& error);

/// What went well; anything else would be measured in its place.
template <class T>
T orFail(QNResult<T> result) {
  if (!result.ok()) fail(result.error());
  return std::move(result).value();
}

/// A login as an import of a browser's export makes it: an overview of about 150 bytes of JSON.
std::shared_ptr<QNItem> makeLogin(const std::shared_ptr<QNProfile>& vault, std::size_t number);

/// Details with 40 fields of the usual kinds in five sections.
std::string detailsOfManyFields();

/// A store in a folder of its own, removed at the end. Demonstration password, so that the key
/// derivation doesn't hide what is measured.
class BenchStore {
 public:
  BenchStore();
  ~BenchStore();
  BenchStore(const BenchStore&) = delete;
  BenchStore& operator=(const BenchStore&) = delete;
  QNStore& store() { return *_store; }
  const std::shared_ptr<QNProfile>& vault() const { return _vault; }
  std::filesystem::path file() const { return _folder / "bench.qn"; }
  /// Adds `count` logins in one transaction. Gives the seconds that it took, the making included.
  double import(std::size_t count);

 private:
  std::filesystem::path _folder;
  std::unique_ptr<QNStore> _store;
  std::shared_ptr<QNProfile> _vault;
  std::size_t _made = 0;
};

/// Seconds for each of the four things that a list can't do without, over the rows of the store.
struct ListFloors {
  double rowRead = 0;
  double open = 0;   // AES-256-GCM with a key schedule that is there already
  double parse = 0;  // the JSON library's own parser
  double seal = 0;   // SHA-256 of the overview, HMAC-SHA256 of a row
  double sum() const { return rowRead + open + parse + seal; }
};
ListFloors measureListFloors(BenchStore& store);

void benchList(std::size_t count);
void benchSave(std::size_t count);
void benchImport(std::size_t count);
void benchMemory(std::size_t count);
/// Two stores that differ in one item of a hundred.
void benchMerge(std::size_t count);
/// A list of the list model: sorted into sections by title, and asked for items.
void benchLists(std::size_t count);
/// Folders, the items of one, tags, and a question of overviews, beside a list.
void benchFolders(std::size_t count);
/// Searches of overviews that are open, and from the file; then of contents, from the file.
void benchSearch(std::size_t count);
void benchSearchContents(std::size_t count);
/// A smart folder's question, asked of every item.
void benchSmart(std::size_t count);
/// A keystroke in `quillon pick`: the list narrowed and the screen drawn.
void benchPick(std::size_t count);
void benchRows();
void benchSections();
void benchTemplates();
void benchUnlock();
void benchOTP();

}  // namespace quillon::bench
