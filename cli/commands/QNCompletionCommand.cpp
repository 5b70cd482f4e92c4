#include "cli/commands/QNCommands.h"
#include "cli/commands/internal/QNCompletionScripts.h"
#include "cli/output/QNOutput.h"

namespace quillon {

QNCommandResult runCommand(Global global, const QNCompletionArguments& arguments) {
  const std::string_view script = arguments.shell == "bash"  ? kCompletionForBash
                                  : arguments.shell == "zsh" ? kCompletionForZsh
                                                             : kCompletionForFish;
  if (global.json) return printJson({{"shell", arguments.shell}, {"script", script}});
  QNOutput out;
  out.text(script);
  return out.finish();
}

}  // namespace quillon
