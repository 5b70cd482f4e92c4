#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <string_view>

#include "cli/arguments/QNArgumentParser.h"
#include "cli/commands/QNCommands.h"

namespace {

// No core dump and no other process of the user gets to see the memory; and a pipe that closes
// is an error of a write, not the end in the middle of a save.
void harden() {
  prctl(PR_SET_DUMPABLE, 0);
  const rlimit none{0, 0};
  setrlimit(RLIMIT_CORE, &none);
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace

int main(int argc, char** argv) {
  harden();
  return static_cast<int>(quillon::runTool({argv + (argc > 0 ? 1 : 0), argv + argc}));
}
