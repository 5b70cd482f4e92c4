#include "quillon/templates/QNTemplateManager.h"

#include <gmock/gmock.h>

#include <thread>

#include "quillon/platform/files/QNResources.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// The shared manager with nothing loaded, and a folder of files.
class QNTemplateManagerTest : public testing::Test {
 protected:
  QNTemplateManagerTest() : _before(manager.exchangeRegistry(nullptr)) {}
  ~QNTemplateManagerTest() override { manager.exchangeRegistry(_before); }
  static std::string file(std::string_view uuid) {
    return R"({"templateAttrs":{"uuid":")" + std::string(uuid) + R"(","contents":[]}})";
  }
  static std::vector<std::string> assertions(const MRCapturingSink& sink) {
    return sink.texts(MRLogKind::assertion);
  }

  QNTemplateManager& manager = QNTemplateManager::sharedManager();
  QNScratchFolder folder;

 private:
  std::shared_ptr<const QNTemplateManager::Registry> _before;
};

TEST_F(QNTemplateManagerTest, LoadsItsResourcesAtTheFirstLookUp) {
  EXPECT_THAT(manager.templates(), IsEmpty());

  const auto bank = manager.findTemplateWithUUID("101");

  ASSERT_NE(bank, nullptr);
  EXPECT_EQ(bank->templateURL(),
            resourceFolder() / "CategoryTemplates" / "bank-account.template.json");
  EXPECT_EQ(manager.templates().size(), 18u);
  EXPECT_EQ(manager.templateWithUUID("101"), bank);
}

TEST_F(QNTemplateManagerTest, HasATemplateForEveryCategoryThatTakesOne) {
  for (const std::string_view uuid :
       {"002", "004", "100", "101", "102", "103", "104", "105", "106", "107", "108", "109", "110",
        "111", "112", "113", "114", "115"}) {
    const auto found = manager.findTemplateWithUUID(uuid);
    ASSERT_NE(found, nullptr) << uuid;
    EXPECT_EQ(found->uuid(), uuid);
    EXPECT_TRUE(found->localized());
    EXPECT_TRUE(found->visible());
    EXPECT_TRUE(found->instantiateFieldSections()) << uuid;
    EXPECT_NE(found->localizedTitle(), "__title__") << uuid;
  }
  EXPECT_EQ(manager.findTemplateWithUUID("001"), nullptr);
  EXPECT_EQ(manager.findTemplateWithUUID(std::nullopt), nullptr);
}

TEST_F(QNTemplateManagerTest, KeepsTheSameObjects) {
  EXPECT_EQ(manager.findTemplateWithUUID("101"), manager.findTemplateWithUUID("101"));
}

TEST_F(QNTemplateManagerTest, ListsTheTemplatesOfAFolderByName) {
  folder.write("b.template.json", file("102"));
  folder.write("a.template.json", file("103"));
  folder.write("c.json", file("104"));
  folder.write("d.template.json.bak", file("105"));

  manager.loadFromDirectory(folder.path());

  ASSERT_EQ(manager.templates().size(), 2u);
  EXPECT_EQ(manager.templates()[0]->uuid(), "103");
  EXPECT_EQ(manager.templates()[1]->uuid(), "102");
  EXPECT_EQ(manager.findTemplateWithUUID("104"), nullptr);
}

TEST_F(QNTemplateManagerTest, OfTwoFilesOfOneCategoryListsBothAndFindsTheLater) {
  folder.write("a.template.json", file("102"));
  folder.write("b.template.json", file("102"));

  manager.loadFromDirectory(folder.path());

  EXPECT_EQ(manager.templates().size(), 2u);
  EXPECT_EQ(manager.findTemplateWithUUID("102"), manager.templates()[1]);
}

TEST_F(QNTemplateManagerTest, AFolderWithoutATemplateLeavesWhatWasLoaded) {
  folder.write("a.template.json", file("102"));
  manager.loadFromDirectory(folder.path());
  const QNScratchFolder empty;
  empty.write("readme.txt", "nothing");

  manager.loadFromDirectory(empty.path());

  EXPECT_EQ(manager.templates().size(), 1u);
}

TEST_F(QNTemplateManagerTest, AFolderThatCantBeListedIsReported) {
  const auto missing = folder.path() / "missing";
  const MRCapturingSink sink;

  manager.loadFromDirectory(missing);

  EXPECT_THAT(assertions(sink), ElementsAre("loadFromDirectory '" + missing.string() +
                                            "' failed: No such file or directory"));
}

TEST_F(QNTemplateManagerTest, AFileWithoutADefinitionIsSkippedAndReported) {
  const auto bad = folder.write("a.template.json", R"({"attrs":{}})");
  folder.write("b.template.json", file("102"));
  const MRCapturingSink sink;

  manager.loadFromDirectory(folder.path());

  EXPECT_EQ(manager.templates().size(), 1u);
  EXPECT_THAT(assertions(sink),
              ElementsAre("Failed to parse template definition from '" + bad.string() +
                          R"(' with bytes '{"attrs":{}}': (null))"));
}

