#include "quillon/organisation/predicates/internal/QNPredicateText.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/text/QNFormat.h"

namespace quillon {
namespace {

constexpr std::array<std::string_view, 23> kWords = {
    "ALL",     "AND",      "ANY",   "BEGINSWITH",     "BETWEEN", "CONTAINS",
    "DATE",    "ENDSWITH", "FALSE", "FALSEPREDICATE", "IN",      "LIKE",
    "MATCHES", "NIL",      "NO",    "NONE",           "NOT",     "NULL",
    "OR",      "SOME",     "TRUE",  "TRUEPREDICATE",  "YES"};

// Shortest digits that read back as the same number, and a sign that it isn't a whole one.
std::string realText(double number) {
  std::string digits = formatted("{}", number);
  if (digits.find_first_of(".e") == std::string::npos) digits += ".0";
  return digits;
}

std::string escaped(char c) {
  switch (c) {
    case '"':
      return "\\\"";
    case '\\':
      return "\\\\";
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return formatted("\\u{:04x}", static_cast<unsigned>(static_cast<unsigned char>(c)));
  }
}

bool needsEscape(char c) {
  return c == '"' || c == '\\' || c == 0x7F || (c >= 0 && c < 0x20);
}

// The number in `count` digits at `at`; nothing if there are others than digits.
std::optional<int> digitsAt(std::string_view text, std::size_t at, std::size_t count) {
  int number = 0;
  const char* const begin = text.data() + at;
  const auto read = std::from_chars(begin, begin + count, number);
  const bool whole = read.ec == std::errc() && read.ptr == begin + count && *begin != '-';
  return whole ? std::optional<int>(number) : std::nullopt;
}

// Does `text` have the characters of `shape` wherever that has no digit?
bool hasShape(std::string_view text, std::string_view shape) {
  return std::equal(text.begin(), text.end(), shape.begin(), shape.end(),
                    [](char c, char wanted) { return wanted == '0' || c == wanted; });
}

std::optional<std::chrono::sys_days> dayFromText(std::string_view text) {
  const auto year = digitsAt(text, 0, 4);
  const auto month = digitsAt(text, 5, 2);
  const auto day = digitsAt(text, 8, 2);
  if (!year || !month || !day || *year == 0) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(*year),
                                         std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day))};
  if (!date.ok()) return std::nullopt;
  return std::chrono::sys_days(date);
}

}  // namespace

bool beginsPredicateWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool continuesPredicateWord(char c) {
  return beginsPredicateWord(c) || (c >= '0' && c <= '9');
}

bool isPredicateWord(std::string_view name) {
  return std::any_of(kWords.begin(), kWords.end(), [name](std::string_view word) {
    return std::equal(name.begin(), name.end(), word.begin(), word.end(),
                      [](char a, char b) { return uppercaseASCII(a) == b; });
  });
}

void QNPredicateText::add(const QNExpression& expression) {
  struct Adding {
    QNPredicateText& text;
    void operator()(QNExpression::Nil) const { text.add("NIL"); }
    void operator()(bool value) const { text.add(value ? "YES" : "NO"); }
    void operator()(std::int64_t value) const { text.add(std::to_string(value)); }
    void operator()(double value) const { text.add(realText(value)); }
    void operator()(std::chrono::sys_seconds value) const {
      text.add("DATE \"" + predicateDateText(value) + "\"");
    }
    void operator()(const std::string& value) const { text.addText(value); }
    void operator()(const QNExpression::List& elements) const { text.addList(elements); }
    void operator()(const QNKeyPath& keyPath) const {
      if (isPredicateWord(keyPath.name())) text.add("#");
      text.add(keyPath.name());
    }
  };
  std::visit(Adding{*this}, expression.content());
}

void QNPredicateText::addText(std::string_view text) {
  if (_use == QNPredicateTextUse::forLogging) return add("\"…\"");
  add("\"");
  while (!text.empty()) {
    const auto plain = std::find_if(text.begin(), text.end(), needsEscape) - text.begin();
    add(text.substr(0, static_cast<std::size_t>(plain)));
    text.remove_prefix(static_cast<std::size_t>(plain));
    if (text.empty()) break;
    add(escaped(text.front()));
    text.remove_prefix(1);
  }
  add("\"");
}

void QNPredicateText::addList(const QNExpression::List& elements) {
  add("{");
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (i > 0) add(", ");
    add(elements[i]);
  }
  add("}");
}

std::string predicateDateText(std::chrono::sys_seconds date) {
  const auto day = std::chrono::floor<std::chrono::days>(date);
  const std::chrono::year_month_day calendar(day);
  const std::chrono::hh_mm_ss time(date - day);
  return formatted("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(calendar.year()),
                   static_cast<unsigned>(calendar.month()), static_cast<unsigned>(calendar.day()),
                   time.hours().count(), time.minutes().count(), time.seconds().count());
}

std::optional<std::chrono::sys_seconds> predicateDateFromText(std::string_view text) {
  const bool isDay = hasShape(text, "0000-00-00");
  if (!isDay && !hasShape(text, "0000-00-00T00:00:00Z")) return std::nullopt;
  const auto day = dayFromText(text);
  if (!day || isDay) return day;
  const auto hours = digitsAt(text, 11, 2);
  const auto minutes = digitsAt(text, 14, 2);
  const auto seconds = digitsAt(text, 17, 2);
  if (!hours || !minutes || !seconds || *hours > 23 || *minutes > 59 || *seconds > 59) {
    return std::nullopt;
  }
  return *day + std::chrono::hours(*hours) + std::chrono::minutes(*minutes) +
         std::chrono::seconds(*seconds);
}

}  // namespace quillon
