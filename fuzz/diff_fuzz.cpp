// Input: a byte for the kind, a byte for how many edits make the second file, three bytes for each, the text of a file.
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "EditedLines.h"
#include "Fuzz.h"
#include "base/CaseFold.h"
#include "documents/compare/OutlineDiff.h"
#include "documents/compare/RegPatch.h"

namespace tme::fuzz {
namespace {

constexpr unsigned kMostEdits = 12;
constexpr RegCoding kCoding{.version = RegVersion::Version5};

/// What a file leaves in a registry, by a second and simpler importer.
class Registry {
 public:
  void Import(const std::string& file) {
    const Outline outline = ReadRegOutline(file, kCoding, {.blocks = OutlineOptions::Blocks::Apart});
    for (const Outline::Group& group : outline.Groups()) {
      const std::string path = FoldedCase(group.path);
      if (group.sort == Outline::GroupSort::Deletion) Delete(path);
      if (group.sort != Outline::GroupSort::Named) continue;
      auto& values = keys_[path];
      for (Outline::Index at = group.begin; at < group.end; ++at) {
        const Outline::Item& item = outline.Items()[at];
        if (item.sort != Outline::Sort::Entry) continue;
        const std::string name = FoldedCase(outline.NameOf(item));
        if (const std::optional<RegData> data = DecodeAssignment(outline.ValueOf(item), outline.Coding()))
          values[name] = *data;
        else
          values.erase(name);
      }
    }
  }

  bool operator==(const Registry& other) const { return Said() == other.Said(); }

 private:
  using Values = std::map<std::string, RegData>;
  using Keys = std::map<std::string, Values>;

  void Delete(const std::string& path) {
    std::erase_if(keys_, [&](const auto& key) { return (key.first + "\\").starts_with(path + "\\"); });
  }

  /// Without the keys that are there for those below them alone.
  Keys Said() const {
    Keys said;
    for (const auto& [path, values] : keys_) {
      bool has_below = false;
      for (const auto& [other, unused] : keys_) has_below = has_below || other.starts_with(path + "\\");
      if (!values.empty() || !has_below) said[path] = values;
    }
    return said;
  }

  Keys keys_;
};

void CheckPatch(const std::string& before, const std::string& after, const Outline& one, const Outline& two) {
  Registry patched, wanted;
  patched.Import(before);
  patched.Import(RegPatch(one, two));
  wanted.Import(after);
  Promise(patched == wanted, "a patch makes one file's registry that of the other");
}

std::size_t Count(const std::vector<OutlineChange>& changes, OutlineChange::Kind kind) {
  std::size_t count = 0;
  for (const OutlineChange& change : changes) count += change.kind == kind ? 1 : 0;
  return count;
}

void Run(std::string_view input) {
  const bool is_reg = TakeByte(input) % 2 != 0;
  const std::string_view script = input.substr(0, std::size_t{3} * (TakeByte(input) % kMostEdits));
  const std::string before(input.substr(std::min(input.size(), script.size())));
  const std::string after = EditedLines(before, script);
  const auto read = [is_reg](const std::string& text) {
    return is_reg ? ReadRegOutline(text, kCoding) : ReadIniOutline(text);
  };
  const Outline one = read(before), two = read(after);
  Promise(DiffOutlines(one, read(before), OutlineOrder::Told).empty(), "a file does not differ from itself");
  const std::vector<OutlineChange> changes = DiffOutlines(one, two, OutlineOrder::Told);
  const std::vector<OutlineChange> back = DiffOutlines(two, one, OutlineOrder::Told);
  using Kind = OutlineChange::Kind;
  Promise(Count(changes, Kind::Added) == Count(back, Kind::Removed), "what came goes the other way round");
  Promise(Count(changes, Kind::Removed) == Count(back, Kind::Added), "what went comes the other way round");
  Promise(Count(changes, Kind::Changed) == Count(back, Kind::Changed), "what changed changes the other way round");
  Promise(DiffText(one, two, changes).empty() == changes.empty(), "a change has its line");
  if (!is_reg || one.Coding().version != RegVersion::Version5 || two.Coding().version != RegVersion::Version5) return;
  CheckPatch(before, after, one, two);
  CheckPatch(after, before, two, one);
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tme::fuzz::Run(tme::fuzz::AsText(data, size));
  return 0;
}
