#include "cli/arguments/QNArgumentParser.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <memory>

#include "cli/QNToolError.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

// One command's arguments while they are read; kept alive by the callback that hands them over.
template <class Arguments>
struct Definition {
  CLI::App* command;
  std::shared_ptr<Arguments> given = std::make_shared<Arguments>();
};

template <class Arguments>
Definition<Arguments> define(CLI::App& app, QNArguments& out, const std::string& name,
                             const std::string& description) {
  Definition<Arguments> made{app.add_subcommand(name, description)};
  made.command->callback([given = made.given, &out] { out.command = *given; });
  made.command->footer("quillon --help tells the options of every command.");
  return made;
}

QNError wrongUsage(std::string_view message) {
  return toolError(QNExit::wrongUsage, message);
}

[[noreturn]] void refuse(const std::string& message) {
  throw CLI::ValidationError(message, CLI::ExitCodes::ValidationError);
}

// Beyond it a second isn't a number of its own for a clock.
constexpr std::int64_t kFarthestMoment = std::int64_t{1} << 53;

void addPasswordSource(CLI::App& app, const std::string& prefix, const std::string& what,
                       QNPasswordSource& source) {
  using Kind = QNPasswordSource::Kind;
  const auto choose = [&source, prefix](Kind kind) {
    if (source.kind != Kind::terminal) refuse("the password comes from one --" + prefix + "-...");
    source.kind = kind;
  };
  app.add_option_function<std::string>(
         "--" + prefix + "-file",
         [&source, choose](const std::string& path) {
           choose(Kind::file);
           source.file = path;
         },
         what + " is the first line of this file")
      ->type_name("FILE");
  app.add_option_function<int>(
         "--" + prefix + "-fd",
         [&source, choose, prefix](int number) {
           if (number < 0) refuse("--" + prefix + "-fd takes an open file descriptor");
           choose(Kind::descriptor);
           source.descriptor = number;
         },
         what + " is the next line from this open file descriptor")
      ->type_name("N");
  app.add_flag_callback(
      "--" + prefix + "-stdin", [choose] { choose(Kind::standardInput); },
      what + " is the next line of standard input");
}

void defineInit(CLI::App& app, QNArguments& out) {
  auto [command, given] = define<QNInitArguments>(app, out, "init", "Make a new store");
  command->add_option("--hint", given->hint,
                      "What reminds you of the password; readable without it");
}

void defineImport(CLI::App& app, QNArguments& out) {
  auto [command, given] =
      define<QNImportArguments>(app, out, "import", "Add the logins of a CSV file");
  command->add_option("FILE", given->file, "An export of a browser or password manager")
      ->required();
  command->add_flag("--dry-run", given->dryRun, "Tell what would be added, and add nothing");
}

constexpr const char* kCategoryNames =
    "Its name as quillon categories tells it, its title in your language, or its uuid";

void addCategoryFilter(CLI::App& command, std::optional<std::string>& category) {
  command.add_option("--category", category, "Only the items of this category");
}

void defineList(CLI::App& app, QNArguments& out) {
  auto [command, given] = define<QNListArguments>(app, out, "list", "List titles and subtitles");
  command->add_flag("--trashed", given->trashed, "List what is in the trash instead");
  command->add_flag("--long", given->withUUIDs, "Show the uuid of each item, too");
  addCategoryFilter(*command, given->category);
  command
      ->add_option_function<std::string>(
          "--sort",
          [given = given](const std::string& order) {
            if (order == "updated") given->order = QNListOrder::updated;
            if (order == "created") given->order = QNListOrder::created;
          },
          "title, as your language sorts; updated or created, newest first")
      ->check(CLI::IsMember({"title", "updated", "created"}));
}

void defineFind(CLI::App& app, QNArguments& out) {
  auto [command, given] =
      define<QNFindArguments>(app, out, "find", "Find items by title or website");
  auto* const words =
      command->add_option("WORDS", given->words, "All of them must occur in the title");
  command->add_option("--url", given->url, "Find the items of this web page")->excludes(words);
  command->add_flag("--long", given->withUUIDs, "Show the uuid of each item, too");
  addCategoryFilter(*command, given->category);
  command->parse_complete_callback([given = given] {
    if (given->words.empty() && !given->url) refuse("find needs words or --url");
  });
}

