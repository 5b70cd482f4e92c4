#include "cli/arguments/QNArgumentParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include "cli/QNToolError.h"

namespace quillon {
namespace {

using testing::HasSubstr;
using testing::Not;

QNResult<QNArguments> parsed(const std::vector<std::string>& arguments) {
  return parseArguments(arguments);
}

// The arguments of a command that must be right.
template <class Arguments>
Arguments parsedAs(const std::vector<std::string>& arguments) {
  const auto result = parsed(arguments);
  EXPECT_TRUE(result.ok()) << result.error().message;
  if (!result.ok()) return {};
  const auto* const given = std::get_if<Arguments>(&result.value().command);
  EXPECT_NE(given, nullptr);
  return given == nullptr ? Arguments{} : *given;
}

// The message of a command line that must be refused as wrong usage.
std::string refusal(const std::vector<std::string>& arguments) {
  const auto result = parsed(arguments);
  EXPECT_FALSE(result.ok());
  if (result.ok()) return "accepted";
  EXPECT_EQ(exitFor(result.error()), QNExit::wrongUsage);
  return result.error().message;
}

class ScopedVariable {
 public:
  ScopedVariable(const char* name, const char* value) : _name(name) {
    const char* const before = getenv(name);
    if (before != nullptr) _before = before;
    value == nullptr ? unsetenv(name) : setenv(name, value, 1);
  }
  ~ScopedVariable() { _before ? setenv(_name, _before->c_str(), 1) : unsetenv(_name); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  const char* _name;
  std::optional<std::string> _before;
};

TEST(QNArgumentParser, TakesGlobalOptionsBeforeAndBehindTheCommand) {
  for (const auto& line : {std::vector<std::string>{"--store", "x.qn", "--json", "list"},
                           std::vector<std::string>{"list", "--store", "x.qn", "--json"},
                           std::vector<std::string>{"list", "--json", "--store=x.qn"}}) {
    const auto result = parsed(line);

    ASSERT_TRUE(result.ok());
    EXPECT_EQ(result.value().global.store, "x.qn");
    EXPECT_TRUE(result.value().global.json);
  }
}

TEST(QNArgumentParser, GlobalOptionsReachANestedCommand) {
  const auto result =
      parsed({"add", "login", "--title", "T", "--generate", "--store", "x.qn", "--password-stdin"});

  ASSERT_TRUE(result.ok()) << result.error().message;
  EXPECT_EQ(result.value().global.store, "x.qn");
  EXPECT_EQ(result.value().global.password.kind, QNPasswordSource::Kind::standardInput);
}

TEST(QNArgumentParser, LooksForTheStoreInOptionVariableAndDataFolderInThisOrder) {
  const ScopedVariable home("HOME", "/home/jo");
  const ScopedVariable data("XDG_DATA_HOME", nullptr);
  const ScopedVariable store("QUILLON_STORE", nullptr);
  EXPECT_EQ(parsed({"list"}).value().global.store, "/home/jo/.local/share/quillon/vault.qn");

  const ScopedVariable otherData("XDG_DATA_HOME", "/data");
  EXPECT_EQ(parsed({"list"}).value().global.store, "/data/quillon/vault.qn");

  const ScopedVariable otherStore("QUILLON_STORE", "mine.qn");
  EXPECT_EQ(parsed({"list"}).value().global.store, "mine.qn");
  EXPECT_EQ(parsed({"list", "--store", "given.qn"}).value().global.store, "given.qn");
}

TEST(QNArgumentParser, ARelativeDataFolderIsIgnored) {
  const ScopedVariable home("HOME", "/home/jo");
  const ScopedVariable data("XDG_DATA_HOME", "data");
  const ScopedVariable store("QUILLON_STORE", nullptr);

  EXPECT_EQ(parsed({"list"}).value().global.store, "/home/jo/.local/share/quillon/vault.qn");
}

TEST(QNArgumentParser, ReadsEachPasswordSource) {
  EXPECT_EQ(parsed({"list"}).value().global.password.kind, QNPasswordSource::Kind::terminal);
  const auto file = parsed({"list", "--password-file", "p.txt"}).value().global.password;
  EXPECT_EQ(file.kind, QNPasswordSource::Kind::file);
  EXPECT_EQ(file.file, "p.txt");
  const auto descriptor = parsed({"list", "--password-fd", "7"}).value().global.password;
  EXPECT_EQ(descriptor.kind, QNPasswordSource::Kind::descriptor);
  EXPECT_EQ(descriptor.descriptor, 7);
}

TEST(QNArgumentParser, RefusesTwoPasswordSources) {
  EXPECT_THAT(refusal({"list", "--password-stdin", "--password-file", "p.txt"}),
              HasSubstr("one --password-"));
  EXPECT_THAT(refusal({"list", "--password-fd", "3", "--password-file", "p.txt"}),
              HasSubstr("one --password-"));
  EXPECT_THAT(refusal({"list", "--password-fd", "-1"}), HasSubstr("--password-fd"));
}

TEST(QNArgumentParser, NoRefusalRepeatsWhatCouldBeASecret) {
  const std::string secret = "hunter2";
  for (const auto& line :
       {std::vector<std::string>{"list", "--password", secret},
        std::vector<std::string>{"list", "--password=" + secret},
        std::vector<std::string>{"--password", secret, "list"},
        std::vector<std::string>{"list", secret}, std::vector<std::string>{secret},
        std::vector<std::string>{"show", "x", "--pass=" + secret},
        std::vector<std::string>{"add", "login", "--title", "T", "--password=" + secret},
        std::vector<std::string>{"add", "login", "--title", "T", "--password", secret},
        std::vector<std::string>{"edit", "x", "--set", "password=" + secret},
        std::vector<std::string>{"edit", "x", "--set", "=" + secret},
        std::vector<std::string>{"edit", "x", "--set-file", secret},
        std::vector<std::string>{"edit", "x", "--add-field", secret},
        std::vector<std::string>{"edit", "x", "--add-field", "S.T:concealed=" + secret},
        std::vector<std::string>{"edit", "x", "--add-field", "S.T:totp=" + secret},
        std::vector<std::string>{"edit", "x", "--add-field", "S.T:nonsense=" + secret},
        std::vector<std::string>{"add", "router", "--title", "T", "--set", "password=" + secret},
        std::vector<std::string>{"init", "--password=" + secret}}) {
    EXPECT_THAT(refusal(line), Not(HasSubstr(secret)));
  }
}

TEST(QNArgumentParser, APasswordArgumentIsRefusedWithTheReason) {
  EXPECT_THAT(refusal({"edit", "x", "--set", "password=hunter2"}),
              HasSubstr("isn't taken from an argument"));
  EXPECT_THAT(refusal({"edit", "x", "--add-field", "S.T:totp=hunter2"}),
              HasSubstr("isn't taken from an argument"));
  EXPECT_THAT(refusal({"add", "login", "--title", "T", "--password=hunter2"}),
              HasSubstr("isn't taken from an argument"));
  EXPECT_THAT(refusal({"list", "--password", "hunter2"}),
              HasSubstr("isn't taken from an argument"));
}

TEST(QNArgumentParser, ReadsTheThreeWaysToAnItemsPassword) {
  using Add = QNAddLoginArguments;
  EXPECT_EQ(parsedAs<Add>({"add", "login", "--title", "T"}).password, QNItemPassword::none);
  EXPECT_EQ(parsedAs<Add>({"add", "login", "--title", "T", "--password"}).password,
            QNItemPassword::prompt);
  EXPECT_EQ(parsedAs<Add>({"add", "login", "--password", "--title", "T"}).password,
            QNItemPassword::prompt);
  EXPECT_EQ(parsedAs<Add>({"add", "login", "--title", "T", "--password=-"}).password,
            QNItemPassword::standardInput);
  EXPECT_EQ(parsedAs<Add>({"add", "login", "--title", "T", "--generate"}).password,
            QNItemPassword::generate);
  using Edit = QNEditArguments;
  const auto valueOf = [](const std::string& setting) {
    return parsedAs<Edit>({"edit", "x", "--set", setting}).edits.settings.at(0).value;
  };
  EXPECT_EQ(valueOf("password").from, QNGivenValue::From::prompt);
  EXPECT_EQ(valueOf("password=-").from, QNGivenValue::From::argument);
  EXPECT_EQ(valueOf("password=-").text, "-");
  EXPECT_TRUE(parsedAs<Edit>({"edit", "x", "--generate"}).edits.generate);
}

TEST(QNArgumentParser, APasswordIsGivenOrGeneratedNotBoth) {
  EXPECT_THAT(refusal({"edit", "x", "--set", "password=-", "--generate"}), HasSubstr("not both"));
  EXPECT_THAT(refusal({"edit", "x", "--generate", "--set", "password"}),
              testing::AnyOf(HasSubstr("not both"), HasSubstr("once")));
  EXPECT_THAT(refusal({"add", "login", "--title", "T", "--password", "--generate"}),
              HasSubstr("not both"));
}

TEST(QNArgumentParser, ReadsSeveralSettingsInTheirOrder) {
  const auto edit = parsedAs<QNEditArguments>(
      {"edit", "x", "--set", "title=A=B", "--set", "notes=", "--set=username=jo"});

  EXPECT_EQ(edit.item, "x");
  const auto& settings = edit.edits.settings;
  ASSERT_EQ(settings.size(), 3u);
  EXPECT_EQ(settings[0].field, "title");
  EXPECT_EQ(settings[0].value.text, "A=B");
  EXPECT_EQ(settings[1].field, "notes");
  EXPECT_EQ(settings[1].value.text, "");
  EXPECT_EQ(settings[2].value.text, "jo");
}

TEST(QNArgumentParser, ASettingDoesNotSwallowTheItem) {
  EXPECT_EQ(parsedAs<QNEditArguments>({"edit", "--set", "title=A", "Item"}).item, "Item");
  EXPECT_EQ(
      parsedAs<QNAddLoginArguments>({"add", "login", "--url", "a", "--url", "b", "--title", "T"})
          .urls,
      (std::vector<std::string>{"a", "b"}));
}

TEST(QNArgumentParser, RefusesSettingsWithoutAField) {
  EXPECT_THAT(refusal({"edit", "x", "--set", "=red"}), HasSubstr("FIELD=VALUE"));
  EXPECT_THAT(refusal({"edit", "x", "--set-file", "pin"}), HasSubstr("FIELD=FILE"));
  EXPECT_THAT(refusal({"edit", "x", "--set-file", "pin="}), HasSubstr("FIELD=FILE"));
  EXPECT_THAT(refusal({"edit", "x"}), HasSubstr("--set"));
}

TEST(QNArgumentParser, ReadsAValueFromAFile) {
  const auto edit = parsedAs<QNEditArguments>({"edit", "x", "--set-file", "A.pin=in=1.txt"});

  ASSERT_EQ(edit.edits.settings.size(), 1u);
  EXPECT_EQ(edit.edits.settings[0].field, "A.pin");
  EXPECT_EQ(edit.edits.settings[0].value.from, QNGivenValue::From::file);
  EXPECT_EQ(edit.edits.settings[0].value.file, "in=1.txt");
}

QNFieldAddition additionOf(const std::string& text) {
  return parsedAs<QNEditArguments>({"edit", "x", "--add-field", text}).edits.additions.at(0);
}

TEST(QNArgumentParser, ReadsANewField) {
  const auto added = additionOf("More.Ends: at:date=2024-07-05=x");
  EXPECT_EQ(added.section, "More");
  EXPECT_EQ(added.title, "Ends: at");
  EXPECT_EQ(added.kind, "date");
  EXPECT_EQ(added.value.text, "2024-07-05=x");

  const auto bare = additionOf("PIN:concealed");
  EXPECT_EQ(bare.section, "");
  EXPECT_EQ(bare.title, "PIN");
  EXPECT_EQ(bare.value.from, QNGivenValue::From::prompt);
}

TEST(QNArgumentParser, RefusesANewFieldWithoutTitleOrKind) {
  for (const char* const text : {"", "T", "T=v", ":string=v", "S.:string=v", "S.T"}) {
    EXPECT_THAT(refusal({"edit", "x", "--add-field", text}), HasSubstr("SECTION.TITLE:KIND"))
        << text;
  }
  EXPECT_THAT(refusal({"edit", "x", "--add-field", "T:file=v"}), HasSubstr("monthYear"));
  EXPECT_THAT(refusal({"edit", "x", "--add-field", "T:String=v"}), HasSubstr("monthYear"));
}

TEST(QNArgumentParser, ReadsAnItemOfAnyCategory) {
  const auto add =
      parsedAs<QNAddArguments>({"add", "bank-account", "--title", "T", "--notes", "N", "--tag", "a",
                                "--tag", "b", "--set", "iban=DE12", "--favorite"});
  EXPECT_EQ(add.category, "bank-account");
  EXPECT_EQ(add.title, "T");
  EXPECT_EQ(add.notes, "N");
  EXPECT_EQ(add.edits.tags, (std::vector<std::string>{"a", "b"}));
  EXPECT_TRUE(add.favorite);
  EXPECT_EQ(add.edits.settings.size(), 1u);
  EXPECT_EQ(parsedAs<QNAddArguments>({"add", "--title", "T", "001"}).category, "001");
  EXPECT_THAT(refusal({"add", "bank-account"}), HasSubstr("--title"));
}

TEST(QNArgumentParser, ALoginTakesNothingThatIsForOtherCategories) {
  EXPECT_THAT(refusal({"add", "login", "--title", "T", "--set", "a=b"}), HasSubstr("--set"));
  EXPECT_THAT(refusal({"add", "login", "router", "--title", "T"}), HasSubstr("more arguments"));
  EXPECT_THAT(refusal({"add", "router", "login", "--title", "T"}), HasSubstr("more arguments"));
}

TEST(QNArgumentParser, TakesTheTagOfALanguageInTwoFormsAndAnyCase) {
  EXPECT_EQ(parsed({"list"}).value().global.language, "");
  EXPECT_EQ(parsed({"list", "--lang", "pt-BR"}).value().global.language, "pt-BR");
  EXPECT_EQ(parsed({"--lang=de_DE", "list"}).value().global.language, "de-DE");
  EXPECT_EQ(parsed({"list", "--lang", "DE"}).value().global.language, "de");
  EXPECT_EQ(parsed({"list", "--lang", "pt-br"}).value().global.language, "pt-BR");
  EXPECT_EQ(parsed({"list", "--lang", "AR_ARAB_eg"}).value().global.language, "ar-Arab-EG");
}

TEST(QNArgumentParser, RefusesALanguageThatItDoesNotSpeakAndTellsThoseThatItDoes) {
  for (const char* const tag : {"", "d", "xx", "tlh", "zh-CN", "german", "../de", "de DE",
                                "de.UTF-8", "de-", "de--DE", "-de", "de-\xff"}) {
    EXPECT_THAT(refusal({"list", "--lang", tag}), HasSubstr("ar, de, en, es, fr, ja, pt")) << tag;
  }
}

TEST(QNArgumentParser, TakesAndRemovesTags) {
  using testing::ElementsAre;
  EXPECT_THAT(
      parsedAs<QNAddArguments>({"add", "router", "--title", "T", "--tag", "a", "--tag", "b"})
          .edits.tags,
      ElementsAre("a", "b"));
  EXPECT_THAT(parsedAs<QNAddLoginArguments>({"add", "login", "--title", "T", "--tag", "a"}).tags,
              ElementsAre("a"));
  const auto edits =
      parsedAs<QNEditArguments>({"edit", "T", "--tag", "a", "--untag", "b", "--untag", "c"}).edits;
  EXPECT_THAT(edits.tags, ElementsAre("a"));
  EXPECT_THAT(edits.tagsToRemove, ElementsAre("b", "c"));
}

TEST(QNArgumentParser, ATagIsGivenAsAnItemTakesIt) {
  using testing::ElementsAre;
  EXPECT_THAT(parsedAs<QNEditArguments>({"edit", "T", "--tag", "/a //b/"}).edits.tags,
              ElementsAre("a/b"));
  EXPECT_EQ(parsedAs<QNTagAddArguments>({"tag", "add", " a\\b", "T"}).tag, "a/b");
  EXPECT_EQ(parsedAs<QNTagRenameArguments>({"tag", "rename", " a", "b\t "}).name, "b");
  for (const char* const nameless : {"", " ", "/", " \\ //"}) {
    EXPECT_THAT(refusal({"edit", "T", "--tag", nameless}), HasSubstr("a name"));
    EXPECT_THAT(refusal({"tag", "add", nameless, "T"}), HasSubstr("a name"));
    EXPECT_THAT(refusal({"tag", "rename", "a", nameless}), HasSubstr("a name"));
  }
}

TEST(QNArgumentParser, ATagThatIsToGoIsNamedAsItIs) {
  EXPECT_EQ(parsedAs<QNTagRemoveArguments>({"tag", "remove", " /", "--all"}).tag, " /");
  EXPECT_EQ(parsedAs<QNTagRenameArguments>({"tag", "rename", "", "b"}).tag, "");
  EXPECT_THAT(parsedAs<QNEditArguments>({"edit", "T", "--untag", " "}).edits.tagsToRemove,
              testing::ElementsAre(" "));
}

TEST(QNArgumentParser, ATagIsTakenFromItemsOrFromAll) {
  const auto given = parsedAs<QNTagRemoveArguments>({"tag", "remove", "a", "T", "U", "--nested"});
  EXPECT_THAT(given.items, testing::ElementsAre("T", "U"));
  EXPECT_TRUE(given.nested);
  EXPECT_FALSE(given.all);
  EXPECT_THAT(refusal({"tag", "remove", "a"}), HasSubstr("--all"));
  EXPECT_THAT(refusal({"tag", "remove", "a", "T", "--all"}), HasSubstr("--all"));
}

TEST(QNArgumentParser, WhatMovesGoesIntoAFolderOrToTheTop) {
  EXPECT_EQ(parsedAs<QNMoveArguments>({"move", "T", "Work"}).folder, "Work");
  EXPECT_EQ(parsedAs<QNMoveArguments>({"move", "T", "--to-top"}).folder, std::nullopt);
  EXPECT_EQ(parsedAs<QNFolderMoveArguments>({"folder", "move", "A", "B"}).parent, "B");
  EXPECT_EQ(parsedAs<QNFolderMoveArguments>({"folder", "move", "A", "--to-top"}).parent,
            std::nullopt);
  EXPECT_THAT(refusal({"move", "T"}), HasSubstr("--to-top"));
  EXPECT_THAT(refusal({"folder", "move", "A"}), HasSubstr("--to-top"));
  EXPECT_THAT(refusal({"move", "T", "Work", "--to-top"}), HasSubstr("--to-top"));
}

TEST(QNArgumentParser, EveryFolderOfAPathNeedsAName) {
  EXPECT_EQ(parsedAs<QNFolderAddArguments>({"folder", "add", "A/b c"}).path, "A/b c");
  EXPECT_EQ(parsedAs<QNSmartAddArguments>({"smart", "add", "A", "title == \"x\""}).path, "A");
  for (const char* const path : {"", " ", "/", "a//b", "a/", "/a", "a/ "}) {
    EXPECT_THAT(refusal({"folder", "add", path}), HasSubstr("a name")) << path;
    EXPECT_THAT(refusal({"smart", "add", path, "TRUEPREDICATE"}), HasSubstr("a name")) << path;
  }
  EXPECT_THAT(refusal({"folder", "rename", "a", " "}), HasSubstr("a name"));
  EXPECT_THAT(refusal({"folder", "rename", "a", "b/c"}), HasSubstr("folder move"));
}

TEST(QNArgumentParser, ReadsTheFiltersOfAList) {
  const auto given = parsedAs<QNListArguments>({"list", "--tag", "t", "--folder", "f", "--category",
                                                "c", "--favorites", "--not-nested", "--sections"});
  EXPECT_EQ(given.filter.tag, "t");
  EXPECT_EQ(given.filter.folder, "f");
  EXPECT_EQ(given.filter.category, "c");
  EXPECT_TRUE(given.filter.favorites);
  EXPECT_FALSE(given.filter.nested);
  EXPECT_TRUE(given.sections);
  EXPECT_TRUE(parsedAs<QNForArguments>({"for", "x", "--tag", "t"}).filter.nested);
  EXPECT_THAT(refusal({"list", "--not-nested"}), HasSubstr("--folder"));
}

TEST(QNArgumentParser, KnowsEveryOrder) {
  EXPECT_EQ(parsedAs<QNListArguments>({"list"}).order, QNListOrder::title);
  EXPECT_EQ(parsedAs<QNListArguments>({"list", "--sort", "title"}).order, QNListOrder::title);
  EXPECT_EQ(parsedAs<QNListArguments>({"list", "--sort", "updated"}).order, QNListOrder::updated);
  EXPECT_EQ(parsedAs<QNListArguments>({"list", "--sort", "created"}).order, QNListOrder::created);
  EXPECT_EQ(parsedAs<QNListArguments>({"list", "--sort", "category"}).order, QNListOrder::category);
  EXPECT_EQ(parsedAs<QNSmartShowArguments>({"smart", "show", "f", "--sort", "strength"}).order,
            QNListOrder::strength);
  EXPECT_THAT(refusal({"list", "--sort", "color"}), HasSubstr("--sort"));
}

TEST(QNArgumentParser, RefusesTextsThatAreNotUTF8UnderTheNameOfTheirOption) {
  const std::string bad = "\xff";
  for (const std::vector<std::string>& line :
       {std::vector<std::string>{"add", "login", "--title", bad},
        {"add", "login", "--title", "T", "--username", bad},
        {"add", "login", "--title", "T", "--url", bad},
        {"add", "login", "--title", "T", "--tag", bad},
        {"add", "router", "--title", "T", "--notes", bad},
        {"add", "router", "--title", "T", "--set", bad},
        {"add", "router", "--title", "T", "--add-field", bad},
        {"edit", "T", "--unset", bad},
        {"edit", "T", "--untag", bad},
        {"edit", "T", "--set-file", bad + "=file"},
        {"find", "--url", bad},
        {"list", "--category", bad},
        {"list", "--folder", bad},
        {"find", "--where", bad},
        {"show", "T", "--field", bad},
        {"otp", "--url", bad},
        {"init", "--hint", bad},
        {"list", "--vault", bad}}) {
    EXPECT_THAT(refusal(line), testing::MatchesRegex("--[a-z-]+: the .* isn't UTF-8 text"));
  }
  EXPECT_THAT(refusal({"show", bad}), HasSubstr("ITEM: "));
  EXPECT_THAT(refusal({"find", bad}), HasSubstr("WORDS: "));
  EXPECT_THAT(refusal({"for", bad}), HasSubstr("URL: "));
  EXPECT_THAT(refusal({"tag", "add", bad, "T"}), HasSubstr("TAG: "));
  EXPECT_THAT(refusal({"folder", "delete", bad}), HasSubstr("FOLDER: "));
  EXPECT_THAT(refusal({"folder", "add", bad}), HasSubstr("PATH: "));
  EXPECT_THAT(refusal({"smart", "add", "A", bad}), HasSubstr("PREDICATE: "));
  EXPECT_THAT(refusal({"template", bad}), HasSubstr("CATEGORY: "));
  EXPECT_THAT(refusal({"vault", "add", bad}), HasSubstr("NAME: "));
}

TEST(QNArgumentParser, FilesMayHaveAnyName) {
  const std::string file = "\xff.csv";
  EXPECT_EQ(parsedAs<QNImportArguments>({"import", file}).file, file);
  EXPECT_EQ(parsedAs<QNOTPArguments>({"otp", "--url-file", file}).urlFile, file);
  const auto edits = parsedAs<QNEditArguments>({"edit", "T", "--set-file", "a=" + file}).edits;
  EXPECT_EQ(edits.settings.at(0).value.file, file);
}

TEST(QNArgumentParser, FindTakesWordsOrAPredicate) {
  EXPECT_EQ(parsedAs<QNFindArguments>({"find", "one", "list"}).words,
            (std::vector<std::string>{"one", "list"}));
  EXPECT_EQ(parsedAs<QNFindArguments>({"find", "--where", "p"}).predicate, "p");
  EXPECT_THAT(refusal({"find"}), HasSubstr("words"));
  EXPECT_THAT(refusal({"find", "a", "--where", "p"}), HasSubstr("--where"));
}

TEST(QNArgumentParser, FindLooksAtOneLevel) {
  const auto levelOf = [](const char* option) {
    return parsedAs<QNFindArguments>({"find", "a", option}).level;
  };
  EXPECT_EQ(parsedAs<QNFindArguments>({"find", "a"}).level, QNFindLevel::overview);
  EXPECT_EQ(levelOf("--title"), QNFindLevel::title);
  EXPECT_EQ(levelOf("--words"), QNFindLevel::words);
  EXPECT_EQ(levelOf("--contents"), QNFindLevel::contents);
  EXPECT_THAT(refusal({"find", "a", "--title", "--contents"}), HasSubstr("--contents"));
  EXPECT_THAT(refusal({"find", "--where", "p", "--words"}), HasSubstr("--words"));
}

TEST(QNArgumentParser, FindByAddressIsWhatForDoes) {
  EXPECT_EQ(parsedAs<QNForArguments>({"for", "https://x"}).url, "https://x");
  const auto given = parsedAs<QNForArguments>({"find", "--url", "https://x", "--tag", "t"});
  EXPECT_EQ(given.url, "https://x");
  EXPECT_EQ(given.filter.tag, "t");
  EXPECT_THAT(refusal({"find", "a", "--url", "https://x"}), HasSubstr("--url"));
  EXPECT_THAT(refusal({"find", "--title", "--url", "https://x"}), HasSubstr("words"));
}

TEST(QNArgumentParser, ReadsAGeneratorRecipe) {
  const auto given =
      parsedAs<QNGenerateArguments>({"generate", "--length", "32", "--no-symbols", "--no-digits",
                                     "--avoid-ambiguous", "--count", "3"});

  EXPECT_EQ(given.recipe.length, 32u);
  EXPECT_FALSE(given.recipe.symbols);
  EXPECT_FALSE(given.recipe.digits);
  EXPECT_TRUE(given.recipe.withoutAmbiguous);
  EXPECT_EQ(given.count, 3u);
  EXPECT_THAT(refusal({"generate", "--length", "3"}), HasSubstr("--length"));
  EXPECT_THAT(refusal({"generate", "--count", "0"}), HasSubstr("--count"));
  EXPECT_THAT(refusal({"generate", "--length", "many"}), HasSubstr("--length"));
}

TEST(QNArgumentParser, AnItemMayBeginWithADashBehindTwo) {
  EXPECT_EQ(parsedAs<QNShowArguments>({"show", "--reveal", "--", "-dash"}).item, "-dash");
}

TEST(QNArgumentParser, RefusesMissingAndUnknownCommands) {
  EXPECT_THAT(refusal({}), HasSubstr("quillon --help"));
  EXPECT_THAT(refusal({"frobnicate"}), HasSubstr("quillon --help"));
  EXPECT_THAT(refusal({"add"}), HasSubstr("quillon categories"));
  EXPECT_THAT(refusal({"show"}), HasSubstr("ITEM"));
  EXPECT_THAT(refusal({"completion", "tcsh"}), HasSubstr("tcsh"));
}

TEST(QNArgumentParser, HelpAndVersionAreTexts) {
  EXPECT_EQ(parsedAs<QNTextArguments>({"--version"}).text, "quillon 0.1.0\n");
  EXPECT_THAT(parsedAs<QNTextArguments>({"--help"}).text, HasSubstr("import"));
  EXPECT_THAT(parsedAs<QNTextArguments>({"list", "--help"}).text, HasSubstr("--trashed"));
  EXPECT_TRUE(parsed({"--version", "--json"}).value().global.json);
}

TEST(QNArgumentParser, LooksForTheVaultInOptionAndVariable) {
  const ScopedVariable none("QUILLON_VAULT", nullptr);
  EXPECT_EQ(parsed({"list"}).value().global.vault, "");
  EXPECT_EQ(parsed({"vault", "icon", "--vault", "work"}).value().global.vault, "work");

  const ScopedVariable vault("QUILLON_VAULT", "club");
  EXPECT_EQ(parsed({"list"}).value().global.vault, "club");
  EXPECT_EQ(parsed({"--vault", "work", "list"}).value().global.vault, "work");
}

TEST(QNArgumentParser, InitMakesNoOtherVaultThanTheFirst) {
  EXPECT_THAT(refusal({"init", "--vault", "work"}), HasSubstr("vault add"));
  const ScopedVariable vault("QUILLON_VAULT", "work");
  EXPECT_TRUE(parsed({"init"}).ok());
}

TEST(QNArgumentParser, ReadsWhereAOneTimePasswordComesFrom) {
  EXPECT_EQ(parsedAs<QNOTPArguments>({"otp", "Bank"}).item, "Bank");
  EXPECT_EQ(parsedAs<QNOTPArguments>({"otp", "--url", "-"}).url, "-");
  EXPECT_EQ(parsedAs<QNOTPArguments>({"otp", "--url-file", "u"}).urlFile, "u");
  EXPECT_EQ(parsedAs<QNOTPArguments>({"otp", "x", "--at", "59"}).at, 59);
  EXPECT_EQ(parsedAs<QNOTPArguments>({"otp", "x", "--at", "-1"}).at, -1);
  EXPECT_EQ(parsedAs<QNOTPArguments>({"otp", "x"}).at, std::nullopt);
  EXPECT_TRUE(parsedAs<QNOTPArguments>({"otp", "x", "--qr"}).drawsQRCode);
}

TEST(QNArgumentParser, RefusesAOneTimePasswordOfNothingOrOfTwoThings) {
  EXPECT_THAT(refusal({"otp"}), HasSubstr("needs"));
  refusal({"otp", "Bank", "--url", "u"});
  refusal({"otp", "Bank", "--url-file", "u"});
  refusal({"otp", "--url", "u", "--url-file", "f"});
  refusal({"otp", "Bank", "--qr", "--at", "59"});
}

TEST(QNArgumentParser, RefusesAMomentThatNoClockHas) {
  refusal({"otp", "x", "--at", "soon"});
  refusal({"otp", "x", "--at", "9007199254740993"});
  refusal({"otp", "x", "--at", "9223372036854775807"});
  refusal({"otp", "x", "--at", "99999999999999999999"});
  EXPECT_EQ(parsedAs<QNOTPArguments>({"otp", "x", "--at", "9007199254740992"}).at,
            9007199254740992);
}

TEST(QNArgumentParser, ReadsWordsAndPINsToGenerate) {
  EXPECT_EQ(parsedAs<QNGenerateArguments>({"generate"}).words.has_value(), false);
  const auto words = parsedAs<QNGenerateArguments>({"generate", "--words", "5"}).words;
  EXPECT_EQ(words->count, 5u);
  EXPECT_EQ(words->separator, "-");
  EXPECT_EQ(parsedAs<QNGenerateArguments>({"generate", "--separator", "", "--words", "5"})
                .words->separator,
            "");
  EXPECT_EQ(parsedAs<QNGenerateArguments>({"generate", "--pin", "6"}).pinDigits, 6u);
}

TEST(QNArgumentParser, RefusesWhatDoesNotGoTogetherInAPassword) {
  for (const char* const number : {"1", "65", "0", "-2", "many"}) {
    refusal({"generate", "--words", number});
  }
  for (const char* const number : {"2", "65", "0", "-3"}) refusal({"generate", "--pin", number});
  refusal({"generate", "--words", "5", "--pin", "6"});
  refusal({"generate", "--words", "5", "--length", "20"});
  refusal({"generate", "--pin", "5", "--no-symbols"});
  EXPECT_THAT(refusal({"generate", "--separator", "x"}), HasSubstr("--words"));
  EXPECT_THAT(refusal({"generate", "--words", "5", "--separator", "\xff"}), HasSubstr("UTF-8"));
}

TEST(QNArgumentParser, ReadsTheCommandsForVaults) {
  parsedAs<QNVaultListArguments>({"vault", "list"});
  const auto add = parsedAs<QNVaultAddArguments>({"vault", "add", "work"});
  EXPECT_EQ(add.name, "work");
  EXPECT_FALSE(add.hasOwnPassword);
  EXPECT_TRUE(
      parsedAs<QNVaultAddArguments>({"vault", "add", "w", "--own-password"}).hasOwnPassword);
  const auto own =
      parsedAs<QNVaultAddArguments>({"vault", "add", "w", "--own-password-file", "p.txt"});
  EXPECT_TRUE(own.hasOwnPassword);
  EXPECT_EQ(own.ownPassword.file, "p.txt");
  EXPECT_EQ(parsedAs<QNVaultIconArguments>({"vault", "icon", "--set", "a.png"}).set, "a.png");
  EXPECT_EQ(parsedAs<QNVaultIconArguments>({"vault", "icon", "--save", "b.png"}).save, "b.png");
  EXPECT_TRUE(parsedAs<QNVaultIconArguments>({"vault", "icon", "--clear"}).clear);
  EXPECT_EQ(parsedAs<QNVaultColorArguments>({"vault", "color", "#123abc"}).set, "#123abc");
  EXPECT_TRUE(parsedAs<QNVaultColorArguments>({"vault", "color", "--clear"}).clear);
}

TEST(QNArgumentParser, RefusesCommandsForVaultsThatContradictThemselves) {
  refusal({"vault"});
  refusal({"vault", "add"});
  EXPECT_THAT(refusal({"vault", "add", "w", "--hint", "h"}), HasSubstr("--own-password"));
  refusal({"vault", "add", "w", "--own-password-stdin", "--own-password-file", "f"});
  refusal({"vault", "icon", "--set", "a", "--clear"});
  refusal({"vault", "icon", "--set", "a", "--save", "b"});
  refusal({"vault", "color", "#123abc", "--clear"});
}

TEST(QNArgumentParser, ReadsWhereACopyGoes) {
  const auto sibling = parsedAs<QNCopyArguments>({"copy", "Bank", "--to", "work"});
  EXPECT_EQ(sibling.item, "Bank");
  EXPECT_EQ(sibling.vault, "work");
  EXPECT_TRUE(sibling.store.empty());

  const auto other = parsedAs<QNCopyArguments>(
      {"copy", "Bank", "--to", "work", "--to-store", "b.qn", "--to-password-file", "pw"});
  EXPECT_EQ(other.store, "b.qn");
  EXPECT_EQ(other.password.kind, QNPasswordSource::Kind::file);
  EXPECT_EQ(other.password.prefix, "to-password");
  EXPECT_THAT(refusal({"copy", "Bank", "--to", "work", "--to-password-fd", "3"}),
              HasSubstr("--to-store"));
  EXPECT_THAT(refusal({"copy", "Bank"}), HasSubstr("--to"));
}

TEST(QNArgumentParser, RefusesAnExportThatNobodyConfirmed) {
  EXPECT_THAT(refusal({"export", "all.json"}), HasSubstr("every password in clear"));

  const auto given = parsedAs<QNExportArguments>({"export", "--plaintext", "--force", "all.json"});
  EXPECT_EQ(given.file, "all.json");
  EXPECT_TRUE(given.force);
  EXPECT_TRUE(parsedAs<QNExportArguments>({"export", "--plaintext"}).file.empty());
}

TEST(QNArgumentParser, ReadsTheOtherSideOfAMerge) {
  const auto given = parsedAs<QNMergeArguments>(
      {"merge", "b.qn", "--other-vault", "work", "--other-password-stdin", "--dry-run"});
  EXPECT_EQ(given.other, "b.qn");
  EXPECT_EQ(given.vault, "work");
  EXPECT_EQ(given.password.kind, QNPasswordSource::Kind::standardInput);
  EXPECT_EQ(given.password.prefix, "other-password");
  EXPECT_TRUE(given.dryRun);
  EXPECT_THAT(refusal({"merge"}), HasSubstr("OTHER"));
}

TEST(QNArgumentParser, ReadsWhoseValuesSettleConflicts) {
  EXPECT_EQ(parsedAs<QNResolveArguments>({"resolve", "x", "--keep", "mine"}).keep,
            QNConflictSide::mine);
  EXPECT_EQ(parsedAs<QNResolveArguments>({"resolve", "x", "--keep", "theirs"}).keep,
            QNConflictSide::theirs);

  const auto given =
      parsedAs<QNResolveArguments>({"resolve", "x", "--field", "a=b=mine", "--field", "c=theirs"});
  EXPECT_FALSE(given.keep);
  ASSERT_EQ(given.choices.size(), 2u);
  EXPECT_EQ(given.choices[0].field, "a=b");
  EXPECT_EQ(given.choices[0].side, QNConflictSide::mine);
  EXPECT_EQ(given.choices[1].field, "c");
  EXPECT_EQ(given.choices[1].side, QNConflictSide::theirs);
}

TEST(QNArgumentParser, RefusesToSettleConflictsByHalf) {
  EXPECT_THAT(refusal({"resolve", "x"}), HasSubstr("--keep mine"));
  EXPECT_THAT(refusal({"resolve", "x", "--keep", "both"}), HasSubstr("--keep"));
  for (const char* const choice : {"a", "a=", "a=both", "=mine", "mine"}) {
    EXPECT_THAT(refusal({"resolve", "x", "--field", choice}), HasSubstr("FIELD=mine"));
  }
  EXPECT_THAT(refusal({"resolve", "x", "--keep", "mine", "--field", "a=mine"}),
              HasSubstr("excludes"));
}

}  // namespace
}  // namespace quillon
