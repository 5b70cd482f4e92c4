#include "cli/output/QNQRCode.h"

#include <qrencode.h>

#include <memory>

#include "cli/QNToolError.h"

namespace quillon {
namespace {

constexpr int kBorder = 4;  // modules; readers want as many
constexpr std::string_view kBlackOnWhite = "\x1b[38;5;16m\x1b[48;5;231m";
constexpr std::string_view kUsualColors = "\x1b[0m";

struct FreeCode {
  void operator()(QRcode* code) const { QRcode_free(code); }
};

class Modules {
 public:
  explicit Modules(const QRcode& code) : _code(code) {}
  [[nodiscard]] bool isDark(int x, int y) const {
    const bool isInside = x >= 0 && y >= 0 && x < _code.width && y < _code.width;
    return isInside && (_code.data[y * _code.width + x] & 1) != 0;
  }

 private:
  const QRcode& _code;
};

std::string_view blockOf(bool isUpperDark, bool isLowerDark) {
  if (isUpperDark) return isLowerDark ? "█" : "▀";
  return isLowerDark ? "▄" : " ";
}

}  // namespace

QNResult<QNDone> drawQRCode(QNOutput& out, std::string_view text) {
  // The least correction of errors: a screen has no scratches, and modules are larger so.
  const std::unique_ptr<QRcode, FreeCode> code(
      QRcode_encodeData(static_cast<int>(text.size()),
                        reinterpret_cast<const unsigned char*>(text.data()), 0, QR_ECLEVEL_L));
  if (code == nullptr) return toolError(QNExit::failed, "the text is too long for a QR code");
  const Modules modules(*code);
  const int end = code->width + kBorder;
  for (int y = -kBorder; y < end; y += 2) {
    if (out.isTerminal()) out.text(kBlackOnWhite);
    for (int x = -kBorder; x < end; ++x) {
      // A line of half blocks behind the last one is light.
      out.text(blockOf(modules.isDark(x, y), modules.isDark(x, y + 1)));
    }
    out.line(out.isTerminal() ? kUsualColors : std::string_view());
  }
  wipe(code->data, static_cast<std::size_t>(code->width) * static_cast<std::size_t>(code->width));
  return QNDone{};
}

}  // namespace quillon
