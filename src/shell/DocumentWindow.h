#pragma once

#include <QWidget>
#include <filesystem>
#include <functional>
#include <optional>

#include "platform/TextFile.h"
#include "shell/DocumentKind.h"

class QMdiSubWindow;
class QVBoxLayout;

namespace tme {

struct DocumentSlot;
struct Global;
class NoticeBar;

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
  bool IsTouched() const { return Revision() != clean_revision_; }

  /// The window became the active one: the shell's commands go to it from now on.
  void Form_Activate();
  void ShowReadFailure(const QString& path, const FileFailure& failure);
  void ShowWriteFailure(const QString& path, const FileFailure& failure);

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
  void MarkClean() { clean_revision_ = Revision(); }
  /// A file was read from the slot's path: it joins the recent files, unless this once it shall not.
  void RecordOpened();

  /// The changed flag of the slot and its marker at the end of the caption.
  void SetChanged(bool changed);

  /// The slim bar at the top; an empty text hides it. Several sentences add up until ClearNotice.
  void AddNotice(const QString& sentence);
  void ClearNotice();
  /// Says that a save had to change the encoding; nothing when it did not.
  void AddEncodingNotice(TextEncoding before, TextEncoding after);
  /// The message about a file that could not be read or written.
  /// The save dialog with its question about an existing file; the path that the user chose, empty when cancelled.
  QString AskForSavePath(const QString& title, const QString& filter, const QString& default_ext);

  enum class SaveOutcome { Saved, Cancelled, Failed };
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
  QVBoxLayout* layout_ = nullptr;
  NoticeBar* notice_bar_ = nullptr;
};

/// A path as the file layer takes it.
std::filesystem::path FilePath(const QString& path);

}  // namespace tme
