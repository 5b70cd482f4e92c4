#pragma once
// What the tests of this folder share: cases from testdata, and repeatable keys and bytes.

#include <algorithm>
#include <boost/json.hpp>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <numeric>
#include <string>

#include "quillon/platform/crypto/QNAESKey.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon::cryptotesting {

inline boost::json::value readCases(const char* fileName) {
  std::ifstream file(std::string(QUILLON_TESTDATA "/") + fileName);
  const std::string text(std::istreambuf_iterator<char>(file), {});
  return boost::json::parse(text);
}

/// Answers that others published.
inline const boost::json::value& published() {
  static const auto cases = readCases("published.json");
  return cases;
}
/// The stored forms and derivations of ours that never change.
inline const boost::json::value& frozen() {
  static const auto cases = readCases("frozen.json");
  return cases;
}

inline Bytes hexAt(const boost::json::value& object, const char* key) {
  return bytesFromHex(std::string(object.at(key).as_string())).value();
}

/// The plain text of the frozen vectors.
inline Bytes patterned(std::size_t size) {
  Bytes bytes(size);
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::uint8_t>((7 * i + 3) % 251);
  return bytes;
}

/// The key of the frozen vectors: the raw bytes 0, 1, 2 and so on.
inline QNAESKeyRef fixedKey() {
  Bytes raw(QNAESKey::kRawKeySize);
  std::iota(raw.begin(), raw.end(), std::uint8_t{0});
  return QNAESKey::initWithRawKey(raw);
}

/// A random source that gives the same bytes at every draw.
inline QNScopedRandom::Source repeating(Bytes bytes) {
  return [bytes = std::move(bytes)](std::span<std::uint8_t> out) {
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = bytes[i % bytes.size()];
  };
}

inline Bytes withBitFlipped(Bytes bytes, std::size_t bit) {
  bytes[bit / 8] = static_cast<std::uint8_t>(bytes[bit / 8] ^ 1u << bit % 8);
  return bytes;
}

/// Three segments, the last of 1,000 bytes: sealed from 28, 65,580 and 131,132.
inline constexpr std::size_t kThreeSegments = 2 * QNAESKey::kSegmentSize + 1'000;
inline constexpr std::size_t kSealedSegment = QNAESKey::kSegmentSize + 16;
inline constexpr std::size_t kHead = 28;

inline Bytes part(const Bytes& bytes, std::size_t from, std::size_t size) {
  return toBytes(ByteView(bytes).subspan(from, size));
}
inline Bytes joined(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& each : parts) all.insert(all.end(), each.begin(), each.end());
  return all;
}

}  // namespace quillon::cryptotesting
