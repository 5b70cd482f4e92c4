#include <bit>
#include <cmath>
#include <random>

#include "quillon/objects/internal/QNObjectsTesting.h"

namespace quillon {
namespace {

/// Any JSON: every kind, odd numbers and texts, nested a few levels.
class JsonMaker {
 public:
  explicit JsonMaker(std::uint32_t seed) : _random(seed) {}

  JsonObject object(int depth) {
    JsonObject made(jsonStorage());
    for (std::uint32_t i = below(6); i > 0; --i) made[text()] = value(depth);
    return made;
  }

 private:
  std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(_random() % bound); }

  Json value(int depth) {
    switch (below(depth > 0 ? 9 : 7)) {
      case 0:
        return nullptr;
      case 1:
        return below(2) == 0;
      case 2:
        return std::bit_cast<std::int64_t>(_random());
      case 3:
        return std::uint64_t{_random()} | std::uint64_t{1} << 63;
      case 4:
        return number();
      case 5:
      case 6:
        return Json(text());
      case 7:
        return object(depth - 1);
      default:
        return array(depth - 1);
    }
  }
  double number() {
    const double made = std::bit_cast<double>(_random());
    return std::isfinite(made) ? made : -0.0;
  }
  JsonArray array(int depth) {
    JsonArray made(jsonStorage());
    for (std::uint32_t i = below(4); i > 0; --i) made.push_back(value(depth));
    return made;
  }
  std::string text() {
    static const std::string pieces[] = {
        "",     "a",      "title",      "\"", "\\", "\n", std::string(1, '\0'), "ü", "\x7f",
        "日本", "\u2028", "\U0001F511", "/",  "{}", " "};
    std::string made;
    for (std::uint32_t i = below(5); i > 0; --i) made += pieces[below(std::size(pieces))];
    return made;
  }

  std::mt19937_64 _random;
};

// Saved by one object and read by the shell that the database layer makes for its row.
JsonObject savedAndReadAgain(const std::shared_ptr<QNGenericProfile>& vault,
                             const JsonObject& overview) {
  QNTestPage page(initNew);
  page.setProfile(vault);
  page.copyOverview(overview);
  page.willSave();
  return storedPage(vault, page.overviewData())->overviewCopy().value();
}

class QNOverviewRoundTrip : public testing::TestWithParam<std::uint64_t> {};

TEST_P(QNOverviewRoundTrip, KeepsAnyOverview) {
  const bool local = GetParam() == kProfileTypeLocalVault;
  const std::shared_ptr<QNGenericProfile> vault =
      local ? std::shared_ptr<QNGenericProfile>(openLocalVault())
            : std::make_shared<QNTestServerProfile>();

  for (std::uint32_t seed = 0; seed < 1000; ++seed) {
    const JsonObject overview = JsonMaker(seed).object(4);

    const JsonObject again = savedAndReadAgain(vault, overview);

    ASSERT_EQ(jsonText(again), jsonText(overview)) << "seed " << seed;
    ASSERT_EQ(again, overview) << "seed " << seed;
  }
}

INSTANTIATE_TEST_SUITE_P(Generations, QNOverviewRoundTrip,
                         testing::Values(kProfileTypeLocalVault, kProfileTypeAccountVault));

}  // namespace
}  // namespace quillon