void defineShow(CLI::App& app, QNArguments& out) {
  auto [command, given] = define<QNShowArguments>(app, out, "show", "Show one item");
  command->add_option("ITEM", given->item, "Its uuid, or its title if no other has it")->required();
  command->add_flag("--reveal", given->reveal, "Show secrets in clear");
  command->add_option("--field", given->field,
                      "Print this field alone: title, username, password, url, notes, or a field "
                      "by its identifier or title, as FIELD or SECTION.FIELD");
}

// "--password" asks, "--password=-" reads standard input, and anything else is refused.
QNItemPassword itemPasswordFrom(const std::string& value) {
  if (value.empty()) return QNItemPassword::prompt;
  if (value != "-") refuse(kNoSecretArguments);
  return QNItemPassword::standardInput;
}

void addGenerate(CLI::App& command, QNItemPassword& password) {
  command.add_flag_callback(
      "--generate",
      [&password] {
        if (password != QNItemPassword::none) refuse("a password is given or generated, not both");
        password = QNItemPassword::generate;
      },
      "Make a random password");
}

// Reads one --set. Its value is never repeated in a message.
QNFieldSetting settingFrom(const std::string& text) {
  const std::size_t equals = text.find('=');
  QNFieldSetting setting{text.substr(0, equals), {}};
  if (setting.field.empty()) refuse("--set takes FIELD=VALUE");
  if (equals == std::string::npos) {
    setting.value.from = QNGivenValue::From::prompt;
  } else {
    setting.value.text = text.substr(equals + 1);
  }
  const bool isPassword = setting.field == nameOfField(QNFieldName::password);
  if (isPassword && !setting.value.text.empty() && setting.value.text != "-") {
    refuse(kNoSecretArguments);
  }
  return setting;
}

QNFieldSetting fileSettingFrom(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == 0 || equals == std::string::npos || equals + 1 == text.size()) {
    refuse("--set-file takes FIELD=FILE");
  }
  return {text.substr(0, equals), {QNGivenValue::From::file, "", text.substr(equals + 1)}};
}

constexpr std::array<std::string_view, 9> kAddableKinds = {
    "string", "concealed", "date", "monthYear", "URL", "email", "phone", "address", "totp"};

// Reads one --add-field, SECTION.TITLE:KIND=VALUE. Its value is never repeated in a message.
QNFieldAddition additionFrom(const std::string& text) {
  const std::size_t equals = text.find('=');
  const std::string name = text.substr(0, equals);
  const std::size_t colon = name.rfind(':');
  const std::size_t dot = name.find('.');
  QNFieldAddition addition;
  if (colon != std::string::npos) {
    const bool hasSection = dot < colon;
    if (hasSection) addition.section = name.substr(0, dot);
    const std::size_t start = hasSection ? dot + 1 : 0;
    addition.title = name.substr(start, colon - start);
    addition.kind = name.substr(colon + 1);
  }
  if (addition.title.empty()) refuse("--add-field takes SECTION.TITLE:KIND=VALUE");
  if (std::find(kAddableKinds.begin(), kAddableKinds.end(), addition.kind) == kAddableKinds.end()) {
    refuse(fmt::format("the kind of a new field is one of {}", fmt::join(kAddableKinds, ", ")));
  }
  if (equals == std::string::npos) {
    addition.value.from = QNGivenValue::From::prompt;
  } else {
    addition.value.text = text.substr(equals + 1);
  }
  const bool isSecret = addition.kind == "concealed" || addition.kind == "totp";
  if (isSecret && !addition.value.text.empty() && addition.value.text != "-") {
    refuse(kNoSecretArguments);
  }
  return addition;
}

