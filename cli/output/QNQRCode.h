#pragma once

#include <string_view>

#include "cli/output/QNOutput.h"

namespace quillon {

/// Draws a text as a QR code of half blocks, with the light border that readers need: black on
/// white on a terminal, whatever its colours; elsewhere without colours, dark blocks as on paper.
/// Error with exit code 1 for a text that no QR code holds, of more than 2,953 bytes.
QNResult<QNDone> drawQRCode(QNOutput& out, std::string_view text);

}  // namespace quillon
