#include <gmock/gmock.h>

#include <cstdlib>

#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/internal/QNTestCategories.h"

// A program of its own: the resource folder is asked for once in a process.

namespace quillon {
namespace {

using testing::ElementsAre;

const QNScratchFolder folder;
const int isSet = setenv("QUILLON_RESOURCES", folder.path().c_str(), 1);

TEST(QNTemplateManagerMissing, WithoutTheFolderReportsEachTimeAndTriesAgain) {
  ASSERT_EQ(isSet, 0);
  QNTemplateManager& manager = QNTemplateManager::sharedManager();
  constexpr std::string_view report =
      "Failed to load CategoryTemplates. It's likely that the build of the app is broken. The user "
      "will face problems with non-hardcoded item categories.";
  const MRCapturingSink sink;

  EXPECT_EQ(manager.findTemplateWithUUID("101"), nullptr);
  EXPECT_EQ(QNGenericCategoryItemClassForCategoryUUID("101"), nullptr);
  EXPECT_TRUE(manager.templates().empty());
  EXPECT_THAT(sink.texts(MRLogKind::assertion), ElementsAre(report, report));

  folder.write("CategoryTemplates/a.template.json", R"({"templateAttrs":{"uuid":"101"}})");

  EXPECT_NE(manager.findTemplateWithUUID("101"), nullptr);
}

}  // namespace
}  // namespace quillon
