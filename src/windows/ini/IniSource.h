#pragma once

#include <QCoreApplication>
#include <functional>

#include "documents/ini/IniTree.h"
#include "windows/tree/SourceDocument.h"

namespace tme {

/// An INI document as its source pane sees it.
class IniSource : public SourceDocument, private SourceLexer {
  Q_DECLARE_TR_FUNCTIONS(IniSource)

 public:
  /// select: selects a node in the window.
  IniSource(IniTree& tree, std::function<void(IniNode*)> select) : tree_(tree), select_(std::move(select)) {}

  const SourceLexer& Lexer() const override { return *this; }
  std::uint64_t Revision() const override { return tree_.Revision(); }
  void Listen(std::function<void()> listener) override;
  bool Write(const PartSink& sink) const override;
  std::vector<WrittenChange> ChangesSince(std::uint64_t revision) const override;
  std::vector<SourceLineRange> SelectedLines(const SourceView& text) const override;
  void SelectLine(const SourceView& text, PadPosition line) override;
  const SourceLines* Pieces() const override;
  void ReplaceLines(SourceLines::Piece first, SourceLines::Piece last, std::string_view lines) override;

 private:
  std::vector<SourceFault> Read(const SourcePart& part, std::span<char> styles) const override;
  bool IsWhole() const { return tree_.Holding() == Holding::Whole; }

  IniTree& tree_;
  const std::function<void(IniNode*)> select_;
};

}  // namespace tme
