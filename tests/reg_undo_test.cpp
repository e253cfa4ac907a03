#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <random>

#include "RegProbe.h"
#include "WrittenChangeProbe.h"
#include "documents/reg/RegAsShown.h"
#include "documents/reg/RegWholeReader.h"
#include "documents/reg/RegWholeWriter.h"
#include "documents/reg/RegWrittenLines.h"
#include "files/CodePage.h"

namespace tme {
namespace {

constexpr RegCoding kUndoCoding{RegVersion::Version5, CodePageToUtf8, Utf8ToCodePage};

/// All that a step has to bring back, but for nodes of comments.
std::string UndoState(const RegDocument& document) {
  std::string state;
  const PartSink append = [&state](std::string_view part) {
    state += part;
    return true;
  };
  const bool is_whole = document.HeldAs() == Holding::Whole;
  for (const RegLayout layout : {RegLayout::Regular, RegLayout::Expanded})
    is_whole ? WriteWholeReg(document, layout, append) : WriteReg(document, layout, append);
  if (!is_whole) WriteRegAsShown(document, append);
  WalkKeyPaths(*document.Root(), [&](const RegNode& node, std::string_view path) {
    if (node.Tag() == RegTag::Comment) return true;
    state.append(path).append(1, "FHBD"[static_cast<int>(node.Tag())]).append(DumpValues(document, node));
    state += '0' + static_cast<char>(document.PieceOf(&node) != SourceLines::kEnds);
    return true;
  });
  const RegNode* selected = document.Selected();
  if (selected->Tag() == RegTag::Comment) selected = selected->Parent();
  return state + ">" + selected->KeyPath() + "#" + std::to_string(document.Values().size()) + "#" +
         std::to_string(document.Revision()) + "#" + std::to_string(static_cast<int>(document.Version()));
}

std::string LinesOf(const RegDocument& document) {
  std::string text;
  document.Lines().Write([&text](std::string_view part) {
    text += part;
    return true;
  });
  return text;
}

/// What the lines say, in any order. Keys that they no longer imply may stay.
std::vector<std::string> SaidByLines(const RegDocument& document) {
  std::vector<std::string> said;
  WalkKeyPaths(*document.Root(), [&](const RegNode& node, std::string_view path) {
    if (document.PieceOf(&node) == SourceLines::kEnds) return true;
    said.push_back(std::string(path).append(1, "FKKDC"[static_cast<int>(node.Tag())]));
    for (const std::size_t record : document.ValuesOfPath(&node)) {
      const RegValueRecord& value = document.Values()[record];
      said.push_back(std::string(path).append("\n").append(value.name).append("=").append(value.data));
    }
    return true;
  });
  std::ranges::sort(said);
  return said;
}

/// Takes back all steps and makes them again, with what is told in between.
void ExpectUndone(RegDocument& document, const std::string& before) {
  const std::string after = UndoState(document);
  const std::size_t steps = document.EditPosition();
  while (document.CanUndo()) document.Undo();
  EXPECT_EQ(UndoState(document), before);
  while (document.CanRedo()) document.Redo();
  EXPECT_EQ(UndoState(document), after);
  EXPECT_EQ(document.EditPosition(), steps);
}

struct UndoCase {
  const char* edits;
  std::function<void(RegDocument&)> edit;
  std::vector<EditName> names;
  const char* selected = "$";
};

RegNode* KeyAt(RegDocument& document, std::string_view path) { return NodeAt(document, path); }

// clang-format off
const std::vector<UndoCase> kUndoneByRules = {
    {"hives and branches", [](RegDocument& d) { d.AddBranch(d.AddHiveNode("H"), "x"); }, {EditName::AddKey, EditName::AddKey}},
    {"values of several keys in turn", [](RegDocument& d) { for (const char* key : {"$/a", "$/c", "$/a"}) d.AddValueRecord(KeyAt(d, key), RegType::Hex, "n", "1"); },
     {EditName::AddValue, EditName::AddValue, EditName::AddValue}},
    {"data and name", [](RegDocument& d) { d.SetValueData(1, "9"), d.RenameValue(1, "q"), d.SetValueData(1, "9"), d.RenameValue(1, "q"); }, {EditName::Edit, EditName::Rename}},
    {"deleted values, deleted again, and with data", [](RegDocument& d) { d.DeleteValue(0), d.DeleteValue(0), d.SetValueData(0, "x"), d.DeleteValue(0); },
     {EditName::DeleteValue, EditName::Edit, EditName::DeleteValue}},
    {"keys below the selected one go, and the root does not", [](RegDocument& d) { d.RemoveKey(KeyAt(d, "$/a")), d.RemoveKey(d.Root()); }, {EditName::DeleteKey}, "$/a/b"},
    {"a name that two have", [](RegDocument& d) { d.SetText(KeyAt(d, "$/d"), "a"), d.SetText(KeyAt(d, "$/c"), "c"), d.RemoveKey(KeyAt(d, "$/a")); }, {EditName::Rename, EditName::DeleteKey}},
    {"the root's text", [](RegDocument& d) { d.SetText(d.Root(), "a"); }, {EditName::Rename}},
    {"several in one step", [](RegDocument& d) {
       const RegDocument::Step step(d, EditName::Move);
       RegNode* key = d.AddBranch(d.Root()->Child(0), "n");
       d.SetValueData(d.AddValueRecord(key, RegType::String, "v", "1"), "2"), d.SetValueData(0, "3"), d.DeleteValue(0);
       d.SetText(key, "m"), d.RemoveKey(KeyAt(d, "$/c"));
     }, {EditName::Move}},
};

const std::vector<UndoCase> kUndoneWhole = {
    {"keys and values where there are no lines", [](RegDocument& d) { d.AddValue(d.AddKey(d.Root(), "HKEY_USERS2"), "v", "\"1\""), d.AddValue(KeyAt(d, "$/i"), "", "-"); },
     {EditName::AddKey, EditName::AddValue, EditName::AddValue}},
    {"values", [](RegDocument& d) { d.SetAssignment(0, "hex:1"), d.SetAssignment(0, "hex:1"), d.RenameValue(0, "q'"), d.RenameValue(0, "q'"), d.WriteDeletion(std::size_t{0}), d.WriteDeletion(std::size_t{0}); },
     {EditName::Edit, EditName::Rename, EditName::WriteDeletion}},
    {"comments between the lines of a value", [](RegDocument& d) { d.SetAssignment(1, "\"t\""), d.DeleteValue(2), d.DeleteValue(2), d.DeleteValue(3); },
     {EditName::Edit, EditName::DeleteValue, EditName::DeleteValue}},
    {"keys of several blocks", [](RegDocument& d) { d.RemoveKey(KeyAt(d, "$/a")); }, {EditName::DeleteKey}, "$/a/b"},
    {"a deletion, and that of a key", [](RegDocument& d) { d.WriteDeletion(KeyAt(d, "$/a")), d.RemoveKey(KeyAt(d, "$/d")); }, {EditName::WriteDeletion, EditName::Delete}, "$/a/b"},
    {"names of keys", [](RegDocument& d) { d.RenameKey(KeyAt(d, "$/a"), "n"), d.RenameKey(KeyAt(d, "$"), "H"), d.RenameKey(KeyAt(d, "H"), "H"); }, {EditName::Rename, EditName::Rename}},
    {"line ends", [](RegDocument& d) { d.SetLineEnds(LineEnds::CrLf), d.SetLineEnds(LineEnds::CrLf); }, {EditName::ChangeLineEnds}},
    {"another version", [](RegDocument& d) { d.ConvertTo(RegVersion::Version5, kUndoCoding), d.ConvertTo(RegVersion::Version5, kUndoCoding); }, {EditName::Convert}},
    {"pastes, and those of nothing", [](RegDocument& d) {
       d.Paste(KeyAt(d, "$/i"), Reg("REGEDIT4|'n'='1'|;c|"), kUndoCoding), d.Paste(KeyAt(d, "$"), Reg("REGEDIT4|[$/x/y]|'n'='1'|[$/x/z]|[-$/x/q]|"), kUndoCoding);
       d.Paste(d.Root(), "REGEDIT4", kUndoCoding), d.Paste(d.Root(), "\"v\"=\"w\"", kUndoCoding);
     }, {EditName::Paste, EditName::Paste}},
    {"more keys than are told one by one", [](RegDocument& d) {
       const RegDocument::Step step(d, EditName::Delete);
       RegNode* key = KeyAt(d, "$");
       std::vector<RegNode*> made;
       for (int i = 0; i < 300; ++i) made.push_back(d.AddKey(key, std::to_string(i)));
       for (int i = 0; i < 90; i += 3) d.RemoveKey(made[static_cast<std::size_t>(i)]);
       for (int i = 200; i > 100; i -= 3) d.RemoveKey(made[static_cast<std::size_t>(i)]);
       d.AddKey(made[1], "below"), d.WriteDeletion(KeyAt(d, "$/a"));
     }, {EditName::Delete}},
};
// clang-format on

constexpr const char* kUndoneText =
    "REGEDIT4||;1|[$/a]|'v'='1'|'w'=hex:1,/|;in|2||;2|[-$/d]||[$/a/b]|;own|'x'=hex:3,/|;x|4|;c|'y'=dword:1|;3|[$/A]|"
    "'z'='2'|;last||[$/i/j]|@='t'|";

void ExpectSteps(RegDocument& document, const UndoCase& test) {
  RegMirror mirror(document);
  document.Select(NodeAt(document, test.selected));
  const std::string before = UndoState(document);
  test.edit(document);
  ExpectUndone(document, before);
  for (const EditName name : test.names) {
    if (!document.CanUndo()) break;
    document.Undo();
    EXPECT_EQ(document.RedoName(), test.names[document.EditPosition()]) << static_cast<int>(name);
  }
  EXPECT_FALSE(document.CanUndo()) << "more steps than there should be";
  while (document.CanRedo()) document.Redo();
  EXPECT_EQ(document.EditPosition(), test.names.size());
  mirror.Check();
  document.Reset("");
  EXPECT_FALSE(document.CanUndo());
}

TEST(RegUndo, EditsByTheRules) {
  for (const UndoCase& test : kUndoneByRules) {
    SCOPED_TRACE(test.edits);
    RegDocument document("Title");
    ReadReg(document, "REGEDIT4|[$/a]|'v'='1'|'w'=dword:2|[$/a/b]|'v'=hex:3|[$/c]|[$/d/b]|'x'='4'||");
    ExpectSteps(document, test);
  }
}

TEST(RegUndo, EditsOfWholeDocuments) {
  for (const UndoCase& test : kUndoneWhole) {
    for (const RegComments comments : {RegComments::Hidden, RegComments::Shown}) {
      SCOPED_TRACE(test.edits);
      RegDocument document;
      ReadWholeReg(document, Reg(kUndoneText));
      document.ShowComments(comments);
      ExpectSteps(document, test);
    }
  }
  RegDocument list;
  ReadWholeReg(list, Reg("REGEDIT||$/a = 1|$/b||$/a/c = 2|"));
  ExpectSteps(list,
              {"pairs",
               [](RegDocument& d) {
                 d.AddValue(KeyAt(d, "$/b"), "", "3"), d.AddValue(KeyAt(d, "$/b"), "", "4"), d.DeleteValue(0);
                 d.RenameValue(1, "n"), d.AddKey(KeyAt(d, "$/a"), "k"), d.RemoveKey(KeyAt(d, "$/a"));
               },
               {EditName::AddValue, EditName::AddValue, EditName::DeleteValue, EditName::AddKey, EditName::DeleteKey}});
}

/// Edits at random places, undo and redo, and comments that are shown and hidden in between.
class RandomEdits {
 public:
  RandomEdits(RegDocument& document, unsigned seed)
      : document_(document), mirror_(document), random_(seed), written_(document.Revision(), Regular()) {
    states_.push_back(UndoState(document));
  }

