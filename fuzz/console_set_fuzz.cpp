// Input: a byte for the kind and the type, a line each for section, key and value, and the bytes of a file.
#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "Fuzz.h"
#include "base/LineReader.h"
#include "console/Commands.h"
#include "files/TextEncoding.h"

namespace tme::fuzz {
namespace {

class Texts : public console::Streams {
 public:
  explicit Texts(std::string input) : input_(std::move(input)) {}
  std::string output;
  std::string errors;

 protected:
  std::optional<FileFailure> ReadInput(std::string& bytes) override {
    bytes = input_;
    return std::nullopt;
  }
  std::optional<FileFailure> WriteOutput(std::string_view text) override {
    output += text;
    return std::nullopt;
  }
  void WriteError(std::string_view text) override { errors += text; }
  bool ErrorIsTerminal() const override { return false; }

 private:
  const std::string input_;
};

struct Run {
  console::Result result;
  std::string output;
};

Run RunOn(const std::string& file, const std::vector<std::string_view>& arguments) {
  Texts streams(file);
  const console::Result result = console::RunConsole(arguments, streams);
  Promise((result == console::Result::Trouble) == !streams.errors.empty(), "trouble is said");
  return {result, streams.output};
}

std::vector<std::string> LinesOf(const std::string& bytes) {
  const std::string text = DecodeText(bytes).text;
  LineReader reader(text);
  std::vector<std::string> lines;
  for (std::string_view line; reader.Next(line);) lines.emplace_back(line);
  return lines;
}

/// At most so many lines of the first text have others in their place.
void PromiseChanged(const std::string& before, const std::string& after, std::ptrdiff_t most, std::ptrdiff_t most_new) {
  const auto old = LinesOf(before), now = LinesOf(after);
  const auto [first, same] = std::mismatch(old.begin(), old.end(), now.begin(), now.end());
  const auto room = std::min(old.end() - first, now.end() - same);
  const auto last = std::mismatch(old.rbegin(), old.rbegin() + room, now.rbegin(), now.rbegin() + room);
  Promise(last.first.base() - first <= most, "no other line goes or changes");
  Promise(last.second.base() - same <= most_new, "no other line comes");
}

std::string TakeLine(std::string_view& input) {
  const std::string_view line = input.substr(0, std::min(input.find('\n'), input.size()));
  input.remove_prefix(std::min(line.size() + 1, input.size()));
  std::string text(line);
  std::erase(text, '\0');  // no argument has one
  return text;
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tme::fuzz;
  using tme::console::Result;
  constexpr std::array<std::string_view, 8> kTypes{"", "sz", "expand", "multi", "dword", "qword", "binary", "none"};
  constexpr std::ptrdiff_t kLinesOfSection = 3;  // a blank one, the header, the entry
  std::string_view input = AsText(data, size);
  const std::uint8_t choice = TakeByte(input);
  const bool is_ini = choice % 2 == 0;
  const std::string_view kind = is_ini ? "--kind=ini" : "--kind=reg", type = kTypes[choice / 2 % kTypes.size()];
  const std::string section = TakeLine(input), key = TakeLine(input), value = TakeLine(input), file(input);

  std::vector<std::string_view> set{"set", kind};
  if (!is_ini && !type.empty()) set.insert(set.end(), {"--type", type});
  set.insert(set.end(), {"--", "-", section, key, value});
  const Run changed = RunOn(file, set);
  Promise(changed.result != Result::Other, "set is done or refused");
  if (changed.result == Result::Trouble) {
    Promise(changed.output.empty(), "what is refused writes nothing");
    return 0;
  }
  if (is_ini) PromiseChanged(file, changed.output, 1, kLinesOfSection);
  const Run got = RunOn(changed.output, {"get", kind, "--", "-", section, key});
  Promise(got.result == Result::Done, "what was set is there");
  if (is_ini) Promise(got.output == value + "\n", "and is read as it was given");
  const std::string again = got.output.substr(0, got.output.size() - 1);
  set.back() = again;
  Promise(RunOn(changed.output, set).output == changed.output, "to set what is there changes nothing");
  const Run gone = RunOn(changed.output, {"delete", kind, "--", "-", section, key});
  if (gone.result == Result::Trouble) return 0;  // the bytes that are left would be read in another encoding
  Promise(gone.result == Result::Done, "what is there can be deleted");
  Promise(RunOn(gone.output, {"get", kind, "--", "-", section, key}).result == Result::Other, "and is gone then");
  return 0;
}
