#include "quillon/platform/json/internal/QNJsonReader.h"

#include <alloca.h>

#include <algorithm>
#include <boost/json/basic_parser_impl.hpp>
#include <charconv>
#include <cmath>

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

  Handler(bj::storage_ptr storage, unsigned char* buffer, std::size_t size)
      : stack(jsonStorage(), buffer, size) {
    stack.reset(std::move(storage));
  }
  bj::value_stack stack;
  std::size_t depth = 0;
  std::size_t deepest = 0;

  bool on_document_begin(Error&) { return true; }
  bool on_document_end(Error&) { return true; }
  bool on_object_begin(Error&) { return enter(); }
  bool on_object_end(std::size_t count, Error&) { return stack.push_object(count), leave(); }
  bool on_array_begin(Error&) { return enter(); }
  bool on_array_end(std::size_t count, Error&) { return stack.push_array(count), leave(); }
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

 private:
  bool enter() {
    deepest = std::max(deepest, ++depth);
    return true;
  }
  bool leave() { return --depth, true; }
};

/// Where the parser keeps its values while their container is open; short texts lie inside them.
struct WipedBuffer {
  alignas(std::max_align_t) unsigned char bytes[2048];
  ~WipedBuffer() { wipe(bytes, sizeof bytes); }
};

[[gnu::noinline]] void wipeStackBelow(std::size_t size) {
  wipe(alloca(size), size);
}

// What the parser leaves on the stack below its caller: a few bytes of text that it had in a
// register, and where the text has escapes, the buffer of BOOST_JSON_STACK_BUFFER_SIZE bytes in
// which it undoes them, under its frames for each container around. The figures leave room for
// an unoptimised build (measured: 160 bytes for a container) and the sanitizers (290).
void wipeStackOfParser(std::size_t containers, bool hadEscapes) {
  constexpr std::size_t kFrames = 2048;
  constexpr std::size_t kFramesOfContainer = 512;
  wipeStackBelow(kFrames + containers * kFramesOfContainer +
                 (hadEscapes ? BOOST_JSON_STACK_BUFFER_SIZE : 0));
}

bj::parse_options strict() {
  bj::parse_options options;
  options.max_depth = kMaxJsonDepth;
  return options;
}

}  // namespace

std::optional<Json> readJson(ByteView data, bj::storage_ptr storage, QNError* error) {
  if (data.size() > kMaxJsonBytes) {
    setError(error, QNError::unreadable("JSON text is too long"));
    return std::nullopt;
  }
  WipedBuffer buffer;
  boost::system::error_code failure;
  try {
    bj::basic_parser<Handler> parser(strict(), std::move(storage), buffer.bytes,
                                     sizeof buffer.bytes);
    const std::string_view text = textOf(data);
    const std::size_t read = parser.write_some(false, text.data(), text.size(), failure);
    if (!failure && read < text.size()) failure = bj::error::extra_data;
    wipeStackOfParser(parser.handler().deepest, text.find('\\') != std::string_view::npos);
    if (!failure) return parser.handler().stack.release();
  } catch (const std::exception&) {
    failure = bj::error::exception;
  }
  setError(error, QNError::unreadable(failure.message()));
  return std::nullopt;
}

std::optional<Json> mr_valueFromJSONDataWithError(ByteView data, QNError* error) {
  return readJson(data, jsonStorage(), error);
}

}  // namespace quillon
