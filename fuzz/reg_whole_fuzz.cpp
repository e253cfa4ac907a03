// Input: the number of edits, three bytes for each (which one, where, what with), then the text of a file.
#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Fuzz.h"
#include "RegSimpleParser.h"
#include "base/Utf8.h"
#include "documents/reg/RegConversion.h"
#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegWholeReader.h"
#include "documents/reg/RegWholeWriter.h"

namespace tme::fuzz {
namespace {

std::string CodePageText(std::string_view bytes) {
  std::string text;
  std::array<char, utf8::kMaxCharacterBytes> character;
  for (const char byte : bytes)
    text.append(character.data(), utf8::PutCharacter(static_cast<unsigned char>(byte), character.data()));
  return text;
}
std::optional<std::string> CodePageBytes(std::string_view text) {
  std::string bytes;
  while (!text.empty()) {
    const std::optional<char32_t> character = utf8::TakeCharacter(text);
    if (!character || *character > 0xFF) return std::nullopt;
    bytes.push_back(static_cast<char>(*character));
  }
  return bytes;
}
constexpr RegCoding kCoding{RegVersion::Version5, CodePageText, CodePageBytes};

std::string Written(const RegDocument& document) {
  std::string text;
  document.Lines().Write([&text](std::string_view part) {
    text += part;
    return true;
  });
  Promise(text.size() == document.Lines().Size(), "the size is known");
  return text;
}

Content ShownBy(const RegDocument& document) {
  Content content;
  std::size_t nodes = 0;
  WalkKeyPaths(*document.Root(), [&](const RegNode& node, std::string_view path) {
    ++nodes;
    const std::string folded = Folded(path);
    for (int row = 0; row < node.ChildCount(); ++row) Promise(node.Child(row)->Row() == row, "a child knows its place");
    if (IsKey(node.Tag()) && node.Parent() != nullptr)
      Promise(document.FindChild(node.Parent(), node.Text()) == &node, "a key stands once");
    if (node.Tag() == RegTag::Deletion) content.push_back("D " + folded);
    if (node.Tag() == RegTag::Comment)
      content.push_back("C " + Folded(node.Parent()->KeyPath()) + '\n' + std::string(node.Text()));
    if (IsKey(node.Tag()) && document.PieceOf(&node) != SourceLines::kEnds) content.push_back("K " + folded);
    for (const std::size_t record : document.ValuesOfPath(&node)) {
      const RegValueRecord& value = document.Values()[record];
      content.push_back("V " + folded + '\n' + std::string(value.name) + '\n' + ShapeOf(value.data));
    }
    return true;
  });
  Promise(nodes == document.NodeCount(), "nodes are counted");
  std::ranges::sort(content);
  return content;
}

/// What stands before and behind the lines that an edit may touch.
struct Around {
  std::string before;
  std::string behind;
};

Around AroundPiece(const RegDocument& document, SourceLines::Piece piece) {
  Around around;
  const SourceLines& lines = document.Lines();
  std::string* side = &around.before;
  for (SourceLines::Piece at = lines.First(); at != SourceLines::kEnds; at = lines.Next(at)) {
    if (at == piece)
      side = &around.behind;
    else
      side->append(lines.Text(at));
  }
  return around;
}

bool IsAround(const Around& around, std::string_view text) {
  return text.size() >= around.before.size() + around.behind.size() && text.starts_with(around.before) &&
         text.ends_with(around.behind);
}

/// Whether one text comes from the other by putting bytes in at one place. A last line may have got its end.
bool IsInsertion(std::string_view text, std::string_view longer) {
  const auto common = static_cast<std::size_t>(std::ranges::mismatch(text, longer).in1 - text.begin());
  return longer.size() >= text.size() && longer.ends_with(text.substr(common));
}

/// Edits one thing that the bytes choose, and checks that nothing else changed.
class Edit {
 public:
  Edit(RegDocument& document, std::uint8_t which, std::uint8_t where, std::uint8_t what)
      : document_(document), which_(which), what_(what), before_(Written(document)) {
    WalkKeys(*document.Root(), [this](const RegNode& node) {
      nodes_.push_back(const_cast<RegNode*>(&node));
      for (const std::size_t record : document_.ValuesOfPath(&node)) records_.push_back(record);
      return true;
    });
    node_ = nodes_[where % nodes_.size()];
    if (!records_.empty()) record_ = records_[where % records_.size()];
  }

