#include "store/internal/QNUUIDTable.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

using Table = QNUUIDTable<int>;

/// Values 0, 1 and so on.
Table tableOf(std::initializer_list<std::string_view> uuids) {
  Table table;
  for (const auto uuid : uuids) table.add(uuid, static_cast<int>(table.size()));
  return table;
}

/// -1 for none.
int found(Table& table, std::string_view uuid) {
  const int* const value = table.find(uuid);
  return value == nullptr ? -1 : *value;
}

TEST(QNUUIDTable, FindsInOrderAnyNumberOfTimes) {
  Table table = tableOf({"a", "b", "c"});

  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(found(table, "a"), 0);
    EXPECT_EQ(found(table, "b"), 1);
    EXPECT_EQ(found(table, "c"), 2);
  }
}

TEST(QNUUIDTable, FindsInAnyOrder) {
  Table table = tableOf({"a", "b", "c", "d"});

  for (const auto& [uuid, value] : {std::pair("c", 2),
                                    {"d", 3},
                                    {"a", 0},
                                    {"a", 0},
                                    {"x", -1},
                                    {"b", 1},
                                    {"c", 2},
                                    {"x", -1},
                                    {"d", 3},
                                    {"b", 1}}) {
    EXPECT_EQ(found(table, uuid), value) << uuid;
  }
}

TEST(QNUUIDTable, FindsNothingWhereNothingIs) {
  Table table;

  EXPECT_EQ(table.find("a"), nullptr);
  EXPECT_EQ(table.size(), 0u);
}

TEST(QNUUIDTable, FindsWhatIsAddedAfterASearch) {
  Table table = tableOf({"a", "b"});
  EXPECT_EQ(found(table, "x"), -1);

  table.add("x", 7);

  EXPECT_EQ(found(table, "b"), 1);
  EXPECT_EQ(found(table, "x"), 7);
  EXPECT_EQ(found(table, "a"), 0);
}

TEST(QNUUIDTable, EntriesStayWhereTheyAreWhenItIsMoved) {
  Table table;
  const std::string_view text = table.add("a text that is too long for the object", 1).uuid;
  for (int i = 0; i < 1000; ++i) table.add(std::to_string(i), i);
  EXPECT_EQ(found(table, "500"), 500);

  Table moved = std::move(table);

  EXPECT_EQ(text, "a text that is too long for the object");
  EXPECT_EQ(found(moved, text), 1);
  EXPECT_EQ(moved.begin()->uuid.data(), text.data());
}

}  // namespace
}  // namespace quillon
