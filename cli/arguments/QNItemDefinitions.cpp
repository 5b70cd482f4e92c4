// show to delete, categories, template: the commands for items and their categories.

#include <fmt/format.h>

#include <algorithm>

#include "cli/arguments/QNGivenValues.h"
#include "cli/arguments/internal/QNDefinition.h"

namespace quillon {
namespace {

constexpr const char* kCategoryNames =
    "Its name as quillon categories tells it, its title in your language, or its uuid";

void defineShow(CLI::App& app, QNArguments& out) {
  auto [command, given] = define<QNShowArguments>(app, out, "show", "Show one item");
  addItem(*command, given->item);
  command->add_flag("--reveal", given->reveal, "Show secrets in clear");
  command
      ->add_option("--field", given->field,
                   "Print this field alone: title, username, password, url, notes, or a field "
                   "by its identifier or title, as FIELD or SECTION.FIELD")
      ->check(isText());
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

// `edits` lives as long as the application.
void addSettings(CLI::App& command, QNItemEdits& edits) {
  addRepeated(command, "--set", "FIELD=VALUE",
              "Set title, username, url, notes, or a field by its identifier or title, as FIELD or "
              "SECTION.FIELD, and FIELD.street and so on for parts of an address; an empty value "
              "takes it away. A secret is asked for with FIELD alone, and read from standard "
              "input with FIELD=-",
              [&edits](const std::string& text) {
                edits.settings.push_back(valueOrRefuse(settingFrom(text)));
              })
      ->check(isText());
  addRepeated(command, "--set-file", "FIELD=FILE", "Set a field to the content of this file",
              [&edits](const std::string& text) {
                edits.settings.push_back(valueOrRefuse(fileSettingFrom(text)));
              });
  addRepeated(command, "--add-field", "SECTION.TITLE:KIND=VALUE",
              fmt::format("Make a field, and its section if there is none, of one of these kinds: "
                          "{}",
                          addableKinds()),
              [&edits](const std::string& text) {
                edits.additions.push_back(valueOrRefuse(additionFrom(text)));
              })
      ->check(isText());
  command.add_flag_callback(
      "--generate", [&edits] { edits.generate = true; }, "Make a random password");
  command.parse_complete_callback([&edits] {
    const bool setsPassword = std::any_of(
        edits.settings.begin(), edits.settings.end(),
        [](const auto& setting) { return setting.field == nameOfField(QNFieldName::password); });
    if (edits.generate && setsPassword) refuse("a password is given or generated, not both");
  });
}

CLI::Option* addTitle(CLI::App& command, std::string& title) {
  return command.add_option("--title", title, "Its title")->check(isText());
}

// `tags` lives as long as the application.
void addTags(CLI::App& command, std::vector<std::string>& tags) {
  addRepeated(command, "--tag", "NAME", "Give it a tag", [&tags](const std::string& tag) {
    tags.push_back(tagOrRefuse(tag));
  })->check(isText());
}

void defineAddLogin(CLI::App& add, QNArguments& out) {
  auto [command, given] = define<QNAddLoginArguments>(add, out, "login", "Add a login");
  addTitle(*command, given->title)->required();
  command->add_option("--username", given->username, "Its user name")->check(isText());
  command->add_option("--url", given->urls, "An address; may be given several times")
      ->check(isText())
      ->allow_extra_args(false);
  command->add_option("--notes", given->notes, "Its notes")->check(isText());
  addTags(*command, given->tags);
  command
      ->add_option_function<std::string>(
          "--password",
          [given = given](const std::string& value) {
            given->password = valueOrRefuse(itemPasswordFrom(value));
          },
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
  add->add_option("CATEGORY", given->category, kCategoryNames)->check(isText());
  addTitle(*add, given->title);
  add->add_option("--notes", given->notes, "Its notes")->check(isText());
  addTags(*add, given->edits.tags);
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
  addItem(*command, given->item);
  addSettings(*command, given->edits);
  addRepeated(*command, "--unset", "FIELD", "Take a field away",
              [given = given](const std::string& name) { given->edits.removals.push_back(name); })
      ->check(isText());
  addTags(*command, given->edits.tags);
  addRepeated(*command, "--untag", "NAME", "Take a tag away", [given = given](const auto& tag) {
    given->edits.tagsToRemove.push_back(tag);
  })->check(isText());
  auto* const favorite = command->add_flag_callback(
      "--favorite", [given = given] { given->edits.favorite = true; }, "Mark it as a favorite");
  command
      ->add_flag_callback(
          "--no-favorite", [given = given] { given->edits.favorite = false; }, "Take the mark away")
      ->excludes(favorite);
  command->final_callback([given = given, &out] {
    if (given->edits.empty()) {
      refuse(
          "edit needs what to change, such as --set FIELD=VALUE; quillon edit --help tells more");
    }
    out.command = *given;
  });
}

}  // namespace

void defineItems(CLI::App& app, QNArguments& out) {
  defineShow(app, out);
  defineAdd(app, out);
  defineEdit(app, out);
  defineForItem<QNTrashArguments>(app, out, "trash", "Move one item to the trash");
  defineForItem<QNRestoreArguments>(app, out, "restore", "Take one item out of the trash");
  auto remove =
      defineForItem<QNDeleteArguments>(app, out, "delete", "Delete one trashed item for good");
  remove.command->add_flag("--force", remove.given->force, "Even if it isn't in the trash");
}

void defineTemplates(CLI::App& app, QNArguments& out) {
  define<QNCategoriesArguments>(app, out, "categories",
                                "List the categories and their numbers of items; needs no "
                                "password");
  auto [command, given] = define<QNTemplateArguments>(
      app, out, "template", "Tell the fields of a category; needs no store");
  command->add_option("CATEGORY", given->category, kCategoryNames)->required()->check(isText());
}

}  // namespace quillon
