#include "windows/text/TextPad.h"

#include <QFontInfo>
#include <QKeyEvent>
#include <QMimeData>
#include <QWheelEvent>
#include <algorithm>
#include <array>

#include "base/Utf8.h"
#include "documents/search/TextSearch.h"
#include "shell/DisplayText.h"
#include "system/Twips.h"
#include "windows/text/PadKeys.h"
#include "windows/text/PrintText.h"
#include "windows/text/TextPadAccessible.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kMarginPixels = 4;

/// A fainter text, which can still be read.
QColor Between(const QColor& text, const QColor& base) {
  constexpr int kOfText = 65, kAll = 100;
  const auto mix = [](int one, int other) { return (one * kOfText + other * (kAll - kOfText)) / kAll; };
  return {mix(text.red(), base.red()), mix(text.green(), base.green()), mix(text.blue(), base.blue())};
}

std::string_view LineEndOf(std::intptr_t eol_mode) {
  if (eol_mode == QsciScintillaBase::SC_EOL_CRLF) return "\r\n";
  return eol_mode == QsciScintillaBase::SC_EOL_CR ? "\r" : "\n";
}

int FirstLineEnd(std::string_view text) {
  const std::size_t at = text.find_first_of("\r\n");
  if (at == std::string_view::npos || text.substr(at).starts_with("\r\n")) return QsciScintillaBase::SC_EOL_CRLF;
  return text[at] == '\r' ? QsciScintillaBase::SC_EOL_CR : QsciScintillaBase::SC_EOL_LF;
}

}  // namespace

TextPad::TextPad(QWidget* parent, Styles styles)
    : QsciScintillaBase(parent),
      send_(reinterpret_cast<DirectFunction>(SendScintillaPtrResult(SCI_GETDIRECTFUNCTION))),
      editor_(reinterpret_cast<std::intptr_t>(SendScintillaPtrResult(SCI_GETDIRECTPOINTER))),
      styles_(styles) {
  TextPadAccessible::Install();  // before anything asks for the interface
  setObjectName(u"pad"_s);
  setAccessibleName(tr("Text"));
  setContextMenuPolicy(Qt::NoContextMenu);
  connect(this, &QsciScintillaBase::SCEN_CHANGE, this, [this] { ++revision_; });
  connect(this, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int updated) {
    if (updated & SC_UPDATE_CONTENT) FitLineNumbers();
    if (!(updated & SC_UPDATE_SELECTION) || !QAccessible::isActive()) return;
    QAccessibleTextCursorEvent event(this, OffsetOf(Caret()));
    QAccessible::updateAccessibility(&event);
  });
  connect(this, &QsciScintillaBase::SCN_MODIFIED, this,
          [this](int, int type, const char*, int, int, int, int, int, int token) { RunStep(type, token); });
  connect(this, &QsciScintillaBase::SCN_ZOOM, this, &TextPad::FitLineNumbers);
  SetUpView();
  AssignKeys();
  SetText({});
}

std::intptr_t TextPad::Send(unsigned message, std::uintptr_t first, std::intptr_t second) const {
  return send_(editor_, message, first, second);
}

void TextPad::SetUpView() {
  constexpr int kMargins = 5;
  for (std::uintptr_t margin = 0; margin < kMargins; ++margin) Send(SCI_SETMARGINWIDTHN, margin, 0);
  Send(SCI_SETMARGINLEFT, 0, kMarginPixels);
  Send(SCI_USEPOPUP, SC_POPUP_NEVER);
  Send(SCI_SETRECTANGULARSELECTIONMODIFIER, 0);
  Send(SCI_SETWRAPVISUALFLAGS, SC_WRAPVISUALFLAG_NONE);
  Send(SCI_SETSCROLLWIDTHTRACKING, 1);
  Send(SCI_SETSCROLLWIDTH, 1);
  Send(SCI_SETLAYOUTCACHE, SC_CACHE_PAGE);
  Send(SCI_SETPASTECONVERTENDINGS, 1);
}

void TextPad::SetUpDocument() {
  constexpr int kTabWidth = 8;
  Send(SCI_SETCODEPAGE, SC_CP_UTF8);
  Send(SCI_SETTABWIDTH, kTabWidth);
  Send(SCI_SETUSETABS, 1);
  Send(SCI_SETBACKSPACEUNINDENTS, 0);
}

