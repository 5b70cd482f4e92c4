#include <random>

#include "quillon/items/internal/QNItemTesting.h"

namespace quillon {
namespace {

/// Random JSON, the same for the same seed: every kind of value, odd keys and texts, and the keys
/// that an item reads itself.
class JsonMaker final {
 public:
  explicit JsonMaker(std::uint32_t seed) : _random(seed) {}

  JsonObject object(int depth = 0) {
    JsonObject made(jsonStorage());
    const auto members = below(6);
    for (std::uint32_t i = 0; i < members; ++i) made[text()] = value(depth + 1);
    return made;
  }
  JsonObject details() {
    JsonObject made = object();
    if (below(2) == 0) made[kDetailsSections] = sections();
    if (below(2) == 0) setJsonText(made, kDetailsNotesPlain, "notes " + text() + "!");
    if (below(2) == 0) made["htmlForm"] = object(1);
    return made;
  }

 private:
  std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(_random() % bound); }
  std::string text() {
    static constexpr std::string_view kPieces[] = {
        "a",
        "key",
        "\"",
        "\\",
        "\n",
        "\t",
        "\x01",
        "\xC3\xA9",
        "\xE4\xB8\xAD",
        "\xF0\x9F\x98\x80",
        "/",
        "a longer piece of text that lies outside of the value",
        "\x7F",
        " "};
    std::string made;
    const auto pieces = below(5);
    for (std::uint32_t i = 0; i < pieces; ++i) made += kPieces[below(std::size(kPieces))];
    return made;
  }
  double number() {
    return std::ldexp(static_cast<double>(_random()), static_cast<int>(below(200)) - 100);
  }
  Json value(int depth) {
    switch (below(depth > 4 ? 7 : 9)) {
      case 0:
        return Json(nullptr, jsonStorage());
      case 1:
        return Json(below(2) == 0, jsonStorage());
      case 2:
        return Json(std::int64_t{0} - static_cast<std::int64_t>(_random()), jsonStorage());
      case 3:
        return Json(~std::uint64_t{0} - _random(), jsonStorage());
      case 4:
        return Json(number(), jsonStorage());
      case 5:
      case 6:
        return Json(text(), jsonStorage());
      case 7:
        return Json(object(depth));
      default:
        return Json(list(depth));
    }
  }
  JsonArray list(int depth) {
    JsonArray made(jsonStorage());
    const auto elements = below(5);
    for (std::uint32_t i = 0; i < elements; ++i) made.push_back(value(depth + 1));
    return made;
  }
  // Sound ones, as they are written: an account repairs others, and an empty list goes. Fields of
  // no known kind, with members of any kind, survive as well.
  JsonArray sections() {
    JsonArray made(jsonStorage());
    const auto count = 1 + below(3);
    for (std::uint32_t i = 0; i < count; ++i) {
      JsonObject section(jsonStorage());
      setJsonText(section, "name", text());
      JsonArray fields(jsonStorage());
      JsonObject field(jsonStorage());
      setJsonText(field, "n", text());
      setJsonText(field, "v", text());
      if (below(2) == 0) {
        setJsonText(field, "k", "concealed");
        setJsonText(field, "t", text());
      }
      field["future"] = value(3);
      fields.push_back(std::move(field));
      fields.push_back(object(3));
      section["fields"] = std::move(fields);
      made.push_back(std::move(section));
    }
    return made;
  }

  std::mt19937 _random;
};

// What an item writes into its details by itself.
void dropOwnMembers(JsonObject& details) {
  details.erase(kDetailsBackupKeys);
}

void expectRandomDetailsToSurvive(const std::shared_ptr<QNGenericProfile>& vault,
                                  std::uint32_t seed) {
  JsonMaker maker(seed);
  const JsonObject before = maker.details();
  const auto row = newItem(vault);
  row->copyDetails(before);
  row->setTitle("T");
  save(*row);
  const auto item = opened(*row, vault);
  item->setTitle("U");
  save(*item);

  auto after = opened(*item, vault)->detailsCopy();

  ASSERT_TRUE(after) << seed;
  dropOwnMembers(*after);
  EXPECT_EQ(mr_JSONStringWithError(*after), mr_JSONStringWithError(before)) << seed;
  EXPECT_TRUE(*after == before) << seed;
}

TEST(QNItemRoundTrip, RandomDetailsSurviveInALocalVault) {
  const auto vault = localVault();
  for (std::uint32_t seed = 1; seed <= 300; ++seed) expectRandomDetailsToSurvive(vault, seed);
}

TEST(QNItemRoundTrip, RandomDetailsSurviveInAnAccount) {
  const auto vault = accountVault();
  for (std::uint32_t seed = 1; seed <= 300; ++seed) expectRandomDetailsToSurvive(vault, seed);
}

TEST(QNItemRoundTrip, UnknownMembersOfTheOverviewSurvive) {
  for (const auto& vault : {std::shared_ptr<QNGenericProfile>(localVault()),
                            std::shared_ptr<QNGenericProfile>(accountVault())}) {
    for (std::uint32_t seed = 1; seed <= 100; ++seed) {
      JsonMaker maker(seed);
      const JsonObject unknown = maker.object();
      const auto row = newItem(vault);
      for (const auto& member : unknown) row->setOverviewObject(member.value(), member.key());
      save(*row);
      const auto item = listed(*row, vault);
      item->setTitle("T");
      save(*item);

      const auto overview = listed(*item, vault)->overviewCopy();

      ASSERT_TRUE(overview) << seed;
      for (const auto& member : unknown) {
        ASSERT_TRUE(overview->contains(member.key())) << seed;
        EXPECT_TRUE(overview->at(member.key()) == member.value()) << seed;
      }
    }
  }
}

}  // namespace
}  // namespace quillon
