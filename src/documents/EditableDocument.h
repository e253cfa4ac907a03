#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace tme {

/// What a step of edits did, for people: the window has the texts.
enum class EditName : std::uint8_t {
  Edit,
  AddSection,
  AddEntry,
  AddToAllSections,
  AddKey,
  AddValue,
  Delete,
  DeleteSection,
  DeleteEntry,
  DeleteFromAllSections,
  DeleteKey,
  DeleteValue,
  WriteDeletion,
  Rename,
  Cut,
  Paste,
  Move,
  Copy,
  Replace,
  EditSource,
  Convert,
  ChangeEncoding,
  ChangeLineEnds,
};

/// A document whose edits can be undone and redone, in steps. The edits of one call are a step; while a Step stands,
/// all edits are one. There is no limit, and a step takes memory in proportion to what it changed, until the document
/// is reset. An edit gives up the steps that were undone.
class EditableDocument {
 public:
  EditableDocument() = default;
  EditableDocument(const EditableDocument&) = delete;
  EditableDocument& operator=(const EditableDocument&) = delete;

  /// Grows with every change of content, reading and pasting included, and not with selection and expansion. Undo and
  /// redo bring back the number that the content had.
  std::uint64_t Revision() const { return revision_; }
  /// Called with each change of it, in the midst of edits, so it may only note that there was one. Empty for none.
  void SetRevisionListener(std::function<void()> listener) { listener_ = std::move(listener); }

  /// Follows the steps.
  class StepObserver {
   public:
    /// A step begins, outside of another one; nothing has changed yet.
    virtual void StepBegins() = 0;
    /// There are other steps to undo and redo.
    virtual void StepsChanged() = 0;

   protected:
    ~StepObserver() = default;
  };
  /// Not owned; null for none.
  void SetStepObserver(StepObserver* observer) { observer_ = observer; }

  /// The steps that are done and not undone.
  std::size_t EditPosition() const { return position_; }
  bool CanUndo() const { return position_ > 0; }
  bool CanRedo() const { return position_ < steps_.size(); }
  /// What Undo and Redo would do; only where they can.
  EditName UndoName() const { return steps_[position_ - 1].name; }
  EditName RedoName() const { return steps_[position_].name; }
  /// Content and selection become what they were before or after the step. Do nothing where there is no step, and
  /// inside of one.
  void Undo();
  void Redo();

  /// One step, and whether it was done or undone.
  enum class StepWay : std::uint8_t { Done, Undone };
  struct TakenStep {
    std::size_t number;
    StepWay way;
  };
  /// The step that alone leads from the content of a revision to the present one; null where there is none such.
  std::optional<TakenStep> OnlyStepSince(std::uint64_t revision) const;

  /// While it stands, the edits of a document are one step of this name. Inside of another one it does nothing. A step
  /// without a change leaves nothing.
  class Step {
   public:
    Step(EditableDocument& document, EditName name) : document_(document) { document_.BeginStep(name); }
    ~Step() { document_.EndStep(); }
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

   private:
    EditableDocument& document_;
  };

  /// A step that something outside of the content takes, such as the file's encoding: undo and redo call these. It is
  /// done already. Inside of another step it is part of it, once.
  void AddOutsideStep(EditName name, std::function<void()> undo, std::function<void()> redo);

 protected:
  ~EditableDocument() = default;

  /// Every change of content calls it.
  void NoteRevision() {
    revision_ = ++last_revision_;
    TellRevision();
  }
  /// Whether changes are to be noted.
  bool IsInStep() const { return depth_ > 0; }
  /// Forgets all steps, as a reset does.
  void ForgetSteps();

  /// A step begins, outside of another one.
  virtual void OpenStep() {}
  /// What was noted becomes the step of this number, and those from it on are given up.
  virtual void CloseStep(std::size_t number) = 0;
  /// The steps from this number on are given up, and what was noted.
  virtual void DropSteps(std::size_t first) = 0;
  virtual void UndoStep(std::size_t number) = 0;
  virtual void RedoStep(std::size_t number) = 0;

 private:
  struct StepState {
    EditName name = EditName::Edit;
    std::uint64_t revision_before = 0;
    std::uint64_t revision_after = 0;
    std::function<void()> undo_outside;
    std::function<void()> redo_outside;
  };

  void BeginStep(EditName name);
  void EndStep();
  void TellRevision() const {
    if (listener_) listener_();
  }
  void TellSteps() const {
    if (observer_ != nullptr) observer_->StepsChanged();
  }

  std::vector<StepState> steps_;
  std::size_t position_ = 0;
  int depth_ = 0;
  StepState open_;
  std::uint64_t revision_ = 0;
  std::uint64_t last_revision_ = 0;
  std::function<void()> listener_;
  StepObserver* observer_ = nullptr;
};

/// The part of an EditableDocument that keeps what its steps changed. Changes: what a step notes, in memory in
/// proportion to it; empty when made.
template <class Changes>
class EditLog : public EditableDocument {
 public:
  /// What a step changed, until there is another one. They stand as that way left them.
  const Changes& ChangesOf(const TakenStep& step) const { return changes_[step.number]; }

 protected:
  ~EditLog() = default;

  /// The first and the last thing that is noted of a step, such as what is selected.
  virtual void StepBegins(Changes& /*changes*/) {}
  virtual void StepEnds(Changes& /*changes*/) {}
  /// Where the edits of a step note what they change.
  Changes& Noted() { return noted_; }
  /// Takes the changes back, the last one first, and notes in them what brings them again.
  virtual void Revert(Changes& changes) = 0;
  /// Makes them again, the first one first.
  virtual void Reapply(Changes& changes) = 0;

 private:
  void OpenStep() final {
    noted_ = {};
    StepBegins(noted_);
  }
  void CloseStep(std::size_t number) final {
    StepEnds(noted_);
    changes_.resize(number);
    changes_.push_back(std::exchange(noted_, {}));
  }
  void DropSteps(std::size_t first) final {
    changes_.resize(first);
    noted_ = {};
  }
  void UndoStep(std::size_t number) final { Revert(changes_[number]); }
  void RedoStep(std::size_t number) final { Reapply(changes_[number]); }

  std::vector<Changes> changes_;
  Changes noted_;
};

}  // namespace tme
