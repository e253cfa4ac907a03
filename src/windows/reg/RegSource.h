#pragma once

#include <QCoreApplication>
#include <functional>
#include <optional>

#include "documents/reg/RegWrittenLines.h"
#include "windows/reg/RegSourceLexer.h"
#include "windows/tree/SourceDocument.h"

namespace tme {

/// A registry document as its source pane sees it.
class RegSource : public SourceDocument {
 public:
  struct Window {
    /// What is selected.
    std::function<RegPlace()> selected;
    std::function<void(const RegPlace&)> select;
    /// Runs a change that resets the tree.
    std::function<void(const std::function<void()>&)> change;
  };
  RegSource(RegDocument& document, Window window) : document_(document), window_(std::move(window)), lexer_(document) {}

  const SourceLexer& Lexer() const override { return lexer_; }
  std::uint64_t Revision() const override { return document_.Revision(); }
  void Listen(std::function<void()> listener) override;
  bool Write(const PartSink& sink) const override;
  std::vector<WrittenChange> ChangesSince(std::uint64_t revision) const override;
  std::vector<SourceLineRange> SelectedLines(const SourceView& text) const override;
  void SelectLine(const SourceView& text, PadPosition line) override;
  const SourceLines* Pieces() const override;
  void ReplaceLines(SourceLines::Piece first, SourceLines::Piece last, std::string_view lines) override;

 private:
  bool IsWhole() const { return document_.HeldAs() == Holding::Whole; }
  const RegWrittenLines& Written() const;

  RegDocument& document_;
  const Window window_;
  const RegSourceLexer lexer_;
  /// By the rules, of a revision.
  mutable std::optional<RegWrittenLines> written_;
  mutable std::uint64_t written_revision_ = 0;
};

}  // namespace tme
