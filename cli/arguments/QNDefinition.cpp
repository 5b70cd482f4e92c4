#include "cli/arguments/internal/QNDefinition.h"

#include <map>

#include "cli/fields/QNTagName.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {

void refuse(const std::string& message) {
  throw CLI::ValidationError(message, CLI::ExitCodes::ValidationError);
}

CLI::Validator isText() {
  return {[](std::string& value) {
            return isUTF8(value) ? std::string() : std::string("the value isn't UTF-8 text");
          },
          ""};
}

void addItem(CLI::App& command, std::string& item) {
  command.add_option("ITEM", item, "Its uuid, or its title if no other has it")
      ->required()
      ->check(isText());
}

std::string tagOrRefuse(const std::string& tag) {
  auto cleaned = cleanedTag(tag);
  if (!cleaned) refuse("a tag needs a name");
  return std::move(*cleaned);
}

void addFilters(CLI::App& command, QNFilterArguments& filter) {
  command.add_option("--category", filter.category, "Only the items of this category")
      ->check(isText());
  command
      .add_option("--tag", filter.tag, "Only the items that have this tag, or one nested below it")
      ->type_name("NAME")
      ->check(isText());
  command
      .add_option("--folder", filter.folder,
                  "Only the items in this folder, or in one below it: its uuid, or titles from the "
                  "top, parted by /")
      ->type_name("FOLDER")
      ->check(isText());
  command.add_flag("--favorites", filter.favorites, "Only the favorites");
  command.add_flag_callback(
      "--not-nested", [&filter] { filter.nested = false; },
      "With --tag and --folder, nothing that lies below them");
  command.parse_complete_callback([&filter] {
    if (!filter.nested && !filter.tag && !filter.folder) {
      refuse("--not-nested is for --tag and --folder");
    }
  });
}

void addOrder(CLI::App& command, QNListOrder& order) {
  static const std::map<std::string, QNListOrder> kOrders = {
      {"title", QNListOrder::title},       {"updated", QNListOrder::updated},
      {"created", QNListOrder::created},   {"category", QNListOrder::category},
      {"strength", QNListOrder::strength},
  };
  command
      .add_option_function<std::string>(
          "--sort", [&order](const std::string& name) { order = kOrders.at(name); },
          "title or category, as your language sorts; updated or created, newest first; strength, "
          "the weakest password first")
      ->type_name("ORDER")
      ->check(CLI::IsMember({"title", "updated", "created", "category", "strength"}));
}

void addSections(CLI::App& command, bool& sections) {
  command.add_flag("--sections", sections,
                   "Under headings: first letters, months, categories or strengths");
}

void addLong(CLI::App& command, bool& withUUIDs) {
  command.add_flag("--long", withUUIDs, "Show the uuid of each, too");
}

void addPasswordSource(CLI::App& app, const std::string& prefix, const std::string& what,
                       QNPasswordSource& source) {
  using Kind = QNPasswordSource::Kind;
  source.prefix = prefix;
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

}  // namespace quillon
