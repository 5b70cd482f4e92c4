#include <fmt/format.h>
#include <unistd.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/fields/QNSeedFault.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNQRCode.h"
#include "cli/terminal/QNInput.h"
#include "cli/terminal/QNMessages.h"
#include "cli/terminal/QNPrompt.h"
#include "quillon/fields/QNItemField.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/touchpoints/QNTOTPGenerator.h"

namespace quillon {
namespace {

constexpr std::size_t kMaxURLBytes = std::size_t{64} << 10;

// What codes are made of, and a name for it.
struct Source {
  QNSecret text;
  std::string label;
};

// The field's text where it is asked for; an item's first that has one.
QNResult<Source> sourceOfItem(Global global, std::string_view name) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), name);
  if (!item) return item.error();
  const auto field = item.value()->firstTOTPField();
  auto text = field == nullptr ? std::nullopt : field->stringValue();
  if (!text) return toolError(QNExit::notFound, "the item has no one-time password");
  return Source{std::move(*text), item.value()->title()};
}

QNResult<QNSecret> readURL(const QNOTPArguments& arguments) {
  if (arguments.url == "-" && isatty(STDIN_FILENO) == 1) {
    return promptForSecret("URL or seed: ", "it with --url-file");
  }
  if (arguments.url == "-") return readSecret(STDIN_FILENO);
  if (arguments.url) return QNSecret(*arguments.url);
  const auto content = readFile(arguments.urlFile, kMaxURLBytes);
  if (!content) return content.error();
  return QNSecret(textOf(content.value()));
}

QNResult<Source> sourceFor(Global global, const QNOTPArguments& arguments) {
  if (arguments.item) return sourceOfItem(global, *arguments.item);
  auto text = readURL(arguments);
  if (!text) return text.error();
  return Source{std::move(text).value(), "Quillon"};
}

// As URLs write it: letters, digits and four marks stay.
void appendEscaped(QNSecret& url, std::string_view text) {
  for (const char c : text) {
    const bool stays = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       std::string_view("-._~").find(c) != std::string_view::npos;
    url.append(stays ? std::string(1, c) : fmt::format("%{:02X}", static_cast<unsigned char>(c)));
  }
}

// A bare seed gets the URL that applications scan; a URL stays as it is.
QNSecret scannable(const Source& source) {
  const std::string_view text = trimmedView(source.text.reveal());  // into another secret
  if (text.find(':') != std::string_view::npos) return QNSecret(text);
  QNSecret url("otpauth://totp/");
  appendEscaped(url, source.label);
  url.append("?secret=");
  for (const char c : text) {
    const bool isOfSeed =
        (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '2' && c <= '7');
    if (isOfSeed) url.append({&c, 1});  // no blanks, dashes and padding
  }
  return url;
}

QNCommandResult drawQRCode(Global global, const Source& source) {
  if (global.json) {
    return toolError(QNExit::wrongUsage,
                     "a QR code is for people to scan; leave out --qr or --json");
  }
  QNOutput out;
  // The user asked for it.
  const auto drawn = drawQRCode(out, scannable(source).reveal());
  if (!drawn) return drawn.error();
  auto done = out.finish();
  if (done) say("the QR code shows the seed: whoever scans it has the same one-time passwords");
  return done;
}

QNCommandResult print(Global global, const QNTOTPGeneratorResult& result) {
  QNOutput out;
  const std::string_view code = result.code.reveal();  // the user asked for it
  if (global.json) {
    JsonObject object(jsonStorage());
    setJsonText(object, "code", code);
    object["remaining"] = result.secondsLeft;
    object["period"] = result.period;
    object["digits"] = result.digits;
    out.json(object);
    out.line("");
    return out.finish();
  }
  out.text(code);
  out.line(out.isTerminal() ? fmt::format("  {} s left", result.secondsLeft) : std::string());
  return out.finish();
}

}  // namespace

QNCommandResult runCommand(Global global, const QNOTPArguments& arguments) {
  const auto source = sourceFor(global, arguments);
  if (!source) return source.error();
  using Seconds = std::chrono::duration<double>;
  const auto at = arguments.at.value_or(static_cast<std::int64_t>(secondsNow()));
  // The seed is read into a key that wipes itself.
  const std::string_view text = source.value().text.reveal();
  const auto result =
      QNTOTPGenerator::generate(text, QNTOTPGenerator::Date(Seconds(static_cast<double>(at))));
  if (!result) {
    return toolError(QNExit::failed, fmt::format("the one-time password can't be used: {}",
                                                 reasonForNoCode(result.error(), text)));
  }
  return arguments.drawsQRCode ? drawQRCode(global, source.value()) : print(global, result.value());
}

}  // namespace quillon
