// init, import, passwd, info, check, backup, vault: the commands for the store and its vaults.

#include "cli/arguments/internal/QNDefinition.h"

namespace quillon {
namespace {

void defineVaultAdd(CLI::App& vault, QNArguments& out) {
  auto [command, given] =
      define<QNVaultAddArguments>(vault, out, "add", "Add a vault that the first one opens");
  command->add_option("NAME", given->name, "Its name")->required()->check(isText());
  command
      ->add_option("--hint", given->hint,
                   "What reminds you of its own password; readable without it")
      ->check(isText());
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

}  // namespace

void defineInit(CLI::App& app, QNArguments& out) {
  auto [command, given] = define<QNInitArguments>(app, out, "init", "Make a new store");
  command
      ->add_option("--hint", given->hint, "What reminds you of the password; readable without it")
      ->check(isText());
}

void defineImport(CLI::App& app, QNArguments& out) {
  auto [command, given] = define<QNImportArguments>(app, out, "import", "Add the items of a file");
  command
      ->add_option("FILE", given->file,
                   "CSV of a browser or password manager, or what quillon export made")
      ->required();
  command->add_flag("--dry-run", given->dryRun, "Tell what would be added, and add nothing");
}

void defineCare(CLI::App& app, QNArguments& out) {
  auto passwd = define<QNPasswdArguments>(app, out, "passwd", "Change the password of the vault");
  addPasswordSource(*passwd.command, "new-password", "The new password", passwd.given->newPassword);
  define<QNInfoArguments>(app, out, "info", "Tell what the store holds; needs no password");
  auto check = define<QNCheckArguments>(app, out, "check", "Test every row of the store");
  check.command->add_flag("--repair", check.given->repair,
                          "Mend damaged folders, and bring what lies nowhere to the top");
  auto backup = define<QNBackupArguments>(app, out, "backup", "Copy the store; needs no password");
  backup.command->add_option("FILE", backup.given->file, "A file that isn't there yet")->required();
}

void defineVault(CLI::App& app, QNArguments& out) {
  auto* const vault = app.add_subcommand("vault", "The vaults of the store");
  vault->require_subcommand(1);
  define<QNVaultListArguments>(*vault, out, "list", "List them; needs no password");
  defineVaultAdd(*vault, out);
  auto icon = define<QNVaultIconArguments>(*vault, out, "icon", "Tell of the vault's picture");
  auto* const set =
      icon.command
          ->add_option("--set", icon.given->set, "Take this PNG, JPEG or SVG of plain shapes")
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

}  // namespace quillon
