#pragma once

#include <QWidget>
#include <functional>
#include <optional>

#include "base/Parts.h"
#include "documents/DocumentKind.h"
#include "files/FileFailure.h"
#include "files/FileStamp.h"
#include "files/FileSteps.h"
#include "files/TextEncoding.h"
#include "history/History.h"
#include "shell/NoticeBar.h"
#include "shell/SaveDialog.h"

class QMdiSubWindow;
class QVBoxLayout;

namespace tme {

struct DocumentSlot;
struct Global;

/// A document window of any kind. Twenty exist from the start, so construction does next to nothing: the controls are
/// built when the window gets its first document, and the window is reused after its document is closed.
///
/// Commands are the Q_INVOKABLE methods without arguments: the shell calls them by name (see GlobalMenus), so what is
/// invokable is what a menu can send.
class DocumentWindow : public QWidget {
  Q_OBJECT

 public:
  DocumentWindow(Global& global, DocumentKind kind, int slot);

  DocumentKind Kind() const { return kind_; }
  /// The slot number as text while the window holds a document, empty while the slot is free.
  QString Tag() const { return tag_; }
  DocumentSlot& Slot() const;
  /// The MDI child around this window; null until it is first shown.
  QMdiSubWindow* SubWindow() const;
  /// Width that a cascade gives the window, in pixels; 0 for a share of the frame.
  virtual int PreferredWidth() const { return 0; }

  /// Counts the edits of the content, whether or not they mark the document changed.
  virtual std::uint64_t Revision() const { return 0; }
  /// Whether the content was edited since it was read or written.
  /// Not before a file is wholly read, which may take a question to the user.
  bool IsTouched() const { return !being_read_ && Revision() != clean_revision_; }

  /// Whether the document holds all that its file does. Not so where the reader left something out or took it in
  /// another form, until a save made the file what the document holds; nor for a content that came from elsewhere. When
  /// the file's bytes cannot be kept, the save of such a document asks first.
  virtual bool HoldsWholeFile() const { return took_all_ && left_out_.isEmpty(); }

  /// The bytes that a save would write now; for what the file's form cannot hold, those that make the document again.
  virtual std::string Content() = 0;
  /// Makes the window's document from bytes, as opening a file of them would, and marks it changed. Name and path stay.
  virtual void PutContent(std::string bytes) = 0;
  ContentOrigin Origin() const;
  /// Before the document is dropped: content that reached no file joins the history, however the user came to drop it
  /// (answered "No", cancelled the save dialog, saved with an entry that writes nothing). False when it could not.
  bool KeepUnsaved();
  /// A content that some document had, in a free window: shown as it was, with its name and path, marked changed.
  void ShowKept(const ContentOrigin& origin, std::string content);

  /// Says a sentence in the slim bar at the top, with buttons to what can be done about it. Several sentences add up
  /// until ClearNotice.
  void AddNotice(const QString& sentence, std::vector<NoticeAction> actions = {});

  /// What AddNotice said no longer holds.
  void WithdrawNotice(const QString& sentence);

  /// The file goes away, and the document stays without a path, like a new one that keeps its caption.
  void LoseFile();

  /// Says, once for each change, when the file was changed on the disk after this document was read from it or written
  /// to it.
  void CheckDisk();

  /// The window became the active one: the shell's commands go to it from now on.
  void Form_Activate();
  void ShowReadFailure(const QString& path, const FileFailure& failure);
  void ShowWriteFailure(const QString& path, const FileFailure& failure);
  /// The end of each message about a failed write.
  static QString WhatIsSafe(const QString& path, const FileFailure& failure);

  /// Closes the window for the shutdown, with its question about unsaved changes.
  Q_INVOKABLE virtual void ExitForm() = 0;
  Q_INVOKABLE virtual void FileClose() = 0;

 protected:
  static constexpr const char* kChangedMarker = " [CHANGED]";

  /// Builds the controls into `client`; called once, before the first document.
  virtual void BuildControls(QWidget& client) = 0;
  /// The availability of the kind's commands, after its menus were shown.
  virtual void UpdateCommands() {}

  /// Takes the slot: sets the tag, builds the controls if needed and clears the notice.
  void TakeSlot();
  /// Reads the file at the slot's path, takes the slot and sets the caption. Nothing after a message about a file that
  /// cannot be read; the slot is free then.
  std::optional<std::string> TakeSlotBytes();
  /// The same, decoded.
  std::optional<DecodedText> TakeSlotFile();
  /// The document is gone: empties tag and slot, hides the window and shows the menus of what is active now.
  void ReleaseSlot();
  /// Shows the window as a child of the frame and makes it active.
  void ShowInFrame();

  /// The content is now what the file holds.
  void MarkClean();
  /// A file was read from the slot's path: it joins the recent files, unless this once it shall not.
  void RecordOpened();

