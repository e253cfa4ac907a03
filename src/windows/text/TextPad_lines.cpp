// Lines of a TextPad: their numbers and ends, and steps of undo beside the text.
#include <algorithm>
#include <utility>

#include "base/Utf8.h"
#include "windows/text/TextPad.h"

namespace tme {
namespace {

constexpr std::uintptr_t kNumberMargin = 0;
/// So that the margin keeps its width in most texts.
constexpr std::size_t kLeastDigits = 3;
/// Bytes, for some hundredths of a second.
constexpr PadPosition kLineEndSlice = PadPosition{4} << 20;

}  // namespace

std::int64_t TextPad::LineOf(PadPosition position) const {
  return Send(SCI_LINEFROMPOSITION, static_cast<std::uintptr_t>(position));
}

PadPosition TextPad::StartOfLine(std::int64_t line) const {
  return Send(SCI_POSITIONFROMLINE, static_cast<std::uintptr_t>(line));
}

std::int64_t TextPad::CharactersBetween(PadPosition start, PadPosition end, Count count) const {
  const auto characters = [this](PadPosition from, PadPosition to) {
    // On either side of where the component's memory is parted, which it would close for one range.
    const PadPosition gap = std::clamp<PadPosition>(Send(SCI_GETGAPPOSITION), from, std::max(from, to));
    return static_cast<std::int64_t>(utf8::CountCharacters(BytesBetween(from, gap)) +
                                     utf8::CountCharacters(BytesBetween(gap, to)));
  };
  Counted& last = counted_.at(static_cast<std::size_t>(count));
  const auto [known_start, known_end] = last.range;
  const PadPosition between = std::abs(start - known_start) + std::abs(end - known_end);
  if (last.revision != revision_ || between >= end - start)
    last.characters = characters(start, end);
  else
    last.characters += characters(start, known_start) - characters(known_start, start) + characters(known_end, end) -
                       characters(end, known_end);
  last.range = {start, end};
  last.revision = revision_;
  return last.characters;
}

LineEnds TextPad::UsedLineEnds() const {
  const std::intptr_t typed = Send(SCI_GETEOLMODE);
  const LineEnds without = typed == SC_EOL_CRLF ? LineEnds::CrLf : typed == SC_EOL_LF ? LineEnds::Lf : LineEnds::Mixed;
  return UsedLineEndsIn(Text()).value_or(without);
}

TextPad::Place TextPad::PlaceNow() const {
  const auto spot = [this](PadPosition position) {
    const std::int64_t line = LineOf(position);
    return Place::Spot{line, position - StartOfLine(line)};
  };
  return {spot(Send(SCI_GETANCHOR)), spot(Caret()), Send(SCI_GETFIRSTVISIBLELINE)};
}

void TextPad::ReturnTo(const Place& place) {
  const auto position = [this](const Place::Spot& spot) {
    const std::intptr_t end = Send(SCI_GETLINEENDPOSITION, static_cast<std::uintptr_t>(spot.line));
    return std::min<PadPosition>(StartOfLine(spot.line) + spot.bytes, end);
  };
  Send(SCI_SETSEL, static_cast<std::uintptr_t>(position(place.anchor)), position(place.caret));
  Send(SCI_SETFIRSTVISIBLELINE, static_cast<std::uintptr_t>(place.first_line));
}

PadPosition TextPad::EndLinesFrom(PadPosition start, std::string_view line_end) {
  const PadPosition enough = start + kLineEndSlice;
  const PadPosition end = enough < End() ? std::max(StartOfLine(LineOf(enough)), start) : End();
  // A line that is longer stays whole.
  const std::int64_t next_line = LineOf(start) + 1;
  const PadPosition whole = end > start ? end : next_line < LineCount() ? StartOfLine(next_line) : End();
  const std::string_view before = BytesBetween(start, whole);
  const std::string text = LinesEndedBy(before, line_end);
  if (text == before) return whole;
  // One edit: as many as there are lines would take seconds for a million.
  Send(SCI_SETTARGETRANGE, static_cast<std::uintptr_t>(start), whole);
  Send(SCI_REPLACETARGET, text.size(), reinterpret_cast<std::intptr_t>(text.data()));
  return start + static_cast<PadPosition>(text.size());
}

bool TextPad::SetLineEnds(LineEnds ends, const std::function<bool(std::size_t done, std::size_t total)>& go_on) {
  if (ends == LineEnds::Mixed || ends == UsedLineEnds()) return true;
  const auto mode = ends == LineEnds::CrLf ? SC_EOL_CRLF : SC_EOL_LF;
  const auto mode_before = Send(SCI_GETEOLMODE);
  const Place place = PlaceNow();
  const auto step = [this, place](std::intptr_t of_mode) {
    return [this, place, of_mode] {
      Send(SCI_SETEOLMODE, static_cast<std::uintptr_t>(of_mode));
      // Later: whatever undoes an edit then goes to the end of it.
      QMetaObject::invokeMethod(
          this, [this, place] { ReturnTo(place); }, Qt::QueuedConnection);
    };
  };
  Send(SCI_BEGINUNDOACTION);
  NoteStep(step(mode_before), step(mode));
  bool goes_on = true;
  for (PadPosition at = 0; goes_on && at < End();) {
    at = EndLinesFrom(at, ends == LineEnds::CrLf ? "\r\n" : "\n");
    goes_on = go_on(static_cast<std::size_t>(at), static_cast<std::size_t>(End()));
  }
  Send(SCI_ENDUNDOACTION);
  if (goes_on)
    Send(SCI_SETEOLMODE, static_cast<std::uintptr_t>(mode));
  else
    Undo();
  ReturnTo(place);
  return goes_on;
}

void TextPad::AddOutsideStep(std::function<void()> undo, std::function<void()> redo) {
  NoteStep(std::move(undo), std::move(redo));
  emit SCEN_CHANGE();
}

void TextPad::NoteStep(std::function<void()> undo, std::function<void()> redo) {
  Send(SCI_ADDUNDOACTION, outside_steps_.size());
  outside_steps_.push_back({std::move(undo), std::move(redo)});
}

void TextPad::RunStep(int type, int token) {
  if (!(type & SC_MOD_CONTAINER)) return;
  const OutsideStep& step = outside_steps_.at(static_cast<std::size_t>(token));
  (type & SC_PERFORMED_UNDO ? step.undo : step.redo)();
}

void TextPad::ShowLineNumbers(bool shown) {
  if (std::exchange(shows_line_numbers_, shown) != shown) FitLineNumbers();
}

void TextPad::FitLineNumbers() {
  int width = 0;
  if (shows_line_numbers_) {
    const std::string widest(std::max(std::to_string(LineCount()).size(), kLeastDigits), '9');
    width = static_cast<int>(
        Send(SCI_TEXTWIDTH, STYLE_LINENUMBER, reinterpret_cast<std::intptr_t>((widest + ' ').c_str())));
    Send(SCI_SETMARGINTYPEN, kNumberMargin, SC_MARGIN_NUMBER);
  }
  if (Send(SCI_GETMARGINWIDTHN, kNumberMargin) != width) Send(SCI_SETMARGINWIDTHN, kNumberMargin, width);
}

}  // namespace tme
