// favorite, move, tag, folder, smart: the commands that arrange items.

#include "cli/arguments/internal/QNDefinition.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr const char* kFolder = "Its uuid, or titles from the top, parted by /";

CLI::Option* addFolder(CLI::App& command, const std::string& name, std::string& folder) {
  return command.add_option(name, folder, kFolder)->required()->check(isText());
}

// Where something goes: into a folder, or out of any. `target` lives as long as the application.
void addTarget(CLI::App& command, const std::string& name, std::optional<std::string>& target,
               const std::string& description) {
  auto* const folder = command.add_option(name, target, kFolder)->check(isText());
  auto* const top = command.add_flag("--to-top", description)->excludes(folder);
  command.parse_complete_callback([folder, top, name] {
    if (folder->count() + top->count() == 0) refuse("give " + name + " or --to-top");
  });
}

// Every folder from the top has one.
std::string pathOrRefuse(const std::string& path) {
  for (const std::string_view title : componentsSeparatedByString(path, "/")) {
    if (isBlankText(title)) refuse("a folder needs a name");
  }
  return path;
}

void addPath(CLI::App& command, std::string& path) {
  command
      .add_option_function<std::string>(
          "PATH", [&path](const std::string& given) { path = pathOrRefuse(given); },
          "Titles from the top, parted by /; those before the last are made if need be")
      ->required()
      ->check(isText());
}

CLI::Option* addItems(CLI::App& command, std::vector<std::string>& items) {
  return command.add_option("ITEM", items, "Uuids, or titles if no other item has them")
      ->check(isText());
}

void defineTagAdd(CLI::App& tag, QNArguments& out) {
  auto [command, given] = define<QNTagAddArguments>(tag, out, "add", "Give items a tag");
  command
      ->add_option_function<std::string>(
          "TAG", [given = given](const std::string& name) { given->tag = tagOrRefuse(name); },
          "The tag; one below another is written as the other, / and a name")
      ->required()
      ->check(isText());
  addItems(*command, given->items)->required();
}

void defineTagRemove(CLI::App& tag, QNArguments& out) {
  auto [command, given] = define<QNTagRemoveArguments>(tag, out, "remove", "Take a tag from items");
  command->add_option("TAG", given->tag, "The tag")->required()->check(isText());
  auto* const items = addItems(*command, given->items);
  auto* const all = command->add_flag("--all", given->all, "From every item")->excludes(items);
  command->add_flag("--nested", given->nested, "Also the tags below it");
  command->parse_complete_callback([items, all] {
    if (items->count() + all->count() == 0) refuse("give ITEM or --all");
  });
}

void defineTagRename(CLI::App& tag, QNArguments& out) {
  auto [command, given] = define<QNTagRenameArguments>(
      tag, out, "rename", "Rename a tag of every item, and with it those below it");
  command->add_option("TAG", given->tag, "The tag")->required()->check(isText());
  command
      ->add_option_function<std::string>(
          "NAME", [given = given](const std::string& name) { given->name = tagOrRefuse(name); },
          "The whole new one")
      ->required()
      ->check(isText());
}

void defineTag(CLI::App& app, QNArguments& out) {
  auto* const tag = app.add_subcommand("tag", "The tags of the items");
  tag->require_subcommand(1);
  define<QNTagListArguments>(*tag, out, "list", "List them with their numbers of items");
  defineTagAdd(*tag, out);
  defineTagRemove(*tag, out);
  defineTagRename(*tag, out);
}

void defineFolder(CLI::App& app, QNArguments& out) {
  auto* const folder = app.add_subcommand("folder", "The folders of the vault");
  folder->require_subcommand(1);
  auto list = define<QNFolderListArguments>(*folder, out, "list", "Draw them as a tree");
  addLong(*list.command, list.given->withUUIDs);
  auto add = define<QNFolderAddArguments>(*folder, out, "add", "Make a folder");
  addPath(*add.command, add.given->path);
  auto move = define<QNFolderMoveArguments>(*folder, out, "move", "Move one into another");
  addFolder(*move.command, "FOLDER", move.given->folder);
  addTarget(*move.command, "PARENT", move.given->parent, "Into none");
  auto rename = define<QNFolderRenameArguments>(*folder, out, "rename", "Give one another title");
  addFolder(*rename.command, "FOLDER", rename.given->folder);
  rename.command
      ->add_option_function<std::string>(
          "TITLE",
          [given = rename.given](const std::string& title) {
            if (title.find('/') != std::string::npos) {
              refuse("/ parts folders; quillon folder move puts one into another");
            }
            given->title = pathOrRefuse(title);
          },
          "Its new title")
      ->required()
      ->check(isText());
  auto remove = define<QNFolderDeleteArguments>(
      *folder, out, "delete", "Delete one; its items stay, and the folders in it move up");
  addFolder(*remove.command, "FOLDER", remove.given->folder);
}

void defineSmart(CLI::App& app, QNArguments& out) {
  auto* const smart = app.add_subcommand("smart", "Folders that answer a stored question");
  smart->require_subcommand(1);
  auto list = define<QNSmartListArguments>(*smart, out, "list", "List them with their predicates");
  addLong(*list.command, list.given->withUUIDs);
  auto add = define<QNSmartAddArguments>(*smart, out, "add", "Make one");
  addPath(*add.command, add.given->path);
  add.command
      ->add_option("PREDICATE", add.given->predicate,
                   "What holds for its items, as quillon find --where takes it")
      ->required()
      ->check(isText());
  auto show = define<QNSmartShowArguments>(*smart, out, "show", "List the items of one");
  addFolder(*show.command, "FOLDER", show.given->folder);
  addOrder(*show.command, show.given->order);
  addSections(*show.command, show.given->sections);
  addLong(*show.command, show.given->withUUIDs);
  auto remove = define<QNSmartDeleteArguments>(*smart, out, "delete", "Delete one");
  addFolder(*remove.command, "FOLDER", remove.given->folder);
}

}  // namespace

void defineOrganisation(CLI::App& app, QNArguments& out) {
  auto favorite =
      defineForItem<QNFavoriteArguments>(app, out, "favorite", "Mark one item as a favorite");
  favorite.command->add_flag("--off", favorite.given->off, "Take the mark away");
  auto move = defineForItem<QNMoveArguments>(app, out, "move", "Put one item into a folder");
  addTarget(*move.command, "FOLDER", move.given->folder, "Into none");
  defineTag(app, out);
  defineFolder(app, out);
  defineSmart(app, out);
}

}  // namespace quillon
