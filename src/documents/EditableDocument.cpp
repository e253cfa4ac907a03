#include "documents/EditableDocument.h"

#include <optional>
#include <utility>

namespace tme {

void EditableDocument::Undo() {
  if (depth_ > 0 || !CanUndo()) return;
  const StepState& step = steps_[--position_];
  revision_ = step.revision_before;
  UndoStep(position_);
  if (step.undo_outside) step.undo_outside();
  TellRevision();
  TellSteps();
}

void EditableDocument::Redo() {
  if (depth_ > 0 || !CanRedo()) return;
  const StepState& step = steps_[position_++];
  revision_ = step.revision_after;
  RedoStep(position_ - 1);
  if (step.redo_outside) step.redo_outside();
  TellRevision();
  TellSteps();
}

std::optional<EditableDocument::TakenStep> EditableDocument::OnlyStepSince(std::uint64_t revision) const {
  if (depth_ > 0) return std::nullopt;
  const auto joins = [](const StepState& step, std::uint64_t before, std::uint64_t after) {
    return step.revision_before == before && step.revision_after == after;
  };
  if (CanUndo() && joins(steps_[position_ - 1], revision, revision_)) return TakenStep{position_ - 1, StepWay::Done};
  if (CanRedo() && joins(steps_[position_], revision_, revision)) return TakenStep{position_, StepWay::Undone};
  return std::nullopt;
}

void EditableDocument::AddOutsideStep(EditName name, std::function<void()> undo, std::function<void()> redo) {
  const Step step(*this, name);
  NoteRevision();
  open_.undo_outside = std::move(undo);
  open_.redo_outside = std::move(redo);
}

void EditableDocument::ForgetSteps() {
  steps_.clear();
  position_ = 0;
  DropSteps(0);
  open_.revision_before = revision_;  // an open step leaves nothing
  TellSteps();
}

void EditableDocument::BeginStep(EditName name) {
  if (depth_++ > 0) return;
  if (observer_ != nullptr) observer_->StepBegins();
  open_ = {.name = name, .revision_before = revision_, .revision_after = 0, .undo_outside = {}, .redo_outside = {}};
  OpenStep();
}

void EditableDocument::EndStep() {
  if (--depth_ > 0 || revision_ == open_.revision_before) return;
  steps_.resize(position_);
  open_.revision_after = revision_;
  steps_.push_back(std::exchange(open_, {}));
  CloseStep(position_++);
  TellSteps();
}

}  // namespace tme