  /// The changed flag of the slot and its marker at the end of the caption.
  void SetChanged(bool changed);

  void ClearNotice();
  /// What reading the slot's file left out, as a list for the middle of a sentence ("1 comment, 2 blank lines"); empty
  /// for nothing, as after TakeSlot. The first save says it, with the way to the file as it was; that notice outlasts
  /// later saves.
  void SetLeftOut(const QString& what) { left_out_ = what; }
  /// A button that opens File History at this document's file.
  NoticeAction FileHistoryButton();
  /// The content joins the history as one that reached no file. False when it could not.
  bool KeepContent();
  /// To be called once the slot's file is read: whether the reader took all of it, in its order.
  void SetTookAll(bool took_all) { took_all_ = took_all; }

  /// A file that a save is about to replace.
  struct SaveTarget {
    QString path;
    bool is_foreign = false;  ///< changed after this document was read or written
    std::optional<FileFailure> not_kept{};
    bool may_be_lost = false;  ///< the user was asked about what could not be kept
  };
  /// Before each write: keeps what the file holds. When that fails and this document does not hold all of it, the user
  /// may save all the same, into another file (texts: of that dialog), or not at all: nothing then. A save that nobody
  /// asked for ends there, with a notice.
  std::optional<SaveTarget> PrepareTarget(QString path, const SaveDialogTexts& texts);
  /// Writes the document to a file, whole or not at all, in the given encoding (which may have to change) or, without a
  /// format, the parts as they are. Where the folder allows no whole write, the file is written in place. On a failure:
  /// the message.
  bool WriteDocument(const SaveTarget& target, TextFormat* format, const PartProducer& produce);
  /// What WriteDocument would write, in memory.
  static std::string BytesOf(TextFormat* format, const PartProducer& produce);
  /// Says that a save had to change the encoding, with buttons for the others that hold any text; nothing when it did
  /// not. write_as: writes the file once more; without it there are no buttons.
  void AddEncodingNotice(TextEncoding before, TextEncoding after,
                         const std::function<void(TextEncoding)>& write_as = {});

  /// Failed: also when the user would not have what cannot be kept replaced. Cancelled is the file dialog alone, since
  /// closing goes on after it.
  enum class SaveOutcome { Saved, Cancelled, Failed };
  /// A save under a new name: the slot has neither path nor title when `save` begins, and the caller puts them back
  /// when it does not succeed. For the history and its snapshots the document has its name all the while.
  SaveOutcome WithoutName(const std::function<SaveOutcome()>& save);
  /// "Save this file?" when the document is changed; false keeps the window: the answer was Cancel, or the write
  /// failed. A cancelled save dialog does not (intended; the changes are dropped). While the program is being left,
  /// which a failure cannot stop, a failed write is followed by `save_elsewhere` until it succeeds or is cancelled.
  bool ConfirmClose(const std::function<SaveOutcome()>& save, const std::function<SaveOutcome()>& save_elsewhere);

  void closeEvent(QCloseEvent* event) override;
  /// Asks what must be asked and drops the document; false keeps the window open.
  virtual bool CloseDocument() = 0;

  Global& global_;

 private:
  const DocumentKind kind_;
  const int slot_number_;
  QString tag_;
  std::uint64_t clean_revision_ = 0;
  bool being_read_ = false;
  bool took_all_ = false;
  ContentOrigin OriginAt(const QString& path) const;
  /// For a folder that allows no temporary file.
  std::optional<FileFailure> WriteInPlace(const SaveTarget& target, TextFormat* format, const PartProducer& produce,
                                          FileSteps& steps);
  /// Keeps what the file holds in the history, unless it is what this document wrote.
  SaveTarget KeepReplaced(const QString& path);
  /// Whether this document has what it read from there, and the file is still the same.
  bool HoldsWhatIsAt(const QString& path) const;
  FileSteps& Steps() const;
  /// After a save to a path: what was read from the slot's file and is not in the one that was written.
  void SayLeftOut(const QString& path, bool old_bytes_are_kept);

  /// The document's name while a save under a new one leaves the slot without.
  std::optional<ContentOrigin> named_;
  /// Of the slot's file, when it was last read or written here; nothing for none.
  std::optional<FileStamp> disk_stamp_;
  /// Of the bytes that this document last wrote to the slot's file; empty before it did. They need not be kept before
  /// the next save.
  QByteArray own_digest_;
  /// The state of the disk that the user was told of; the inner one is empty for a file that is gone.
  std::optional<std::optional<FileStamp>> told_stamp_;
  /// As SetLeftOut got it; empty from the first save on.
  QString left_out_;
  /// What that save said of it; empty when there was nothing to say.
  QString said_left_out_;
  QVBoxLayout* layout_ = nullptr;
  NoticeBar* notice_bar_ = nullptr;
};

}  // namespace tme
