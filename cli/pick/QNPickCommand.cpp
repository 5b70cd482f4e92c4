#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultFolders.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/pick/QNClipboard.h"
#include "cli/pick/QNFinder.h"
#include "cli/pick/QNPickFields.h"
#include "cli/pick/QNPickItems.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

using namespace std::chrono_literals;
using Use = QNPickArguments::Use;

// What the person chose.
struct Picked {
  std::string uuid;
  std::string title;
  std::string field;
  QNSecret value;
};

// They left: nothing is said.
QNError left() {
  return toolError(QNExit::failed, "");
}

QNResult<Picked> pickField(QNRawTerminal& terminal, QNItem& item,
                           const QNPickArguments& arguments) {
  Picked picked{*item.uuid(), item.title(), arguments.field.value_or(""), {}};
  QNPickFields fields(item);
  if (!arguments.field) {
    QNFinder finder(terminal, fields.list(), picked.title + "> ");
    const auto chosen = finder.choose();
    if (!chosen) return left();
    picked.field = fields.nameOf(*chosen);
    auto value = fields.valueOf(*chosen);
    if (!value) return value.error();
    picked.value = std::move(value).value();
    return picked;
  }
  auto value = fields.valueOfNamed(*arguments.field);
  if (!value) return value.error();
  picked.value = std::move(value).value();
  return picked;
}

QNResult<Picked> pick(const QNVaultSession& session, QNPickItems& items,
                      const QNPickArguments& arguments) {
  // The terminal is as before when this returns.
  const auto terminal = QNRawTerminal::open(QNRawTerminal::Screen::own);
  if (!terminal) return terminal.error();
  QNFinder finder(*terminal.value(), items.list(), "> ");
  const auto chosen = finder.choose(fmt::format("{}", fmt::join(arguments.words, " ")));
  if (!chosen) return left();
  const auto item = session.store().item(session.vault(), items.uuidOf(*chosen));
  if (!item) return item.error();
  return pickField(*terminal.value(), *item.value(), arguments);
}

JsonObject jsonOf(const Picked& picked) {
  JsonObject object(jsonStorage());
  setJsonText(object, "uuid", picked.uuid);
  setJsonText(object, "title", picked.title);
  setJsonText(object, "field", picked.field);
  return object;
}

QNCommandResult print(Global global, const Picked& picked) {
  const std::string_view value = picked.value.reveal();  // the user asked for it
  if (!global.json) return printValue(value);
  JsonObject object = jsonOf(picked);
  setJsonText(object, "value", value);
  return printJson(object);
}

// In one line, so that it can be taken away again.
void tell(const QNRawTerminal& terminal, const std::string& text) {
  terminal.write("\r\x1b[K");
  terminal.write(cutToWidth(text, terminal.size().columns - 1));
}

// What was copied, cleared again however this is left: by an error, a signal or a stop, too.
class ClipboardContent {
 public:
  enum class Stay { forNow, forGood };  // the latter is never cleared
  // Clipboard and terminal must outlive it.
  ClipboardContent(const QNClipboard& clipboard, QNRawTerminal& terminal, Stay stay)
      : _clipboard(clipboard), _terminal(terminal), _stay(stay) {
    _terminal.beforeStop([this] { static_cast<void>(clear()); });  // told of at the end
  }
  ~ClipboardContent() {
    static_cast<void>(clear());
    _terminal.beforeStop(nullptr);
  }
  ClipboardContent(const ClipboardContent&) = delete;
  ClipboardContent& operator=(const ClipboardContent&) = delete;

  // The text may be there after an error, too.
  QNResult<QNDone> put(std::string_view text) {
    _mustGo = _stay == Stay::forNow;
    return _clipboard.put(text, _terminal);
  }
  [[nodiscard]] bool mustGo() const { return _mustGo; }
  QNResult<QNDone> clear() {
    if (!_mustGo) return QNDone{};
    auto done = _clipboard.clear(_terminal);
    _mustGo = !done;
    return done;
  }

 private:
  const QNClipboard& _clipboard;
  QNRawTerminal& _terminal;
  Stay _stay;
  bool _mustGo = false;
};

// Until the time is up, or a key or a signal comes. A key that was pressed before is none.
void countDown(QNRawTerminal& terminal, const ClipboardContent& content,
               std::chrono::seconds time) {
  terminal.forgetTyped();
  const double end = steadySeconds() + static_cast<double>(time.count());
  for (double left = end - steadySeconds(); left > 0 && content.mustGo();
       left = end - steadySeconds()) {
    tell(terminal, fmt::format("quillon: copied; the clipboard is cleared in {:.0f} s, or now with "
                               "any key",
                               std::ceil(left)));
    const auto event =
        terminal
            .next(std::min(1000ms, std::chrono::milliseconds(std::lround(std::ceil(left * 1e3)))))
            .event;
    if (event == QNRawTerminal::Event::key || event == QNRawTerminal::Event::ended) break;
  }
  terminal.write("\r\x1b[K");
}

QNCommandResult copy(Global global, const Picked& picked, const QNClipboard& clipboard,
                     std::chrono::seconds clear) {
  const auto terminal = QNRawTerminal::open(QNRawTerminal::Screen::shared);
  if (!terminal) return terminal.error();
  using Stay = ClipboardContent::Stay;
  ClipboardContent content(clipboard, *terminal.value(),
                           clear.count() > 0 ? Stay::forNow : Stay::forGood);
  const auto done = content.put(picked.value.reveal());  // the user asked for it
  if (!done) return done.error();
  if (content.mustGo()) countDown(*terminal.value(), content, clear);
  const auto cleared = content.clear();
  if (!cleared) return cleared.error();
  if (!global.json) return QNExit::done;
  JsonObject object = jsonOf(picked);
  object["cleared"] = clear.count() > 0;
  return printJson(object);
}

}  // namespace

QNCommandResult runCommand(Global global, const QNPickArguments& arguments) {
  auto filter = itemFilter(arguments.filter);
  if (!filter) return filter.error();
  const auto clipboard = QNClipboard::named(arguments.clipboard);
  if (!clipboard) return clipboard.error();
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto folder = chooseFolderOf(filter.value(), session.value(), arguments.filter);
  if (!folder) return folder.error();
  QNPickItems items;
  const auto report = items.load(session.value(), filter.value());
  if (!report) return report.error();
  const QNExit exit = std::max(folder.value(), warnOfDamage(report.value()));
  const auto picked = pick(session.value(), items, arguments);
  if (!picked) return picked.error();
  const auto done = arguments.use == Use::print
                        ? print(global, picked.value())
                        : copy(global, picked.value(), clipboard.value(), arguments.clear);
  return done && done.value() == QNExit::done ? QNCommandResult(exit) : done;
}

}  // namespace quillon
