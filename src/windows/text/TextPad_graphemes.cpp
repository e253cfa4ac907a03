// What users take for one character, though it is written with several: a letter with its accents, a flag, a family.
#include <QTextBoundaryFinder>
#include <vector>

#include "base/Utf8.h"
#include "windows/text/TextPad.h"

namespace tme {
namespace {

/// How far around a place its grapheme is looked for, in characters; one that is longer has several parts.
constexpr int kReach = 64;

/// Pictures are taken away whole, while an accent can be taken off its letter.
bool IsPicture(char32_t character) {
  constexpr char32_t kFirstPicture = 0x1F000, kLastPicture = 0x1FAFF, kPictureSelector = 0xFE0F, kKeycap = 0x20E3;
  return (character >= kFirstPicture && character <= kLastPicture) || character == kPictureSelector ||
         character == kKeycap;
}

}  // namespace

TextPad::Range TextPad::GraphemeAround(PadPosition position) const {
  const auto is_ascii = [this](PadPosition at) { return static_cast<unsigned char>(ByteAt(at)) < 0x80; };
  PadPosition start = position, end = position;
  for (int count = 0; count < kReach && start > 0; ++count) {
    start = Moved(start, -1);
    if (is_ascii(start)) break;  // a grapheme may begin with one, but goes on with none
  }
  for (int count = 0; count < kReach && end < End(); ++count) {
    end = Moved(end, 1);
    if (end < End() && is_ascii(end)) break;
  }
  QString text;
  std::vector<PadPosition> places;  // of each unit of `text`
  for (std::string_view rest = BytesBetween(start, end); !rest.empty();) {
    const PadPosition place = end - static_cast<PadPosition>(rest.size());
    const std::optional<char32_t> character = utf8::TakeCharacter(rest);
    if (!character) rest.remove_prefix(1);
    text += QChar::fromUcs4(character.value_or(QChar::ReplacementCharacter));
    places.resize(static_cast<std::size_t>(text.size()), place);
  }
  places.push_back(end);
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
  Range grapheme{start, start};
  for (qsizetype at = finder.toNextBoundary(); at > 0 && grapheme.end <= position; at = finder.toNextBoundary())
    grapheme = {grapheme.end, places[static_cast<std::size_t>(at)]};
  // At the end of the text nothing follows.
  return grapheme.end > position ? grapheme : Range{position, position};
}

void TextPad::KeepCaretOutsideGraphemes(PadPosition caret_before) {
  const PadPosition caret = Caret();
  const Range grapheme = GraphemeAround(caret);
  if (grapheme.start == caret) return;
  const PadPosition target = caret > caret_before ? grapheme.end : grapheme.start;
  const PadPosition anchor = Send(SCI_GETANCHOR);
  Send(SCI_SETSEL, static_cast<std::uintptr_t>(anchor == caret ? target : anchor), target);
}

bool TextPad::DeleteGrapheme(const QKeyEvent& key) {
  const bool back = key.key() == Qt::Key_Backspace;
  if ((!back && key.key() != Qt::Key_Delete) || (key.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) return false;
  const PadPosition caret = Caret();
  if (SelectionStart() != SelectionEnd() || (back ? caret == 0 : caret == End())) return false;
  const Range grapheme = GraphemeAround(back ? Moved(caret, -1) : caret);
  if (back) {
    bool picture = false;
    for (std::string_view rest = BytesBetween(grapheme.start, caret); !picture && !rest.empty();) {
      const std::optional<char32_t> character = utf8::TakeCharacter(rest);
      if (!character) return false;
      picture = IsPicture(*character);
    }
    if (!picture || grapheme.end != caret) return false;
  }
  Send(SCI_DELETERANGE, static_cast<std::uintptr_t>(grapheme.start), grapheme.end - grapheme.start);
  Send(SCI_SCROLLCARET);
  return true;
}

}  // namespace tme
