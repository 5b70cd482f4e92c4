#include <exception>

#include "cli/arguments/QNArgumentParser.h"
#include "cli/commands/QNCommands.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNMessages.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

// The language of one command, and the one before it afterwards.
class CommandLanguage {
 public:
  explicit CommandLanguage(const std::string& tag)
      : _before(QNLocalization::sharedLocalization().language()), _locale(tag) {
    QNLocalization::sharedLocalization().setLanguage(tag);
  }
  ~CommandLanguage() { QNLocalization::sharedLocalization().setLanguage(_before); }
  CommandLanguage(const CommandLanguage&) = delete;
  CommandLanguage& operator=(const CommandLanguage&) = delete;

 private:
  std::string _before;
  QNScopedLocale _locale;
};

// What the library reports may quote texts of a vault, which anybody may have written.
class ShownReports {
 public:
  ShownReports() : _before(MRLogger::sharedLogger().setSink(show)) {}
  ~ShownReports() { MRLogger::sharedLogger().setSink(std::move(_before)); }
  ShownReports(const ShownReports&) = delete;
  ShownReports& operator=(const ShownReports&) = delete;

 private:
  static void show(const MRLogRecord& record) {
    const std::string object = shownText(record.object);
    say(object + (object.empty() ? "" : ": ") + shownText(record.text));
  }
  MRLogger::Sink _before;
};

QNCommandResult run(const std::vector<std::string>& line, const QNGlobalArguments& defaults) {
  const auto arguments = parseArguments(line, defaults);
  if (!arguments) return arguments.error();
  const QNGlobalArguments& global = arguments.value().global;
  std::optional<CommandLanguage> language;
  if (!global.language.empty()) language.emplace(global.language);
  return std::visit([&](const auto& command) { return runCommand(global, command); },
                    arguments.value().command);
}

QNCommandResult runCaught(const std::vector<std::string>& line, const QNGlobalArguments& defaults) {
  try {
    return run(line, defaults);
  } catch (const std::exception& error) {  // memory is short
    return toolError(QNExit::failed, error.what());
  }
}

}  // namespace

QNCommandResult runCommand(Global global, const QNTextArguments& arguments) {
  if (global.json) return printJson({{arguments.name, arguments.text}});
  QNOutput out;
  out.text(arguments.text);
  return out.finish();
}

QNExit runTool(const std::vector<std::string>& arguments, const QNGlobalArguments& defaults) {
  const ShownReports reports;
  const QNCommandResult result = runCaught(arguments, defaults);
  if (result) return result.value();
  // The reader of a pipe has gone: nobody is there to be told.
  if (!result.error().message.empty()) say(result.error().message);
  return exitFor(result.error());
}

}  // namespace quillon
