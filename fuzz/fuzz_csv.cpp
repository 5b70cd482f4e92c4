// The CSV reader: any bytes as a file. What was read, written out in the strict form and read
// again, must be the same.
#include <cstdlib>
#include <string>
#include <vector>

#include "cli/import/QNCSVReader.h"

namespace {

using namespace quillon;
using Records = std::vector<std::vector<std::string>>;

Records recordsIn(Bytes text, char delimiter, bool& failed) {
  QNCSVReader reader(std::move(text), delimiter);
  Records records;
  std::size_t line = 0;
  while (reader.next()) {
    if (reader.fields().empty() || reader.line() <= line || reader.position() > reader.size()) {
      std::abort();
    }
    line = reader.line();
    records.emplace_back(reader.fields().begin(), reader.fields().end());
  }
  failed = reader.error().has_value();
  if (!failed && reader.position() != reader.size()) std::abort();
  return records;
}

Bytes strictForm(const Records& records) {
  std::string text;
  for (const auto& record : records) {
    for (std::size_t i = 0; i < record.size(); ++i) {
      text += i == 0 ? "\"" : ",\"";
      for (const char c : record[i]) text.append(c == '"' ? 2 : 1, c);
      text += '"';
    }
    text += "\r\n";
  }
  return toBytes(bytesOf(text));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto text = QNCSVReader::utf8FromFile(toBytes({data, size}));
  if (!text) return 0;
  const char delimiter = QNCSVReader::delimiterOf(textOf(text.value()));
  bool failed = false;
  const Records records = recordsIn(std::move(text).value(), delimiter, failed);
  const Records again = recordsIn(strictForm(records), ',', failed);
  if (failed || again != records) std::abort();
  return 0;
}
