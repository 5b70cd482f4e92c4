#include "cli/terminal/QNPasswords.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>

#include "cli/QNToolError.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNInput.h"
#include "cli/terminal/QNMessages.h"
#include "cli/terminal/QNPrompt.h"
#include "quillon/platform/crypto/QNAESKey.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr std::string_view kFromInput = "what came from standard input";

QNResult<QNSecret> firstLineOf(const std::filesystem::path& file) {
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return fileError(file, errno);
  auto line = readLine(descriptor);
  close(descriptor);
  return line;
}

QNResult<QNSecret> promptTwice(std::string_view first, std::string_view instead) {
  auto secret = promptForSecret(first, instead);
  if (!secret) return secret;
  const auto again = promptForSecret("Once more: ", instead);
  if (!again) return again.error();
  if (!secret.value().equals(again.value())) {
    return toolError(QNExit::failed, "the two differ");
  }
  return secret;
}

// Details are JSON, which holds nothing but UTF-8.
QNResult<QNSecret> text(QNResult<QNSecret> secret, std::string_view whatCame) {
  if (secret && !isUTF8(secret.value().reveal())) {
    return toolError(QNExit::wrongUsage, fmt::format("{} isn't UTF-8 text", whatCame));
  }
  return secret;
}

std::string optionsOf(const QNPasswordSource& source) {
  return fmt::format("the password with --{0}-stdin, --{0}-file or --{0}-fd", source.prefix);
}

}  // namespace

QNResult<QNSecret> readPassword(const QNPasswordSource& source, std::string_view prompt) {
  switch (source.kind) {
    case QNPasswordSource::Kind::file:
      return firstLineOf(source.file);
    case QNPasswordSource::Kind::descriptor:
      return readLine(source.descriptor);
    case QNPasswordSource::Kind::standardInput:
      return readLine(STDIN_FILENO);
    case QNPasswordSource::Kind::terminal:
      break;
  }
  return promptForSecret(prompt, optionsOf(source));
}

QNResult<QNSecret> readNewPassword(const QNPasswordSource& source) {
  constexpr std::string_view kPrompt = "New password for the vault: ";
  auto password = source.kind == QNPasswordSource::Kind::terminal
                      ? promptTwice(kPrompt, optionsOf(source))
                      : readPassword(source, kPrompt);
  if (!password) return password;
  const std::string_view text = password.value().reveal();  // to be looked at, not kept
  if (text.empty()) return toolError(QNExit::wrongUsage, "the password is empty");
  if (!isUTF8(text)) return toolError(QNExit::wrongUsage, "the password isn't UTF-8 text");
  if (text == DEMO_PASSWORD) {
    say("this is the password of demonstrations: everybody knows it, and the vault protects "
        "nothing");
  }
  return password;
}

QNResult<QNSecret> readItemSecret(QNSecretSource from, std::string_view prompt,
                                  std::string_view instead) {
  switch (from) {
    case QNSecretSource::prompt: {
      auto typed = promptTwice(prompt, instead);
      if (typed && typed.value().empty()) {
        return toolError(QNExit::wrongUsage, "nothing was typed");
      }
      return text(std::move(typed), "what was typed");
    }
    case QNSecretSource::nextLine:
      return text(readLine(STDIN_FILENO), kFromInput);
    case QNSecretSource::restOfInput:
      break;
  }
  return text(readSecret(STDIN_FILENO), kFromInput);
}

QNResult<QNSecret> readItemSecretFrom(const std::filesystem::path& file) {
  const auto content = readFile(file, kMaxSecretBytes);
  if (!content) return content.error();
  QNSecret secret(textOf(content.value()));
  if (secret.reveal().ends_with('\n')) secret.removeLast();  // looks at its last byte only
  return text(std::move(secret), shownText(file.string()));
}

QNResult<QNMadePassword> makeItemPassword(QNItemPassword from) {
  if (from == QNItemPassword::generate) {
    auto generated = QNSPG::generateCharacters({});
    return QNMadePassword{std::move(generated.password), generated.bitsEntropy};
  }
  auto secret = readItemSecret(
      from == QNItemPassword::prompt ? QNSecretSource::prompt : QNSecretSource::restOfInput,
      "Password of the item: ", "the password with --password=- or --generate");
  if (!secret) return secret.error();
  return QNMadePassword{std::move(secret).value(), std::nullopt};
}

void setItemPassword(QNItem& item, const QNMadePassword& made) {
  // Into its details, which wipe themselves.
  item.updatePassword(made.password.reveal(), made.bitsEntropy.has_value(),
                      made.bitsEntropy.value_or(0));
}

}  // namespace quillon
