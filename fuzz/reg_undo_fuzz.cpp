// Input: how the document is held, the number of commands, three bytes for each (which one, where, what with), then the
// text of a file. Commands edit, undo, redo, and show and hide comments.
#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Fuzz.h"
#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegReader.h"
#include "documents/reg/RegWholeReader.h"
#include "documents/reg/RegWholeWriter.h"
#include "documents/reg/RegWriter.h"

namespace tme::fuzz {
namespace {

std::string AsLatin1(std::string_view bytes) { return std::string(bytes); }
std::optional<std::string> FromLatin1(std::string_view text) { return std::string(text); }
constexpr RegCoding kCoding{RegVersion::Version5, AsLatin1, FromLatin1};

/// Values are written under each key of their name; larger documents would leave few runs in a second.
constexpr std::uint64_t kMostWritten = std::uint64_t{1} << 16;

/// The bytes of a save, the nodes with their values but for comments, and what else is the content's.
std::string StateOf(const RegDocument& document) {
  std::string state = std::to_string(document.Revision()) + ' ' + std::to_string(document.Values().size()) + ' ' +
                      std::to_string(static_cast<int>(document.Version())) + '\n';
  const PartSink append = [&state](std::string_view part) {
    state += part;
    return true;
  };
  const bool is_whole = document.HeldAs() == Holding::Whole;
  if (is_whole)
    WriteWholeReg(document, RegLayout::Expanded, append);
  else if (RegOutputBytes(document, RegLayout::Expanded) <= kMostWritten)
    WriteReg(document, RegLayout::Expanded, append);
  std::size_t nodes = 0;
  WalkKeys(*document.Root(), [&](const RegNode& node) {
    ++nodes;
    for (int row = 0; row < node.ChildCount(); ++row) Promise(node.Child(row)->Row() == row, "a child knows its place");
    if (node.Tag() == RegTag::Comment) return true;
    state.append(node.KeyPath()).append(1, "FHBD"[static_cast<int>(node.Tag())]);
    for (const std::size_t record : document.ValuesOfPath(&node)) {
      const RegValueRecord& value = document.Values()[record];
      state.append(value.name).append("=").append(value.data).append(value.deleted ? "!" : "") += '\n';
    }
    return true;
  });
  Promise(nodes == document.NodeCount(), "nodes are counted");
  Promise(document.IsInTree(document.Selected()), "the selected node is in the tree");
  return state;
}

/// Comments, shown after undo and redo, are those that a fresh look at the lines shows.
void CheckComments(RegDocument& document) {
  if (document.Comments() == RegComments::Hidden) return;
  const auto comments = [&document] {
    std::vector<std::string> found;
    WalkKeys(*document.Root(), [&found](const RegNode& node) {
      if (node.Tag() == RegTag::Comment) found.push_back(node.KeyPath());
      return true;
    });
    return found;
  };
  const std::vector<std::string> shown = comments();
  document.ShowComments(RegComments::Hidden);
  document.ShowComments(RegComments::Shown);
  Promise(shown == comments(), "comments stand where they belong");
}

class Commands {
 public:
  explicit Commands(RegDocument& document) : document_(document), states_{StateOf(document)} {}

  void Run(std::uint8_t which, std::uint8_t where, std::uint8_t what) {
    where_ = where;
    what_ = what;
    switch (which % 16) {
      case 0:
      case 1:
        for (unsigned i = 0; i <= what % 4; ++i) document_.Undo();
        return Check();
      case 2:
      case 3:
        for (unsigned i = 0; i <= what % 4; ++i) document_.Redo();
        return Check();
      case 4:
        document_.ShowComments(what % 2 == 0 ? RegComments::Shown : RegComments::Hidden);
        return;
      default:
        break;
    }
    const std::size_t position = document_.EditPosition();
    {
      const RegDocument::Step step(document_, EditName::Edit);
      document_.Select(Node());
      for (unsigned i = 0; i <= (what % 16 == 0 ? 2U : 0U); ++i, where_ = static_cast<std::uint8_t>(where_ + 7))
        document_.HeldAs() == Holding::Whole ? EditWhole(which % 16) : EditByRules(which % 16);
    }
    if (document_.EditPosition() != position) states_.resize(position + 1), states_.push_back(StateOf(document_));
    Check();
  }

  void UndoAndRedoAll() {
    while (document_.CanUndo()) document_.Undo();
    Check();
    while (document_.CanRedo()) document_.Redo();
    Check();
  }

 private:
  void Check() {
    Promise(StateOf(document_) == states_[document_.EditPosition()], "each position has its content");
    CheckComments(document_);
  }

  RegNode* Node() const {
    std::vector<RegNode*> nodes;
    WalkKeys(*document_.Root(), [&nodes](const RegNode& node) {
      nodes.push_back(const_cast<RegNode*>(&node));
      return true;
    });
    return nodes[where_ % nodes.size()];
  }
  std::optional<std::size_t> Value() const {
    std::vector<std::size_t> records;
    for (std::size_t record = 0; record < document_.Values().size(); ++record)
      if (!document_.Values()[record].deleted) records.push_back(record);
    return records.empty() ? std::nullopt : std::optional(records[where_ % records.size()]);
  }
  std::string Name() const { return "n" + std::to_string(what_ % 5); }
  std::string Assignment() const {
    constexpr std::array kAssignments{"\"text\"", "dword:0000001a", "-", "hex(2):01,00,0f", "hex:1,\\\n;c\n 2"};
    return document_.Version() == RegVersion::Regedit ? "text" : kAssignments[what_ % kAssignments.size()];
  }