  /// Steps whose lines were known.
  std::size_t Followed() const { return written_.Followed(); }
  void Run() {
    for (int i = 0; i < 120; ++i) {
      const bool is_whole = document_.HeldAs() == Holding::Whole;
      const std::size_t kind = Next(10);
      if (kind == 0 && is_whole)
        document_.ShowComments(Next(2) == 0 ? RegComments::Shown : RegComments::Hidden);
      else if (kind < 4)
        GoTo(document_.EditPosition() - Next(std::min<std::size_t>(document_.EditPosition(), 5) + 1));
      else if (kind < 6)
        GoTo(document_.EditPosition() + Next(states_.size() - document_.EditPosition()));
      else
        EditOnce();
      mirror_.Check();
      if (is_whole) CheckAgainstReader();
      if (testing::Test::HasFailure()) return;
    }
    GoTo(0);
    GoTo(states_.size() - 1);
  }

 private:
  std::size_t Next(std::size_t below) { return random_() % below; }

  void GoTo(std::size_t position) {
    if (position == document_.EditPosition()) return;
    for (; document_.EditPosition() > position; FollowWritten()) document_.Undo();
    for (; document_.EditPosition() < position; FollowWritten()) document_.Redo();
    // Steps select what was selected when they were made; what is selected in between is no part of them.
    EXPECT_EQ(WithoutSelection(UndoState(document_)), WithoutSelection(states_[position]));
    mirror_.Check();
  }

