// quillon_bench
//   [folders|list|lists|save|import|memory|merge|search|search_contents|otp|pick|rows|
//   sections|smart|templates|unlock|all] [ITEMS...]
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "bench/bench.h"

namespace {

using namespace quillon::bench;

bool runNamed(std::string_view name, std::size_t count) {
  const bool all = name == "all";
  bool known = all;
  const auto run = [&](std::string_view one, void (*bench)(std::size_t)) {
    if (!all && name != one) return;
    known = true;
    bench(count);
  };
  run("import", benchImport);
  run("folders", benchFolders);
  run("list", benchList);
  run("lists", benchLists);
  run("save", benchSave);
  run("memory", benchMemory);
  run("merge", benchMerge);
  run("search", benchSearch);
  run("search_contents", benchSearchContents);
  run("smart", benchSmart);
  run("pick", benchPick);
  const auto runOnce = [&](std::string_view one, void (*bench)()) {
    if (!all && name != one) return;
    known = true;
    bench();
  };
  runOnce("otp", benchOTP);
  runOnce("rows", benchRows);
  runOnce("sections", benchSections);
  runOnce("templates", benchTemplates);
  runOnce("unlock", benchUnlock);
  return known;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view name = argc > 1 ? argv[1] : "all";
  std::vector<std::size_t> counts;
  for (int i = 2; i < argc; ++i) counts.push_back(std::strtoull(argv[i], nullptr, 10));
  if (counts.empty()) counts.push_back(100'000);
  for (const std::size_t count : counts) {
    if (count == 0 || !runNamed(name, count)) {
      std::fprintf(
          stderr,
          "usage: quillon_bench "
          "[folders|list|lists|save|import|memory|merge|search|search_contents|otp|pick|rows|"
          "sections|smart|templates|unlock|all] [ITEMS...]\n");
      return 2;
    }
  }
  return 0;
}