  void EditByRules(unsigned which) {
    RegNode* node = Node();
    const std::optional<std::size_t> value = Value();
    if (which < 7)
      document_.AddBranch(node, Name());
    else if (which < 9)
      document_.AddValueRecord(node, RegType::String, Name(), Name());
    else if (which < 11)
      document_.SetText(node, Name());
    else if (which == 11)
      document_.RemoveKey(node);
    else if (value && which == 12)
      document_.SetValueData(*value, Name());
    else if (value && which == 13)
      document_.RenameValue(*value, Name());
    else if (value && which == 14)
      document_.DeleteValue(*value);
    else
      Move(node);
  }

  void Move(RegNode* node) {
    where_ = what_;
    RegNode* parent = Node();
    if (node != document_.Root() && !IsAtOrBelow(parent, node)) document_.MoveKeys({{node}}, parent);
  }

  void EditWhole(unsigned which) {
    RegNode* node = Node();
    const std::optional<std::size_t> value = Value();
    const bool is_list = document_.Version() == RegVersion::Regedit;
    const bool is_key = IsKey(node->Tag()) && node->Parent() != nullptr;
    if (which == 5 && is_key) {
      document_.AddValue(node, is_list ? "" : Name(), Assignment());
    } else if (which == 6 && IsKey(node->Tag()) && document_.FindChild(node, "HKEY_" + Name()) == nullptr) {
      document_.AddKey(node, "HKEY_" + Name());
    } else if (which == 7 && value) {
      document_.SetAssignment(*value, Assignment());
    } else if (which == 8 && value) {
      document_.RenameValue(*value, Name());
    } else if (which == 9 && value) {
      document_.DeleteValue(*value);
    } else if (which == 10) {
      document_.RemoveKey(node);
    } else if (which == 11 && is_key && !is_list) {
      document_.WriteDeletion(node);
    } else if (which == 12 && node->Tag() == RegTag::Comment) {
      document_.SetComment(node, ';' + Name());
    } else if (which == 12 && is_key && document_.FindChild(node->Parent(), "HKEY_" + Name()) == nullptr) {
      document_.RenameKey(node, "HKEY_" + Name());
    } else if (which == 13 && IsKey(node->Tag())) {
      document_.Paste(node, what_ % 2 == 0 ? ClipboardText(document_, *node) : "\"p\"=\"1\"\n;c\n", kCoding);
    } else if (which == 14) {
      document_.SetLineEnds(what_ % 2 == 0 ? LineEnds::CrLf : LineEnds::Lf);
      document_.ConvertTo(what_ % 3 == 0 ? RegVersion::Version5 : RegVersion::Regedit4, kCoding);
    } else if (which == 15) {
      ReplaceSome();
    }
  }

  void ReplaceSome() {
    constexpr std::array kLines{"[HKEY_a]\n", "",          ";c\n", "\"v\"=hex:1,\\\n",
                                " 2\n",       "REGEDIT\n", "junk", "[-HKEY_a\\b]\r\n\n"};
    const SourceLines& lines = document_.Lines();
    SourceLines::Piece first = lines.First();
    for (unsigned i = 0; i < where_ % 32 && lines.Next(first) != SourceLines::kEnds; ++i) first = lines.Next(first);
    SourceLines::Piece last = first;
    for (unsigned i = 0; i < what_ / 64U && lines.Next(last) != SourceLines::kEnds; ++i) last = lines.Next(last);
    std::string text(lines.Text(what_ % 3 == 0 ? first : last));
    document_.ReplaceLines(first, last, text + kLines[what_ % kLines.size()]);
  }

  RegDocument& document_;
  std::uint8_t where_ = 0;
  std::uint8_t what_ = 0;
  /// By position.
  std::vector<std::string> states_;
};

void Run(std::string_view input) {
  const bool is_whole = TakeByte(input) % 4 != 0;
  const unsigned count = TakeByte(input) % 32;
  const std::string_view commands = input.substr(0, std::min<std::size_t>(input.size(), std::size_t{3} * count));
  const std::string text(input.substr(commands.size()));
  RegDocument document;
  if (is_whole)
    ReadWholeReg(document, text);
  else
    ReadReg(document, text, {.wrong_header = [] { return true; }, .large_file = [] { return true; }, .progress = {}});
  Commands run(document);
  for (std::size_t at = 0; at + 2 < commands.size(); at += 3)
    run.Run(static_cast<std::uint8_t>(commands[at]), static_cast<std::uint8_t>(commands[at + 1]),
            static_cast<std::uint8_t>(commands[at + 2]));
  run.UndoAndRedoAll();
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tme::fuzz::Run(tme::fuzz::AsText(data, size));
  return 0;
}
