#include <algorithm>
#include <array>
#include <memory>
#include <string>

#include "base/Utf8.h"
#include "console/Commands.h"
#include "console/ConsoleFile.h"
#include "console/JsonDocument.h"
#include "console/RegScript.h"
#include "console/Values.h"
#include "documents/reg/RegConversion.h"

namespace tme::console {
namespace {

constexpr Option kToOption{"to", '\0', "regedit4|5.00|json|reg-add|powershell|utf-8|utf-16|crlf|lf", "the other form"};
constexpr Option kFromOption{"from", '\0', "json", "FILE is JSON that --to json wrote"};

using FilePointer = std::unique_ptr<ConsoleFile>;

std::string TextOfFile(const ConsoleFile& file) {
  std::string text;
  file.Parts()([&text](std::string_view part) {
    text.append(part);
    return true;
  });
  return text;
}

FilePointer WithoutPairsIn(FilePointer file) {
  if (file->Reg().Version() != RegVersion::Regedit) return file;
  return std::make_unique<ConsoleFile>(file->Name(), DocumentKind::Reg, WithoutPairs(file->Reg()), file->Format());
}

std::string InVersion(FilePointer file, RegVersion version, Streams& streams) {
  file = WithoutPairsIn(std::move(file));
  const RegCoding coding = file->Coding();
  const auto unsayable = UnsayableIn(file->Reg(), version, coding);
  for (const RegUnsayable& each : unsayable)
    streams.Complain(file->At(each.line) + "value \"" + each.name + "\": " + std::string(WhyNot(each.fault)));
  if (!unsayable.empty())
    file->Fail(0, std::to_string(unsayable.size()) + " values have no form in that version; nothing was written");
  file->Reg().ConvertTo(version, coding);
  TextFormat format;
  format.encoding = version == RegVersion::Version5 ? TextEncoding::Utf16Le : TextEncoding::CodePage;
  return EncodeOrFail(file->Name(), format, file->Parts());
}

/// In UTF-8 any bytes pass, so those that are no text are looked for.
std::string InEncoding(const ConsoleFile& file, TextEncoding encoding) {
  std::uint64_t line = 1;
  file.Parts()([&](std::string_view part) {
    while (!part.empty() && !utf8::IsValid(part)) {
      const std::string_view one = part.substr(0, std::min(part.find('\n'), part.size() - 1) + 1);
      if (!utf8::IsValid(one)) file.Fail(line, "bytes that are no text have no place there; nothing was written");
      line += LineEndsIn(one);
      part.remove_prefix(one.size());
    }
    line += LineEndsIn(part);
    return true;
  });
  if (file.Format().stray_byte) file.Fail(0, "half a character at the end has no place there; nothing was written");
  TextFormat format;
  format.encoding = encoding;
  return EncodeOrFail(file.Name(), format, file.Parts());
}

std::string WithEnds(const ConsoleFile& file, std::string_view end) {
  const std::string text = LinesEndedBy(TextOfFile(file), end);
  return EncodeOrFail(file.Name(), file.Format(), [&text](const PartSink& sink) { return sink(text); });
}

void RequireReg(const ConsoleFile& file) {
  if (file.Kind() != DocumentKind::Reg) file.Fail(0, "only a registry file can become that");
}

std::string Converted(FilePointer file, std::string_view form, Streams& streams) {
  if (form == "utf-8") return InEncoding(*file, TextEncoding::Utf8);
  if (form == "utf-16") return InEncoding(*file, TextEncoding::Utf16Le);
  if (form == "crlf") return WithEnds(*file, "\r\n");
  if (form == "lf") return WithEnds(*file, "\n");
  const bool is_script = form == "reg-add" || form == "powershell";
  if (form != "regedit4" && form != "5.00" && !is_script)
    throw Trouble("--to is " + std::string(kToOption.value) + ", and not \"" + std::string(form) + "\"");
  RequireReg(*file);
  if (!is_script)
    return InVersion(std::move(file), form == "5.00" ? RegVersion::Version5 : RegVersion::Regedit4, streams);
  file = WithoutPairsIn(std::move(file));
  return ScriptOf(*file, form == "reg-add" ? Shell::Cmd : Shell::PowerShell, streams);
}

FilePointer Open(const Arguments& arguments, Streams& streams) {
  const auto from = arguments.ValueOf(kFromOption);
  if (from && *from != "json") throw Trouble("--from is json, and not \"" + std::string(*from) + "\"");
  auto file =
      std::make_unique<ConsoleFile>(arguments.Operand(0), from ? "txt" : arguments.ValueOf(kKindOption), streams);
  return from ? ReadJsonDocument(file->Name(), file->Text()) : std::move(file);
}

/// Gathers the JSON of a file.
class TextStreams : public Streams {
 public:
  std::string TakeText() {
    Flush();
    return std::move(text_);
  }

 protected:
  std::optional<FileFailure> ReadInput(std::string& /*bytes*/) override { return std::nullopt; }
  std::optional<FileFailure> WriteOutput(std::string_view text) override {
    text_ += text;
    return std::nullopt;
  }
  void WriteError(std::string_view /*text*/) override {}
  bool ErrorIsTerminal() const override { return false; }

 private:
  std::string text_;
};

Result Convert(const Arguments& arguments, Streams& streams) {
  const auto form = arguments.ValueOf(kToOption);
  const bool is_from_json = arguments.Has(kFromOption);
  if (!form && !is_from_json) throw Trouble("convert: --to FORM is missing (see tmec convert --help)");
  if (arguments.TimesOf(kToOption) > 1) throw Trouble("convert: one --to at a time");
  const std::string_view output = arguments.ValueOf(kOutputOption).value_or("-");
  const OutputLock lock(output);
  FilePointer file = Open(arguments, streams);
  if (file->Kind() == DocumentKind::Rtf) file->Fail(0, "rich text has no other form here");
  if (!form) {
    WriteOut(output, EncodeOrFail(file->Name(), file->Format(), file->Parts()), streams);
  } else if (*form == "json") {
    file->RequireTree();
    TextStreams json;
    WriteJsonDocument(*file, json);
    WriteOut(output, json.TakeText(), streams);
  } else {
    WriteOut(output, Converted(std::move(file), *form, streams), streams);
  }
  return Result::Done;
}

constexpr std::array kConvertOptions{kKindOption, kToOption, kFromOption, kOutputOption};

}  // namespace

constinit const Command kConvertCommand{
    "convert",
    "FILE",
    1,
    1,
    kConvertOptions,
    "write the file in another form",
    "To standard output, or to OUT, which may be FILE. What cannot be said in the other form is an error that names "
    "the\n"
    "line, and nothing is written.\n"
    "  regedit4, 5.00      registry files: the version, with the encoding that belongs to it\n"
    "  reg-add             registry files: a batch file for cmd\n"
    "  powershell          registry files: a script for PowerShell\n"
    "  json                all that the file holds; --from json makes the same bytes again\n"
    "  utf-8, utf-16       the encoding, UTF-16 LE with a byte order mark, UTF-8 without one\n"
    "  crlf, lf            the line ends\n",
    &Convert};

}  // namespace tme::console
