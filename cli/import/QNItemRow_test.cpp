#include "cli/import/QNItemRow.h"

#include <gtest/gtest.h>

#include "cli/import/QNRowImporter.h"
#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNLogin.h"

namespace quillon {
namespace {

// An item's row has three containers around the content of a member of its details: itself, the
// object that it is a member of, the details. A file has two more around all that.
constexpr std::size_t kDeepest = kMaxJsonDepth - 5;

std::shared_ptr<QNLogin> loginOfDepth(std::size_t depth, char open, char close) {
  auto login = std::make_shared<QNLogin>(initNew);
  login->setProfile(localVault());
  std::string nested(1, open);
  for (std::size_t i = 1; i < depth; ++i) nested += open == '{' ? "\"a\":{" : "[";
  login->copyDetails(jsonObject("{\"other\":" + nested + std::string(depth, close) + "}"));
  return login;
}

TEST(QNItemRow, OfTheDeepestItemIsReadAgain) {
  for (const auto& [open, close] : {std::pair('[', ']'), std::pair('{', '}')}) {
    const auto text = exportedText(exportedJson(*loginOfDepth(kDeepest, open, close)));
    ASSERT_TRUE(text.ok()) << open;

    const auto file =
        QNExportFile::read(bytesOf("{\"format\":\"quillon\",\"version\":1,\"items\":[" +
                                   std::string(textOf(text.value())) + "]}"));

    ASSERT_TRUE(file.ok()) << open;
    EXPECT_EQ(file.value().items().size(), 1u);
  }
}

TEST(QNItemRow, OfADeeperItemIsRefused) {
  for (const auto& [open, close] : {std::pair('[', ']'), std::pair('{', '}')}) {
    const auto text = exportedText(exportedJson(*loginOfDepth(kDeepest + 1, open, close)));

    ASSERT_FALSE(text.ok()) << open;
    EXPECT_EQ(text.error().message, "it nests too deeply to be imported again");
  }
}

}  // namespace
}  // namespace quillon
