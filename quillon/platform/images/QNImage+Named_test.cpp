#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "quillon/platform/files/QNResources.h"
#include "quillon/platform/images/QNImage.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kIcon =
    "<svg xmlns='http://www.w3.org/2000/svg' width='32' height='32'/>";

/// A resource folder for this program alone; where it lies is asked once in a process.
class OwnResources final : public testing::Environment {
 public:
  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "quillon-test-XXXXXX").string();
    folder = mkdtemp(name.data());
    fs::create_directories(folder / "Icons" / "inner");
    setenv("QUILLON_RESOURCES", folder.c_str(), 1);
  }
  void TearDown() override { fs::remove_all(folder); }
  static void write(const std::string& name, std::string_view content) {
    std::ofstream(folder / name, std::ios::binary) << content;
  }
  static inline fs::path folder;
};
[[maybe_unused]] testing::Environment* const kResources =
    testing::AddGlobalTestEnvironment(new OwnResources);

TEST(QNImageNamed, IsReadFromTheIconsOfTheResources) {
  OwnResources::write("Icons/type-login-list.svg", kIcon);

  const auto image = mr_imageNamed("type-login-list");

  ASSERT_NE(image, nullptr);
  EXPECT_EQ(textOf(image->data()), kIcon);
  EXPECT_FALSE(image->isTemplate());
}

TEST(QNImageNamed, IsReadOnceAndShared) {
  OwnResources::write("Icons/once.svg", kIcon);
  const auto first = mr_imageNamed("once");
  ASSERT_NE(first, nullptr);

  OwnResources::write("Icons/once.svg", "");

  EXPECT_EQ(mr_imageNamed("once"), first);
}

TEST(QNImageNamed, IsFoundWhenItComesLater) {
  EXPECT_EQ(mr_imageNamed("later"), nullptr);

  OwnResources::write("Icons/later.svg", kIcon);

  EXPECT_NE(mr_imageNamed("later"), nullptr);
}

TEST(QNImageNamed, MayBeNamedByLettersDigitsDashAndLine) {
  for (const char* name : {"sidebar-", "type--list", "richIcon-mask_2", "9"}) {
    OwnResources::write("Icons/" + std::string(name) + ".svg", kIcon);
    EXPECT_NE(mr_imageNamed(name), nullptr) << name;
  }
}

TEST(QNImageNamed, DoesntLeadOutOfTheFolder) {
  OwnResources::write("outside.svg", kIcon);
  OwnResources::write("Icons/inner/a.svg", kIcon);
  OwnResources::write("Icons/.svg", kIcon);
  OwnResources::write("Icons/a b.svg", kIcon);
  const std::string absolute = (OwnResources::folder / "outside").string();
  const std::string withZero("once\0", 5);

  for (const std::string& name : {std::string("../outside"), absolute, std::string("inner/a"),
                                  std::string(".."), std::string(""), std::string("a b"), withZero,
                                  std::string("\xc3\xa4"), std::string(101, 'a')}) {
    EXPECT_EQ(mr_imageNamed(name), nullptr) << name;
  }
}

TEST(QNImageNamed, IsNothingForAFileThatIsNoPicture) {
  OwnResources::write("Icons/text.svg", "a text");
  OwnResources::write("Icons/active.svg", "<svg width='1' height='1'><script/></svg>");
  OwnResources::write("Icons/long.svg", std::string(kIcon) + std::string(kMaxSVGBytes, ' '));
  const MRCapturingSink sink;

  EXPECT_EQ(mr_imageNamed("text"), nullptr);
  EXPECT_EQ(mr_imageNamed("long"), nullptr);
  EXPECT_TRUE(sink.records().empty());
  EXPECT_EQ(mr_imageNamed("active"), nullptr);
  EXPECT_EQ(sink.records().size(), 1u);
}

}  // namespace
}  // namespace quillon
