// pick, shell: the commands that talk with a person at a terminal.

#include "cli/arguments/internal/QNDefinition.h"

namespace quillon {
namespace {

constexpr int kMaxSeconds = 24 * 60 * 60;

// `value` lives as long as the application.
void addSeconds(CLI::App& command, const std::string& name, std::chrono::seconds& value,
                const std::string& description) {
  command
      .add_option_function<int>(
          name, [&value](int seconds) { value = std::chrono::seconds(seconds); }, description)
      ->type_name("SECONDS")
      ->check(CLI::Range(0, kMaxSeconds).description(""));
}

void definePick(CLI::App& app, QNArguments& out) {
  using Use = QNPickArguments::Use;
  auto [command, given] =
      define<QNPickArguments>(app, out, "pick", "Find an item while you type, in the terminal");
  command->add_option("WORDS", given->words, "What to begin with")->check(isText());
  addFilters(*command, given->filter);
  auto* const print = command->add_option("--print", given->field,
                                          "Print this field; you choose one if none is named");
  print->type_name("FIELD")->check(isText());
  command
      ->add_option_function<std::string>(
          "--copy",
          [given = given](const std::string& field) {
            given->use = Use::copy;
            given->field = field.empty() ? std::string(nameOfField(QNFieldName::password)) : field;
          },
          "Copy this field to the clipboard; the password if none is named")
      ->expected(0, 1)
      ->type_name("[=FIELD]")
      ->check(isText())
      ->excludes(print);
  command
      ->add_option("--clipboard", given->clipboard,
                   "The program that takes what is copied, such as wl-copy, xclip, xsel or pbcopy; "
                   "\"terminal\" for the terminal itself")
      ->type_name("PROGRAM")
      ->check(isText());
  addSeconds(*command, "--clear", given->clear,
             "Clear the clipboard after so long, 45 by default; 0 for never");
}

void defineShell(CLI::App& app, QNArguments& out) {
  auto [command, given] =
      define<QNShellArguments>(app, out, "shell", "Unlock once, then run any of these commands");
  addSeconds(*command, "--idle", given->idle,
             "Lock the vault after so long without a key, 300 by default; 0 for never");
  command->add_flag_callback(
      "--no-history", [given = given] { given->keepsHistory = false; },
      "Neither read nor write the history");
}

}  // namespace

void defineTerminal(CLI::App& app, QNArguments& out) {
  definePick(app, out);
  defineShell(app, out);
}

}  // namespace quillon
