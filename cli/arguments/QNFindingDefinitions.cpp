// list, find, for: the commands that look for items.

#include "cli/arguments/internal/QNDefinition.h"

namespace quillon {
namespace {

void defineList(CLI::App& app, QNArguments& out) {
  auto [command, given] = define<QNListArguments>(app, out, "list", "List titles and subtitles");
  command->add_flag("--trashed", given->trashed, "List what is in the trash instead");
  addFilters(*command, given->filter);
  addOrder(*command, given->order);
  addSections(*command, given->sections);
  addLong(*command, given->withUUIDs);
}

struct Level {
  const char* option;
  QNFindLevel level;
  const char* description;
};
constexpr Level kLevels[] = {
    {"--title", QNFindLevel::title, "Look in titles alone"},
    {"--words", QNFindLevel::words, "Look at the beginnings of words, in titles and addresses"},
    {"--contents", QNFindLevel::contents,
     "Look everywhere, in passwords and former ones, too; for a secret do it in quillon shell, "
     "since every user of the machine can read an argument"},
};

// At most one of them.
void addLevels(CLI::App& command, QNFindLevel& level) {
  std::vector<CLI::Option*> options;
  for (const Level& each : kLevels) {
    auto* const option = command.add_flag_callback(
        each.option, [&level, &each] { level = each.level; }, each.description);
    for (auto* const other : options) option->excludes(other);
    options.push_back(option);
  }
}

// --url is what `for` does; scripts rely on it.
void defineFind(CLI::App& app, QNArguments& out) {
  auto [command, given] =
      define<QNFindArguments>(app, out, "find", "Find items by words, or by what holds for them");
  const auto url = std::make_shared<std::string>();
  auto* const words =
      command
          ->add_option("WORDS", given->words,
                       "All of them must occur in the title, the subtitle or the first website, "
                       "or be the item's whole uuid")
          ->check(isText());
  auto* const where = command
                          ->add_option("--where", given->predicate,
                                       "Find the items that this predicate holds for, such as "
                                       "'passwordStrength < 40 AND ANY tagsForSearch == \"work\"'")
                          ->type_name("PREDICATE")
                          ->check(isText())
                          ->excludes(words);
  auto* const page = command->add_option("--url", *url, "The same as quillon for")
                         ->type_name("URL")
                         ->check(isText())
                         ->excludes(words)
                         ->excludes(where);
  addLevels(*command, given->level);
  addFilters(*command, given->filter);
  addLong(*command, given->withUUIDs);
  command->final_callback([given = given, url, words, where, page, &out] {
    if (words->count() + where->count() + page->count() == 0) {
      refuse("find needs words or --where");
    }
    if (words->count() == 0 && given->level != QNFindLevel::overview) {
      refuse("--title, --words and --contents are for words");
    }
    if (page->count() == 0) {
      out.command = *given;
    } else {
      out.command = QNForArguments{given->filter, *url, given->withUUIDs};
    }
  });
}

void defineFor(CLI::App& app, QNArguments& out) {
  auto [command, given] = define<QNForArguments>(
      app, out, "for", "List what fits a web page, in the order in which it is offered there");
  command->add_option("URL", given->url, "The page's address")->required()->check(isText());
  addFilters(*command, given->filter);
  addLong(*command, given->withUUIDs);
}

}  // namespace

void defineFinding(CLI::App& app, QNArguments& out) {
  defineList(app, out);
  defineFind(app, out);
  defineFor(app, out);
}

}  // namespace quillon
