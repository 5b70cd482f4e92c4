#include <boost/json/basic_parser_impl.hpp>
#include <charconv>
#include <cmath>

#include "quillon/platform/json/QNJson.h"

namespace quillon {
namespace {

namespace bj = boost::json;

/// Builds values from parser events. Our own beside the parser of the library, because that one
/// reads doubles with an error in the last place, which would drift at each save.
struct Handler {
  static constexpr std::size_t max_object_size = std::size_t{1} << 24;
  static constexpr std::size_t max_array_size = std::size_t{1} << 24;
  static constexpr std::size_t max_key_size = kMaxJsonBytes;
  static constexpr std::size_t max_string_size = kMaxJsonBytes;
  using Error = boost::system::error_code;

  Handler(unsigned char* buffer, std::size_t size) : stack(jsonStorage(), buffer, size) {
    stack.reset(jsonStorage());
  }
  bj::value_stack stack;

  bool on_document_begin(Error&) { return true; }
  bool on_document_end(Error&) { return true; }
  bool on_object_begin(Error&) { return true; }
  bool on_object_end(std::size_t count, Error&) { return stack.push_object(count), true; }
  bool on_array_begin(Error&) { return true; }
  bool on_array_end(std::size_t count, Error&) { return stack.push_array(count), true; }
  bool on_key_part(std::string_view part, std::size_t, Error&) {
    return stack.push_chars(part), true;
  }
  bool on_key(std::string_view part, std::size_t, Error&) { return stack.push_key(part), true; }
  bool on_string_part(std::string_view part, std::size_t, Error&) {
    return stack.push_chars(part), true;
  }
  bool on_string(std::string_view part, std::size_t, Error&) {
    return stack.push_string(part), true;
  }
  bool on_number_part(std::string_view, Error&) { return true; }
  bool on_int64(std::int64_t number, std::string_view, Error&) {
    return stack.push_int64(number), true;
  }
  bool on_uint64(std::uint64_t number, std::string_view, Error&) {
    return stack.push_uint64(number), true;
  }
  bool on_double(double approximate, std::string_view text, Error& error) {
    double number = approximate;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec == std::errc::result_out_of_range) number = approximate;
    if (!std::isfinite(number)) {
      error = bj::error::exponent_overflow;
      return false;
    }
    return stack.push_double(number), true;
  }
  bool on_bool(bool value, Error&) { return stack.push_bool(value), true; }
  bool on_null(Error&) { return stack.push_null(), true; }
  bool on_comment_part(std::string_view, Error&) { return true; }
  bool on_comment(std::string_view, Error&) { return true; }
};

/// Where the parser keeps its values while their container is open; short texts lie inside them.
struct WipedBuffer {
  alignas(std::max_align_t) unsigned char bytes[2048];
  ~WipedBuffer() { wipe(bytes, sizeof bytes); }
};

[[gnu::noinline]] void wipeStackBelow() {
  unsigned char deep[3 * BOOST_JSON_STACK_BUFFER_SIZE];
  wipe(deep, sizeof deep);
}

bj::parse_options strict() {
  bj::parse_options options;
  options.max_depth = kMaxJsonDepth;
  return options;
}

}  // namespace

std::optional<Json> mr_valueFromJSONDataWithError(ByteView data, QNError* error) {
  if (data.size() > kMaxJsonBytes) {
    setError(error, QNError::unreadable("JSON text is too long"));
    return std::nullopt;
  }
  WipedBuffer buffer;
  boost::system::error_code failure;
  try {
    bj::basic_parser<Handler> parser(strict(), buffer.bytes, sizeof buffer.bytes);
    const std::string_view text = textOf(data);
    const std::size_t read = parser.write_some(false, text.data(), text.size(), failure);
    if (!failure && read < text.size()) failure = bj::error::extra_data;
    // An escape is undone in a buffer of the parser's own, on the stack below here.
    if (text.find('\\') != std::string_view::npos) wipeStackBelow();
    if (!failure) return parser.handler().stack.release();
  } catch (const std::exception&) {
    failure = bj::error::exception;
  }
  setError(error, QNError::unreadable(failure.message()));
  return std::nullopt;
}

}  // namespace quillon
