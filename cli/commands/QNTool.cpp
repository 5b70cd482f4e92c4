#include <exception>

#include "cli/arguments/QNArgumentParser.h"
#include "cli/commands/QNCommands.h"
#include "cli/output/QNOutput.h"
#include "cli/terminal/QNMessages.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

QNCommandResult run(const std::vector<std::string>& line) {
  const auto arguments = parseArguments(line);
  if (!arguments) return arguments.error();
  const QNGlobalArguments& global = arguments.value().global;
  std::optional<QNScopedLocale> locale;
  if (!global.language.empty()) {
    locale.emplace(global.language);
    QNLocalization::sharedLocalization().setLanguage(global.language);
  }
  return std::visit([&](const auto& command) { return runCommand(global, command); },
                    arguments.value().command);
}

QNCommandResult runCaught(const std::vector<std::string>& line) {
  try {
    return run(line);
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

QNExit runTool(const std::vector<std::string>& arguments) {
  const QNCommandResult result = runCaught(arguments);
  if (result) return result.value();
  // The reader of a pipe has gone: nobody is there to be told.
  if (!result.error().message.empty()) say(result.error().message);
  return exitFor(result.error());
}

}  // namespace quillon