  static std::string WithoutSelection(const std::string& state) {
    const std::size_t at = state.rfind('>');
    return state.substr(0, at) + state.substr(state.find('#', at));
  }

  void EditOnce() {
    const std::size_t position = document_.EditPosition();
    {
      const RegDocument::Step step(document_, EditName::Replace);
      for (std::size_t count = Next(6) == 0 ? 4 : 1; count > 0; --count)
        document_.HeldAs() == Holding::Whole ? EditWhole() : EditByRules();
    }
    if (document_.EditPosition() == position) {
      EXPECT_EQ(WithoutSelection(UndoState(document_)), WithoutSelection(states_[position]));
      return;
    }
    states_.resize(position + 1);
    states_.push_back(UndoState(document_));
    FollowWritten();
  }

  void FollowWritten() {
    if (document_.HeldAs() == Holding::Whole) return;
    const RegWrittenLines lines(document_);
    written_.Follow(lines.ChangesSince(written_.Revision()), document_.Revision(), Regular());
  }
  std::string Regular() const {
    return document_.HeldAs() == Holding::Whole ? "" : Written(document_, RegLayout::Regular);
  }

  RegNode* AnyNode() {
    std::vector<RegNode*> nodes;
    WalkKeys(*document_.Root(), [&nodes](const RegNode& node) {
      nodes.push_back(const_cast<RegNode*>(&node));
      return true;
    });
    RegNode* node = nodes[Next(nodes.size())];
    if (Next(4) == 0) document_.Select(node);
    return node;
  }
  std::optional<std::size_t> AnyValue() {
    const std::vector<std::size_t> records = document_.ValuesOfPath(AnyNode());
    return records.empty() ? std::nullopt : std::optional(records[Next(records.size())]);
  }
  std::string Name() { return std::string(1, static_cast<char>('a' + Next(6))); }

