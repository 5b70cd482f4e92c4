#pragma once
// What commands and their options are defined with. CLI11 takes seconds to compile: only the
// sources of arguments/ include this.

#include <CLI/CLI.hpp>
#include <memory>

#include "cli/arguments/QNArguments.h"
#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// One command's arguments while they are read; kept alive by the callback that hands them over.
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
  made.command->footer("quillon --help lists the options that every command takes.");
  return made;
}

/// Ends the reading as wrong usage. The message never repeats a value that could be a secret.
[[noreturn]] void refuse(const std::string& message);
/// The value, or wrong usage with the reason.
template <class Value>
Value valueOrRefuse(QNResult<Value> read) {
  if (!read) refuse(read.error().message);
  return std::move(read).value();
}

/// Refuses a value that isn't UTF-8. Names of files are what the system takes, and may be anything.
CLI::Validator isText();

/// The options --PREFIX-file, --PREFIX-fd and --PREFIX-stdin; `what` begins their descriptions.
void addPasswordSource(CLI::App& app, const std::string& prefix, const std::string& what,
                       QNPasswordSource& source);
/// "ITEM", which must be given.
void addItem(CLI::App& command, std::string& item);
/// A command whose arguments name one item.
template <class Arguments>
Definition<Arguments> defineForItem(CLI::App& app, QNArguments& out, const std::string& name,
                                    const std::string& description) {
  auto made = define<Arguments>(app, out, name, description);
  addItem(*made.command, made.given->item);
  return made;
}

/// A tag as an item takes it; one without a name is refused, since nobody would see it.
std::string tagOrRefuse(const std::string& tag);
/// The options that narrow a listing: --category, --tag, --folder, --favorites, --not-nested.
void addFilters(CLI::App& command, QNFilterArguments& filter);
/// --sort.
void addOrder(CLI::App& command, QNListOrder& order);
/// --sections.
void addSections(CLI::App& command, bool& sections);
/// --long.
void addLong(CLI::App& command, bool& withUUIDs);

/// An option that may be given several times, one value each.
template <class Read>
CLI::Option* addRepeated(CLI::App& command, const std::string& name, const std::string& form,
                         const std::string& description, const Read& read) {
  return command
      .add_option_function<std::vector<std::string>>(
          name,
          [read](const std::vector<std::string>& values) {
            for (const std::string& value : values) read(value);
          },
          description + ". May be given several times")
      ->type_name(form)
      ->allow_extra_args(false);
}

// The commands, in the order in which help lists them. `out` lives as long as the application.
void defineInit(CLI::App& app, QNArguments& out);
void defineImport(CLI::App& app, QNArguments& out);
void defineExport(CLI::App& app, QNArguments& out);
void defineFinding(CLI::App& app, QNArguments& out);       // list, find, for
void defineItems(CLI::App& app, QNArguments& out);         // show to delete
void defineOrganisation(CLI::App& app, QNArguments& out);  // favorite to smart
void defineCopies(CLI::App& app, QNArguments& out);        // history to fingerprint
void defineTemplates(CLI::App& app, QNArguments& out);     // categories, template
void defineCare(CLI::App& app, QNArguments& out);          // passwd to backup
void defineMerge(CLI::App& app, QNArguments& out);         // merge, conflicts, resolve
void defineVault(CLI::App& app, QNArguments& out);
void defineOTP(CLI::App& app, QNArguments& out);
void defineGenerate(CLI::App& app, QNArguments& out);
void defineTerminal(CLI::App& app, QNArguments& out);  // pick, shell

}  // namespace quillon