// An option that may be given several times, one value each.
template <class Read>
void addRepeated(CLI::App& command, const std::string& name, const std::string& form,
                 const std::string& description, const Read& read) {
  command
      .add_option_function<std::vector<std::string>>(
          name,
          [read](const std::vector<std::string>& values) {
            for (const std::string& value : values) read(value);
          },
          description + ". May be given several times")
      ->type_name(form)
      ->allow_extra_args(false);
}

// `edits` lives as long as the application.
void addSettings(CLI::App& command, QNItemEdits& edits) {
  addRepeated(command, "--set", "FIELD=VALUE",
              "Set title, username, url, notes, or a field by its identifier or title, as FIELD or "
              "SECTION.FIELD, and FIELD.street and so on for parts of an address; an empty value "
              "takes it away. A secret is asked for with FIELD alone, and read from standard "
              "input with FIELD=-",
              [&edits](const std::string& text) { edits.settings.push_back(settingFrom(text)); });
  addRepeated(
      command, "--set-file", "FIELD=FILE", "Set a field to the content of this file",
      [&edits](const std::string& text) { edits.settings.push_back(fileSettingFrom(text)); });
  addRepeated(command, "--add-field", "SECTION.TITLE:KIND=VALUE",
              fmt::format("Make a field, and its section if there is none, of one of these kinds: "
                          "{}",
                          fmt::join(kAddableKinds, ", ")),
              [&edits](const std::string& text) { edits.additions.push_back(additionFrom(text)); });
  command.add_flag_callback(
      "--generate", [&edits] { edits.generate = true; }, "Make a random password");
  command.parse_complete_callback([&edits] {
    const bool setsPassword = std::any_of(
        edits.settings.begin(), edits.settings.end(),
        [](const auto& setting) { return setting.field == nameOfField(QNFieldName::password); });
    if (edits.generate && setsPassword) refuse("a password is given or generated, not both");
  });
}

void defineAddLogin(CLI::App& add, QNArguments& out) {
  auto [command, given] = define<QNAddLoginArguments>(add, out, "login", "Add a login");
  command->add_option("--title", given->title, "Its title")->required();
  command->add_option("--username", given->username, "Its user name");
  command->add_option("--url", given->urls, "An address; may be given several times")
      ->allow_extra_args(false);
  command->add_option("--notes", given->notes, "Its notes");
  command
      ->add_option_function<std::string>(
          "--password",
          [given = given](const std::string& value) { given->password = itemPasswordFrom(value); },
          "Ask for its password; with \"=-\" read it from standard input")
      ->expected(0, 1)
      ->type_name("[=-]");
  addGenerate(*command, given->password);
  command->add_flag("--favorite", given->favorite, "Mark it as a favorite");
}

// What stands behind "login" and isn't an option of it reaches the options of "add".
void refuseOptionsOfAdd(const CLI::App& add) {
  for (const CLI::Option* const option : add.get_options()) {
    if (option->count() == 0 || option->check_name("--help")) continue;
    if (option->get_positional()) refuse("there are more arguments than this command takes");
    refuse("there is no option " + option->get_name() + " for add login");
  }
}

void defineAdd(CLI::App& app, QNArguments& out) {
  auto* const add = app.add_subcommand("add", "Add one item");
  const auto given = std::make_shared<QNAddArguments>();
  add->add_option("CATEGORY", given->category, kCategoryNames);
  add->add_option("--title", given->title, "Its title");
  add->add_option("--notes", given->notes, "Its notes");
  addRepeated(*add, "--tag", "TEXT", "A tag",
              [given](const std::string& tag) { given->tags.push_back(tag); });
  add->add_flag("--favorite", given->favorite, "Mark it as a favorite");
  addSettings(*add, given->edits);
  defineAddLogin(*add, out);
  add->footer("quillon template CATEGORY tells the fields of a category.");
  add->final_callback([add, given, &out] {
    if (!add->get_subcommands().empty()) return refuseOptionsOfAdd(*add);
    if (given->category.empty()) refuse("add needs a category; quillon categories lists them");
    if (given->title.empty()) refuse("--title is required");
    out.command = *given;
  });
}

