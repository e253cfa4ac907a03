// How the source becomes what the document writes now.
#include <QScopedValueRollback>
#include <algorithm>
#include <cstring>

#include "base/Reversed.h"
#include "base/Utf8.h"
#include "windows/tree/SourceView.h"

namespace tme {
namespace {

constexpr std::size_t kBlock = 4096;  // bytes
/// What is looked for in what is shown, where the two come together again.
constexpr std::size_t kAnchor = 64;
/// How far from where it would be if lines were only exchanged, and how often: behind a larger change all is compared.
constexpr PadPosition kReach = PadPosition{1} << 18;
constexpr int kMostSearches = 16;
constexpr std::size_t kPart = std::size_t{1} << 16;

/// Counts the bytes that are the same from the start on.
std::size_t SameStart(std::string_view left, std::string_view right) {
  const std::size_t size = std::min(left.size(), right.size());
  std::size_t same = 0;
  while (same + kBlock <= size && std::memcmp(left.data() + same, right.data() + same, kBlock) == 0) same += kBlock;
  while (same < size && left[same] == right[same]) ++same;
  return same;
}

/// The same from the end on.
std::size_t SameEnd(std::string_view left, std::string_view right) {
  const std::size_t size = std::min(left.size(), right.size());
  const char* const left_end = left.data() + left.size();
  const char* const right_end = right.data() + right.size();
  std::size_t same = 0;
  while (same + kBlock <= size && std::memcmp(left_end - same - kBlock, right_end - same - kBlock, kBlock) == 0)
    same += kBlock;
  while (same < size &&
         left_end[-1 - static_cast<std::ptrdiff_t>(same)] == right_end[-1 - static_cast<std::ptrdiff_t>(same)])
    ++same;
  return same;
}

}  // namespace

/// Takes what is written, part by part, and finds the stretch of what is shown that it puts something else in the place
/// of. Only that is kept.
class SourceView::Comparison {
 public:
  explicit Comparison(const SourceView& view) : view_(view), end_(view.End()) {}

  void Take(std::string_view part) {
    if (!differs_) {
      const std::size_t taken = SameStart(part, Shown(same_, part.size()));
      same_ += static_cast<PadPosition>(taken);
      part.remove_prefix(taken);
      differs_ = !part.empty();
    }
    for (; !part.empty(); part.remove_prefix(std::min(part.size(), kPart))) TakeBehind(part.substr(0, kPart));
  }
  /// To be called behind the last part.
  void Finish() {
    if (same_again_ != end_) {
      Rejoin();
      from_again_ = end_;
      return;
    }
    // Whole lines.
    const PadPosition line = view_.LineAt(from_again_);
    const PadPosition aligned = view_.StartOf(line) == from_again_ ? from_again_ : view_.EndOf(line);
    text_ += view_.BytesBetween(from_again_, aligned);
    from_again_ = aligned;
  }
  bool Differs() const { return differs_ || same_ < end_; }
  /// The stretch of what is shown.
  PadPosition Start() const { return same_; }
  PadPosition End() const { return from_again_; }
  /// What is written instead.
  std::string TakeText() { return std::move(text_); }

 private:
  static constexpr PadPosition kApart = -1;

  std::string_view Shown(PadPosition at, std::size_t size) const {
    return view_.BytesBetween(at, std::min(at + static_cast<PadPosition>(size), end_));
  }
  void TakeBehind(std::string_view part) {
    if (same_again_ == kApart) same_again_ = from_again_ = PlaceOf(part);
    if (same_again_ != kApart && Shown(same_again_, part.size()) == part) {
      same_again_ += static_cast<PadPosition>(part.size());
      return;
    }
    Rejoin();
    text_ += part;
  }
  /// What was the same is the text's own.
  void Rejoin() {
    if (same_again_ != kApart) text_ += view_.BytesBetween(from_again_, same_again_);
    same_again_ = kApart;
  }
  PadPosition PlaceOf(std::string_view part) {
    if (++searches_ > kMostSearches) return kApart;
    const PadPosition expected = same_ + static_cast<PadPosition>(text_.size());
    const PadPosition from = std::clamp(expected - kReach, same_, end_);
    const std::size_t at = Shown(from, 2 * kReach).find(part.substr(0, kAnchor));
    return at == std::string_view::npos ? kApart : from + static_cast<PadPosition>(at);
  }

