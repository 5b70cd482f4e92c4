#pragma once
// JSON. Everything that can hold clear text lives in a memory resource that wipes what it
// frees, the parser's temporaries included.

#include <boost/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/memory/QNBytes.h"
#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

using Json = boost::json::value;
using JsonObject = boost::json::object;
using JsonArray = boost::json::array;
using JsonKind = boost::json::kind;

/// The wiping memory resource. Give it to every JSON value that holds an item's data.
boost::json::storage_ptr jsonStorage() noexcept;

/// Deepest nesting, in containers. Anything deeper is refused, read or written.
inline constexpr std::size_t kMaxJsonDepth = 64;
/// Longest text that is read, in bytes.
inline constexpr std::size_t kMaxJsonBytes = std::size_t{256} << 20;

/// UTF-8 JSON text of a value, without blanks. Error 114 of MRErrorDomain for a value that has no
/// JSON form: a number that isn't finite, a text that isn't UTF-8, nesting beyond kMaxJsonDepth.
std::optional<Bytes> mr_JSONDataWithError(const Json& value, QNError* error = nullptr);
std::optional<Bytes> mr_JSONDataWithError(const JsonObject& object, QNError* error = nullptr);
std::optional<std::string> mr_JSONStringWithError(const Json& value, QNError* error = nullptr);
std::optional<std::string> mr_JSONStringWithError(const JsonObject& object,
                                                  QNError* error = nullptr);

/// Reads strict JSON (RFC 8259) into the wiping resource. Doubles are read to the nearest value,
/// so that text, value, text gives the same number again; of two equal keys the last stays.
/// Error 114 of MRErrorDomain.
std::optional<Json> mr_valueFromJSONDataWithError(ByteView data, QNError* error = nullptr);
/// The same, for text that must be an object.
std::optional<JsonObject> mr_objectFromJSONDataWithError(ByteView data, QNError* error = nullptr);
std::optional<JsonObject> mr_mutableObjectFromJSONDataWithError(ByteView data,
                                                                QNError* error = nullptr);
std::optional<JsonObject> mr_objectFromJSONStringWithError(std::string_view text,
                                                           QNError* error = nullptr);

/// Removes the members and elements that are JSON null, at every depth.
void mr_removeNSNullValues(JsonObject& object);
/// A copy in the wiping resource that shares nothing with its source.
JsonObject mr_deepMutableCopy(const JsonObject& object);
Json mr_deepMutableCopy(const Json& value);

/// The member; null if it isn't there. As if_contains(), but looks through a small object without
/// comparing names that begin otherwise: overviews are asked by the hundred thousand.
const Json* memberForKey(const JsonObject& object, std::string_view key);
/// The member if it is there and of that kind; null otherwise.
const Json* mr_objectForKey(const JsonObject& object, std::string_view key, JsonKind ofClass);
const Json* mr_objectForKey(const JsonObject& object, std::string_view key,
                            std::initializer_list<JsonKind> ofClasses);
/// The member if it is a text; nothing otherwise. Valid until the object changes.
std::optional<std::string_view> mr_validStringValueForKey(const JsonObject& object,
                                                          std::string_view key);
/// The same as a text of its own: for what is kept beyond the object, and is no secret.
std::optional<std::string> ownedStringForKey(const JsonObject& object, std::string_view key);
/// The member as a whole number of 64 bits; a number with a fraction is cut towards zero, one out
/// of range, or a member of another kind, reads as nothing.
std::optional<std::uint64_t> mr_unsignedValueForKey(const JsonObject& object, std::string_view key);

/// Writes a text straight into the object: no copy of it is left on the stack, as a temporary
/// Json would leave one.
void setJsonText(JsonObject& object, std::string_view key, std::string_view text);

}  // namespace quillon
