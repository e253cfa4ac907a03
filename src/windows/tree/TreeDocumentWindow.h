#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "documents/EditableDocument.h"
#include "documents/Holding.h"
#include "documents/SourceLines.h"
#include "shell/DocumentWindow.h"
#include "windows/tree/SaveForm.h"

class QAbstractItemView;
class QShortcut;
class QSplitter;

namespace tme {

class FindBar;
class HitList;
class SearchTarget;
class SourceDocument;
class SourcePane;
class TreeFinder;
class TreeItemModelBase;
struct PlannedReplacement;
struct Settings;

/// A document window that shows a tree, and whose document can be held in two ways. Its edits can be undone until the
/// document is read again.
class TreeDocumentWindow : public DocumentWindow, private EditableDocument::StepObserver {
  Q_OBJECT

 public:
  /// always_whole: the setting that new documents and opened files follow.
  TreeDocumentWindow(Global& global, DocumentKind kind, int slot, bool Settings::*always_whole);
  ~TreeDocumentWindow() override;

  Holding GetHolding() const { return file_.HeldAs(); }

  /// The document as it stands. A command of several edits holds a step of it.
  virtual EditableDocument& Document() = 0;

  void PutContent(std::string bytes, Holding holding) override;
  void ChangeLineEnds(LineEnds ends) override;
  /// Of the source; nothing while it is hidden. Selects what the line belongs to.
  void GoToLine(std::int64_t line) override;

  /// A position of the document's steps comes back as it was left: content, selection, the file's encoding, the changed
  /// flag, and what was in sight. After a save, all positions but that of the save count as changed.
  Q_INVOKABLE void EditUndo();
  Q_INVOKABLE void EditRedo();

  /// Changes how the document is held, and reads its file again for that, or its own text where it has no file. Asks
  /// first what becomes of changes. When anything comes in between, all stays as it was.
  Q_INVOKABLE void WholeFile();
  /// Saves a document that is held whole in another form: it becomes that file. What the form cannot say is asked
  /// first; when it is not saved, the document stays as it was.
  Q_INVOKABLE void SaveAsAnotherForm();

  /// Shows the source below or beside the tree, or no longer, in all windows that show a tree.
  Q_INVOKABLE void ViewSource();
  /// Puts it beside the tree, or below it again.
  Q_INVOKABLE void ViewSourceBeside();

  void CommitTyping() override;
  bool TakeCommand(const QByteArray& command) override;

  /// Opens the find bar with the text that was last sought, or gives it the focus.
  Q_INVOKABLE void SearchFind();
  /// The next and the previous hit of the text that was last sought.
  Q_INVOKABLE void SearchAgain();
  Q_INVOKABLE void SearchPrevious();
  /// Opens the bar with its row for replacing.
  Q_INVOKABLE void SearchReplace();

  /// The document as searches see it; only of a window that has had a document.
  SearchTarget& Searchable();
  /// While it changes, or is being read.
  bool IsContentChanging() const;

 signals:
  /// After each change of what the window shows; there may be many in a row.
  void ContentChanged();

 protected:
  virtual std::unique_ptr<SearchTarget> MakeSearchTarget() = 0;
  /// model: of the window's tree; to be called once.
  void WatchContent(const TreeItemModelBase& model);
  /// What stands beside the window's own controls, which come first in it.
  QSplitter& Panes();

  void UpdateCommands() override;
  /// What selects the rows of the views again that are selected now, once the document is the same again; empty where
  /// the document knows them. Takes memory in proportion to them.
  virtual std::function<void()> SelectionAgain() const { return {}; }
  /// What gives the file the encoding again that it has now.
  virtual std::function<void()> FormatAgain();
  /// To be called once, when the view of the tree is built.
  void FollowSteps(QAbstractItemView& view);
  void AddFormatStep(std::function<void()> undo, std::function<void()> redo) override;
  /// What is selected in a view, and what its model shows, changes what the status line says.
  void WatchState(const QAbstractItemView& view);
  void AddState(DocumentState& state) const override;

  /// Parts the client area between the tree and the source. Returns the tree's part.
  QWidget* MakeTreeArea(QWidget& client);
  virtual std::unique_ptr<SourceDocument> MakeSourceDocument() = 0;
  /// Something else may be selected now.
  void FollowInSource();
  /// While the source has the focus, the items for what is selected are about it.
  void ShowSourceCommands();

