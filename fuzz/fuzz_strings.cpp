// Localization tables. What was read is valid UTF-8; written out again it reads the same, without
// a complaint.
#include <cstdlib>

#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/memory/QNBytes.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"

namespace {

using namespace quillon;

void require(bool truth) {
  if (!truth) std::abort();
}

std::string quoted(std::string_view text) {
  std::string written = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') written += '\\';
    if (c == '\n') {
      written += "\\n";
    } else {
      written += c;
    }
  }
  return written + '"';
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::size_t complaints = 0;
  MRLogger& logger = MRLogger::sharedLogger();
  auto before = logger.setSink([&complaints](const MRLogRecord&) { ++complaints; });
  const auto table = QNLocalization::parseStrings(textOf({data, size}), "fuzz");
  std::string written;
  for (const auto& [key, text] : table) {
    require(isUTF8(key) && isUTF8(text));
    written += quoted(key) + " = " + quoted(text) + ";\n";
  }
  complaints = 0;
  require(QNLocalization::parseStrings(written, "fuzz") == table);
  require(complaints == 0);
  logger.setSink(std::move(before));
  return 0;
}
