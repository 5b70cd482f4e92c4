#include "cli/arguments/QNArgumentParser.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>

#include "cli/QNToolError.h"
#include "cli/arguments/QNCommandOutline.h"
#include "cli/arguments/internal/QNDefinition.h"
#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr const char* kPasswordPrefix = "password";

QNError wrongUsage(std::string_view message) {
  return toolError(QNExit::wrongUsage, message);
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
  defineExport(app, out);
  defineFinding(app, out);
  defineItems(app, out);
  defineOrganisation(app, out);
  defineCopies(app, out);
  defineTemplates(app, out);
  defineCare(app, out);
  defineMerge(app, out);
  defineVault(app, out);
  defineOTP(app, out);
  defineGenerate(app, out);
  defineTerminal(app, out);
  defineCompletion(app, out);
}

// Those that resources/Locales has tables of.
constexpr std::array<std::string_view, 7> kLanguages = {"ar", "de", "en", "es", "fr", "ja", "pt"};

// As BCP 47 writes a subtag: "BR" for a country, "Latn" for a script, small letters for the rest.
std::string canonicalSubtag(std::string subtag, bool isFirst) {
  for (char& c : subtag) c = lowercaseASCII(c);
  if (isFirst) return subtag;
  if (subtag.size() == 2) subtag[1] = uppercaseASCII(subtag[1]);
  if (subtag.size() == 2 || subtag.size() == 4) subtag[0] = uppercaseASCII(subtag[0]);
  return subtag;
}

// In any case; "de_DE" is what people know from elsewhere.
std::string languageTagFrom(const std::string& given) {
  std::string tag;
  for (std::size_t start = 0; start <= given.size();) {
    const std::size_t end = std::min(given.find_first_of("-_", start), given.size());
    if (start > 0) tag += '-';
    tag += canonicalSubtag(given.substr(start, end - start), start == 0);
    start = end + 1;
  }
  const bool isTag = !tag.empty() && tag.size() <= 35 && tag.back() != '-' &&
                     tag.find("--") == std::string::npos &&
                     std::all_of(tag.begin(), tag.end(),
                                 [](unsigned char c) { return c == '-' || std::isalnum(c) != 0; });
  const std::string_view language = std::string_view(tag).substr(0, tag.find('-'));
  if (isTag && std::find(kLanguages.begin(), kLanguages.end(), language) != kLanguages.end()) {
    return tag;
  }
  refuse(
      fmt::format("--lang takes one of these languages, perhaps with a country, such as pt-BR: "
                  "{}",
                  fmt::join(kLanguages, ", ")));
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

// What the line left out.
void complete(QNGlobalArguments& global, const QNGlobalArguments& defaults) {
  global.kept = defaults.kept;
  global.json = global.json || defaults.json;
  if (global.language.empty()) global.language = defaults.language;
  // The password and the vault of a shell are those of its store alone.
  if (global.password.kind == QNPasswordSource::Kind::terminal && global.store.empty()) {
    global.password = defaults.password;
  }
  global.password.prefix = kPasswordPrefix;
  if (global.vault.empty() && global.store.empty()) global.vault = defaults.vault;
  if (global.vault.empty() && defaults.store.empty()) {
    global.vault = environmentVariable("QUILLON_VAULT");
  }
  if (global.store.empty()) global.store = defaults.store;
  if (global.store.empty()) global.store = defaultStore();
}

QNArguments textArguments(const QNGlobalArguments& global, std::string name, std::string text) {
  return {global, QNTextArguments{std::move(name), std::move(text)}};
}

void defineAll(CLI::App& app, QNArguments& out) {
  app.fallthrough();
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string(versionText()));
  app.add_option("--store", out.global.store,
                 "The store file; by default QUILLON_STORE, then quillon/vault.qn in your data "
                 "folder");
  app.add_option("--vault", out.global.vault,
                 "The vault of the store; by default QUILLON_VAULT, then the first one")
      ->type_name("NAME")
      ->check(isText());
  app.add_flag("--json", out.global.json, "Print one JSON value");
  app.add_option_function<std::string>(
         "--lang", [&out](const std::string& tag) { out.global.language = languageTagFrom(tag); },
         "The language of titles, labels and dates: ar, de, en, es, fr, ja or pt, perhaps with a "
         "country, such as pt-BR; by default that of the environment")
      ->type_name("TAG");
  addPasswordSource(app, kPasswordPrefix, "The vault's password", out.global.password);
  defineCommands(app, out);
}

// "{title,updated,created}", which CLI11 puts behind the type's name.
std::vector<std::string> choicesFrom(const std::string& typeName) {
  std::vector<std::string> choices;
  const auto open = typeName.find('{');
  if (open == std::string::npos || !typeName.ends_with('}')) return choices;
  const std::string list = typeName.substr(open + 1, typeName.size() - open - 2);
  for (const std::string_view choice : componentsSeparatedByString(list, ",")) {
    choices.emplace_back(choice);
  }
  return choices;
}

QNCommandOutline outlineOf(const CLI::App& command, const std::string& name) {
  QNCommandOutline outline{name, {}, {}};
  for (const CLI::Option* const option : command.get_options()) {
    const std::vector<std::string> choices = choicesFrom(option->get_type_name());
    const bool takesValue = option->get_expected_max() > 0 && option->get_type_size_max() > 0;
    if (option->get_positional()) outline.words.push_back({option->get_name(true), true, choices});
    for (const std::string& word : option->get_lnames()) {
      outline.options.push_back({"--" + word, takesValue, choices});
    }
  }
  return outline;
}

void addOutlines(const CLI::App& command, const std::string& name,
                 std::vector<QNCommandOutline>& outlines) {
  outlines.push_back(outlineOf(command, name));
  for (const CLI::App* const nested : command.get_subcommands({})) {
    addOutlines(*nested, name.empty() ? nested->get_name() : name + " " + nested->get_name(),
                outlines);
  }
}

}  // namespace

std::string_view versionText() {
  return "quillon " QUILLON_VERSION;
}

QNResult<QNArguments> parseArguments(const std::vector<std::string>& arguments,
                                     const QNGlobalArguments& defaults) {
  QNArguments out;
  CLI::App app("Keeps passwords in an encrypted vault.", "quillon");
  defineAll(app, out);
  // Help and version end the reading, perhaps before --json was seen.
  QNGlobalArguments forText;
  forText.json =
      defaults.json || std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::CallForHelp&) {
    return textArguments(forText, "help", app.help());
  } catch (const CLI::CallForVersion&) {
    return textArguments(forText, "version", std::string(versionText()) + "\n");
  } catch (const CLI::ParseError& error) {
    return usageErrorFrom(app, error);
  }
  if (!out.global.vault.empty() && std::holds_alternative<QNInitArguments>(out.command)) {
    return wrongUsage("init makes the first vault; quillon vault add makes another one");
  }
  complete(out.global, defaults);
  return out;
}

std::vector<QNCommandOutline> commandOutlines() {
  QNArguments out;
  CLI::App app;
  defineAll(app, out);
  std::vector<QNCommandOutline> outlines;
  addOutlines(app, "", outlines);
  return outlines;
}

}  // namespace quillon