void defineEdit(CLI::App& app, QNArguments& out) {
  auto [command, given] = define<QNEditArguments>(app, out, "edit", "Change one item");
  command->add_option("ITEM", given->item, "Its uuid, or its title if no other has it")->required();
  addSettings(*command, given->edits);
  addRepeated(*command, "--unset", "FIELD", "Take a field away",
              [given = given](const std::string& name) { given->edits.removals.push_back(name); });
  command->final_callback([given = given, &out] {
    if (given->edits.empty()) refuse("edit needs --set, --unset, --add-field or --generate");
    out.command = *given;
  });
}

void defineTemplates(CLI::App& app, QNArguments& out) {
  define<QNCategoriesArguments>(app, out, "categories",
                                "List the categories and their numbers of items; needs no "
                                "password");
  auto [command, given] = define<QNTemplateArguments>(
      app, out, "template", "Tell the fields of a category; needs no store");
  command->add_option("CATEGORY", given->category, kCategoryNames)->required();
}

template <class Arguments>
Definition<Arguments> defineForItem(CLI::App& app, QNArguments& out, const std::string& name,
                                    const std::string& description) {
  auto made = define<Arguments>(app, out, name, description);
  made.command->add_option("ITEM", made.given->item, "Its uuid, or its title if no other has it")
      ->required();
  return made;
}

void defineCare(CLI::App& app, QNArguments& out) {
  auto passwd = define<QNPasswdArguments>(app, out, "passwd", "Change the password of the vault");
  addPasswordSource(*passwd.command, "new-password", "The new password", passwd.given->newPassword);
  define<QNInfoArguments>(app, out, "info", "Tell what the store holds; needs no password");
  define<QNCheckArguments>(app, out, "check", "Test every row of the store");
  auto backup = define<QNBackupArguments>(app, out, "backup", "Copy the store; needs no password");
  backup.command->add_option("FILE", backup.given->file, "A file that isn't there yet")->required();
}

// Text that goes into a password, and into JSON.
std::string separatorOrRefuse(const std::string& separator) {
  if (!isUTF8(separator)) refuse("the separator isn't UTF-8 text");
  return separator;
}

void defineGenerate(CLI::App& app, QNArguments& out) {
  auto [command, given] =
      define<QNGenerateArguments>(app, out, "generate", "Print random passwords");
  auto* const length =
      command->add_option("--length", given->recipe.length, "Characters of each, 20 by default")
          ->check(CLI::Range(4, 256));
  auto* const noSymbols = command->add_flag_callback(
      "--no-symbols", [given = given] { given->recipe.symbols = false; }, "Without symbols");
  auto* const noDigits = command->add_flag_callback(
      "--no-digits", [given = given] { given->recipe.digits = false; }, "Without digits");
  auto* const noAmbiguous = command->add_flag("--avoid-ambiguous", given->recipe.withoutAmbiguous,
                                              "Without 0 O 1 l I |, which look alike");
  auto* const words = command
                          ->add_option_function<std::uint32_t>(
                              "--words",
                              [given = given](std::uint32_t count) {
                                if (!given->words) given->words.emplace();
                                given->words->count = count;
                              },
                              "English words instead of characters, this many")
                          ->check(CLI::Range(2, 64));
  command
      ->add_option_function<std::string>(
          "--separator",
          [given = given](const std::string& separator) {
            if (!given->words) given->words.emplace();
            given->words->separator = separatorOrRefuse(separator);
          },
          "What stands between the words, a dash by default; may be empty")
      ->needs(words);
  auto* const pin = command->add_option("--pin", given->pinDigits, "A PIN of this many digits")
                        ->check(CLI::Range(QNSPG::kMinDigits, QNSPG::kMaxDigits));
  for (auto* const other : {words, pin}) {
    other->excludes(length)->excludes(noSymbols)->excludes(noDigits)->excludes(noAmbiguous);
  }
  words->excludes(pin);
  command->add_option("--count", given->count, "How many")->check(CLI::Range(1, 10000));
}