void TextPad::AssignKeys() {
  struct Key {
    int key;
    int modifiers;
    int command;
    int selecting = 0;  ///< the command with Shift; 0: none
  };
  constexpr int kNorm = SCMOD_NORM, kShift = SCMOD_SHIFT, kCtrl = SCMOD_CTRL, kAlt = SCMOD_ALT;
  constexpr std::array kKeys{
      Key{SCK_LEFT, kNorm, SCI_CHARLEFT, SCI_CHARLEFTEXTEND},
      Key{SCK_RIGHT, kNorm, SCI_CHARRIGHT, SCI_CHARRIGHTEXTEND},
      Key{SCK_UP, kNorm, SCI_LINEUP, SCI_LINEUPEXTEND},
      Key{SCK_DOWN, kNorm, SCI_LINEDOWN, SCI_LINEDOWNEXTEND},
      Key{SCK_PRIOR, kNorm, SCI_PAGEUP, SCI_PAGEUPEXTEND},
      Key{SCK_NEXT, kNorm, SCI_PAGEDOWN, SCI_PAGEDOWNEXTEND},
      Key{SCK_HOME, kNorm, SCI_HOMEWRAP, SCI_HOMEWRAPEXTEND},
      Key{SCK_END, kNorm, SCI_LINEENDWRAP, SCI_LINEENDWRAPEXTEND},
      Key{SCK_LEFT, kCtrl, SCI_WORDLEFT, SCI_WORDLEFTEXTEND},
      Key{SCK_RIGHT, kCtrl, SCI_WORDRIGHT, SCI_WORDRIGHTEXTEND},
      Key{SCK_UP, kCtrl, SCI_PARAUP, SCI_PARAUPEXTEND},
      Key{SCK_DOWN, kCtrl, SCI_PARADOWN, SCI_PARADOWNEXTEND},
      Key{SCK_HOME, kCtrl, SCI_DOCUMENTSTART, SCI_DOCUMENTSTARTEXTEND},
      Key{SCK_END, kCtrl, SCI_DOCUMENTEND, SCI_DOCUMENTENDEXTEND},
      Key{SCK_BACK, kNorm, SCI_DELETEBACK, SCI_DELETEBACK},
      Key{SCK_BACK, kCtrl, SCI_DELWORDLEFT},
      Key{SCK_DELETE, kNorm, SCI_CLEAR},
      Key{SCK_DELETE, kCtrl, SCI_DELWORDRIGHTEND},
      Key{SCK_RETURN, kNorm, SCI_NEWLINE, SCI_NEWLINE},
      Key{SCK_INSERT, kNorm, SCI_EDITTOGGLEOVERTYPE},
      Key{SCK_BACK, kAlt, SCI_UNDO, SCI_REDO},
      Key{'Z', kCtrl, SCI_UNDO, SCI_REDO},
      Key{'Y', kCtrl, SCI_REDO},
  };
  Send(SCI_CLEARALLCMDKEYS);
  const auto assign = [this](int key, int modifiers, int command) {
    Send(SCI_ASSIGNCMDKEY, static_cast<std::uintptr_t>(key | modifiers << 16), command);
  };
  for (const Key& key : kKeys) {
    assign(key.key, key.modifiers, key.command);
    if (key.selecting) assign(key.key, key.modifiers | kShift, key.selecting);
  }
}

void TextPad::ApplyColors() {
  const auto color_of = [this](QPalette::ColorRole role) { return palette().color(QPalette::Active, role); };
  const auto number_of = [](const QColor& of) { return of.red() | of.green() << 8 | of.blue() << 16; };
  const auto color = [&](QPalette::ColorRole role) { return number_of(color_of(role)); };
  Send(SCI_STYLESETFORE, STYLE_DEFAULT, color(QPalette::Text));
  Send(SCI_STYLESETBACK, STYLE_DEFAULT, color(QPalette::Base));
  Send(SCI_STYLECLEARALL);
  Send(SCI_STYLESETFORE, STYLE_LINENUMBER, number_of(Between(color_of(QPalette::Text), color_of(QPalette::Base))));
  Send(SCI_STYLESETBACK, STYLE_LINENUMBER, color(QPalette::Base));
  Send(SCI_SETCARETFORE, static_cast<std::uintptr_t>(color(QPalette::Text)));
  Send(SCI_SETSELFORE, 1, color(QPalette::HighlightedText));
  Send(SCI_SETSELBACK, 1, color(QPalette::Highlight));
}

void TextPad::SetTextFont(const QString& family, int points) {
  font_ = QFont(family, points);
  // For a family that this system lacks.
  font_.setStyleHint(QFont::TypeWriter);
  const QByteArray resolved = QFontInfo(font_).family().toUtf8();
  Send(SCI_STYLESETFONT, STYLE_DEFAULT, reinterpret_cast<std::intptr_t>(resolved.constData()));
  Send(SCI_STYLESETSIZE, STYLE_DEFAULT, points);
  ApplyColors();
  FitLineNumbers();
}