  // The form of a document that is held whole.
  virtual LineEnds UsedLineEnds() const = 0;
  virtual void SetLineEnds(LineEnds ends) = 0;
  /// The kinds of file that it can become, its own among them; none where there is one alone.
  virtual std::vector<FormKind> FormKinds() const { return {}; }
  virtual std::size_t PresentKind() const { return 0; }
  /// Asks what is to become of what the kind cannot say. False when the document is to stay as it is.
  virtual bool ConfirmKind(std::size_t /*kind*/) { return true; }
  virtual void BecomeKind(std::size_t /*kind*/) {}

  /// For a notice about what the holding means for the document: the button to the other one.
  std::vector<NoticeAction> HoldingButton();

  /// How the reading of a text went.
  enum class ReadEnd : std::uint8_t {
    Taken,         ///< as far as the holding takes it
    NothingTaken,  ///< the user stopped it, and the document is empty
    Refused,       ///< the user would have no document of it, or the window has none any more
  };
  /// Makes the window's document anew from a text, in the document's holding, with its questions and notices. Calls
  /// MarkRead once it is taken, before it shows a message. The format of the file is the text's already.
  virtual ReadEnd ReadText(std::string text) = 0;
  /// The same by the rules for bytes that the program kept: whatever edits made comes back, and nothing is asked.
  virtual void PutByRules(std::string bytes) = 0;
  /// False while a content is put into the document that is nowhere else.
  bool MayStopReading() const { return !is_putting_; }
  /// A text that holds as much of the document as its files can.
  virtual std::string TextForOtherHolding() { return Content(); }

  /// A document that is held whole makes the same bytes again, and a million of them are compared sooner than kept,
  /// written and flushed.
  bool LeavesEqualFile() const override { return GetHolding() == Holding::Whole; }

  /// A document begins: it is held as the settings say.
  void HoldAsSettings();
  /// The text is taken: when it is that of the document's file, see MarkOpened.
  void MarkRead(const std::optional<QString>& left_out);

 private:
  /// What the user says to a switch; a document that was saved may have got a file.
  enum class Switch : std::uint8_t { Refused, Confirmed, Saved };
  Switch ConfirmSwitch();
  /// Reads bytes into the document in a holding.
  ReadEnd ReadBytes(std::string bytes, Holding holding);
  void SetHolding(Holding holding);
  /// A document, to be put back.
  struct Held {
    Holding holding;
    std::string content;
    TextFormat format;
    bool is_modified;
    bool is_changed;
    std::vector<NoticeBar::Notice> notices;
  };
  Held HeldNow();
  void PutBack(const Held& held);
  /// What the document holds is in its file, or not.
  void MarkAs(const Held& held);
  /// Whether the document's text fits a format, or the user agrees to the one that is put in its place.
  bool FitsOrIsAgreed(TextFormat& format);
  void ShowSourceItems();
  /// In all windows that show a tree.
  void ApplySourceSettings();
  /// A window that is as narrow as a tree alone becomes wide enough for the source beside it.
  void MakeRoomForSource();

  // Finding (TreeDocumentWindow_find.cpp).
  void BuildFindBar();
  void OpenFindBar();
  void CloseFindBar();
  /// The focus stays where it is.
  void HideFindBar();
  /// What is sought in another document is now sought in this one.
  void GoOnWith(const FindBar& other);
  void ShowHitList(bool is_shown);
  void GoToHit(std::size_t index);
  // And replacing (TreeDocumentWindow_replace.cpp).
  void ReplaceOne();
  void ReplaceAll();
  /// Does the chosen ones of this document's, as one step.
  void Replace(std::span<const PlannedReplacement> plans, std::size_t& done, std::size_t& refused);

  // Undo (TreeDocumentWindow_undo.cpp).
  void StepBegins() override { NotePosition(); }
  void StepsChanged() override { ShowSteps(); }
  void NotePosition();
  void ShowPosition();
  void ShowSteps();

  bool Settings::*const always_whole_;
  const TreeItemModelBase* content_ = nullptr;
  std::unique_ptr<SearchTarget> search_target_;
  TreeFinder* finder_ = nullptr;
  FindBar* find_bar_ = nullptr;
  HitList* hit_list_ = nullptr;
  QShortcut* escape_ = nullptr;
  QSplitter* panes_ = nullptr;
  /// Null before the controls are built.
  std::unique_ptr<SourcePane> source_;
  bool is_putting_ = false;
  /// What a position of the steps was like when it was left.
  struct Position {
    bool is_changed = false;
    /// What the file held then.
    std::uint64_t file_revision = 0;
    int scrolled = 0;
    std::function<void()> select_again = {};
    std::function<void()> format_again = {};
  };
  std::vector<Position> positions_;
  QAbstractItemView* stepped_view_ = nullptr;
};

}  // namespace tme
