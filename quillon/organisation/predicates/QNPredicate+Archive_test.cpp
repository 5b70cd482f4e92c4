#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <fstream>
#include <iterator>

#include "quillon/organisation/predicates/internal/QNPredicateTesting.h"
#include "quillon/organisation/predicates/internal/QNRandomPredicates.h"
#include "quillon/platform/archive/QNKeyedArchiver.h"

namespace quillon {
namespace {

std::string fileText(const std::string& name) {
  std::ifstream file(QUILLON_TESTDATA "/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> found;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) found.push_back(line);
  return found;
}

std::string archiveOf(const QNPredicate& predicate) {
  return std::string(textOf(predicate.archivedData().value()));
}

// Its text form, "none", or "unreadable".
std::string read(std::string_view archive) {
  const auto found = QNPredicate::predicateWithArchivedData(bytesOf(archive));
  if (!found.ok()) {
    EXPECT_EQ(found.error().domainCodeString(), "QNErrorDomain 114");
    return "unreadable";
  }
  return found.value() == nullptr ? "none" : found.value()->predicateFormat();
}

std::string inArchive(std::string_view predicate) {
  return R"({"quillon-archive":1,"root":{"$class":"QNPredicateArchive","predicate":)" +
         std::string(predicate) + "}}";
}

constexpr std::string_view kEveryPart =
    "title CONTAINS[cd] \"Bank\" OR (NOT ALL tagsForSearch IN {NIL, YES, -1, 0.1, "
    "DATE \"2024-07-04T12:30:05Z\", \"Zürich\"}) OR (AND {}) OR TRUEPREDICATE";

TEST(QNPredicateArchive, HasTheFrozenForm) {
  const auto formats = lines(fileText("formats.txt"));
  const auto archives = lines(fileText("archives.jsonl"));
  ASSERT_EQ(formats.size(), archives.size());
  ASSERT_GT(formats.size(), 15u);

  for (std::size_t i = 0; i < formats.size(); ++i) {
    EXPECT_EQ(archiveOf(*predicate(formats[i])), archives[i]);
    EXPECT_EQ(read(archives[i]), formats[i]);
  }
}

TEST(QNPredicateArchive, ReadsBackAsTheSameQuestion) {
  EXPECT_TRUE(rc::check([] {
    const QNPredicateRef made =
        QNRandomPredicates(*rc::gen::arbitrary<std::uint32_t>()).predicate(4);

    const auto again = QNPredicate::predicateWithArchivedData(made->archivedData().value());

    RC_ASSERT(again.ok());
    RC_ASSERT(again.value()->isEqual(*made));
  }));
}

TEST(QNPredicateArchive, HoldsTheDeepestAndTheLargestPredicate) {
  std::string text = "a IN {1}";
  for (std::size_t i = 0; i < QNPredicate::kMaxDepth; ++i) text = "NOT (" + text + ")";
  const QNPredicateRef deepest = predicate(text);
  std::string many = "a == 1";
  while (many.size() < 60'000) many += " OR a == 1";

  EXPECT_EQ(read(archiveOf(*deepest)), deepest->predicateFormat());
  EXPECT_EQ(read(archiveOf(*predicate(many))), many);
}

TEST(QNPredicateArchive, HasRoomForEveryPredicateWithinTheLimits) {
  const auto grown = [](std::string text, const std::string& more, const std::string& end) {
    while (text.size() + more.size() + end.size() <= QNPredicate::kMaxTextBytes) text += more;
    return text + end;
  };
  for (const std::string each :
       {"1 < 1", "-1 < -1", "{} < {}", "a < a", "\"\" < \"\"", "0.5 < 0.5", "NIL < NIL",
        "ALL 1 < 1", "1 IN 1", "1 <[c] 1", "(NOT 1 < 1)", "(OR {})", "TRUEPREDICATE"}) {
    const std::string text = grown(each, " OR " + each, "");
    EXPECT_EQ(read(archiveOf(*predicate(text))), text) << each;
  }
  for (const std::string each : {"1", "-1", "0.5", "NO", "NIL", "\"\"", "\"\\u0001\"", "\"ä\""}) {
    const std::string text = grown("a IN {" + each, ", " + each, "}");
    EXPECT_EQ(read(archiveOf(*predicate(text))), text) << each;
  }
}

TEST(QNPredicateArchive, BeyondItsLimitIsUnreadableAlthoughItIsOne) {
  std::string archive = archiveOf(*predicate("a == 1"));
  archive.insert(1, QNPredicate::kMaxArchiveBytes - archive.size(), ' ');

  EXPECT_EQ(read(archive), "a == 1");
  archive.insert(1, 1, ' ');
  EXPECT_EQ(read(archive), "unreadable");
}

TEST(QNPredicateArchive, CutAnywhereIsUnreadable) {
  const std::string archive = archiveOf(*predicate(kEveryPart));

  for (std::size_t size = 0; size < archive.size(); ++size) {
    ASSERT_EQ(read(std::string_view(archive).substr(0, size)), "unreadable") << size;
  }
}

TEST(QNPredicateArchive, WithAnyBitFlippedIsUnreadableOrAWholePredicate) {
  const std::string archive = archiveOf(*predicate(kEveryPart));
  std::size_t unreadable = 0;

  for (std::size_t bit = 0; bit < archive.size() * 8; ++bit) {
    std::string flipped = archive;
    flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
    const std::string found = read(flipped);
    if (found == "unreadable") {
      ++unreadable;
    } else if (found != "none") {
      ASSERT_EQ(predicate(found)->predicateFormat(), found) << bit;
    }
  }

  EXPECT_GT(unreadable, archive.size() * 6);
}

TEST(QNPredicateArchive, WithoutAPredicateHoldsNone) {
  EXPECT_EQ(read(R"({"quillon-archive":1,"root":{"$class":"QNPredicateArchive"}})"), "none");
}

TEST(QNPredicateArchive, IsUnreadableWhereAPartIsMissing) {
  const std::string compound =
      R"({"$class":"QNCompoundPredicate","type":1,"count":2,"subpredicates":[)"
      R"({"$class":"QNConstantPredicate","value":true}]})";
  const std::string foreign =
      R"({"$class":"QNCompoundPredicate","type":1,"count":1,"subpredicates":[)"
      R"({"$class":"QNBlockPredicate"}]})";
  const std::string listed =
      R"({"$class":"QNComparisonPredicate","left":{"$class":"QNExpression","type":3,"keyPath":"a"},)"
      R"("right":{"$class":"QNExpression","type":0,"kind":"list","count":1,"values":[]},)"
      R"("modifier":0,"operatorType":10,"options":0})";
  for (const std::string& broken : {compound, foreign, listed}) {
    EXPECT_EQ(read(inArchive(broken)), "unreadable") << broken;
  }
}

TEST(QNPredicateArchive, IsUnreadableWhereANumberMeansNothing) {
  const std::string good =
      R"({"$class":"QNComparisonPredicate","left":{"$class":"QNExpression","type":3,"keyPath":"a"},)"
      R"("right":{"$class":"QNExpression","type":0,"kind":"nil"},)"
      R"("modifier":0,"operatorType":4,"options":0})";
  ASSERT_EQ(read(inArchive(good)), "a == NIL");
  const auto with = [&good](std::string_view part, std::string_view other) {
    std::string changed = good;
    return inArchive(changed.replace(changed.find(part), part.size(), other));
  };

  EXPECT_EQ(read(with("\"modifier\":0", "\"modifier\":3")), "unreadable");
  EXPECT_EQ(read(with("\"modifier\":0", "\"modifier\":-1")), "unreadable");
  EXPECT_EQ(read(with("\"operatorType\":4", "\"operatorType\":13")), "unreadable");
  EXPECT_EQ(read(with("\"options\":0", "\"options\":4")), "unreadable");
  EXPECT_EQ(read(with("\"type\":3", "\"type\":1")), "unreadable");
  EXPECT_EQ(read(with("\"keyPath\":\"a\"", "\"keyPath\":\"a b\"")), "unreadable");
  EXPECT_EQ(read(with("\"kind\":\"nil\"", "\"kind\":\"other\"")), "unreadable");
  EXPECT_EQ(read(with("\"kind\":\"nil\"", "\"kind\":\"date\",\"value\":253402300800")),
            "unreadable");
  EXPECT_EQ(read(with("\"kind\":\"nil\"", "\"kind\":\"real\",\"value\":9218868437227405312")),
            "unreadable");
  EXPECT_EQ(read(with("\"kind\":\"nil\"", "\"kind\":\"integer\",\"value\":\"5\"")), "unreadable");
}

TEST(QNPredicateArchive, IsUnreadableWithANotOfTwo) {
  EXPECT_EQ(read(inArchive(R"({"$class":"QNCompoundPredicate","type":0,"count":2,"subpredicates":[)"
                           R"({"$class":"QNConstantPredicate","value":true},)"
                           R"({"$class":"QNConstantPredicate","value":true}]})")),
            "unreadable");
}

TEST(QNPredicateArchive, IsUnreadableWhereItNestsTenThousandDeep) {
  std::string nested = R"({"$class":"QNConstantPredicate","value":true})";
  for (int i = 0; i < 10'000; ++i) {
    nested =
        R"({"$class":"QNCompoundPredicate","type":0,"count":1,"subpredicates":[)" + nested + "]}";
  }

  EXPECT_EQ(read(inArchive(nested)), "unreadable");
}

TEST(QNPredicateArchive, OfAnotherObjectOrPlatformIsUnreadable) {
  EXPECT_EQ(read(R"({"quillon-archive":1,"root":{"$class":"QNItem"}})"), "unreadable");
  EXPECT_EQ(read(R"({"quillon-archive":1,"root":{"$class":"QNConstantPredicate","value":true}})"),
            "unreadable");
  EXPECT_EQ(read("bplist00\xd4\x01\x02\x03\x04"), "unreadable");
  EXPECT_EQ(read(""), "unreadable");
}

}  // namespace
}  // namespace quillon
