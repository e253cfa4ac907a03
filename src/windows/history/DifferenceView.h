#pragma once

#include <cstdint>
#include <vector>

#include "documents/diff/LineDiff.h"
#include "windows/text/TextPad.h"

namespace tme {

/// Which lines the view shows: all of them, or the differences with a few lines around and a count for what is left
/// out.
enum class ShownLines : std::uint8_t { All, DifferencesOnly };

/// Read-only text, line by line with a mark in front (+ - or blank) and on a colour; goes from difference to
/// difference. Whole files of any length; of an overlong line, the part where it differs.
class DifferenceView : public TextPad {
  Q_OBJECT

 public:
  explicit DifferenceView(QWidget* parent = nullptr);

  /// Replaces the text and goes to the first difference.
  void ShowLines(const std::vector<DiffLine>& lines, ShownLines shown);
  void Clear();

  /// Runs of lines that differ.
  int DifferenceCount() const { return static_cast<int>(differences_.size()); }
  /// From 1: the difference at or before the caret; 0 when it stands before all of them.
  int CurrentDifference() const;
  bool HasNext() const;
  bool HasPrevious() const;
  void GoToNext();
  void GoToPrevious();
  /// Whether a line was too long to be shown whole.
  bool HasCutLines() const { return has_cut_lines_; }

  static constexpr std::size_t kShownLineBytes = 4'000;

 signals:
  void CaretMoved();

 protected:
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  struct Difference {
    int first_row;
    int end_row;
  };
  void MarkDifferences(const std::vector<unsigned char>& row_marks);
  int CaretRow() const;
  void GoTo(const Difference& difference);

  std::vector<Difference> differences_;  ///< in their order
  bool has_cut_lines_ = false;
};

}  // namespace tme