void TextPad::SetText(std::string utf8) {
  // Places for styles double the memory.
  const int styles = styles_ == Styles::None ? SC_DOCUMENTOPTION_STYLES_NONE : SC_DOCUMENTOPTION_DEFAULT;
  const std::intptr_t document = Send(SCI_CREATEDOCUMENT, utf8.size() + 1, styles | SC_DOCUMENTOPTION_TEXT_LARGE);
  Send(SCI_SETDOCPOINTER, 0, document);
  Send(SCI_RELEASEDOCUMENT, 0, document);
  SetUpDocument();
  Send(SCI_SETEOLMODE, static_cast<std::uintptr_t>(FirstLineEnd(utf8)));
  Send(SCI_SETMODEVENTMASK, 0);
  Send(SCI_SETUNDOCOLLECTION, 0);
  Send(SCI_APPENDTEXT, utf8.size(), reinterpret_cast<std::intptr_t>(utf8.data()));
  Send(SCI_SETUNDOCOLLECTION, 1);
  Send(SCI_EMPTYUNDOBUFFER);
  Send(SCI_SETSAVEPOINT);
  Send(SCI_SETMODEVENTMASK, kEvents);
  Send(SCI_SETSCROLLWIDTH, 1);
  Send(SCI_GOTOPOS, 0);
  outside_steps_.clear();
  ++revision_;
  FitLineNumbers();
}

std::string_view TextPad::BytesBetween(PadPosition start, PadPosition end) const {
  if (end <= start) return {};
  const std::intptr_t bytes = Send(SCI_GETRANGEPOINTER, static_cast<std::uintptr_t>(start), end - start);
  // Messages answer with numbers, pointers included.
  return {reinterpret_cast<const char*>(bytes),  // NOLINT(performance-no-int-to-ptr)
          static_cast<std::size_t>(end - start)};
}

std::string_view TextPad::Text() const { return BytesBetween(0, End()); }

PadPosition TextPad::End() const { return Send(SCI_GETLENGTH); }

PadPosition TextPad::SelectionStart() const { return Send(SCI_GETSELECTIONSTART); }

PadPosition TextPad::SelectionEnd() const { return Send(SCI_GETSELECTIONEND); }

char TextPad::ByteAt(PadPosition position) const {
  return static_cast<char>(Send(SCI_GETCHARAT, static_cast<std::uintptr_t>(position)));
}

PadPosition TextPad::Moved(PadPosition from, std::int64_t characters) const {
  constexpr int kMostContinuations = 3;
  const PadPosition end = End();
  PadPosition at = std::clamp<PadPosition>(from, 0, end);
  for (; characters > 0 && at < end; --characters) {
    ++at;
    for (int count = 0; count < kMostContinuations && at < end && utf8::IsContinuation(ByteAt(at)); ++count) ++at;
  }
  for (; characters < 0 && at > 0; ++characters) {
    --at;
    for (int count = 0; count < kMostContinuations && at > 0 && utf8::IsContinuation(ByteAt(at)); ++count) --at;
  }
  return at;
}

void TextPad::Select(PadPosition start, PadPosition end) {
  Send(SCI_SETSEL, static_cast<std::uintptr_t>(start), end);
  Send(SCI_SCROLLCARET);
}

std::string_view TextPad::SelectedBytes() const { return BytesBetween(SelectionStart(), SelectionEnd()); }

QString TextPad::SelectedText() const { return TextOf(LinesEndedBy(SelectedBytes(), "\n")); }

void TextPad::ReplaceSelection(const QString& text) {
  const PadPosition start = SelectionStart(), end = SelectionEnd();
  if (text.isEmpty() && start == end) return;
  const QByteArray utf8 = text.toUtf8();
  const std::string bytes =
      LinesEndedBy({utf8.data(), static_cast<std::size_t>(utf8.size())}, LineEndOf(Send(SCI_GETEOLMODE)));
  Send(SCI_BEGINUNDOACTION);
  Send(SCI_SETTARGETRANGE, static_cast<std::uintptr_t>(start), end);
  Send(SCI_REPLACETARGET, bytes.size(), reinterpret_cast<std::intptr_t>(bytes.data()));
  Send(SCI_ENDUNDOACTION);
  const auto behind = start + static_cast<PadPosition>(bytes.size());
  Select(behind, behind);
}

