#pragma once

#include <QWidget>
#include <optional>

#include "shell/DocumentFile.h"
#include "shell/DocumentState.h"
#include "shell/NoticeBar.h"
#include "shell/QuietFigure.h"
#include "shell/SaveDialog.h"

class QMdiSubWindow;
class QPrinter;
class QVBoxLayout;

namespace tme {

struct Global;

/// How a save came about.
struct SaveRequest {
  enum class Path : std::uint8_t { AskedWhenMissing, AskedAlways };
  enum class Caller : std::uint8_t {
    User,
    AutoSave,  ///< nobody asked for the save: no question, no dialog; what would have to be asked is a notice
  };
  Path path = Path::AskedWhenMissing;
  Caller caller = Caller::User;
  /// The document's title for the caption of a save dialog that the user did not call up; empty for all others.
  QString asked_for{};
  /// Where the file goes, when the user was asked already; empty for all others.
  QString chosen_path{};
};

/// A document window of any kind. Twenty exist from the start, so construction does next to nothing: the controls are
/// built when the window gets its first document, and the window is reused after its document is closed.
///
/// Commands are the Q_INVOKABLE methods without arguments: the shell calls them by name (see GlobalMenus), so what is
/// invokable is what a menu can send.
class DocumentWindow : public QWidget {
  Q_OBJECT

 public:
  DocumentWindow(Global& global, DocumentKind kind, int slot);

  DocumentKind Kind() const { return file_.Kind(); }
  bool IsOpen() const { return is_open_; }
  /// The slot number as text while the window holds a document, empty while the slot is free.
  QString Tag() const { return is_open_ ? QString::number(slot_number_) : QString(); }
  DocumentFile& File() { return file_; }
  const DocumentFile& File() const { return file_; }
  /// What the title bar says: the title and the changed marker.
  QString Caption() const;
  /// The MDI child around this window; null until it is first shown.
  QMdiSubWindow* SubWindow() const;
  /// Width that a cascade gives the window, in pixels; 0 for a share of the frame.
  virtual int PreferredWidth() const { return 0; }

  /// Counts the edits of the content, whether or not they mark the document changed.
  virtual std::uint64_t Revision() const { return 0; }
  /// Whether the content was edited since it was read or written.
  bool IsModified() const { return file_.IsModified(Revision()); }
  /// Whether the document holds all that its file does. When the file's bytes cannot be kept, the save of a document
  /// that does not asks first.
  virtual bool HoldsWholeFile() const { return file_.HoldsWholeFile(); }

  /// The bytes that a save would write now; for what the file's form cannot hold, those that make the document again.
  virtual std::string Content();
  /// Makes the window's document from bytes, as opening a file of them would, and marks it changed. Name and path stay.
  /// holding: for kinds that know more than one.
  virtual void PutContent(std::string bytes, Holding holding) = 0;
  /// Before the document is dropped: content that reached no file joins the history, however the user came to drop it
  /// (answered "No", cancelled the save dialog, saved with an entry that writes nothing). False when it could not.
  bool KeepUnsaved();
  /// A content that some document had, in a free window: shown as it was, with its name and path, marked changed.
  void ShowKept(const ContentOrigin& origin, std::string content);

  /// Says a sentence in the slim bar at the top, with buttons to what can be done about it. Several sentences add up;
  /// a save takes away those that were about the document before it.
  void AddNotice(const QString& sentence, std::vector<NoticeAction> actions = {}, NoticeLife life = {});
  /// What AddNotice said no longer holds.
  void WithdrawNotice(const QString& sentence);
  /// Says it when the file was changed on the disk after this document was read from it or written to it.
  void CheckDisk();

  /// What the status line says of the document, in no more time than a key press has.
  DocumentState State();
  /// The file is written in another encoding from now on, which is a step of undo. Where the encoding does not hold the
  /// text, a notice says so and nothing changes.
  void ChangeEncoding(TextEncoding encoding);
  /// Gives all lines this end, which is a step of undo. Nothing for a kind whose line ends stay, and for Mixed.
  virtual void ChangeLineEnds(LineEnds /*ends*/) {}
  /// line: 1 to DocumentState::Place::lines.
  virtual void GoToLine(std::int64_t /*line*/) {}

  /// The window became the active one: the shell's commands go to it from now on.
  void Form_Activate();
  void ShowReadFailure(const QString& path, const FileFailure& failure);
  void ShowWriteFailure(const QString& path, const FileFailure& failure);

  /// How a save ended. Failed: also when the user would not have what cannot be kept replaced. Cancelled is the file
  /// dialog alone, since closing goes on after it.
  enum class SaveOutcome : std::uint8_t { Saved, Cancelled, Failed };
  /// The one save of every command: chooses the path, writes, and then gives the document its new name, so that a save
  /// that does not succeed changes nothing.
  virtual SaveOutcome Save(const SaveRequest& request);
  /// The save of AutoSave and Save All, in the kind's plain form.
  virtual SaveOutcome SavePlain(const SaveRequest& request) { return Save(request); }

  /// What is being typed somewhere in the window becomes an edit. Called before anything else reads or changes the
  /// document.
  virtual void CommitTyping() {}
  /// Lets a part of the window that has the focus do a command by itself. Returns false for one that the window does.
  virtual bool TakeCommand(const QByteArray& /*command*/) { return false; }

