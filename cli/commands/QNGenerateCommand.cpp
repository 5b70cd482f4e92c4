#include <fmt/format.h>

#include <cmath>
#include <functional>
#include <memory>

#include "cli/commands/QNCommands.h"
#include "cli/output/QNOutput.h"
#include "cli/terminal/QNMessages.h"
#include "quillon/platform/passwords/QNWordList.h"

namespace quillon {
namespace {

using Maker = std::function<QNSPG::Generated()>;

QNResult<Maker> makerOf(const QNGenerateArguments& arguments) {
  if (arguments.pinDigits) {
    return Maker([digits = *arguments.pinDigits] { return QNSPG::generatePIN(digits); });
  }
  if (!arguments.words) {
    return Maker([recipe = arguments.recipe] { return QNSPG::generateCharacters(recipe); });
  }
  auto read = QNWordList::english();
  if (!read) return toolError(QNExit::fileError, read.error().message);
  const auto list = std::make_shared<const QNWordList>(std::move(read).value());
  return Maker([list, recipe = *arguments.words] { return QNSPG::generateWords(*list, recipe); });
}

// The passwords themselves are what the user asked for.
QNCommandResult printAsJson(const Maker& make, std::uint32_t count) {
  JsonArray made(jsonStorage());
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto generated = make();
    JsonObject& object = made.emplace_back(boost::json::object_kind).get_object();
    setJsonText(object, "password", generated.password.reveal());
    object["bits"] = generated.bitsEntropy;
    object["strength"] =
        static_cast<std::int64_t>(QNSPG::calcStrengthWithBitsEntropy(generated.bitsEntropy));
  }
  QNOutput out;
  out.json(Json(std::move(made)));
  out.line("");
  return out.finish();
}

}  // namespace

QNCommandResult runCommand(Global global, const QNGenerateArguments& arguments) {
  const auto make = makerOf(arguments);
  if (!make) return make.error();
  if (global.json) return printAsJson(make.value(), arguments.count);
  QNOutput out;
  double bits = 0;
  for (std::uint32_t i = 0; i < arguments.count; ++i) {
    const auto generated = make.value()();
    out.line(generated.password.reveal());
    bits = generated.bitsEntropy;  // the same for all of one recipe
  }
  auto done = out.finish();
  if (done) {
    say(fmt::format("{:.1f} bits of entropy, strength {:.0f} of 100", bits,
                    std::floor(QNSPG::calcStrengthWithBitsEntropy(bits))));
  }
  return done;
}

}  // namespace quillon
