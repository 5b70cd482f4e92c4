#include "cli/pick/QNFinder.h"

#include <algorithm>

#include "cli/pick/QNPickDrawing.h"
#include "quillon/platform/text/QNUTF8.h"

namespace quillon {
namespace {

void eraseCharacter(std::string& text) {
  while (!text.empty() && continuesCharacter(text.back())) text.pop_back();
  if (!text.empty()) text.pop_back();
}

void eraseWord(std::string& text) {
  while (text.ends_with(' ')) text.pop_back();
  while (!text.empty() && !text.ends_with(' ')) text.pop_back();
}

}  // namespace

std::optional<std::size_t> QNFinder::choose(std::string typed) {
  _typed = std::move(typed);
  narrow();
  for (;;) {
    draw();
    const auto next = _terminal.next();
    if (next.event == QNRawTerminal::Event::ended) return std::nullopt;
    if (next.event != QNRawTerminal::Event::key) continue;
    switch (handle(next.press)) {
      case Step::goesOn:
        break;
      case Step::chosen:
        return _list.indexOfMatch(_selected);
      case Step::left:
        return std::nullopt;
    }
  }
}

QNFinder::Step QNFinder::handle(const QNKeyPress& press) {
  const std::string before = _typed;
  switch (press.key) {
    case QNKey::leave:
      return Step::left;
    case QNKey::endOfInput:
      return _typed.empty() ? Step::left : Step::goesOn;
    case QNKey::enter:
      return _list.matches() == 0 ? Step::goesOn : Step::chosen;
    case QNKey::suspend:
      _terminal.suspend();
      break;
    case QNKey::text:
      _typed += press.text;
      break;
    case QNKey::erase:
      eraseCharacter(_typed);
      break;
    case QNKey::eraseWord:
      eraseWord(_typed);
      break;
    case QNKey::eraseAll:
      _typed.clear();
      break;
    default:
      move(press.key);
  }
  if (_typed != before) narrow();
  return Step::goesOn;
}

void QNFinder::narrow() {
  _list.narrowTo(_typed);
  _first = _selected = 0;
}

void QNFinder::move(QNKey key) {
  if (_list.matches() == 0) return;
  const std::size_t last = _list.matches() - 1;
  const std::size_t page = rowsForMatches(_terminal.size());
  switch (key) {
    case QNKey::up:
      _selected -= std::min<std::size_t>(_selected, 1);
      break;
    case QNKey::down:
      _selected = std::min(_selected + 1, last);
      break;
    case QNKey::pageUp:
      _selected -= std::min(_selected, page);
      break;
    case QNKey::pageDown:
      _selected = std::min(_selected + page, last);
      break;
    case QNKey::home:
      _selected = 0;
      break;
    case QNKey::end:
      _selected = last;
      break;
    default:
      break;
  }
}

void QNFinder::draw() {
  const auto size = _terminal.size();
  const std::size_t rows = rowsForMatches(size);
  if (_selected < _first) _first = _selected;
  if (_selected >= _first + rows) _first = _selected - rows + 1;
  _terminal.write(drawn({_list, _prompt, _typed, _first, _selected}, size));
}

}  // namespace quillon
