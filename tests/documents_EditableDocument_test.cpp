#include <gtest/gtest.h>

#include <optional>

#include "documents/EditableDocument.h"

namespace tme {
namespace {

/// A document of one number, which a change exchanges.
class Number : public EditLog<std::optional<int>> {
 public:
  void Set(int value) {
    const Step step(*this, EditName::Edit);
    if (!Noted()) Noted() = value_;
    value_ = value;
    NoteRevision();
  }
  void Reset() {
    value_ = 0;
    NoteRevision();
    ForgetSteps();
  }
  int Value() const { return value_; }

 private:
  void Revert(std::optional<int>& before) override { Exchange(before); }
  void Reapply(std::optional<int>& after) override { Exchange(after); }
  void Exchange(std::optional<int>& other) {
    if (other) std::swap(value_, *other);
  }

  int value_ = 0;
};

TEST(EditableDocument, StepsAreUndoneAndRedone) {
  Number number;
  int told = 0;
  number.SetRevisionListener([&] { ++told; });
  number.Undo();
  number.Redo();
  EXPECT_FALSE(number.CanUndo() || number.CanRedo());
  number.Set(1);
  EXPECT_EQ(told, 1);
  const std::uint64_t revision = number.Revision();
  {
    const Number::Step step(number, EditName::Replace);
    number.Set(2);
    number.Undo();
    number.Set(3);
  }
  { const Number::Step step(number, EditName::Delete); }
  EXPECT_EQ(number.EditPosition(), 2U) << "a step without a change leaves nothing";
  EXPECT_EQ(number.UndoName(), EditName::Replace);
  number.Undo();
  EXPECT_EQ(number.Value(), 1);
  EXPECT_EQ(number.Revision(), revision) << "the content of that time";
  EXPECT_EQ(number.RedoName(), EditName::Replace);
  const int told_by_undo = told;
  number.Redo();
  EXPECT_EQ(told, told_by_undo + 1);
  EXPECT_EQ(number.Value(), 3);
  number.Undo();
  number.Set(4);
  EXPECT_FALSE(number.CanRedo());
  EXPECT_NE(number.Revision(), revision + 1) << "another content has another number";
  number.Undo();
  number.Undo();
  EXPECT_EQ(number.Value(), 0);
}

TEST(EditableDocument, WhatLiesOutsideOfItTakesPartAndAResetForgetsAll) {
  Number number;
  int outside = 1;
  number.Set(7);
  number.AddOutsideStep(
      EditName::ChangeEncoding, [&] { outside = 0; }, [&] { outside = 1; });
  number.Undo();
  EXPECT_EQ(outside, 0);
  EXPECT_EQ(number.Value(), 7);
  number.Undo();
  number.Redo();
  number.Redo();
  EXPECT_EQ(outside, 1);
  {
    const Number::Step step(number, EditName::Edit);
    number.Set(8);
    number.AddOutsideStep(
        EditName::ChangeEncoding, [&] { outside = 2; }, [&] { outside = 3; });
  }
  number.Undo();
  EXPECT_TRUE(outside == 2 && number.Value() == 7) << "inside of another step it is part of it";
  number.Redo();
  EXPECT_TRUE(outside == 3 && number.Value() == 8);
  {
    const Number::Step step(number, EditName::Edit);
    number.Set(9);
    number.Reset();
  }
  EXPECT_FALSE(number.CanUndo() || number.CanRedo());
}

}  // namespace
}  // namespace tme
