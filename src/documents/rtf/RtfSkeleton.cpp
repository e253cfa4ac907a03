#include "documents/rtf/RtfSkeleton.h"

#include <algorithm>
#include <vector>

#include "documents/rtf/RtfControls.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

class Skeleton {
 public:
  Skeleton(std::string_view bytes, const RtfSource& source, const RtfStretch& stretch)
      : tokens_(bytes.substr(0, stretch.end)), source_(source), stretch_(stretch), piece_(stretch.first_piece) {
    tokens_.Seek(stretch.begin);
  }

  std::string Make() {
    for (tokens_.Next(token_); token_.kind != TokenKind::End; tokens_.Next(token_)) {
      if (PassPiece()) continue;
      switch (token_.kind) {
        case TokenKind::GroupStart:
          groups_.push_back({token_.begin, kept_.size()});
          kept_ += '{';
          break;
        case TokenKind::GroupEnd:
          CloseGroup();
          break;
        case TokenKind::Word:
          Word(FindControl(token_.text));
          break;
        default:
          break;
      }
    }
    return std::move(kept_);
  }

 private:
  struct Group {
    std::size_t begin = 0;
    std::size_t kept_before = 0;
    bool is_lasting = false;
  };

  /// Whether the token is a piece or stands in one.
  bool PassPiece() {
    for (; piece_ < stretch_.end_piece; ++piece_) {
      const RtfSource::Piece& piece = source_.pieces[piece_];
      if (piece.end <= token_.begin) continue;
      if (piece.begin > token_.begin) return false;
      // Of a broken file one may go on behind the end of its paragraph.
      tokens_.Seek(std::min(piece.end, stretch_.end));
      ++piece_;
      return true;
    }
    return false;
  }

  void CloseGroup() {
    if (groups_.empty()) {
      kept_ += '}';
      return;
    }
    const Group group = groups_.back();
    groups_.pop_back();
    if (!group.is_lasting) return kept_.resize(group.kept_before);
    kept_ += '}';
    Last();
  }

  /// What was kept has an effect behind its group.
  void Last() {
    if (!groups_.empty()) groups_.back().is_lasting = true;
  }

  void Word(const ControlWord& word) {
    switch (word.control_class) {
      case ControlClass::Text:
        if (word.control == Control::Section) Last();
        if (word.control == Control::Section || word.control == Control::UnicodeSkip) Keep();
        return;
      case ControlClass::Row:
        return Row(word);
      case ControlClass::Border:
        if (!stretch_.has_tables || !is_row_open_) Keep();
        return;
      case ControlClass::File:
        Last();
        return Keep();
      case ControlClass::Group:
        return GroupWord(word);
      case ControlClass::Unknown:
        if (token_.text.starts_with("tr") || token_.text.starts_with("cl") || token_.text.starts_with("ts"))
          return Row(word);
        return Keep();
      default:
        if (word.control == Control::ParagraphReset) is_row_open_ = false;
        return Keep();
    }
  }

  void Row(const ControlWord& word) {
    is_row_open_ = word.control == Control::RowStart || (is_row_open_ && word.control != Control::RowEnd);
    if (stretch_.has_tables) return;
    Last();
    Keep();
  }

  void GroupWord(const ControlWord& word) {
    switch (word.control) {
      case Control::HeaderGroup:
      case Control::ListTable:
      case Control::SectionGroup:
      case Control::FontTable:
      case Control::ColorTable:
      case Control::LegacyNumbering:
        return KeepGroup();
      case Control::NestedTableProperties:
      case Control::SkippedGroup:
        if (stretch_.has_tables)
          TakeGroup();
        else
          KeepGroup();
        return;
      case Control::FieldInstruction:
        // Goes with its field, when that ends here.
        kept_ += TakeGroup();
        return;
      case Control::Field:
      case Control::TransparentGroup:
      case Control::TwoForms:
      case Control::UnicodeForm:
        return Keep();
      default:
        TakeGroup();
    }
  }

  void KeepGroup() {
    kept_ += TakeGroup();
    Last();
  }

  /// The group that the word stands in, as it came. It is passed.
  std::string TakeGroup() {
    if (groups_.empty()) return {};
    const Group group = groups_.back();
    groups_.pop_back();
    kept_.resize(group.kept_before);
    std::string whole;
    tokens_.TakeGroup(group.begin, &whole);
    return whole;
  }

  void Keep() { kept_ += tokens_.Bytes().substr(token_.begin, token_.end - token_.begin); }

  Tokenizer tokens_;
  Token token_;
  const RtfSource& source_;
  const RtfStretch& stretch_;
  std::size_t piece_;
  std::string kept_;
  std::vector<Group> groups_;
  bool is_row_open_ = false;
};

}  // namespace

std::string SkeletonOf(std::string_view bytes, const RtfSource& source, const RtfStretch& stretch) {
  return Skeleton(bytes, source, stretch).Make();
}

}  // namespace tme::rtf