void defineOTP(CLI::App& app, QNArguments& out) {
  auto [command, given] =
      define<QNOTPArguments>(app, out, "otp", "Print the one-time password of an item or a URL");
  auto* const item =
      command->add_option("ITEM", given->item, "Its uuid, or its title if no other has it");
  auto* const url =
      command
          ->add_option("--url", given->url,
                       "Of this URL; \"-\" reads it from standard input. Arguments are seen by "
                       "every user of the machine")
          ->type_name("URL")
          ->excludes(item);
  command->add_option("--url-file", given->urlFile, "Of the URL in this file")
      ->type_name("FILE")
      ->excludes(item)
      ->excludes(url);
  auto* const at =
      command->add_option("--at", given->at, "At this moment instead of now, in seconds since 1970")
          ->type_name("SECONDS")
          ->check(CLI::Range(-kFarthestMoment, kFarthestMoment));
  command
      ->add_flag("--qr", given->drawsQRCode, "Draw the URL as a QR code instead; it shows the seed")
      ->excludes(at);
  command->parse_complete_callback([given = given] {
    if (!given->item && !given->url && given->urlFile.empty()) {
      refuse("otp needs an item, --url or --url-file");
    }
  });
}

void defineVaultAdd(CLI::App& vault, QNArguments& out) {
  auto [command, given] =
      define<QNVaultAddArguments>(vault, out, "add", "Add a vault that the first one opens");
  command->add_option("NAME", given->name, "Its name")->required();
  command->add_option("--hint", given->hint,
                      "What reminds you of its own password; readable without it");
  command->add_flag("--own-password", given->hasOwnPassword,
                    "Ask for a password that opens it, too");
  addPasswordSource(*command, "own-password", "Its own password", given->ownPassword);
  command->parse_complete_callback([given = given] {
    if (given->ownPassword.kind != QNPasswordSource::Kind::terminal) given->hasOwnPassword = true;
    if (given->hint && !given->hasOwnPassword) {
      refuse("a hint is for a password of its own: --own-password");
    }
  });
}

void defineVault(CLI::App& app, QNArguments& out) {
  auto* const vault = app.add_subcommand("vault", "The vaults of the store");
  vault->require_subcommand(1);
  define<QNVaultListArguments>(*vault, out, "list", "List them; needs no password");
  defineVaultAdd(*vault, out);
  auto icon = define<QNVaultIconArguments>(*vault, out, "icon", "Tell of the vault's picture");
  auto* const set = icon.command->add_option("--set", icon.given->set, "Take this PNG or JPEG")
                        ->type_name("FILE");
  auto* const save =
      icon.command->add_option("--save", icon.given->save, "Copy it to a file that isn't there yet")
          ->type_name("FILE")
          ->excludes(set);
  icon.command->add_flag("--clear", icon.given->clear, "Take it away")
      ->excludes(set)
      ->excludes(save);
  auto color = define<QNVaultColorArguments>(*vault, out, "color", "Tell of the vault's colour");
  auto* const value = color.command->add_option("COLOR", color.given->set, "The new one, #RRGGBB");
  color.command->add_flag("--clear", color.given->clear, "Take it away")->excludes(value);
}

