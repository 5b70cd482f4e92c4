#include <algorithm>
#include <array>

#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr std::size_t kBlock = 4;

// What isn't shown in blocks of four, by its length and how it begins.
struct CardForm {
  std::size_t length;
  std::string_view start;
  std::array<std::size_t, 3> blocks;
};
constexpr std::array<CardForm, 6> kForms = {{
    {15, "34", {4, 6, 5}},
    {15, "37", {4, 6, 5}},
    {14, "30", {4, 6, 4}},
    {14, "36", {4, 6, 4}},
    {14, "38", {4, 6, 4}},
    {14, "39", {4, 6, 4}},
}};

const CardForm* formOf(std::string_view digits) {
  const auto* const found =
      std::find_if(kForms.begin(), kForms.end(), [digits](const CardForm& form) {
        return digits.size() == form.length && digits.starts_with(form.start);
      });
  return found == kForms.end() ? nullptr : found;
}

}  // namespace

QNSecret mr_asFormattedCreditCardNumber(std::string_view digits) {
  QNSecret formatted;
  const CardForm* const form = formOf(digits);
  for (std::size_t block = 0; !digits.empty(); ++block) {
    if (block > 0) formatted.append(" ");
    const std::size_t size = form == nullptr ? kBlock : form->blocks.at(block);
    formatted.append(digits.substr(0, size));
    digits.remove_prefix(std::min(size, digits.size()));
  }
  return formatted;
}

}  // namespace quillon
