#pragma once

#include "windows/text/PadWindow.h"

namespace tme {

class TextPad;

/// The window of a plain-text document: `pad`, and nothing else.
class form_TXT : public PadWindow {
  Q_OBJECT

 public:
  form_TXT(Global& global, int slot);

  Pad& EditingArea() override;
  std::uint64_t Revision() const override;
  void PutContent(std::string bytes, Holding holding) override;
  void ChangeLineEnds(LineEnds ends) override;
  void GoToLine(std::int64_t line) override;

  Q_INVOKABLE void NewTXT();
  /// Loads the document's file. A file that cannot be read: a message, and the slot is free again.
  Q_INVOKABLE void OpenTXT();
  Q_INVOKABLE void ResizeForm() override;
  Q_INVOKABLE void SearchAgain() { SearchForLast(); }
  /// Inverts the check mark that all text windows share and the next start takes over.
  Q_INVOKABLE void ViewLineNumbers();
  Q_INVOKABLE void Altered(bool changed) { SetChanged(changed); }

 protected:
  void BuildControls(QWidget& client) override;
  SaveDialogTexts SaveTexts() const override;
  PartProducer Producer() override;
  void DropContent() override;
  void UpdateCommands() override;
  void AddState(DocumentState& state) const override;
  DocumentFigures Figures() const override;
  void AddFormatStep(std::function<void()> undo, std::function<void()> redo) override;

 private:
  void PutText(std::string text);
  /// With nothing left to undo, the file has its encoding again, which a save may have changed.
  void TakeFormatOfStart();

  TextPad* pad = nullptr;
  /// That of the text as it was put.
  TextFormat start_format_;
  bool is_ending_lines_ = false;
};

}  // namespace tme
