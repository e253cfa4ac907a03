#include "documents/rtf/RtfLabel.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "base/Utf8.h"
#include "documents/rtf/RtfControls.h"
#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

class LabelReader : private TextDecoder::Sink {
 public:
  LabelReader(std::string_view group, LabelText which, FontTable& fonts, TextEncoding around)
      : tokens_(group), fonts_(fonts), decoder_(*this), states_{{around, which == LabelText::OfDrawing, false}} {}

  std::string Read() {
    for (tokens_.Next(token_); token_.kind != TokenKind::End && !is_closed_; tokens_.Next(token_)) ReadToken();
    decoder_.Flush();
    const std::size_t end = label_.find_last_not_of(" \n\t");
    label_.resize(end == std::string::npos ? 0 : end + 1);
    label_.erase(0, std::min(label_.find_first_not_of(" \n"), label_.size()));
    return std::move(label_);
  }

 private:
  struct State {
    TextEncoding encoding{};
    bool is_hidden = false;
    bool was_hidden = false;  ///< before \upr hid the form for readers without Unicode
  };
  State& Top() { return states_.back(); }
  bool IsInner() const { return states_.size() > 2; }

  void ReadToken();
  void OpenGroup();
  void CloseGroup();
  void SkipGroup();
  void ReadStar();
  void ReadWord(const ControlWord& word);
  void ReadGroupWord(const ControlWord& word);
  void ReadFormulaWord();
  void ReadBodyWord(const ControlWord& word);
  void SetFont(std::int32_t number) {
    const std::uint32_t index = fonts_.IndexOf(number);
    Top().encoding.page = &fonts_.PageOf(index == FontTable::kNoFont ? fonts_.Default() : index);
  }

  void Add(std::string_view text) {
    if (!Top().is_hidden) label_ += text;
  }
  void Text(std::string_view text, const TextDecoder::Place&) override { Add(text); }
  void UnknownCharacter(const TextDecoder::Place&) override { Add(utf8::kReplacement); }

  Tokenizer tokens_;
  Token token_;
  FontTable& fonts_;
  TextDecoder decoder_;
  std::vector<State> states_;  ///< of what is around the group, of the group, and of those in it
  std::string label_;
  bool is_closed_ = false;
};

void LabelReader::ReadToken() {
  switch (token_.kind) {
    case TokenKind::Word:
      decoder_.Flush();
      return ReadWord(FindControl(token_.text));
    case TokenKind::GroupStart:
      return OpenGroup();
    case TokenKind::GroupEnd:
      return CloseGroup();
    case TokenKind::Symbol:
      if (token_.byte == '*') return ReadStar();
      if (!token_.IsLineEnd()) return decoder_.Read(token_, Top().encoding);
      if (decoder_.SkipFallback(token_.end)) return;
      decoder_.Flush();
      return ReadWord(FindControl("par"));
    default:
      return decoder_.Read(token_, Top().encoding);
  }
}

void LabelReader::OpenGroup() {
  decoder_.Flush();
  decoder_.EndFallback();
  if (states_.size() > static_cast<std::size_t>(kMaxGroupDepth)) return tokens_.TakeGroup(token_.begin, nullptr);
  const State state = Top();
  states_.push_back(state);
}

void LabelReader::CloseGroup() {
  decoder_.Flush();
  decoder_.EndFallback();
  is_closed_ = !IsInner();
  if (!is_closed_) states_.pop_back();
}

void LabelReader::SkipGroup() {
  tokens_.TakeGroup(token_.begin, nullptr);
  states_.pop_back();
}

void LabelReader::ReadStar() {
  decoder_.Flush();
  tokens_.Next(token_);
  if (token_.kind != TokenKind::Word) return tokens_.Seek(token_.begin);
  const ControlWord& word = FindControl(token_.text);
  if (word.control_class == ControlClass::Group) return ReadWord(word);
  decoder_.EndFallback();
  if (IsInner() && !Top().is_hidden) SkipGroup();
}

void LabelReader::ReadWord(const ControlWord& word) {
  if (word.control == Control::Character && decoder_.SkipFallback(token_.end)) return;
  if (word.control != Control::Unicode) decoder_.EndFallback();
  if (word.control_class == ControlClass::Unknown && IsInner() && token_.text.starts_with('m'))
    return ReadFormulaWord();
  if (word.control_class != ControlClass::Group) return ReadBodyWord(word);
  if (IsInner()) ReadGroupWord(word);  // not what the group itself is
}

/// What stands between the parts of a formula; what describes these is no text.
void LabelReader::ReadFormulaWord() {
  constexpr std::pair<std::string_view, std::string_view> kSigns[] = {
      {"mden", "/"}, {"msup", "^"}, {"msub", "_"}, {"mrad", "\u221A"}};
  if (token_.text.ends_with("Pr")) return SkipGroup();
  const auto known = std::ranges::find(kSigns, token_.text, &std::pair<std::string_view, std::string_view>::first);
  if (known != std::end(kSigns)) Add(known->second);
}

/// What the group holds of kept groups is passed over.
void LabelReader::ReadGroupWord(const ControlWord& word) {
  State& state = Top();
  switch (word.control) {
    case Control::TransparentGroup:
    case Control::Field:
    case Control::Formula:
      return;
    case Control::TwoForms:
      state.was_hidden = std::exchange(state.is_hidden, true);
      return;
    case Control::UnicodeForm:
      if (state.is_hidden) state.is_hidden = state.was_hidden;
      return;
    case Control::DrawingText:
      if (!state.is_hidden) return SkipGroup();
      state.is_hidden = false;
      return;
    case Control::Drawing:
    case Control::Object:
      if (!state.is_hidden) SkipGroup();
      return;
    default:
      return SkipGroup();
  }
}

void LabelReader::ReadBodyWord(const ControlWord& word) {
  switch (word.control) {
    case Control::FontNumber:
      return SetFont(token_.value);
    case Control::Plain:
      return SetFont(fonts_.DefaultNumber());
    case Control::Paragraph:
    case Control::RowEnd:
      return Add("\n");
    case Control::CellEnd:
      return decoder_.Put('\t');
    default:
      return decoder_.ReadWord(word, token_, Top().encoding);
  }
}

}  // namespace

std::string LabelOf(std::string_view group, LabelText which, FontTable& fonts, TextEncoding around) {
  return LabelReader(group, which, fonts, around).Read();
}

GroupTexts::GroupTexts(const RtfDocument& document, const DecodeCodePage& decode)
    : decode_(decode), fonts_(scratch_, decode_) {
  fonts_.Take(document);
}

std::string GroupTexts::TextOf(std::string_view group) {
  return LabelOf(group, LabelText::All, fonts_, {&fonts_.PageOf(fonts_.Default())});
}

}  // namespace tme::rtf