  void Run() {
    const bool is_list = document_.Version() == RegVersion::Regedit;
    const bool is_key = IsKey(node_->Tag());
    switch (which_ % 10) {
      case 0:
        if (is_key && node_->Parent() != nullptr)
          CheckInsertion([&] { document_.AddValue(node_, is_list ? "" : Name(), Assignment()); });
        return;
      case 1: {
        const std::string name = (node_->Parent() == nullptr ? "HKEY_" : "") + Name();
        if (is_key && document_.FindChild(node_, name) == nullptr)
          CheckInsertion([&] { document_.AddKey(node_, name); });
        return;
      }
      case 2:
      case 3:
      case 4:
        return EditValue(is_list);
      case 5:
        return document_.RemoveKey(node_);
      case 6:
        if (is_key && node_->Parent() != nullptr && !is_list) document_.WriteDeletion(node_);
        return;
      case 7: {
        const bool is_free = node_->Parent() != nullptr && document_.FindChild(node_->Parent(), Name()) == nullptr;
        if (is_free && node_->Tag() != RegTag::Comment && node_->Tag() != RegTag::Hive)
          document_.RenameKey(node_, Name());
        return;
      }
      case 8:
        Promise(document_.Comments() == RegComments::Shown || Written(document_) == before_, "showing changes nothing");
        return document_.ShowComments(what_ % 2 == 0 ? RegComments::Shown : RegComments::Hidden);
      default:
        if (!is_list && is_key)
          document_.Paste(node_, ClipboardText(document_, *nodes_[what_ % nodes_.size()]), kCoding);
    }
  }

 private:
  std::string Name() const { return "n" + std::to_string(what_ % 5); }
  std::string Assignment() const {
    constexpr std::array kKinds{"\"text\"", "dword:0000001a", "-", "hex:"};
    if (document_.Version() == RegVersion::Regedit) return "text";
    std::string assignment = kKinds[what_ % kKinds.size()];
    if (assignment == "hex:") assignment = "hex(2):01";
    for (unsigned i = 0; assignment[0] == 'h' && i < what_; ++i) assignment += ",0f";
    return assignment;
  }

  template <typename Change>
  void CheckInsertion(Change change) {
    change();
    Promise(IsInsertion(before_, Written(document_)), "adding puts lines in at one place");
  }

  void EditValue(bool is_list) {
    if (records_.empty()) return;
    const Around around = AroundPiece(document_, document_.Values()[record_].piece);
    if (which_ % 10 == 2) {
      document_.SetAssignment(record_, Assignment());
    } else if (which_ % 10 == 3) {
      document_.RenameValue(record_, Name());
    } else {
      const bool has_comment = document_.Values()[record_].data.find(';') != std::string_view::npos;
      document_.DeleteValue(record_);
      Promise(is_list || has_comment || Written(document_) == around.before + around.behind,
              "a value goes with its lines");
    }
    Promise(IsAround(around, Written(document_)), "an edit changes its own lines");
  }

  RegDocument& document_;
  const std::uint8_t which_;
  const std::uint8_t what_;
  const std::string before_;
  std::vector<RegNode*> nodes_;
  std::vector<std::size_t> records_;
  RegNode* node_ = nullptr;
  std::size_t record_ = 0;
};

/// Lines that mean something else where others stand before them: hex that goes on in nothing, a first line that is not
/// the first, a hive whose name makes its header a deletion.
bool DependsOnPlace(const RegDocument& document, const RegWholeResult& result) {
  const RegNode& root = *document.Root();
  for (int row = 0; row < root.ChildCount(); ++row)
    if (root.Child(row)->Text().starts_with('-')) return true;
  return !result.has_header || result.not_understood > 0 ||
         std::ranges::any_of(document.Values(), [](const RegValueRecord& value) { return value.data.ends_with('\\'); });
}

void Run(std::string_view input) {
  const unsigned edits = TakeByte(input) % 16;
  const std::string_view commands = input.substr(0, std::min<std::size_t>(input.size(), std::size_t{3} * edits));
  const std::string text(input.substr(commands.size()));
  RegDocument document;
  const RegWholeResult result = ReadWholeReg(document, text);
  Promise(Written(document) == text, "untouched is identical");
  const Content shown = ShownBy(document);
  const bool simple = text.starts_with("REGEDIT4\r\n") || text.starts_with("Windows Registry Editor Version 5.00\n");
  if (simple) Promise(SimpleParser(text).Run() == shown, "the tree shows what a second parser finds");
  for (const RegValueRecord& value : document.Values()) {
    const std::optional<RegData> data = DecodeAssignment(value.data, kCoding);
    const std::optional<std::string> again = data ? EncodeAssignment(*data, kCoding) : std::nullopt;
    if (again) Promise(DecodeAssignment(*again, kCoding) == data, "decode, encode, decode is the same");
  }
  for (std::size_t at = 0; at + 2 < commands.size(); at += 3) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(commands[at + i]); };
    Edit(document, byte(0), byte(1), byte(2)).Run();
    const Content now = ShownBy(document);
    if (DependsOnPlace(document, result)) continue;
    RegDocument again;
    ReadWholeReg(again, Written(document), {.unsaid = document.Version(), .first_values = {}, .progress = {}});
    again.ShowComments(document.Comments());
    Promise(ShownBy(again) == now, "the tree is what a reader makes of the lines");
  }
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tme::fuzz::Run(tme::fuzz::AsText(data, size));
  return 0;
}
