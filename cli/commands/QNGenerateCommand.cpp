#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/output/QNOutput.h"
#include "cli/terminal/QNMessages.h"

namespace quillon {
namespace {

// The passwords themselves are what the user asked for.
QNCommandResult printAsJson(const QNGenerateArguments& arguments) {
  JsonArray made(jsonStorage());
  for (std::uint32_t i = 0; i < arguments.count; ++i) {
    const auto generated = QNSPG::generateCharacters(arguments.recipe);
    JsonObject& object = made.emplace_back(boost::json::object_kind).get_object();
    setJsonText(object, "password", generated.password.reveal());
    object["bitsEntropy"] = generated.bitsEntropy;
  }
  QNOutput out;
  out.json(Json(std::move(made)));
  out.line("");
  return out.finish();
}

}  // namespace

QNCommandResult runCommand(Global global, const QNGenerateArguments& arguments) {
  if (global.json) return printAsJson(arguments);
  QNOutput out;
  double bits = 0;
  for (std::uint32_t i = 0; i < arguments.count; ++i) {
    const auto generated = QNSPG::generateCharacters(arguments.recipe);
    out.line(generated.password.reveal());
    bits = generated.bitsEntropy;  // the same for all of one recipe
  }
  auto done = out.finish();
  if (done) say(fmt::format("{:.1f} bits of entropy", bits));
  return done;
}

}  // namespace quillon
