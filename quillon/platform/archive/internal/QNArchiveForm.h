#pragma once
// The names of the archive's form. A coder key never begins with '$', so that none of them can be
// taken for one.
//
//   {"quillon-archive":1,"root":OBJECT}     the whole
//   {"$class":NAME, KEY:VALUE, ...}         OBJECT, keys in the order in which they were written
//
//   VALUE       kind
//   true/false  bool
//   number      32- and 64-bit integers: digits only; 32-bit float: with a fraction or exponent
//   "..."       text
//   {"$bytes":BASE64}   bytes: standard alphabet, padded
//   {"$json":ANY}       JSON as it is
//   OBJECT      an object
//   [OBJECT...] a list of objects

#include <cstdint>
#include <string_view>

namespace quillon {

inline constexpr std::string_view kArchiveMarkerKey = "quillon-archive";
inline constexpr std::uint64_t kArchiveVersion = 1;
inline constexpr std::string_view kArchiveRootKey = "root";
inline constexpr char kArchiveReservedMark = '$';
inline constexpr std::string_view kArchiveClassKey = "$class";
inline constexpr std::string_view kArchiveBytesKey = "$bytes";
inline constexpr std::string_view kArchiveJsonKey = "$json";

}  // namespace quillon