void defineCompletion(CLI::App& app, QNArguments& out) {
  auto [command, given] =
      define<QNCompletionArguments>(app, out, "completion", "Print the completions of a shell");
  command->add_option("SHELL", given->shell, "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}));
}

void defineCommands(CLI::App& app, QNArguments& out) {
  defineInit(app, out);
  defineImport(app, out);
  defineList(app, out);
  defineFind(app, out);
  defineShow(app, out);
  defineAdd(app, out);
  defineEdit(app, out);
  defineForItem<QNTrashArguments>(app, out, "trash", "Move one item to the trash");
  defineForItem<QNRestoreArguments>(app, out, "restore", "Take one item out of the trash");
  auto remove =
      defineForItem<QNDeleteArguments>(app, out, "delete", "Delete one trashed item for good");
  remove.command->add_flag("--force", remove.given->force, "Even if it isn't in the trash");
  defineTemplates(app, out);
  defineCare(app, out);
  defineVault(app, out);
  defineOTP(app, out);
  defineGenerate(app, out);
  defineCompletion(app, out);
}

// "de_DE" is what people know from elsewhere.
std::string languageTagFrom(std::string tag) {
  std::replace(tag.begin(), tag.end(), '_', '-');
  const bool fits = tag.size() >= 2 && tag.size() <= 35 &&
                    std::all_of(tag.begin(), tag.end(),
                                [](unsigned char c) { return std::isalnum(c) != 0 || c == '-'; });
  if (!fits) refuse("--lang takes the tag of a language, such as de or pt-BR");
  return tag;
}

std::string environmentVariable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// Empty if there is no home folder to put it in.
std::filesystem::path defaultStore() {
  if (auto store = environmentVariable("QUILLON_STORE"); !store.empty()) return store;
  const std::filesystem::path data = environmentVariable("XDG_DATA_HOME");
  if (data.is_absolute()) return data / "quillon" / "vault.qn";
  const std::filesystem::path home = environmentVariable("HOME");
  return home.empty() ? home : home / ".local" / "share" / "quillon" / "vault.qn";
}

// Names of options without their values: what was typed may be a secret.
std::string unexpectedMessage(const std::vector<std::string>& extras) {
  for (const std::string& extra : extras) {
    const std::string name = extra.substr(0, extra.find('='));
    if (name == "--password") return kNoSecretArguments;
    if (name.size() > 1 && name.front() == '-') return "there is no option " + name + " here";
  }
  return "there are more arguments than this command takes";
}

QNError usageErrorFrom(const CLI::App& app, const CLI::ParseError& error) {
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
    return wrongUsage(unexpectedMessage(app.remaining(true)));
  }
  if (app.get_subcommands().empty()) {
    return wrongUsage("there is no such command, or none was given; quillon --help lists them");
  }
  return wrongUsage(error.what());
}

QNArguments textArguments(const QNGlobalArguments& global, std::string name, std::string text) {
  return {global, QNTextArguments{std::move(name), std::move(text)}};
}

}  // namespace

std::string_view versionText() {
  return "quillon " QUILLON_VERSION;
}

QNResult<QNArguments> parseArguments(const std::vector<std::string>& arguments) {
  QNArguments out;
  CLI::App app("Keeps passwords in an encrypted vault.", "quillon");
  app.fallthrough();
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string(versionText()));
  app.add_option("--store", out.global.store,
                 "The store file; by default QUILLON_STORE, then quillon/vault.qn in your data "
                 "folder");
  app.add_option("--vault", out.global.vault,
                 "The vault of the store; by default QUILLON_VAULT, then the first one")
      ->type_name("NAME");
  app.add_flag("--json", out.global.json, "Print one JSON value");
  app.add_option_function<std::string>(
         "--lang", [&out](const std::string& tag) { out.global.language = languageTagFrom(tag); },
         "The language of titles and dates, such as de or pt-BR; by default that of the "
         "environment")
      ->type_name("TAG");
  addPasswordSource(app, "password", "The vault's password", out.global.password);
  defineCommands(app, out);
  // Help and version end the reading, perhaps before --json was seen.
  QNGlobalArguments forText;
  forText.json = std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::CallForHelp&) {
    return textArguments(forText, "help", app.help());
  } catch (const CLI::CallForVersion&) {
    return textArguments(forText, "version", std::string(versionText()) + "\n");
  } catch (const CLI::ParseError& error) {
    return usageErrorFrom(app, error);
  }
  if (out.global.store.empty()) out.global.store = defaultStore();
  if (out.global.vault.empty()) {
    out.global.vault = environmentVariable("QUILLON_VAULT");
  } else if (std::holds_alternative<QNInitArguments>(out.command)) {
    return wrongUsage("init makes the first vault; quillon vault add makes another one");
  }
  return out;
}

}  // namespace quillon