  /// printer: not kept.
  virtual void PrintDoc(QPrinter& printer) = 0;
  /// Closes the window, with its question about unsaved changes.
  Q_INVOKABLE void FileClose();
  /// The same for the shutdown.
  Q_INVOKABLE void ExitForm() { FileClose(); }

 protected:
  /// Builds the controls into `client`; called once, before the first document.
  virtual void BuildControls(QWidget& client) = 0;
  /// The availability of the kind's commands, after its menus were shown.
  virtual void UpdateCommands() {}

  /// Takes the slot for a document without a file.
  void TakeSlotForNew();
  /// Reads the document's file and takes the slot. Nothing after a message about a file that cannot be read; the slot
  /// is free then.
  std::optional<std::string> TakeSlotBytes();
  /// The same, decoded; the format is the file's.
  std::optional<std::string> TakeSlotText();
  /// The document is gone: empties the slot, hides the window and shows the menus of what is active now.
  void ReleaseSlot();
  /// The new document is made: shows the window and gives it the keys.
  void ShowNew();
  /// The document's file is read, with what DocumentFile::SetLeftOut takes: it joins the recent files.
  void MarkOpened(const std::optional<QString>& left_out);
  /// Shows the window as a child of the frame and makes it active.
  void ShowInFrame();
  /// The content is now what the file holds.
  void MarkUnmodified();
  /// The changed flag and its marker at the end of the caption.
  void SetChanged(bool changed);

  /// Something that State tells may be another; to be called as often as that happens.
  void StateChanged();
  /// Adds what the kind knows.
  virtual void AddState(DocumentState&) const {}
  /// The same for what takes time in proportion to the document.
  virtual DocumentFigures Figures() const { return {}; }
  /// A step of undo that was done already: what takes it back and makes it again. The document is changed.
  // NOLINTNEXTLINE(performance-unnecessary-value-param): kinds that have undo take them over.
  virtual void AddFormatStep(std::function<void()> /*undo*/, std::function<void()> /*redo*/) {}
  /// All characters of the document in lines, in time in proportion to it.
  virtual PartProducer Characters() { return Producer(); }
  /// Which line of the document has a character that the encoding has no place for, for people; empty for none.
  QString UnfitLine(const TextFormat& format);
  /// Why the document cannot be written in a format, for people; empty when it can.
  QString MisfitOf(const TextFormat& format);

  /// A button that opens File History at this document's file.
  NoticeAction FileHistoryButton();
  /// The content joins the history as one that reached no file. False when it could not.
  bool KeepContent();

  /// What is said, and what is to be said in its place.
  std::vector<NoticeBar::Notice> Notices() const { return notice_bar_->Notices(); }
  void SetNotices(const std::vector<NoticeBar::Notice>& notices);

  // What differs between the kinds in a save; the order is that of the calls.
  virtual SaveDialogTexts SaveTexts() const = 0;
  /// The dialog for a document without a file brought no path.
  virtual void PathNotChosen() {}
  /// A last question before a write, once a path is there.
  virtual SaveOutcome ConfirmWrite(const SaveRequest&) { return SaveOutcome::Saved; }
  /// Writes the content, with notices and, on failure, the message. path: the user may choose another one meanwhile.
  virtual SaveOutcome WriteTo(QString& path, const SaveRequest& request);
  /// Whether a save leaves the document's file alone when it has the same bytes already.
  virtual bool LeavesEqualFile() const { return false; }
  /// How WriteTo encodes.
  virtual TextFormat FormatToWrite() const { return file_.Format(); }
  /// What WriteTo writes, and Content gives.
  virtual PartProducer Producer() = 0;
  /// The user chose another encoding after a save had to change it.
  virtual void EncodingChosen(TextEncoding) {}
  /// The document has another title, after a save to another file. Trees show it at their root.
  virtual void TitleChanged(const QString& /*before*/) {}

  /// Before each write: keeps what the file holds. When that fails and this document does not hold all of it, the user
  /// may save all the same, into another file, or not at all: nothing then. A save that nobody asked for ends there,
  /// with a notice.
  std::optional<DocumentFile::Target> PrepareTarget(QString path, const SaveRequest& request);
  /// DocumentFile::Write with its notices; false after the message about a failure.
  bool Write(const DocumentFile::Target& target, TextFormat* format, const PartProducer& produce);

  /// The document is about to be let go, and then is gone.
  virtual void DocumentCloses() {}
  virtual void DropContent() = 0;

  void closeEvent(QCloseEvent* event) override;

  Global& global_;
  DocumentFile file_;

 private:
  /// Takes the slot: builds the controls if needed and clears the notice.
  void TakeSlot();
  /// Shows the title and the changed marker; the caption is output alone.
  void UpdateCaption();
  /// Asks what must be asked and drops the document; false keeps the window open.
  bool CloseDocument();
  /// "Save this file?" when the document is changed; false keeps the window: the answer was Cancel, or the write
  /// failed. A cancelled save dialog does not (intended; the changes are dropped). While the program is being left,
  /// which a failure cannot stop, a failed write is followed by a save under a new name until it succeeds or is
  /// cancelled.
  bool ConfirmClose();
  void AddEncodingNotice(const TextFormat& before, const TextFormat& after);
  void PutFormat(const TextFormat& format);

  const int slot_number_;
  bool is_open_ = false;
  QVBoxLayout* layout_ = nullptr;
  NoticeBar* notice_bar_ = nullptr;
  QuietFigure<DocumentFigures> figures_;
  /// What a notice says of the encoding that was chosen last.
  QString misfit_;
};

}  // namespace tme
