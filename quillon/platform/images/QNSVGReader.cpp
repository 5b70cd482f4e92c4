#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "quillon/platform/images/internal/QNImageHeader.h"
#include "quillon/platform/images/internal/QNSVGNumbers.h"

// Reads an SVG from end to end for its size, and refuses it unless it is plain shapes: the drawing
// library would follow references, apply filters and repeat elements for as long as a file asks it
// to, and can't be stopped. So only elements pass whose cost is one fill each; what they may refer
// to are gradients of the same file. What that costs is told for the caller to judge: fills for
// each pixel, and edges, as many as a curve is cut into for its size: numbers times root of pixels.
//
// Names are compared as the drawing library will: elements and attributes of the SVG namespace by
// case, properties of a style without. Whether the text is well-formed is left to it.

namespace quillon {
namespace {

using namespace svg;

/// Elements within elements; a translucent group costs a layer of all pixels.
constexpr std::size_t kMaxDepth = 16;
/// Colours of all gradients together.
constexpr std::size_t kMaxStops = 256;
/// Longest side that a file may claim, in pixels.
constexpr double kMaxClaimedSide = 1e9;

constexpr std::string_view kSVGNamespace = "http://www.w3.org/2000/svg";

constexpr std::array<std::string_view, 16> kElements{
    "svg",    "g",    "defs",    "title",    "desc",    "metadata",       "path",           "rect",
    "circle", "line", "ellipse", "polyline", "polygon", "linearGradient", "radialGradient", "stop"};

/// Properties that refer to elements or multiply work. "none" is all that they may say.
constexpr std::array<std::string_view, 8> kRefusedProperties{
    "filter",       "mask",       "clip-path",  "marker",
    "marker-start", "marker-mid", "marker-end", "stroke-dasharray"};

/// Properties that say how large a shape is, or how wide its line.
constexpr std::array<std::string_view, 16> kMeasures{
    "d",  "points", "width", "height", "x",  "y",  "x1", "x2",
    "y1", "y2",     "r",     "rx",     "ry", "cx", "cy", "stroke-width"};

template <std::size_t N>
bool isOneOf(std::string_view word, const std::array<std::string_view, N>& words) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

/// May a value be drawn with? It may refer to what has a name in the same file, and mustn't be
/// written so that we read another value than the drawing library does.
bool isPlainValue(std::string_view value) {
  if (value.find_first_of("&\\@{}") != std::string_view::npos) return false;
  if (value.find("/*") != std::string_view::npos) return false;
  const std::string lower = lowercase(value);
  constexpr std::string_view kOpening = "url(";
  for (std::size_t at = lower.find(kOpening); at != std::string::npos;
       at = lower.find(kOpening, at + 1)) {
    std::string_view target = std::string_view(lower).substr(at + kOpening.size());
    target.remove_prefix(std::min(target.find_first_not_of(" \t\r\n'\""), target.size()));
    if (!target.starts_with('#')) return false;
  }
  return true;
}

struct Attribute {
  std::string_view name, value;
};

struct Name {
  std::string_view prefix, local;
};

Name partsOf(std::string_view name) {
  const std::size_t colon = name.find(':');
  if (colon == std::string_view::npos) return {{}, name};
  return {name.substr(0, colon), name.substr(colon + 1)};
}

/// One pass over the text. The first thing to refuse ends it.
class SVGReader final {
 public:
  explicit SVGReader(std::string_view text) : _rest(text) {}
  QNResult<QNImageHeader> read();

 private:
  // Each of these is false once _fault is set.
  bool readMarkup();
  bool readDeclaration();
  bool readDocumentType();
  bool readEndTag();
  bool readStartTag();
  bool readAttributes(bool& closed);
  bool readAttribute(Attribute& attribute);
  bool checkElement(std::string_view element);
  bool checkAttribute(const Attribute& attribute);
  bool checkNamespace(const Attribute& attribute);
  bool checkStyle(std::string_view style);
  bool checkProperty(std::string_view name, std::string_view value);
  [[nodiscard]] bool isInert(std::string_view prefix) const;
  void noteSize(const Attribute& attribute);
  bool skipBehind(std::string_view end);
  std::string_view takeName();
  bool refuse(const char* why) {
    _fault = why;
    return false;
  }
  QNResult<QNImageHeader> header() const;

