// The keyed archive: foreign bytes make nothing but nodes, and what was read can be written, read
// and written again as the same bytes.
#include <cstdlib>

#include "quillon/platform/archive/QNKeyedArchiver.h"

namespace {

using namespace quillon;

void require(bool truth) {
  if (!truth) std::abort();
}

/// Has a value of each kind, under the kind's name.
class Node final : public QNCoding {
 public:
  std::string_view className() const override { return "Node"; }

  static std::shared_ptr<QNCoding> initWithCoder(QNDecoder& coder) {
    auto node = std::make_shared<Node>();
    node->_bool = coder.decodeBool("bool");
    node->_int32 = coder.decodeInt32("int32");
    node->_int64 = coder.decodeInt64("int64");
    node->_float = coder.decodeFloat("float");
    node->_text = coder.decodeString("text");
    node->_bytes = coder.decodeBytes("bytes");
    node->_child = coder.decodeObject("child");
    node->_children = coder.decodeObjects("children");
    if (const Json* const json = coder.decodeJson("json")) node->_json = mr_deepMutableCopy(*json);
    return node;
  }

  void encodeWithCoder(QNEncoder& coder) override {
    if (_bool) coder.encodeBool(*_bool, "bool");
    if (_int32) coder.encodeInt32(*_int32, "int32");
    if (_int64) coder.encodeInt64(*_int64, "int64");
    if (_float) coder.encodeFloat(*_float, "float");
    if (_text) coder.encodeString(*_text, "text");
    if (_bytes) coder.encodeBytes(*_bytes, "bytes");
    if (_child) coder.encodeObject(*_child, "child");
    if (!_children.empty()) coder.encodeObjects(_children, "children");
    if (_json) coder.encodeJson(*_json, "json");
  }

 private:
  std::optional<bool> _bool;
  std::optional<std::int32_t> _int32;
  std::optional<std::uint64_t> _int64;
  std::optional<float> _float;
  std::optional<std::string> _text;
  std::optional<Bytes> _bytes;
  std::shared_ptr<QNCoding> _child;
  std::vector<std::shared_ptr<QNCoding>> _children;
  std::optional<Json> _json;
};

constexpr QNDecodableClass kClasses[] = {{"Node", &Node::initWithCoder}};

Bytes archived(QNCoding& root) {
  auto archive = QNKeyedArchiver::archivedDataWithRootObject(root);
  require(archive.ok());
  return std::move(archive).value();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto root = QNKeyedUnarchiver::unarchivedObjectOfClasses(kClasses, {data, size});
  if (!root) {
    require(root.error().domainCodeString() == "QNErrorDomain 114");
    return 0;
  }
  require(root.value() != nullptr);
  const Bytes archive = archived(*root.value());
  const auto again = QNKeyedUnarchiver::unarchivedObjectOfClasses(kClasses, archive);
  require(again.ok());
  require(archived(*again.value()) == archive);
  return 0;
}