  void EditByRules() {
    RegNode* node = AnyNode();
    const std::optional<std::size_t> value = AnyValue();
    switch (Next(9)) {
      case 0:
        document_.AddBranch(node, Next(9) == 0 ? "a\\b" : Name());
        return;
      case 6:
      case 7:
        return MoveOrCopy(node, AnyNode(), value);
      case 1:
        document_.AddValueRecord(node, RegType::String, Name(), Name());
        return;
      case 2:
        if (value) document_.SetValueData(*value, Name());
        return;
      case 3:
        if (value) document_.RenameValue(*value, Name());
        return;
      case 4:
        if (value) document_.DeleteValue(*value);
        return;
      case 5:
        document_.SetText(node, Name());
        return;
      default:
        if (node->Parent() != document_.Root()) document_.RemoveKey(node);
    }
  }

  void MoveOrCopy(RegNode* node, RegNode* parent, std::optional<std::size_t> value) {
    if (value && Next(3) == 0)
      document_.CopyValues(document_, std::array{*value}, parent);
    else if (node != document_.Root() && !IsAtOrBelow(parent, node))
      document_.MoveKeys(std::array{node}, parent);
  }

  void EditWhole() {
    constexpr std::array kAssignments{"\"t\"", "dword:1", "-", "hex(2):61,00,00,00", "hex:1,\\\n;c\n  2"};
    RegNode* node = AnyNode();
    const std::optional<std::size_t> value = AnyValue();
    const bool is_key = IsKey(node->Tag()) && node->Parent() != nullptr;
    const std::string name = Name();
    switch (Next(11)) {
      case 0:
        if (is_key && document_.FindChild(node, name) == nullptr) document_.AddKey(node, name);
        return;
      case 1:
        if (is_key) document_.AddValue(node, name, kAssignments[Next(kAssignments.size())]);
        return;
      case 2:
      case 3:
        if (value) document_.SetAssignment(*value, kAssignments[Next(kAssignments.size() - 1)]);
        return;
      case 4:
        if (value) document_.RenameValue(*value, name);
        return;
      case 5:
        if (value) document_.DeleteValue(*value);
        return;
      case 6:
        document_.RemoveKey(node);
        return;
      case 7:
        if (is_key && node->Parent() != document_.Root() && Next(2) == 0) document_.WriteDeletion(node);
        return;
      case 8:
        if (node->Tag() == RegTag::Comment) document_.SetComment(node, ";" + name);
        if (is_key && document_.FindChild(node->Parent(), name) == nullptr) document_.RenameKey(node, name);
        return;
      case 9:
        if (IsKey(node->Tag()))
          document_.Paste(node, Next(2) == 0 ? ClipboardText(document_, *AnyNode()) : Reg("'p'='1'|;c|"), kUndoCoding);
        return;
      default:
        document_.SetLineEnds(Next(2) == 0 ? LineEnds::CrLf : LineEnds::Lf);
        if (Next(2) == 0) document_.ConvertTo(Next(2) == 0 ? RegVersion::Version5 : RegVersion::Regedit4, kUndoCoding);
    }
  }

  void CheckAgainstReader() {
    RegDocument again;
    ReadWholeReg(again, LinesOf(document_), {.unsaid = document_.Version(), .first_values = {}, .progress = {}});
    again.ShowComments(document_.Comments());
    EXPECT_EQ(SaidByLines(again), SaidByLines(document_));
  }

  RegDocument& document_;
  RegMirror mirror_;
  std::minstd_rand random_;
  WrittenText written_;
  /// By position.
  std::vector<std::string> states_;
};

TEST(RegUndo, RandomEdits) {
  std::size_t followed = 0;
  for (unsigned seed = 1; seed <= 200 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    RegDocument document("Title");
    if (seed % 3 == 0)
      ReadReg(document, "REGEDIT4|[$/a]|'v'='1'|'w'=dword:2|[$/a/b]|'v'=hex:3|[$/c]|[$/d/b]|'x'='4'||");
    else
      ReadWholeReg(document, Reg(kUndoneText));
    RandomEdits edits(document, seed);
    edits.Run();
    followed += edits.Followed();
  }
  EXPECT_GT(followed, 3000U);
}

}  // namespace
}  // namespace tme