  std::string_view _rest;
  std::vector<std::string_view> _prefixes;  // of others' namespaces, by the outermost element
  const char* _fault = nullptr;
  std::size_t _depth = 0, _elements = 0, _stops = 0;
  QNSVGMeasures _element;                          // of the element that is being read
  std::optional<double> _transform;                // by how much its own one enlarges
  std::array<double, kMaxDepth + 1> _growth{{1}};  // of all transformations, by depth
  double _numbers = 0, _reach = 0;                 // of all elements; the largest, transformed
  std::optional<double> _width, _height;
  std::optional<QNSize> _viewBox;
  bool _badViewBox = false;
};

QNResult<QNImageHeader> SVGReader::read() {
  if (_rest.starts_with("\xef\xbb\xbf")) _rest.remove_prefix(3);
  if (_rest.starts_with("<?xml") && !readDeclaration()) return QNError::unreadable(_fault);
  while (true) {
    _rest.remove_prefix(std::min(_rest.find('<'), _rest.size()));
    if (_rest.empty()) break;
    if (!readMarkup()) return QNError::unreadable(_fault);
  }
  return header();
}

bool SVGReader::readMarkup() {
  if (_rest.starts_with("<!--")) {
    _rest.remove_prefix(4);  // the dashes of "<!-->" don't close it
    return skipBehind("-->");
  }
  if (_rest.starts_with("<!DOCTYPE")) return readDocumentType();
  if (_rest.starts_with("<!") || _rest.starts_with("<?")) {
    return refuse("an SVG with raw text or instructions");
  }
  return _rest.starts_with("</") ? readEndTag() : readStartTag();
}

// Another encoding would give the drawing library another text than this one.
bool SVGReader::readDeclaration() {
  const std::string lower = lowercase(_rest.substr(0, _rest.find("?>")));
  std::string_view encoding = lower;
  encoding.remove_prefix(std::min(encoding.find("encoding"), encoding.size()));
  if (!encoding.empty()) {
    encoding.remove_prefix(std::string_view("encoding").size());
    encoding.remove_prefix(std::min(encoding.find_first_not_of(" \t\r\n="), encoding.size()));
    if (!encoding.starts_with("\"utf-8\"") && !encoding.starts_with("'utf-8'")) {
      return refuse("an SVG that isn't UTF-8");
    }
  }
  return skipBehind("?>");
}

bool SVGReader::readDocumentType() {
  if (_elements > 0) return refuse("an SVG with a document type inside");
  const std::string_view type = _rest.substr(0, _rest.find('>'));
  if (type.find_first_of("[%&") != std::string_view::npos) {
    return refuse("an SVG that declares entities");
  }
  return skipBehind(">");
}

bool SVGReader::readEndTag() {
  if (_depth == 0) return refuse("an SVG of unpaired tags");
  --_depth;
  return skipBehind(">");
}

bool SVGReader::readStartTag() {
  _rest.remove_prefix(1);
  const std::string_view element = takeName();
  if (!checkElement(element)) return false;
  _element = {};
  _transform.reset();
  bool closed = false;
  if (!readAttributes(closed)) return false;
  const double growth = _growth[_depth] * _transform.value_or(1);
  _numbers += _element.count;
  _reach = std::max(_reach, _element.largest * growth);
  if (!std::isfinite(growth) || !std::isfinite(_reach)) {
    return refuse("an SVG of sizes that can't be told");
  }
  if (closed) return true;
  if (++_depth > kMaxDepth) return refuse("an SVG of elements too deep in each other");
  _growth[_depth] = growth;
  return true;
}

bool SVGReader::checkElement(std::string_view element) {
  if (element.empty()) return refuse("an SVG of broken tags");
  const bool outermost = _elements++ == 0;
  if (!outermost && _depth == 0) return refuse("an SVG with something behind it");
  const auto [prefix, local] = partsOf(element);
  if (!outermost && isInert(prefix)) return true;
  if (outermost && !prefix.empty() && prefix != "svg") return refuse("its text is no SVG");
  if (outermost != (local == "svg")) {
    return refuse(outermost ? "its text is no SVG" : "an SVG within an SVG");
  }
  if (!isOneOf(local, kElements)) return refuse("an SVG that is more than plain shapes");
  if (local == "stop" && ++_stops > kMaxStops) return refuse("an SVG of too many colours");
  return true;
}

bool SVGReader::readAttributes(bool& closed) {
  const bool outermost = _elements == 1;
  while (true) {
    _rest.remove_prefix(std::min(_rest.find_first_not_of(kBlanks), _rest.size()));
    closed = _rest.starts_with("/>");
    if (closed || _rest.starts_with('>')) {
      _rest.remove_prefix(closed ? 2 : 1);
      return true;
    }
    Attribute attribute;
    if (!readAttribute(attribute) || !checkAttribute(attribute)) return false;
    if (outermost) noteSize(attribute);
  }
}

bool SVGReader::readAttribute(Attribute& attribute) {
  attribute.name = takeName();
  _rest.remove_prefix(std::min(_rest.find_first_not_of(kBlanks), _rest.size()));
  if (attribute.name.empty() || !_rest.starts_with('=')) return refuse("an SVG of broken tags");
  _rest.remove_prefix(1);
  _rest.remove_prefix(std::min(_rest.find_first_not_of(kBlanks), _rest.size()));
  const char quote = _rest.empty() ? '\0' : _rest[0];
  if (quote != '"' && quote != '\'') return refuse("an SVG of broken tags");
  const std::size_t end = _rest.find(quote, 1);
  if (end == std::string_view::npos) return refuse("an SVG cut short");
  attribute.value = _rest.substr(1, end - 1);
  _rest.remove_prefix(end + 1);
  return true;
}

bool SVGReader::checkAttribute(const Attribute& attribute) {
  const auto& [full, value] = attribute;
  if (full == "xmlns" || full.starts_with("xmlns:")) return checkNamespace(attribute);
  const auto [prefix, name] = partsOf(full);
  // Whatever their prefix means: a reference, and what references are relative to.
  if (name == "base" || (name == "href" && !value.starts_with('#'))) {
    return refuse("an SVG that refers to other files");
  }
  if (isInert(prefix)) return true;
  if (name.starts_with("on")) return refuse("an SVG with a script");
  if (!isPlainValue(value)) return refuse("an SVG with values that aren't plain");
  return name == "style" ? checkStyle(value) : checkProperty(name, value);
}

bool SVGReader::checkStyle(std::string_view style) {
  while (!style.empty()) {
    const std::string_view declaration = style.substr(0, style.find(';'));
    style.remove_prefix(std::min(declaration.size() + 1, style.size()));
    const std::size_t colon = declaration.find(':');
    if (colon == std::string_view::npos) continue;
    if (!checkProperty(lowercase(trimmed(declaration.substr(0, colon))),
                       declaration.substr(colon + 1))) {
      return false;
    }
  }
  return true;
}

bool SVGReader::checkProperty(std::string_view name, std::string_view value) {
  if (isOneOf(name, kRefusedProperties) && lowercase(trimmed(value)) != "none") {
    return refuse("an SVG that is more than plain shapes");
  }
  if (isOneOf(name, kMeasures)) _element.read(value, name != "d" && name != "points");
  // An attribute and a style may both be there, and one of them counts.
  if (name == "transform") _transform = std::max(_transform.value_or(0), growthOf(value));
  return true;
}

// SVG's own elements come without prefix or with "svg:", so that no other name stands for one.
bool SVGReader::checkNamespace(const Attribute& attribute) {
  const auto& [name, value] = attribute;
  const bool own = value == kSVGNamespace;
  const bool plain = !value.empty() && value.find('&') == std::string_view::npos;
  const bool mayBeOwn = name == "xmlns" || name == "xmlns:svg";
  if (!plain || own != mayBeOwn) return refuse("an SVG with namespaces that aren't plain");
  if (_elements == 1 && !mayBeOwn) _prefixes.push_back(partsOf(name).local);
  return true;
}

// What another namespace has isn't drawn. But the drawing library takes a prefix that isn't
// declared for SVG's own; so only those count that the outermost element has declared by then.
bool SVGReader::isInert(std::string_view prefix) const {
  return prefix == "xml" ||
         std::find(_prefixes.begin(), _prefixes.end(), prefix) != _prefixes.end();
}

void SVGReader::noteSize(const Attribute& attribute) {
  const auto& [name, value] = attribute;
  if (name == "width") _width = pixelsOf(value);
  if (name == "height") _height = pixelsOf(value);
  if (name != "viewBox") return;
  _viewBox = sizeOfViewBox(value);
  _badViewBox = !_viewBox;
}

bool SVGReader::skipBehind(std::string_view end) {
  const std::size_t at = _rest.find(end);
  if (at == std::string_view::npos) return refuse("an SVG cut short");
  _rest.remove_prefix(at + end.size());
  return true;
}

std::string_view SVGReader::takeName() {
  const std::size_t end = std::min(_rest.find_first_of(" \t\r\n=/<>\"'"), _rest.size());
  const std::string_view name = _rest.substr(0, end);
  _rest.remove_prefix(end);
  return name;
}

QNResult<QNImageHeader> SVGReader::header() const {
  if (_elements == 0) return QNError::unreadable("its text is no SVG");
  if (_depth != 0) return QNError::unreadable("an SVG cut short");
  if (_badViewBox) return QNError::unreadable("an SVG with a broken view box");
  QNSize size{_width.value_or(0), _height.value_or(0)};
  if (_viewBox) {
    if (!_width)
      size.width = _height ? *_height / _viewBox->height * _viewBox->width : _viewBox->width;
    if (!_height) {
      size.height = _width ? *_width / _viewBox->width * _viewBox->height : _viewBox->height;
    }
  }
  const auto usable = [](double side) { return side > 0 && side <= kMaxClaimedSide; };
  if (!usable(size.width) || !usable(size.height)) {
    return QNError::unreadable("an SVG that tells no size to draw it at");
  }
  // A gradient is calculated, and searched for its colours, at each pixel.
  const double fill = _stops == 0 ? 1 : 4 + static_cast<double>(_stops) / 4;
  const double unit =
      _viewBox ? std::max(size.width / _viewBox->width, size.height / _viewBox->height) : 1;
  return QNImageHeader{size, static_cast<double>(_elements) * fill,
                       _numbers * std::sqrt(1 + _reach * unit)};
}

}  // namespace

QNResult<QNImageHeader> readSVGHeader(std::string_view text) {
  return SVGReader(text).read();
}

}  // namespace quillon
