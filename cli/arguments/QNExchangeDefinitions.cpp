// export, history, duplicate, copy, fingerprint, merge, conflicts, resolve: the commands for what
// leaves an item or a store, and for what comes together again.

#include "cli/arguments/internal/QNDefinition.h"

namespace quillon {
namespace {

constexpr const char* kNoPlaintext =
    "an export holds every password in clear, and whoever gets to read it has them all: give "
    "--plaintext if that is what you want; quillon backup makes a copy that stays encrypted";

void defineCopy(CLI::App& app, QNArguments& out) {
  auto [command, given] =
      defineForItem<QNCopyArguments>(app, out, "copy", "Copy one item into another vault");
  command->add_option("--to", given->vault, "The vault that gets it")
      ->type_name("VAULT")
      ->required()
      ->check(isText());
  auto* const store =
      command->add_option("--to-store", given->store, "The store of that vault, if it is another")
          ->type_name("FILE");
  addPasswordSource(*command, "to-password", "The password of that store", given->password);
  command->parse_complete_callback([given = given, store] {
    if (store->count() == 0 && given->password.kind != QNPasswordSource::Kind::terminal) {
      refuse("--to-password-... is for another store: --to-store");
    }
  });
}

std::optional<QNConflictSide> sideNamed(std::string_view name) {
  if (name == "mine") return QNConflictSide::mine;
  if (name == "theirs") return QNConflictSide::theirs;
  return std::nullopt;
}

// The last "=": a field's title may hold others.
QNConflictChoice choiceOrRefuse(const std::string& text) {
  const std::size_t end = text.rfind('=');
  const auto side = end == std::string::npos ? std::nullopt : sideNamed(text.substr(end + 1));
  if (!side || end == 0) refuse("--field takes FIELD=mine or FIELD=theirs");
  return {text.substr(0, end), *side};
}

void defineResolve(CLI::App& app, QNArguments& out) {
  auto [command, given] =
      defineForItem<QNResolveArguments>(app, out, "resolve", "Settle the conflicts of one item");
  auto* const keep =
      command
          ->add_option_function<std::string>(
              "--keep", [given = given](const std::string& side) { given->keep = sideNamed(side); },
              "For all of them: mine, what the item has, or theirs, what a merge put aside")
          ->type_name("SIDE")
          ->check(CLI::IsMember({"mine", "theirs"}));
  addRepeated(
      *command, "--field", "FIELD=SIDE", "Settle this one, as conflicts names it",
      [given = given](const std::string& text) { given->choices.push_back(choiceOrRefuse(text)); })
      ->check(isText())
      ->excludes(keep);
  command->final_callback([given = given, &out] {
    if (!given->keep && given->choices.empty()) {
      refuse("resolve needs --keep mine, --keep theirs or --field FIELD=SIDE");
    }
    out.command = *given;
  });
}

}  // namespace

void defineExport(CLI::App& app, QNArguments& out) {
  auto [command, given] =
      define<QNExportArguments>(app, out, "export", "Write all items as JSON, in clear");
  command->add_option("FILE", given->file, "A file that isn't there yet; else standard output");
  command->add_flag("--plaintext", given->plaintext, "Yes, in clear: must be given");
  command->add_flag("--force", given->force, "Even to a terminal");
  command->parse_complete_callback([given = given] {
    if (!given->plaintext) refuse(kNoPlaintext);
  });
}

void defineCopies(CLI::App& app, QNArguments& out) {
  auto history = defineForItem<QNHistoryArguments>(app, out, "history",
                                                   "Tell the former passwords of one item");
  history.command->add_flag("--reveal", history.given->reveal, "Show them in clear");
  defineForItem<QNDuplicateArguments>(app, out, "duplicate", "Make a second item of one");
  defineCopy(app, out);
  defineForItem<QNFingerprintArguments>(app, out, "fingerprint",
                                        "Tell a number that equal items share");
}

void defineMerge(CLI::App& app, QNArguments& out) {
  auto [command, given] =
      define<QNMergeArguments>(app, out, "merge", "Bring the vault and another store into step");
  command->add_option("OTHER", given->other, "The file of the other store")->required();
  command->add_option("--other-vault", given->vault, "Its vault; by default that of the same name")
      ->type_name("NAME")
      ->check(isText());
  addPasswordSource(*command, "other-password", "The other store's password", given->password);
  command->add_flag("--dry-run", given->dryRun, "Tell what would be done, and do nothing");
  auto conflicts =
      define<QNConflictsArguments>(app, out, "conflicts", "List what merges left to be decided");
  conflicts.command->add_flag("--reveal", conflicts.given->reveal, "Show secrets in clear");
  defineResolve(app, out);
}

}  // namespace quillon
