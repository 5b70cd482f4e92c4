// otp, generate: the commands that make codes and passwords.

#include "cli/arguments/internal/QNDefinition.h"

namespace quillon {
namespace {

// Beyond it a second isn't a number of its own for a clock.
constexpr std::int64_t kFarthestMoment = std::int64_t{1} << 53;

}  // namespace

void defineOTP(CLI::App& app, QNArguments& out) {
  auto [command, given] =
      define<QNOTPArguments>(app, out, "otp", "Print the one-time password of an item or a URL");
  auto* const item =
      command->add_option("ITEM", given->item, "Its uuid, or its title if no other has it")
          ->check(isText());
  auto* const url =
      command
          ->add_option("--url", given->url,
                       "Of this URL; \"-\" asks for it, or reads standard input if that is no "
                       "terminal. Arguments are seen by every user of the machine")
          ->type_name("URL")
          ->check(isText())
          ->excludes(item);
  command->add_option("--url-file", given->urlFile, "Of the URL in this file")
      ->type_name("FILE")
      ->excludes(item)
      ->excludes(url);
  auto* const at =
      command->add_option("--at", given->at, "At this moment instead of now, in seconds since 1970")
          ->type_name("SECONDS")
          ->check(CLI::Range(-kFarthestMoment, kFarthestMoment));
  command
      ->add_flag("--qr", given->drawsQRCode, "Draw the URL as a QR code instead; it shows the seed")
      ->excludes(at);
  command->parse_complete_callback([given = given] {
    if (!given->item && !given->url && given->urlFile.empty()) {
      refuse("otp needs an item, --url or --url-file");
    }
  });
}

void defineGenerate(CLI::App& app, QNArguments& out) {
  auto [command, given] =
      define<QNGenerateArguments>(app, out, "generate", "Print random passwords");
  auto* const length =
      command->add_option("--length", given->recipe.length, "Characters of each, 20 by default")
          ->check(CLI::Range(4, 256));
  auto* const noSymbols = command->add_flag_callback(
      "--no-symbols", [given = given] { given->recipe.symbols = false; }, "Without symbols");
  auto* const noDigits = command->add_flag_callback(
      "--no-digits", [given = given] { given->recipe.digits = false; }, "Without digits");
  auto* const noAmbiguous = command->add_flag("--avoid-ambiguous", given->recipe.withoutAmbiguous,
                                              "Without 0 O 1 l I |, which look alike");
  auto* const words = command
                          ->add_option_function<std::uint32_t>(
                              "--words",
                              [given = given](std::uint32_t count) {
                                if (!given->words) given->words.emplace();
                                given->words->count = count;
                              },
                              "English words instead of characters, this many")
                          ->check(CLI::Range(2, 64));
  command
      ->add_option_function<std::string>(
          "--separator",
          [given = given](const std::string& separator) {
            if (!given->words) given->words.emplace();
            given->words->separator = separator;
          },
          "What stands between the words, a dash by default; may be empty")
      ->check(isText())
      ->needs(words);
  auto* const pin = command->add_option("--pin", given->pinDigits, "A PIN of this many digits")
                        ->check(CLI::Range(QNSPG::kMinDigits, QNSPG::kMaxDigits));
  for (auto* const other : {words, pin}) {
    other->excludes(length)->excludes(noSymbols)->excludes(noDigits)->excludes(noAmbiguous);
  }
  words->excludes(pin);
  command->add_option("--count", given->count, "How many")->check(CLI::Range(1, 10000));
}

}  // namespace quillon
