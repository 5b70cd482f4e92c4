#include "quillon/platform/archive/QNKeyedArchiver.h"

#include <fmt/core.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "quillon/platform/data/MRData.h"
#include "quillon/platform/files/QNResources.h"
#include "quillon/platform/internal/QNMemoryWatch.h"

namespace quillon {
namespace {

class Crate : public QNCoding {
 public:
  std::string_view className() const override { return "Crate"; }
  void encodeWithCoder(QNEncoder& coder) override {
    if (!label.empty()) coder.encodeString(label, "label");
    if (inner) coder.encodeObject(*inner, "inner");
    if (!inners.empty()) coder.encodeObjects(inners, "inners");
  }
  static std::shared_ptr<QNCoding> initWithCoder(QNDecoder& coder) {
    auto made = std::make_shared<Crate>();
    made->label = coder.decodeString("label").value_or("");
    made->inner = std::dynamic_pointer_cast<Crate>(coder.decodeObject("inner"));
    made->inners = coder.decodeObjects("inners");
    return made;
  }

  std::string label;
  std::shared_ptr<Crate> inner;
  std::vector<std::shared_ptr<QNCoding>> inners;
};

/// Writes what the test tells it to, and shows its decoder to the test.
class Chest final : public QNCoding {
 public:
  explicit Chest(std::function<void(QNEncoder&)> toWrite = {}) : write(std::move(toWrite)) {}
  std::string_view className() const override { return "Chest"; }
  void encodeWithCoder(QNEncoder& coder) override {
    if (write) write(coder);
  }
  static std::shared_ptr<QNCoding> initWithCoder(QNDecoder& coder) {
    if (observe) observe(coder);
    return std::make_shared<Chest>();
  }
  std::function<void(QNEncoder&)> write;
  static inline std::function<void(QNDecoder&)> observe;
};

/// Not on the list of what is made again.
class Barrel final : public Crate {
 public:
  std::string_view className() const override { return "Barrel"; }
};

constexpr QNDecodableClass kListed[] = {{"Crate", &Crate::initWithCoder},
                                        {"Chest", &Chest::initWithCoder}};

std::string archived(QNCoding& root) {
  const auto bytes = QNKeyedArchiver::archivedDataWithRootObject(root);
  return bytes ? std::string(textOf(bytes.value())) : "error: " + bytes.error().domainCodeString();
}
std::string archived(std::function<void(QNEncoder&)> write) {
  Chest chest(std::move(write));
  return archived(chest);
}

template <class Class>
std::shared_ptr<Class> unarchived(std::string_view text) {
  const auto made = QNKeyedUnarchiver::unarchivedObjectOfClasses(kListed, bytesOf(text));
  return made ? std::dynamic_pointer_cast<Class>(made.value()) : nullptr;
}
std::string refusal(std::string_view text) {
  const auto made = QNKeyedUnarchiver::unarchivedObjectOfClasses(kListed, bytesOf(text));
  return made ? "none" : made.error().domainCodeString();
}
std::string chestWith(std::string_view members) {
  return fmt::format(R"({{"quillon-archive":1,"root":{{"$class":"Chest",{}}}}})", members);
}
// Has `observe` look at the chest in `text`.
void decoding(std::string_view text, std::function<void(QNDecoder&)> observe) {
  Chest::observe = std::move(observe);
  const auto made = unarchived<Chest>(text);
  Chest::observe = nullptr;
  ASSERT_NE(made, nullptr);
}

Bytes everyByte() {
  Bytes bytes(256);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i);
  return bytes;
}
std::string frozenChest() {
  return fileContent(QUILLON_SOURCE_DIR "/quillon/platform/archive/testdata/chest-v1.json", 1 << 16)
      .value_or("unreadable");
}
const std::string kLabel = "Keys \"old\" \xc3\xbc \xf0\x9f\x94\x91\n";

std::shared_ptr<Crate> labelled(std::string label) {
  auto crate = std::make_shared<Crate>();
  crate->label = std::move(label);
  return crate;
}
std::string labelOf(const std::shared_ptr<QNCoding>& object) {
  const auto crate = std::dynamic_pointer_cast<Crate>(object);
  return crate == nullptr ? "not a crate" : crate->label;
}
std::shared_ptr<Crate> nested(std::size_t depth) {
  auto crate = std::make_shared<Crate>();
  if (depth > 1) crate->inner = nested(depth - 1);
  return crate;
}

TEST(QNKeyedArchiver, WritesTheFrozenForm) {
  const Bytes key = everyByte();
  const Json extra =
      boost::json::parse(R"({"$class":"Crate","$bytes":"x","list":[1,null,{"deep":[]}]})");

  const std::string text = archived([&](QNEncoder& coder) {
    coder.encodeString(kLabel, "label");
    coder.encodeBool(true, "sealed");
    coder.encodeBool(false, "open");
    coder.encodeInt32(std::numeric_limits<std::int32_t>::min(), "count");
    coder.encodeInt64(std::numeric_limits<std::uint64_t>::max(), "oid");
    coder.encodeInt64(1, "one");
    coder.encodeFloat(0.1f, "hue");
    coder.encodeFloat(1.0f, "full");
    coder.encodeBytes(key, "key");
    coder.encodeBytes({}, "nothing");
    coder.encodeJson(extra, "extra");
    coder.encodeObject(*labelled("a"), "crate");
    const std::vector<std::shared_ptr<QNCoding>> crates{labelled("b"), nullptr, labelled("c")};
    coder.encodeObjects(crates, "crates");
    coder.encodeObjects({}, "none");
  });

  EXPECT_EQ(text, frozenChest());
}

TEST(QNKeyedUnarchiver, ReadsTheFrozenForm) {
  decoding(frozenChest(), [](QNDecoder& coder) {
    EXPECT_EQ(coder.decodeString("label"), kLabel);
    EXPECT_EQ(coder.decodeBool("sealed"), true);
    EXPECT_EQ(coder.decodeBool("open"), false);
    EXPECT_EQ(coder.decodeInt32("count"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(coder.decodeInt64("oid"), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(coder.decodeInt32("one"), 1);
    EXPECT_EQ(coder.decodeInt64("one"), 1u);
    EXPECT_EQ(coder.decodeFloat("hue"), 0.1f);
    EXPECT_EQ(coder.decodeFloat("full"), 1.0f);
    EXPECT_EQ(coder.decodeBytes("key"), everyByte());
    EXPECT_EQ(coder.decodeBytes("nothing"), Bytes());
    const Json* const extra = coder.decodeJson("extra");
    ASSERT_NE(extra, nullptr);
    EXPECT_EQ(boost::json::serialize(*extra),
              R"({"$class":"Crate","$bytes":"x","list":[1,null,{"deep":[]}]})");
    EXPECT_EQ(labelOf(coder.decodeObject("crate")), "a");
    const auto crates = coder.decodeObjects("crates");
    ASSERT_EQ(crates.size(), 2u);
    EXPECT_EQ(labelOf(crates[1]), "c");
    EXPECT_TRUE(coder.containsValueForKey("none"));
    EXPECT_TRUE(coder.decodeObjects("none").empty());
  });
}

TEST(QNKeyedUnarchiver, ReadsNothingUnderAKeyThatIsAbsent) {
  decoding(chestWith(R"("other":1)"), [](QNDecoder& coder) {
    EXPECT_FALSE(coder.containsValueForKey("key"));
    EXPECT_EQ(coder.decodeBool("key"), std::nullopt);
    EXPECT_EQ(coder.decodeInt32("key"), std::nullopt);
    EXPECT_EQ(coder.decodeInt64("key"), std::nullopt);
    EXPECT_EQ(coder.decodeFloat("key"), std::nullopt);
    EXPECT_EQ(coder.decodeString("key"), std::nullopt);
    EXPECT_EQ(coder.decodeBytes("key"), std::nullopt);
    EXPECT_EQ(coder.decodeObject("key"), nullptr);
    EXPECT_TRUE(coder.decodeObjects("key").empty());
    EXPECT_EQ(coder.decodeJson("key"), nullptr);
  });
}

// Which readers give something for each form of value.
struct KindCase {
  const char* value;
  std::string readers;  // of "b(ool) i(nt32) l(ong) f(loat) s(tring) d(ata) o(bject) j(son)"
};
class QNKeyedUnarchiverKinds : public testing::TestWithParam<KindCase> {};

TEST_P(QNKeyedUnarchiverKinds, AnswerOnlyTheirOwnReader) {
  std::string readers;

  decoding(chestWith(fmt::format("\"key\":{}", GetParam().value)), [&](QNDecoder& coder) {
    if (coder.decodeBool("key")) readers += 'b';
    if (coder.decodeInt32("key")) readers += 'i';
    if (coder.decodeInt64("key")) readers += 'l';
    if (coder.decodeFloat("key")) readers += 'f';
    if (coder.decodeString("key")) readers += 's';
    if (coder.decodeBytes("key")) readers += 'd';
    if (coder.decodeObject("key")) readers += 'o';
    if (coder.decodeJson("key")) readers += 'j';
  });

  EXPECT_EQ(readers, GetParam().readers);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, QNKeyedUnarchiverKinds,
    testing::Values(KindCase{"true", "b"}, KindCase{"null", ""}, KindCase{"7", "ilf"},
                    KindCase{"-7", "if"}, KindCase{"2147483647", "ilf"},
                    KindCase{"2147483648", "lf"}, KindCase{"-2147483649", "f"},
                    KindCase{"9223372036854775808", "lf"}, KindCase{"18446744073709551616", "f"},
                    KindCase{"7.5", "f"}, KindCase{"7E0", "f"}, KindCase{"1e39", ""},
                    KindCase{"\"AAAA\"", "s"}, KindCase{R"({"$bytes":"AAAA"})", "d"},
                    KindCase{R"({"$bytes":"AAA"})", ""}, KindCase{R"({"$bytes":"AA AA"})", ""},
                    KindCase{R"({"$bytes":3})", ""}, KindCase{R"({"$bytes":"AAAA","more":1})", ""},
                    KindCase{R"({"$json":{"a":1}})", "j"}, KindCase{R"({"$json":[]})", "j"},
                    KindCase{R"({"$json":"text"})", "j"},
                    KindCase{R"({"$json":1,"$bytes":""})", ""}, KindCase{R"({"a":1})", ""},
                    KindCase{"{}", ""}, KindCase{"[]", ""}, KindCase{R"({"$class":"Crate"})", "o"},
                    KindCase{R"({"$class":"Other"})", ""}, KindCase{R"({"$class":7})", ""},
                    KindCase{R"({"$class":"Crate","$json":1})", "o"}));

TEST(QNKeyedUnarchiver, GivesFloatsBackExactly) {
  for (const float number : {-0.0f, 1e-45f, 1.17549435e-38f, 3.4028235e38f, 16777217.0f, -1.5f}) {
    const std::string text = archived([&](QNEncoder& coder) { coder.encodeFloat(number, "key"); });

    decoding(text, [&](QNDecoder& coder) {
      const auto read = coder.decodeFloat("key");
      ASSERT_TRUE(read.has_value());
      EXPECT_EQ(*read, number);
      EXPECT_EQ(std::signbit(*read), std::signbit(number));
    });
  }
}

TEST(QNKeyedArchiver, KeepsTheLaterOfTwoValuesUnderOneKey) {
  const std::string text = archived([](QNEncoder& coder) {
    coder.encodeBytes(everyByte(), "key");
    coder.encodeInt32(1, "between");
    coder.encodeInt32(2, "key");
  });

  EXPECT_EQ(text, R"({"quillon-archive":1,"root":{"$class":"Chest","key":2,"between":1}})");
}

TEST(QNKeyedArchiver, RefusesAKeyThatCouldBeTakenForItsOwn) {
  EXPECT_EQ(archived([](QNEncoder& coder) { coder.encodeString("x", "$class"); }),
            "error: QNErrorDomain 114");
  EXPECT_EQ(archived([](QNEncoder& coder) { coder.encodeBool(true, "$"); }),
            "error: QNErrorDomain 114");
}

TEST(QNKeyedArchiver, TakesAnEmptyKey) {
  EXPECT_EQ(archived([](QNEncoder& coder) { coder.encodeBool(true, ""); }),
            R"({"quillon-archive":1,"root":{"$class":"Chest","":true}})");
}

TEST(QNKeyedArchiver, RefusesWhatHasNoJsonForm) {
  const std::string refused = "error: QNErrorDomain 114";

  EXPECT_EQ(archived([](QNEncoder& c) { c.encodeFloat(std::nanf(""), "f"); }), refused);
  EXPECT_EQ(archived([](QNEncoder& c) { c.encodeFloat(HUGE_VALF, "f"); }), refused);
  EXPECT_EQ(archived([](QNEncoder& c) { c.encodeString("\xff", "s"); }), refused);
  EXPECT_EQ(archived([](QNEncoder& c) { c.encodeString("s", "\xff"); }), refused);
  EXPECT_EQ(archived([](QNEncoder& c) { c.encodeJson(Json(std::nan("")), "j"); }), refused);
}

TEST(QNKeyedArchiver, NestsObjectsToItsLimitAndNoFurther) {
  const std::string atLimit = archived(*nested(kMaxArchiveDepth));
  const std::string beyond = archived(*nested(kMaxArchiveDepth + 1));

  EXPECT_NE(unarchived<Crate>(atLimit), nullptr);
  EXPECT_EQ(beyond, "error: QNErrorDomain 114");
}

TEST(QNKeyedArchiver, EndsAtAnObjectThatHoldsItself) {
  const auto crate = std::make_shared<Crate>();
  crate->inners = {crate, crate, crate};

  const std::string text = archived(*crate);
  crate->inners.clear();

  EXPECT_EQ(text, "error: QNErrorDomain 114");
}

TEST(QNKeyedArchiver, RefusesJsonThatItCouldNotReadBack) {
  // The archive, its root and the wrapper are three containers around the value.
  const auto arrays = [](std::size_t depth) {
    Json value;
    for (; depth > 0; --depth) value = JsonArray{std::move(value)};
    return value;
  };
  const auto archiveOf = [](const Json& value) {
    return archived([&](QNEncoder& coder) { coder.encodeJson(value, "key"); });
  };

  EXPECT_NE(unarchived<Chest>(archiveOf(arrays(kMaxJsonDepth - 3))), nullptr);
  EXPECT_EQ(archiveOf(arrays(kMaxJsonDepth - 2)), "error: QNErrorDomain 114");
}

TEST(QNKeyedUnarchiver, RefusesObjectsThatNestTooDeep) {
  std::string text = R"({"$class":"Unlisted"})";
  for (std::size_t i = 2; i <= kMaxArchiveDepth + 1; ++i) {
    text = fmt::format(R"({{"$class":"Unlisted","list":[{}]}})", text);
  }

  EXPECT_EQ(refusal(chestWith("\"unread\":" + text)), "QNErrorDomain 114");
}

TEST(QNKeyedUnarchiver, DoesNotLookForObjectsInsideJson) {
  std::string text = "1";
  for (std::size_t i = 0; i < 2 * kMaxArchiveDepth; ++i) {
    text = fmt::format(R"({{"$class":{}}})", text);
  }

  EXPECT_NE(unarchived<Chest>(chestWith(fmt::format(R"("key":{{"$json":{}}})", text))), nullptr);
}

TEST(QNKeyedUnarchiver, MakesNothingOfAClassThatIsNotOnItsList) {
  Barrel barrel;
  Crate crate;
  crate.label = "outer";
  crate.inner = std::make_shared<Barrel>();
  crate.inners = {std::make_shared<Barrel>(), labelled("kept")};

  const auto made = unarchived<Crate>(archived(crate));

  EXPECT_EQ(refusal(archived(barrel)), "QNErrorDomain 114");
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->label, "outer");
  EXPECT_EQ(made->inner, nullptr);
  ASSERT_EQ(made->inners.size(), 1u);
  EXPECT_EQ(labelOf(made->inners[0]), "kept");
}

class QNKeyedUnarchiverRefusals : public testing::TestWithParam<const char*> {};

TEST_P(QNKeyedUnarchiverRefusals, AreErrorsWithoutAnObject) {
  EXPECT_EQ(refusal(GetParam()), "QNErrorDomain 114");
}

INSTANTIATE_TEST_SUITE_P(Texts, QNKeyedUnarchiverRefusals,
                         testing::Values("", "{}", "[]", "null", "not JSON",
                                         R"({"root":{"$class":"Crate"}})",
                                         R"({"quillon-archive":1})",
                                         R"({"quillon-archive":1,"root":null})",
                                         R"({"quillon-archive":1,"root":[{"$class":"Crate"}]})",
                                         R"({"quillon-archive":1,"root":{}})",
                                         R"({"quillon-archive":0,"root":{"$class":"Crate"}})",
                                         R"({"quillon-archive":2,"root":{"$class":"Crate"}})",
                                         R"({"quillon-archive":1.5,"root":{"$class":"Crate"}})",
                                         R"({"quillon-archive":"1","root":{"$class":"Crate"}})",
                                         R"({"quillon-archive":1,"root":{"$class":"Other"}})",
                                         R"({"quillon-archive":1,"root":{"$class":"Crate"}} x)",
                                         R"({"quillon-archive":1,"root":{"$class":"Crate"})"));

TEST(QNKeyedUnarchiver, RefusesEveryTruncation) {
  const std::string whole = frozenChest();

  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(refusal(whole.substr(0, length)), "QNErrorDomain 114") << length;
  }
}

TEST(QNKeyedUnarchiver, RefusesAnArchiveThatIsTooLarge) {
  std::string text = chestWith("\"a\":1");
  text.resize(kMaxArchiveBytes, ' ');
  const std::string atLimit = refusal(text);
  text += ' ';

  const std::string beyond = refusal(text);

  EXPECT_EQ(atLimit, "none");
  EXPECT_EQ(beyond, "QNErrorDomain 114");
}

TEST(QNKeyedArchiver, LeavesNoKeyInMemory) {
  const Bytes key = everyByte();
  const std::string text = mr_base64encode(key);
  const QNFreedBlockWatch raw(textOf(key)), encoded(text);

  {
    Chest chest([&](QNEncoder& coder) { coder.encodeBytes(key, "key"); });
    const auto archive = QNKeyedArchiver::archivedDataWithRootObject(chest);
    ASSERT_TRUE(archive);
    Chest::observe = [&](QNDecoder& coder) { EXPECT_EQ(coder.decodeBytes("key"), key); };
    EXPECT_TRUE(QNKeyedUnarchiver::unarchivedObjectOfClasses(kListed, archive.value()));
    Chest::observe = nullptr;
  }

  EXPECT_EQ(raw.found(), 0u);
  EXPECT_EQ(encoded.found(), 0u);
}

}  // namespace
}  // namespace quillon
