#pragma once

#include <memory>
#include <string_view>

#include "windows/text/PadWindow.h"

class QAction;
class QMimeData;
class QToolBar;

namespace tme {

class RtfPad;
struct RtfSimplified;
namespace rtf {
struct Losses;
class RtfOriginal;
struct RtfDocument;
}  // namespace rtf

/// The window of a rich-text document: `Toolbar1` above `pad`.
class form_RTF : public PadWindow {
  Q_OBJECT

 public:
  form_RTF(Global& global, int slot);
  ~form_RTF() override;

  Pad& EditingArea() override;
  std::uint64_t Revision() const override;
  std::string Content() override;
  bool HoldsWholeFile() const override;
  void PutContent(std::string bytes, Holding holding) override;

  Q_INVOKABLE void NewRTF();
  /// Loads the document's file. A file that cannot be read: a message, and the slot is free again.
  Q_INVOKABLE void OpenRTF();
  Q_INVOKABLE void ResizeForm() override;
  /// As rich and as plain text.
  Q_INVOKABLE void EditCopy() override;
  /// Rich text, marked-up text or a picture where the clipboard holds one, else plain text.
  Q_INVOKABLE void EditPaste() override;
  Q_INVOKABLE void EditPasteSpecialPlainText();
  /// A cancelled dialog applies the values that it had; intended. While no font was ever chosen, name and size stay.
  Q_INVOKABLE void FormatFont();
  /// Applies the dialog's colour also after a cancel; intended.
  Q_INVOKABLE void FormatColor();
  Q_INVOKABLE void FormatBold();
  Q_INVOKABLE void FormatItalic();
  Q_INVOKABLE void FormatUnderline();
  Q_INVOKABLE void FormatBulleted();
  /// A window that lists what a save would write besides the text: objects, links and the like.
  Q_INVOKABLE void ShowContents();
  // No repeated search by name: it is not a command of this kind; intended.

 protected:
  void BuildControls(QWidget& client) override;
  void UpdateCommands() override;
  void DropContent() override;
  SaveDialogTexts SaveTexts() const override;
  PartProducer Producer() override;
  /// What is written depends on the shared dialog's filter index, whether or not the dialog was shown: 1 rich text,
  /// 2 plain text, anything else nothing. Intended; the notice says so.
  SaveOutcome WriteTo(QString& path, const SaveRequest& request) override;
  void AddState(DocumentState& state) const override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildToolbar(QWidget& client);
  void FontSizeDown();
  void FontSizeUp();
  /// Check marks and pressed buttons from the selection; a mixed one counts as not set.
  void UpdateFormatState();
  void TextChanged();
  void PadKeyReleased(int key);
  void Paste(const QMimeData& source);
  void PastePlainText(const QString& text);
  /// Shows what was read, a large document bit by bit. False when the user gave up or the program was left meanwhile.
  bool ShowRead(rtf::RtfDocument&& read, const std::shared_ptr<rtf::RtfOriginal>& original);
  /// The rest of a large document could not be made.
  void FillingFailed(const QString& reason);
  /// Says it when other programs would fetch or run something that the file holds.
  void AddActiveNotice(std::string_view bytes);
  void AddLossNotice(const rtf::Losses& losses);
  void AddSimplifiedNotice(const RtfSimplified& simplified);
  bool WriteRich(const DocumentFile::Target& target);
  bool WritePlain(const DocumentFile::Target& target);

  RtfPad* pad = nullptr;
  QToolBar* Toolbar1 = nullptr;
  QAction* button_bold_ = nullptr;
  QAction* button_italic_ = nullptr;
  QAction* button_underline_ = nullptr;
  QAction* button_list_ = nullptr;
  bool showing_format_ = false;  ///< the buttons take the selection's state, rather than give it theirs
  /// Size in points for the buttons when the selection mixes sizes; 0 in a document that was never opened.
  int fallback_font_size_ = 0;
  /// The file as it was read, and the revision that it belongs to; null for a document that was not.
  std::shared_ptr<rtf::RtfOriginal> original_;
  std::uint64_t read_revision_ = 0;
  /// Keys that went down in the pad and are no command's.
  QList<int> keys_down_;
};

}  // namespace tme
