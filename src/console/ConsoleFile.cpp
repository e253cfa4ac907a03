#include "console/ConsoleFile.h"

#include <array>
#include <utility>

#include "base/LineReader.h"
#include "base/Utf8.h"
#include "console/Lookup.h"
#include "documents/compare/FileKind.h"
#include "documents/ini/IniReader.h"
#include "documents/ini/IniSourceLine.h"
#include "documents/reg/RegSourceLine.h"
#include "documents/reg/RegWholeReader.h"
#include "files/CodePage.h"
#include "files/FileBytes.h"
#include "files/StandardStreams.h"
#include "files/TextEncoder.h"

namespace tme::console {
namespace {

namespace fs = std::filesystem;

fs::path PathOrFail(const std::string& name) {
  const auto path = PathOfArgument(name);
  if (name.empty()) throw Trouble("an empty text names no file");
  if (!path) throw Trouble(name + ": no path on this system");
  return *path;
}

/// What a file begins with that is to be made.
std::string BytesOfNew(DocumentKind kind) {
  if (kind != DocumentKind::Reg) return {};
  TextFormat format{.encoding = TextEncoding::Utf16Le, .stray_byte = {}};
  return EncodeText(std::string(HeaderOf(RegVersion::Version5)) + "\r\n", format);
}

/// The first character that the encoding has no place for.
std::string_view UnheldIn(std::string_view part, const TextFormat& format) {
  while (!part.empty()) {
    std::string_view rest = part;
    if (!utf8::TakeCharacter(rest, utf8::Surrogates::Accept)) rest.remove_prefix(1);
    const std::string_view character = part.substr(0, part.size() - rest.size());
    if (!TextEncoder(format).Encode(character)) return character;
    part = rest;
  }
  return part;
}

}  // namespace

std::uint64_t LineEndsIn(std::string_view text) {
  LineReader lines(text);
  std::string_view line;
  while (lines.Next(line)) {
  }
  return lines.Number() - (text.empty() || text.ends_with('\n') || text.ends_with('\r') ? 0 : 1);
}

ConsoleFile::ConsoleFile(std::string_view name, std::optional<std::string_view> kind, Streams& streams, Holds holds,
                         std::optional<std::string_view> shown_name, Missing missing)
    : name_(name == "-" ? "standard input" : name) {
  const std::optional<DocumentKind> named = kind ? KindNamed(*kind) : KindOfName(shown_name.value_or(name));
  if (kind && !named) throw Trouble("--kind is ini, reg, rtf or txt, and not \"" + std::string(*kind) + "\"");
  std::string bytes;
  if (name == "-") {
    bytes = streams.Input();
  } else {
    path_ = PathOrFail(name_);
    is_new_ = missing == Missing::IsMade && !IsStream(*path_) && IsAbsent(*path_);
    bytes = is_new_ ? BytesOfNew(named.value_or(DocumentKind::Ini)) : ReadPath(*path_);
  }
  if (named ? named == DocumentKind::Rtf : bytes.starts_with("{\\rtf")) {
    kind_ = DocumentKind::Rtf;
    text_ = std::move(bytes);
    return;
  }
  is_ascii_ = utf8::AsciiRun(bytes) == bytes.size();
  DecodedText decoded = DecodeText(std::move(bytes));
  format_ = decoded.format;
  const DocumentKind found = named ? *named : KindOfText(decoded.text);
  const bool is_binary = !named && found == DocumentKind::Ini && decoded.text.find('\0') != std::string::npos;
  if (is_binary) Fail(0, "no text file, for it has NUL characters (--kind takes it as one)");
  kind_ = found;
  text_ = std::move(decoded.text);
  if (holds == Holds::Document) Hold(found, TakeText());
}

std::string ConsoleFile::ReadPath(const fs::path& path) {
  std::string bytes;
  const bool is_stream = IsStream(path);
  if (!is_stream) stamp_ = StampOf(path);
  if (const auto failure = is_stream ? ReadStream(path, bytes) : ReadFileBytes(path, bytes)) Fail(0, failure->reason);
  if (!is_stream && StampOf(path) != stamp_) Fail(0, "it changed while it was read; nothing was done");
  return bytes;
}

ConsoleFile::ConsoleFile(std::string_view name, DocumentKind kind, std::string text, const TextFormat& format)
    : name_(name), format_(format) {
  Hold(kind, std::move(text));
}

void ConsoleFile::Hold(DocumentKind kind, std::string text) {
  kind_ = kind;
  if (kind_ == DocumentKind::Ini) {
    ini_ = std::make_unique<IniTree>();
    ini_->Reset({}, Holding::Whole);
    ReadWholeIni(*ini_, std::move(text));
  } else if (kind_ == DocumentKind::Reg) {
    reg_ = std::make_unique<RegDocument>();
    RegWholeOptions options;
    options.unsaid = UnsaidVersion();
    ReadWholeReg(*reg_, std::move(text), options);
  } else {
    text_ = std::move(text);
  }
}

ConsoleFile::~ConsoleFile() = default;

RegVersion ConsoleFile::UnsaidVersionIn(const TextFormat& format) {
  const bool is_8_bit = format.encoding == TextEncoding::CodePage || format.encoding == TextEncoding::Utf8;
  return is_8_bit ? RegVersion::Regedit4 : RegVersion::Version5;
}

RegCoding ConsoleFile::CodingFor(RegVersion version) { return {version, CodePageToUtf8, Utf8ToCodePage}; }

std::uint64_t ConsoleFile::LineNumberOf(SourceLines::Piece piece) const {
  std::uint64_t line = 1;
  for (SourceLines::Piece at = Lines().First(); at != piece && at != SourceLines::kEnds; at = Lines().Next(at))
    line += LineEndsIn(Lines().Text(at));
  return line;
}

std::string ConsoleFile::At(std::uint64_t line) const {
  return line == 0 ? name_ + ": " : name_ + ":" + std::to_string(line) + ": ";
}

void ConsoleFile::Fail(std::uint64_t line, std::string_view why) const { throw Trouble(At(line).append(why)); }

void ConsoleFile::RequireTree() const {
  if (kind_ == DocumentKind::Ini || kind_ == DocumentKind::Reg) return;
  Fail(0, kind_ == DocumentKind::Rtf ? "a rich-text file has no keys"
                                     : "a text file has no keys (--kind ini takes it as an INI file)");
}

void ConsoleFile::RequireOneLine(const IniNode& entry) const {
  const SourceLines::Piece below = ContinuationOf(*ini_, entry);
  if (below == SourceLines::kEnds) return;
  Fail(LineNumberOf(below),
       "this line may be more of the value above, for it stands deeper; nothing was written "
       "(delete such lines first, each by its text)");
}

PartProducer ConsoleFile::Parts() const {
  if (kind_ == DocumentKind::Txt) return [this](const PartSink& sink) { return sink(text_); };
  return [this](const PartSink& sink) { return Lines().Write(sink); };
}

std::string ConsoleFile::Encoded(const PartProducer& produce) const {
  TextFormat format = format_;
  const bool may_become_utf8 = is_ascii_ && kind_ == DocumentKind::Ini && format.encoding == TextEncoding::CodePage;
  const auto fits = [&format](std::string_view part) { return TextEncoder(format).Encode(part).has_value(); };
  if (may_become_utf8 && (!IsCodePageUsual() || !produce(fits))) format.encoding = TextEncoding::Utf8;
  return EncodeOrFail(name_, format, produce);
}

void ConsoleFile::Save(const Arguments& arguments, Streams& streams) {
  const std::optional<std::string_view> output = arguments.ValueOf(kOutputOption);
  if (output || !path_) return WriteOut(output.value_or("-"), Encoded(Parts()), streams);
  const bool is_edited = kind_ == DocumentKind::Ini ? ini_->CanUndo() : reg_->CanUndo();
  if (!is_edited) return;
  if (!stamp_ && !is_new_) Fail(0, "this is no regular file; -o says where to write");
  const std::string bytes = Encoded(Parts());
  if (StampOf(*path_) != stamp_) Fail(0, "another program has changed it since it was read; nothing was written");
  WriteOut(name_, bytes, streams);
}

std::string EncodeOrFail(const std::string& name, const TextFormat& format, const PartProducer& produce) {
  std::string bytes;
  TextEncoder encoder(format);
  const std::string encoding(EncodingName(format.encoding));
  std::uint64_t line = 1;
  produce([&](std::string_view part) {
    if (const auto encoded = encoder.Encode(part)) {
      bytes += *encoded;
      line += LineEndsIn(part);
      return true;
    }
    const std::string_view unheld = UnheldIn(part, format);
    line += LineEndsIn(part.substr(0, static_cast<std::size_t>(unheld.data() - part.data())));
    throw Trouble(name + ":" + std::to_string(line) + ": " + encoding + " has no place for \"" + std::string(unheld) +
                  "\"; nothing was written");
  });
  bytes += encoder.Encode({}).value_or(std::string()) + encoder.Rest();
  const bool may_seem_other = format.encoding == TextEncoding::Utf8 && !utf8::IsValid(bytes);
  const bool seems_other = may_seem_other && DecodeText(bytes).format.encoding != format.encoding;
  if (seems_other || !encoder.ReadsBack([&bytes](const PartSink& sink) { return sink(bytes); }))
    throw Trouble(name + ": in " + encoding + " this text would be read in another encoding; nothing was written");
  return bytes;
}

OutputLock::OutputLock(std::string_view output) {
  if (output == "-") return;
  const std::string text(output);
  const fs::path path = PathOrFail(text);
  if (IsStream(path)) return;
  if (const auto failure = lock_.Take(path)) throw Trouble(text + ": " + failure->reason + "; nothing was done");
}

void WriteOut(std::string_view name, std::string_view bytes, Streams& streams) {
  if (name == "-") {
    streams.Put(bytes);
    return;
  }
  const std::string text(name);
  const fs::path path = PathOrFail(text);
  const DeferredInterrupts no_interrupts;
  if (const auto failure = IsStream(path) ? WriteStream(path, bytes) : WriteFileBytes(path, bytes)) {
    const char* const way = failure->folder_refused ? "; nothing was written (-o OUT writes another file)" : "";
    throw Trouble(text + ": " + failure->reason + way);
  }
}

}  // namespace tme::console
