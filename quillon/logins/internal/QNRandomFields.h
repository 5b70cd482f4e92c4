#pragma once
// For tests: random form fields, from a seed that a failure prints.

#include <array>
#include <random>
#include <string_view>

#include "quillon/platform/json/QNJson.h"

namespace quillon {

class QNRandomFields final {
 public:
  explicit QNRandomFields(std::uint32_t seed) : _engine(seed) {}

  std::size_t below(std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(_engine);
  }
  std::string_view pick(std::initializer_list<std::string_view> texts) {
    return texts.begin()[below(texts.size())];
  }
  /// One with members of known and unknown names, in any order, of any kind; never empty.
  JsonObject field() {
    JsonObject made(jsonStorage());
    made["n"] = below(1000);
    for (std::size_t members = below(6); members > 0; --members) {
      made[pick({"name", "value", "type", "id", "x", "checked", "é"})] = value(2);
    }
    if (below(3) == 0) made["designation"] = pick({"username", "password", "totp", ""});
    return made;
  }
  JsonArray fields(std::size_t most) {
    JsonArray made(jsonStorage());
    for (std::size_t count = below(most + 1); count > 0; --count) made.emplace_back(field());
    return made;
  }

 private:
  Json value(std::size_t depth) {
    switch (below(depth == 0 ? 7 : 9)) {
      case 0:
        return Json(nullptr);
      case 1:
        return Json(below(2) == 0);
      case 2:
        return Json(static_cast<std::int64_t>(below(1000)) - 500);
      case 3:
        return Json(~std::uint64_t{0} - below(3));
      case 4:
        return Json(std::uniform_real_distribution<double>(-1e9, 1e9)(_engine));
      case 5:
        return Json(pick({"", "a", "secret", "P", "T", "C", "\"quoted\"\n", "\U0001F511"}));
      case 6:
        return Json(static_cast<double>(below(100)));
      case 7:
        return Json(JsonArray{value(depth - 1), value(depth - 1)});
      default:
        return Json(JsonObject{{"k", value(depth - 1)}});
    }
  }
  std::mt19937 _engine;
};

}  // namespace quillon
