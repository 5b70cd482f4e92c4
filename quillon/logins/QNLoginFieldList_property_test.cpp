// What holds for any list of form fields, whatever is done to it.

#include <gtest/gtest.h>

#include <algorithm>

#include "quillon/logins/QNLoginFieldList.h"
#include "quillon/logins/internal/QNRandomFields.h"

namespace quillon {
namespace {

constexpr std::uint32_t kRuns = 300;

std::size_t numberDesignated(const QNLoginFieldList& list, std::string_view designation) {
  const auto& fields = list.fields();
  return static_cast<std::size_t>(std::count_if(
      fields.begin(), fields.end(),
      [designation](const auto& field) { return field->designation() == designation; }));
}

QNLoginFieldList::Field firstDesignated(const QNLoginFieldList& list,
                                        std::string_view designation) {
  for (const auto& field : list.fields()) {
    if (field->designation() == designation) return field;
  }
  return nullptr;
}

void changeAtRandom(QNLoginFieldList& list, QNRandomFields& random) {
  const auto index = static_cast<std::int64_t>(random.below(list.count() + 3)) - 1;
  switch (random.below(8)) {
    case 0:
    case 1:
    case 2:
      list.addLoginField(std::make_shared<QNLoginField>(random.field()));
      break;
    case 3:
      list.addDesignatedUsername(random.pick({"ann", "bob", ""}));
      break;
    case 4:
      list.addDesignatedPassword(random.pick({"one", "two", ""}));
      break;
    case 5:
      list.removeLoginFieldAtIndex(static_cast<std::size_t>(index));
      break;
    default:
      list.designateLoginFieldAt(index, random.pick({"username", "password", "totp"}));
  }
}

TEST(QNLoginFieldListProperty, AtMostOneEntryIsTheUsernameAndOneThePassword) {
  for (std::uint32_t seed = 0; seed < kRuns; ++seed) {
    QNRandomFields random(seed);
    QNLoginFieldList list;
    for (int step = 0; step < 40; ++step) {
      changeAtRandom(list, random);

      ASSERT_LE(numberDesignated(list, "username"), 1u) << "seed " << seed << ", step " << step;
      ASSERT_LE(numberDesignated(list, "password"), 1u) << "seed " << seed << ", step " << step;
    }
  }
}

TEST(QNLoginFieldListProperty, TheCachedEntriesAreTheDesignatedOnes) {
  for (std::uint32_t seed = 0; seed < kRuns; ++seed) {
    QNRandomFields random(seed);
    QNLoginFieldList list;
    for (int step = 0; step < 40; ++step) {
      changeAtRandom(list, random);

      ASSERT_EQ(list.usernameField(), firstDesignated(list, "username"))
          << "seed " << seed << ", step " << step;
      ASSERT_EQ(list.passwordField(), firstDesignated(list, "password"))
          << "seed " << seed << ", step " << step;
    }
  }
}

TEST(QNLoginFieldListProperty, ADesignationThatWasGivenStaysWithItsEntry) {
  for (std::uint32_t seed = 0; seed < kRuns; ++seed) {
    QNRandomFields random(seed);
    QNLoginFieldList list;
    for (int step = 0; step < 20; ++step) changeAtRandom(list, random);
    list.addLoginField(std::make_shared<QNLoginField>(random.field()));
    const auto index = random.below(list.count());

    list.designateLoginFieldAt(static_cast<std::int64_t>(index), "password");

    ASSERT_EQ(list.passwordField(), list.fields()[index]) << "seed " << seed;
    ASSERT_TRUE(list.fields()[index]->designatedAsPassword()) << "seed " << seed;
  }
}

}  // namespace
}  // namespace quillon