std::optional<PadPosition> TextPad::Find(const QString& text, PadPosition from, PadPosition to, unsigned options) {
  const QByteArray wanted = text.toUtf8();
  const TextSearch search(std::string_view(wanted.constData(), static_cast<std::size_t>(wanted.size())),
                          options & kFindMatchCase ? SearchCase::Match : SearchCase::Ignore,
                          options & kFindWholeWord ? SearchWords::Whole : SearchWords::Any);
  const auto index = [](PadPosition position) { return static_cast<std::size_t>(std::max<PadPosition>(position, 0)); };
  const std::optional<TextMatch> match = search.Find(Text(), index(from), index(to));
  if (!match) return std::nullopt;
  const auto start = static_cast<PadPosition>(match->start);
  Select(start, static_cast<PadPosition>(match->end));
  return start;
}

void TextPad::SetRightMargin(int twips) {
  right_margin_ = twips;
  ApplyWrap();
}

void TextPad::ApplyWrap() {
  const bool wraps = right_margin_ < kNoWrap;
  const int margin = wraps ? std::max(0, viewport()->width() - TwipsToPixels(right_margin_, logicalDpiX())) : 0;
  // Either one lays all lines out again.
  if (Send(SCI_GETMARGINRIGHT) != margin) Send(SCI_SETMARGINRIGHT, 0, margin);
  const int mode = wraps ? SC_WRAP_WORD : SC_WRAP_NONE;
  if (Send(SCI_GETWRAPMODE) != mode) Send(SCI_SETWRAPMODE, static_cast<std::uintptr_t>(mode));
}

void TextPad::Print(QPrinter& printer) {
  const std::string_view selected = SelectedBytes();
  PrintText(printer, selected.empty() ? Text() : selected, font_);
}

bool TextPad::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    // Menus have Del; here it deletes the next character too.
    const auto& key = *static_cast<QKeyEvent*>(event);
    if (key.key() == Qt::Key_Delete || key.matches(QKeySequence::Undo) || key.matches(QKeySequence::Redo)) {
      event->accept();
      return true;
    }
  }
  return QsciScintillaBase::event(event);
}

bool TextPad::canInsertFromMimeData(const QMimeData* source) const {
  // Files are for the frame.
  return !source->hasUrls() && QsciScintillaBase::canInsertFromMimeData(source);
}

void TextPad::changeEvent(QEvent* event) {
  QsciScintillaBase::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) ApplyColors();
}

void TextPad::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Tab && event->modifiers() == Qt::NoModifier) return ReplaceSelection(u"\t"_s);
  if (const std::optional<Zoom> zoom = ZoomOf(*event)) return ApplyZoom(*zoom);
  if (TypesText(*event)) return Type(event->text());
  if (IsUnboundKey(*event)) return event->ignore();
  if (DeleteGrapheme(*event)) return;
  const PadPosition caret = Caret();
  const std::uint64_t revision = revision_;
  QsciScintillaBase::keyPressEvent(event);
  if (revision_ != revision || Caret() == caret) return;
  KeepCaretOutsideGraphemes(caret);
  // Up and down go on to where the caret was, others come from where it is.
  if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right) Send(SCI_CHOOSECARETX);
}

void TextPad::mousePressEvent(QMouseEvent* event) {
  QsciScintillaBase::mousePressEvent(event);
  if (event->button() == Qt::LeftButton) KeepCaretOutsideGraphemes(End());
}

void TextPad::mouseReleaseEvent(QMouseEvent* event) {
  QsciScintillaBase::mouseReleaseEvent(event);
  if (event->button() == Qt::LeftButton) KeepCaretOutsideGraphemes(End());
}

void TextPad::mouseMoveEvent(QMouseEvent* event) {
  QsciScintillaBase::mouseMoveEvent(event);
  if (event->buttons().testFlag(Qt::LeftButton)) KeepCaretOutsideGraphemes(End());
}

void TextPad::Type(const QString& text) {
  // As from an input method: of a key itself, the base takes only what begins with a printable UTF-16 unit.
  QInputMethodEvent typed;
  typed.setCommitString(text);
  inputMethodEvent(&typed);
}

void TextPad::ApplyZoom(Zoom zoom) {
  if (zoom == Zoom::Reset)
    Send(SCI_SETZOOM, 0);
  else
    Send(zoom == Zoom::In ? SCI_ZOOMIN : SCI_ZOOMOUT);
}

void TextPad::resizeEvent(QResizeEvent* event) {
  QsciScintillaBase::resizeEvent(event);
  ApplyWrap();
}

void TextPad::wheelEvent(QWheelEvent* event) {
  const std::optional<double> notches = ZoomNotchesOf(*event);
  if (!notches) return QsciScintillaBase::wheelEvent(event);
  if (*notches != 0) ApplyZoom(*notches > 0 ? Zoom::In : Zoom::Out);
  event->accept();
}

}  // namespace tme