  const SourceView& view_;
  const PadPosition end_;
  /// Up to there, both are the same.
  PadPosition same_ = 0;
  bool differs_ = false;
  std::string text_;
  /// Behind the text both are the same again from the one on, as far as the other.
  PadPosition from_again_ = kApart, same_again_ = kApart;
  int searches_ = 0;
};

void SourceView::Follow(const PartProducer& write) {
  const QScopedValueRollback following(is_following_, true);
  Comparison comparison(*this);
  write([&](std::string_view part) {
    comparison.Take(part);
    return true;
  });
  comparison.Finish();
  if (comparison.Differs()) {
    Mark({});
    std::string text = comparison.TakeText();
    const PadPosition start = StartOf(LineAt(comparison.Start())), end = comparison.End();
    text.insert(0, BytesBetween(start, comparison.Start()));
    Exchange(start, end, std::move(text));
  }
  Accept();
}

bool SourceView::Follow(const std::vector<WrittenChange>& changes) {
  const PadPosition lines = LineCount() - 1;  // the last one is empty
  const auto fits = [&](const WrittenChange& change) {
    const PadPosition behind = lines - static_cast<PadPosition>(change.behind);
    std::string_view next = behind < 0 ? std::string_view() : Line(behind);
    next.remove_suffix(LineEndOf(next).size());
    return behind >= static_cast<PadPosition>(change.before) && next == change.next;
  };
  if (is_typed_ || changes.empty() || !std::ranges::all_of(changes, fits)) return false;
  const QScopedValueRollback following(is_following_, true);
  Mark({});
  for (const WrittenChange& change : Reversed(changes)) {
    const PadPosition start = StartOf(static_cast<PadPosition>(change.before));
    const PadPosition end = StartOf(lines - static_cast<PadPosition>(change.behind));
    const auto same = static_cast<PadPosition>(SameStart(change.lines, BytesBetween(start, end)));
    const PadPosition first = StartOf(LineAt(start + same));
    Exchange(first, end, change.lines.substr(static_cast<std::size_t>(first - start)));
  }
  Accept();
  return true;
}

void SourceView::Exchange(PadPosition start, PadPosition end, std::string text) {
  const PadPosition same_end = end - static_cast<PadPosition>(SameEnd(text, BytesBetween(start, end)));
  // Whole lines, so that no character is parted.
  const PadPosition line = LineAt(same_end);
  const PadPosition behind = StartOf(line) == same_end ? same_end : EndOf(line);
  text.resize(text.size() - static_cast<std::size_t>(end - behind));
  Replace(start, behind, text);
}

void SourceView::Replace(PadPosition start, PadPosition end, std::string_view text) {
  const PadPosition top = Send(SCI_GETFIRSTVISIBLELINE), lines = LineCount();
  const bool is_above = end <= StartOf(top) && start < end;
  // A caret within goes behind what is other: where one that types it would be.
  const bool has_caret = start <= Caret() && Caret() <= end;
  PadPosition other_end = start + static_cast<PadPosition>(text.size() - SameEnd(text, BytesBetween(start, end)));
  Send(SCI_SETREADONLY, 0);
  if (start == 0 && end == End()) {
    SetText(std::string(text));
  } else {
    Send(SCI_SETUNDOCOLLECTION, 0);
    Send(SCI_SETTARGETRANGE, static_cast<std::uintptr_t>(start), end);
    Send(SCI_REPLACETARGET, text.size(), reinterpret_cast<std::intptr_t>(text.data()));
  }
  ApplyEditable();
  if (has_caret) {
    while (utf8::IsContinuation(static_cast<char>(Send(SCI_GETCHARAT, static_cast<std::uintptr_t>(other_end)))))
      ++other_end;
    Send(SCI_SETEMPTYSELECTION, static_cast<std::uintptr_t>(other_end));
  }
  Send(SCI_SETFIRSTVISIBLELINE, static_cast<std::uintptr_t>(is_above ? top + LineCount() - lines : top));
}

}  // namespace tme