TEST_F(QNTemplateManagerTest, AFileThatIsNoJsonIsReportedWithTheError) {
  const auto bad = folder.write("a.template.json", "{\"templateAttrs\":");
  const MRCapturingSink sink;

  EXPECT_EQ(QNTemplateManager::loadTemplateFromPath(bad), nullptr);

  EXPECT_THAT(assertions(sink),
              ElementsAre("Failed to parse template definition from '" + bad.string() +
                          R"(' with bytes '{"templateAttrs":': MRErrorDomain 114)"));
}

TEST_F(QNTemplateManagerTest, AFileThatIsMissingIsReported) {
  const auto missing = folder.path() / "a.template.json";
  const MRCapturingSink sink;

  EXPECT_EQ(QNTemplateManager::loadTemplateFromPath(missing), nullptr);

  EXPECT_THAT(assertions(sink), ElementsAre("Failed to load template '" + missing.string() +
                                            "': No such file or directory"));
}

TEST_F(QNTemplateManagerTest, AFileThatIsTooLargeIsReported) {
  const auto huge = folder.write("a.template.json", "");
  std::filesystem::resize_file(huge, (std::size_t{4} << 20) + 1);
  const MRCapturingSink sink;

  EXPECT_EQ(QNTemplateManager::loadTemplateFromPath(huge), nullptr);

  EXPECT_THAT(assertions(sink), ElementsAre("Failed to load template '" + huge.string() +
                                            "': the file is too large"));
}

TEST_F(QNTemplateManagerTest, AFolderInAFilesPlaceIsReported) {
  std::filesystem::create_directories(folder.path() / "a.template.json");
  folder.write("b.template.json", file("102"));
  const MRCapturingSink sink;

  manager.loadFromDirectory(folder.path());

  EXPECT_EQ(manager.templates().size(), 1u);
  ASSERT_EQ(assertions(sink).size(), 1u);
  EXPECT_THAT(assertions(sink).front(), HasSubstr("Failed to load template '"));
}

// One text for another process

TEST_F(QNTemplateManagerTest, GivesATemplateWithItsStringsAsOneText) {
  const QNScopedLanguage language("de");
  folder.write("a.template.json",
               R"({"templateAttrs":{"uuid":"102","localized":"yes","contents":[]},"more":1})");
  folder.write("Locales/de.lproj/a.strings", R"("__title__" = "Datenbank";)");
  manager.loadFromDirectory(folder.path());

  const auto text = manager.findTemplateStringWithUUID("102");

  ASSERT_TRUE(text);
  const auto read = mr_objectFromJSONStringWithError(*text);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->if_contains("templateAttrs"), nullptr);
  EXPECT_EQ(read->at("more"), 1);
  EXPECT_EQ(read->at("attrs").at("uuid"), "102");
  EXPECT_EQ(read->at("attrs").at("localizedStrings"), (Json{{"__title__", "Datenbank"}}));
}

TEST_F(QNTemplateManagerTest, GivesNoTextForAnUnknownCategory) {
  EXPECT_EQ(manager.findTemplateStringWithUUID("zzz"), std::nullopt);
  EXPECT_EQ(manager.findTemplateStringWithUUID(std::nullopt), std::nullopt);
}

TEST_F(QNTemplateManagerTest, GivesNoTextForATemplateWithoutAFile) {
  const QNScopedTemplates templates{R"({"uuid":"102"})"};
  const MRCapturingSink sink;

  EXPECT_EQ(manager.findTemplateStringWithUUID("102"), std::nullopt);

  EXPECT_THAT(assertions(sink), ElementsAre("Failed to get template path '102': (null)"));
}

TEST_F(QNTemplateManagerTest, ReadsTheFileAfreshForTheText) {
  const auto path = folder.write("a.template.json", file("102"));
  manager.loadFromDirectory(folder.path());
  const MRCapturingSink sink;

  folder.write("a.template.json", "{");
  EXPECT_EQ(manager.findTemplateStringWithUUID("102"), std::nullopt);
  folder.write("a.template.json", "{}");
  EXPECT_EQ(manager.findTemplateStringWithUUID("102"), std::nullopt);
  std::filesystem::remove(path);
  EXPECT_EQ(manager.findTemplateStringWithUUID("102"), std::nullopt);

  EXPECT_THAT(assertions(sink), IsEmpty());
  EXPECT_THAT(
      sink.texts(MRLogKind::error),
      ElementsAre("Failed to parse template definition from '" + path.string() +
                      "' with bytes '{': MRErrorDomain 114",
                  "Failed to get data for templateAttrs",
                  "Failed to load template '" + path.string() + "': No such file or directory"));
}

TEST_F(QNTemplateManagerTest, IsOneForAllThreads) {
  constexpr int kThreads = 4;
  std::vector<std::shared_ptr<QNTemplate>> found(kThreads);
  std::vector<std::string> titles(kThreads);
  std::vector<const JsonObject*> definitions(kThreads);
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      found[i] = manager.findTemplateWithUUID("101");
      titles[i] = found[i]->localizedStringForKey("bankName");
      definitions[i] = found[i]->definitionForFieldIdentifier("bankName");
    });
  }
  for (std::thread& thread : threads) thread.join();

  for (int i = 0; i < kThreads; ++i) {
    EXPECT_EQ(found[i], manager.findTemplateWithUUID("101"));
    EXPECT_EQ(titles[i], titles[0]);
    EXPECT_EQ(definitions[i], definitions[0]);
  }
  EXPECT_NE(definitions[0], nullptr);
}

}  // namespace
}  // namespace quillon
