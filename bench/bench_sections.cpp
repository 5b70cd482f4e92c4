#include <fmt/format.h>

#include <boost/json.hpp>

#include "bench/bench.h"
#include "quillon/fields/QNFieldSection.h"

namespace quillon::bench {
namespace {

constexpr std::size_t kSections = 5;
constexpr std::size_t kFieldsPerSection = 8;
constexpr int kRounds = 2000;

// What opening an item, changing one field and saving it does to its details, but for the cipher.
void readChangeAndWrite(ByteView text, std::size_t round) {
  auto details = mr_objectFromJSONDataWithError(text);
  Json& stored = details->at(kDetailsSections);
  const auto sections = QNItem::fieldSectionsFromJSON(&stored);
  const std::string value = fmt::format("new value {}", round);
  sections[2]->fieldAtIndex(3)->setRawValue(std::string_view(value));
  std::size_t changed = 0;
  for (std::size_t i = 0; i < sections.size(); ++i) {
    changed += sections[i]->storeInto(stored.get_array()[i]) ? 1 : 0;
  }
  const auto written = mr_JSONDataWithError(*details);
  if (changed != 1 || !written) std::abort();
  use(written->data());
}

}  // namespace

// With the titles and identifiers that an imported item has.
std::string detailsOfManyFields() {
  std::string text = R"({"notesPlain":"","sections":[)";
  for (std::size_t s = 0; s < kSections; ++s) {
    text += fmt::format(R"({}{{"name":"Section_{:032x}","title":"Section {}","fields":[)",
                        s == 0 ? "" : ",", s * 7919, s);
    for (std::size_t f = 0; f < kFieldsPerSection; ++f) {
      const bool concealed = f % 4 == 1;
      const bool date = f % 8 == 6;
      text += fmt::format(
          R"({}{{"n":"{:032x}","t":"field {}","k":"{}","v":{}{}}})", f == 0 ? "" : ",",
          (s * 100 + f) * 104729, f,
          concealed ? "concealed"
          : date    ? "date"
                    : "string",
          date ? std::string("1720051200") : fmt::format(R"("value of field {} {}")", s, f),
          concealed ? R"(,"a":{"generate":"off"})" : "");
    }
    text += "]}";
  }
  return text + "]}";
}

void benchSections() {
  const std::string text = detailsOfManyFields();
  const double whole = bestSecondsOf(5, [&] {
    for (int i = 0; i < kRounds; ++i)
      readChangeAndWrite(bytesOf(text), static_cast<std::size_t>(i));
  });
  const double wiping = bestSecondsOf(5, [&] {
    for (int i = 0; i < kRounds; ++i) {
      const auto value = mr_objectFromJSONDataWithError(bytesOf(text));
      use(mr_JSONDataWithError(*value)->data());
    }
  });
  const double floor = bestSecondsOf(5, [&] {
    for (int i = 0; i < kRounds; ++i) {
      const auto value = boost::json::parse(text);
      use(boost::json::serialize(value).data());
    }
  });
  const double perRound = 1e6 / kRounds;
  fmt::print(
      "sections {} fields, {} bytes: read, change one, write {:.1f} us; JSON alone {:.1f} us with "
      "wiping, {:.1f} us without (x{:.2f})\n",
      kSections * kFieldsPerSection, text.size(), whole * perRound, wiping * perRound,
      floor * perRound, whole / floor);
}

}  // namespace quillon::bench
