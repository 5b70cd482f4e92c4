#include <gtest/gtest.h>

#include <cmath>

#include "quillon/platform/images/internal/QNImageHeader.h"

namespace quillon {
namespace {

std::string repeated(std::string_view text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

std::string svg(std::string_view attributes, std::string_view content = "") {
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" " + std::string(attributes) + ">" +
         std::string(content) + "</svg>";
}

std::string shapes(std::string_view content) {
  return svg("width='10' height='10'", content);
}

std::string faultOf(std::string_view text) {
  const auto header = readSVGHeader(text);
  return header ? "" : header.error().message;
}

// Size

struct SizeCase {
  const char* attributes;
  double width, height;
};
class QNSVGSizes : public testing::TestWithParam<SizeCase> {};

TEST_P(QNSVGSizes, AreToldInPixels) {
  const auto header = readSVGHeader(svg(GetParam().attributes));

  ASSERT_TRUE(header.ok()) << header.error().message;
  EXPECT_NEAR(header.value().size.width, GetParam().width, 1e-9);
  EXPECT_NEAR(header.value().size.height, GetParam().height, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(
    Attributes, QNSVGSizes,
    testing::Values(SizeCase{"width='24' height='16'", 24, 16},
                    SizeCase{"width=\" 24px \" height = '+16.5'", 24, 16.5},
                    SizeCase{"width='1in' height='72pt'", 96, 96},
                    SizeCase{"width='2.54cm' height='25.4mm'", 96, 96},
                    SizeCase{"width='6pc' height='101.6Q'", 96, 96},
                    SizeCase{"viewBox='0 0 24 12'", 24, 12},
                    SizeCase{"viewBox='-5,-5 24.5,12'", 24.5, 12},
                    SizeCase{"width='48' viewBox='0 0 24 12'", 48, 24},
                    SizeCase{"height='6' viewBox='0 0 24 12'", 12, 6},
                    SizeCase{"width='100%' height='100%' viewBox='0 0 24 12'", 24, 12},
                    SizeCase{"width='1em' height='2em' viewBox='0 0 24 12'", 24, 12},
                    SizeCase{"width='1e2' height='1e-1'", 100, 0.1},
                    SizeCase{"width='100000' height='100000'", 100000, 100000}));

TEST(QNSVGReader, ReadsWhatDrawingProgramsPutAroundTheShapes) {
  const std::string text =
      "\xef\xbb\xbf<?xml version=\"1.0\" encoding='UTF-8' standalone=\"no\"?>\n"
      "<!-- made > by \"hand\" -->\n"
      "<!DOCTYPE svg PUBLIC \"-//W3C//DTD SVG 1.1//EN\" \"http://www.w3.org/svg11.dtd\">\n"
      "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:svg=\"http://www.w3.org/2000/svg\"\n"
      "  xmlns:xlink='http://www.w3.org/1999/xlink' xmlns:ed='http://editor.example/ns'\n"
      "  width=\"24\" height='12' ed:version='1'>\n"
      "<title>A &amp; B</title><metadata><ed:license ed:resource='x'/></metadata>\n"
      "<ed:view zoom='3'><ed:grid/></ed:view>\n"
      "<defs><linearGradient id='a'><stop/></linearGradient>\n"
      "<linearGradient id='b' xlink:href='#a' href='#a'/></defs>\n"
      "<svg:g style=\"fill:url(#b);stroke-dasharray:none; marker : none \" mask='none'>\n"
      "<path d='M0 0h24' fill='url( \"#b\")' transform='translate(3 4)'/></svg:g>\n"
      "</svg>\n<!-- end -->\n";

  EXPECT_EQ(faultOf(text), "");
}

// Refused

struct Refused {
  const char* name;
  std::string text;
  const char* fault;
};
void PrintTo(const Refused& refused, std::ostream* out) {
  *out << refused.name;
}
class QNSVGRefused : public testing::TestWithParam<Refused> {};

TEST_P(QNSVGRefused, IsAnErrorThatSaysWhy) {
  EXPECT_EQ(faultOf(GetParam().text), GetParam().fault);
}

constexpr const char* kNotPlain = "an SVG that is more than plain shapes";
constexpr const char* kValue = "an SVG with values that aren't plain";
constexpr const char* kReference = "an SVG that refers to other files";
constexpr const char* kNamespace = "an SVG with namespaces that aren't plain";
constexpr const char* kEntities = "an SVG that declares entities";
constexpr const char* kRaw = "an SVG with raw text or instructions";
constexpr const char* kSize = "an SVG that tells no size to draw it at";
constexpr const char* kUntold = "an SVG of sizes that can't be told";
constexpr const char* kCut = "an SVG cut short";
constexpr const char* kTags = "an SVG of broken tags";

const std::vector<Refused> kRefused{
    // What would run, load or repeat
    {"script", shapes("<script>1</script>"), kNotPlain},
    {"script by its prefix", shapes("<svg:script/>"), kNotPlain},
    {"handler", svg("width='1' height='1' onload='f()'"), "an SVG with a script"},
    {"picture", shapes("<image href='#a'/>"), kNotPlain},
    {"foreign object", shapes("<foreignObject/>"), kNotPlain},
    {"style sheet", shapes("<style>*{}</style>"), kNotPlain},
    {"repetition", shapes("<use href='#a'/>"), kNotPlain},
    {"pattern", shapes("<pattern/>"), kNotPlain},
    {"text", shapes("<text>a</text>"), kNotPlain},
    {"filter", shapes("<g filter='blur(9px)'/>"), kNotPlain},
    {"filter in a style", shapes("<g style='fill:red; FILTER :blur(9px)'/>"), kNotPlain},
    {"dashes", shapes("<path stroke-dasharray='.001'/>"), kNotPlain},
    {"mask", shapes("<g mask='url(#a)'/>"), kNotPlain},
    {"SVG within", shapes("<svg/>"), "an SVG within an SVG"},
    // References that lead out
    {"reference to a file", shapes("<g href='/etc/passwd'/>"), kReference},
    {"reference by a prefix", shapes("<g any:href='http://a.example'/>"), kReference},
    {"base", shapes("<g xml:base='file:///'/>"), kReference},
    {"paint of a file", shapes("<g fill='url(http://a.example/a.svg#a)'/>"), kValue},
    {"paint in a style", shapes("<g style='fill:URL( \"a.svg#b\")'/>"), kValue},
    {"second paint", shapes("<g style='fill:url(#a);stroke:url(b)'/>"), kValue},
    {"escaped paint", shapes("<g style='fill:u\\72l(a)'/>"), kValue},
    {"paint by an entity", shapes("<g fill='&#117;rl(a)'/>"), kValue},
    {"comment in a style", shapes("<g style='/**/filter:blur(9px)'/>"), kValue},
    {"import in a style", shapes("<g style='@import \"a\"'/>"), kValue},
    // What would make the drawing library read another text
    {"entities", "<!DOCTYPE svg [<!ENTITY a 'b'>]>" + shapes("&a;"), kEntities},
    {"entities behind a quote", "<!DOCTYPE svg \">\" [<!ENTITY a 'b'>]>" + shapes("&a;"), kRaw},
    {"raw text", shapes("<![CDATA[<script/>]]>"), kRaw},
    {"style sheet outside", "<!-- --><?xml-stylesheet href='a'?>" + shapes(""), kRaw},
    {"comment that seems to end", "<!--> <!-- -->" + shapes("<script/>"), kNotPlain},
    {"UTF-7", "<?xml version='1.0' encoding='UTF-7'?>" + shapes(""), "an SVG that isn't UTF-8"},
    {"UTF-16", "<?xml version='1.0' encoding = \"utf-16\"?>" + shapes(""),
     "an SVG that isn't UTF-8"},
    {"other prefix", shapes("<g xmlns:a='http://www.w3.org/2000/svg'/>"), kNamespace},
    {"other namespace", shapes("<g xmlns='http://www.w3.org/1999/xhtml'/>"), kNamespace},
    {"element of no namespace", shapes("<a:use href='#a'/>"), kNotPlain},
    {"attribute of no namespace", shapes("<g a:filter='blur(9px)'/>"), kNotPlain},
    {"namespace of one element", shapes("<a:use xmlns:a='b'/>"), kNotPlain},
    {"namespace taken back", svg("xmlns:a='b' width='1' height='1'", "<g xmlns:a=''/>"),
     kNamespace},
    {"outermost of a namespace", "<svg:svg xmlns:svg='http://www.w3.org/2000/svg'/>", kSize},
    {"outermost of another", "<!-- --><a:svg xmlns:a='b'/>", "its text is no SVG"},
    {"namespace by an entity", shapes("<g xmlns:a='http&#58;//www.w3.org/2000/svg'/>"), kNamespace},
    {"late document type", shapes("<!DOCTYPE svg>"), "an SVG with a document type inside"},
    // No SVG, or not all of it
    {"page", "<!DOCTYPE html><html></html>", "its text is no SVG"},
    {"nothing", "<!-- -->", "its text is no SVG"},
    {"cut in a tag", "<svg width='10' hei", kTags},
    {"cut in a value", "<svg width='10", kCut},
    {"cut in a comment", shapes("") + "<!-- ", kCut},
    {"cut in the content", "<svg width='1' height='1'><g>", kCut},
    {"two roots", shapes("") + shapes(""), "an SVG with something behind it"},
    {"unpaired", shapes("") + "</svg>", "an SVG of unpaired tags"},
    {"value without quotes", "<svg width=10 height=10/>", kTags},
    // No size
    {"no size", svg(""), kSize},
    {"width alone", svg("width='10'"), kSize},
    {"size of zero", svg("width='0' height='10'"), kSize},
    {"size below zero", svg("width='10' height='-10'"), kSize},
    {"size that is no number", svg("width='nan' height='inf'"), kSize},
    {"size beyond all", svg("width='1e10' height='1'"), kSize},
    {"size of too many digits", svg("width='1e999' height='1'"), kUntold},
    {"empty view box", svg("width='9' height='9' viewBox='0 0 0 9'"),
     "an SVG with a broken view box"},
    {"short view box", svg("width='9' height='9' viewBox='0 0 9'"),
     "an SVG with a broken view box"},
    {"long view box", svg("width='9' height='9' viewBox='0 0 9 9 9'"),
     "an SVG with a broken view box"},
    // Too much
    {"depth", shapes(repeated("<g>", 16) + repeated("</g>", 16)),
     "an SVG of elements too deep in each other"},
    {"colours", shapes(repeated("<stop/>", 257)), "an SVG of too many colours"},
    {"number beyond all", shapes("<path d='M0 0h1e999'/>"), kUntold},
    {"slanted", shapes("<g transform='skewX(89.9999)'/>"), kUntold},
    {"enlarged without end", shapes("<g transform='" + repeated("scale(1e200)", 9) + "'/>"),
     kUntold}};

INSTANTIATE_TEST_SUITE_P(Texts, QNSVGRefused, testing::ValuesIn(kRefused));

TEST(QNSVGReader, AllowsUpToTheLimits) {
  EXPECT_EQ(faultOf(shapes(repeated("<g>", 15) + repeated("</g>", 15))), "");
  EXPECT_EQ(faultOf(shapes(repeated("<stop/>", 256))), "");
}

TEST(QNSVGReader, SaysNothingOfTheTextItself) {
  EXPECT_EQ(faultOf(shapes("<secret-name/>")), kNotPlain);
}

TEST(QNSVGReader, RefusesOrReadsEveryTextThatIsCutShort) {
  const std::string text =
      "<?xml version='1.0'?><!DOCTYPE svg><!-- a -->" +
      shapes("<g transform='scale(2)'><path style='fill:url(#a)' d='M0 0h24'/></g>");
  ASSERT_EQ(faultOf(text), "");

  for (std::size_t length = 0; length < text.size(); ++length) {
    EXPECT_NE(faultOf(std::string_view(text).substr(0, length)), "") << length;
  }
}

// Cost

QNImageHeader headerOf(std::string_view text) {
  const auto header = readSVGHeader(text);
  EXPECT_TRUE(header.ok());
  return header.ok() ? header.value() : QNImageHeader{};
}

TEST(QNSVGReader, CountsAFillForEachElementAndMoreForGradients) {
  EXPECT_EQ(headerOf(shapes("<g><path/><path/></g>")).fillsPerPixel, 4);
  EXPECT_GT(headerOf(shapes("<g><path/><stop/></g>")).fillsPerPixel, 4 * 4);
}

TEST(QNSVGReader, CountsEdgesByNumbersAndTheRootOfTheLargest) {
  // Four numbers and two of the outermost element; the largest is 399.
  EXPECT_DOUBLE_EQ(headerOf(shapes("<path d='M0 0L-9 399'/>")).edges, 6 * std::sqrt(400));
  EXPECT_DOUBLE_EQ(headerOf(shapes("<path d='M0 0L-9 .9.399e3'/>")).edges, 7 * std::sqrt(400));
  EXPECT_DOUBLE_EQ(headerOf(shapes("<path style='stroke-width:399px'/>")).edges,
                   3 * std::sqrt(400));
}

TEST(QNSVGReader, TakesUnitsForInches) {
  EXPECT_DOUBLE_EQ(headerOf(shapes("<rect width='5in'/>")).edges, 3 * std::sqrt(1 + 480));
  EXPECT_DOUBLE_EQ(headerOf(shapes("<rect width='5mm'/>")).edges, 3 * std::sqrt(1 + 480));
}

TEST(QNSVGReader, CountsTransformationsThatEnlarge) {
  const auto edges = [](std::string_view content) { return headerOf(shapes(content)).edges; };
  const double plain = 3 * std::sqrt(1 + 50);
  EXPECT_DOUBLE_EQ(edges("<path d='h50'/>"), plain);
  EXPECT_DOUBLE_EQ(edges("<path transform='translate(99 99) rotate(45)' d='h50'/>"), plain);

  const double fourfold = 3 * std::sqrt(1 + 200);
  EXPECT_DOUBLE_EQ(edges("<path transform='scale(4)' d='h50'/>"), fourfold);
  EXPECT_DOUBLE_EQ(edges("<path style='transform:scale(-4)' d='h50'/>"), fourfold);
  EXPECT_DOUBLE_EQ(edges("<path transform='matrix(0 4 0 0 99 99)' d='h50'/>"), fourfold);
  EXPECT_DOUBLE_EQ(edges("<g transform='scale(2)'><g transform='scale(2)'><path d='h50'/></g></g>"),
                   fourfold);
  EXPECT_DOUBLE_EQ(edges("<g transform='scale(4)'/><path d='h200'/>"), fourfold);
  EXPECT_DOUBLE_EQ(edges("<path transform='scale(.5)' style='transform:scale(4)' d='h50'/>"),
                   fourfold);
}

TEST(QNSVGReader, CountsAViewBoxThatEnlarges) {
  EXPECT_DOUBLE_EQ(
      headerOf(svg("width='30' height='30' viewBox='0 0 3 10'", "<path d='h9'/>")).edges,
      3 * std::sqrt(1 + 300));
}

}  // namespace
}  // namespace quillon
