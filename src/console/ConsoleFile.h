#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/Parts.h"
#include "console/Arguments.h"
#include "console/Streams.h"
#include "documents/DocumentKind.h"
#include "documents/SourceLines.h"
#include "documents/ini/IniTree.h"
#include "documents/reg/RegDocument.h"
#include "files/EditLock.h"
#include "files/FileStamp.h"
#include "files/TextEncoding.h"

namespace tme::console {

/// A file as a command reads it: its bytes, or an INI or registry document that holds all of them (Holding::Whole).
class ConsoleFile {
 public:
  enum class Holds : std::uint8_t {
    Document,
    Text,  ///< of an INI or registry file the text alone
  };

  /// What becomes of a missing file.
  enum class Missing : std::uint8_t {
    IsTrouble,
    IsMade,  ///< with Save: an INI file, or a registry file of version 5.00
  };

  /// name: a path, or "-" for standard input. kind: what --kind says; else the name's ending decides (ini, inf, reg,
  /// rtf, txt), and where it is none of these the content: what is neither registry nor rich-text file is an INI file.
  /// shown_name: whose ending decides, for a file that stands for another one. Throws Trouble.
  ConsoleFile(std::string_view name, std::optional<std::string_view> kind, Streams& streams,
              Holds holds = Holds::Document, std::optional<std::string_view> shown_name = {},
              Missing missing = Missing::IsTrouble);
  /// A document that was made of another file. name: of that.
  ConsoleFile(std::string_view name, DocumentKind kind, std::string text, const TextFormat& format);
  ~ConsoleFile();

  /// As messages have it: the path, or "standard input".
  const std::string& Name() const { return name_; }
  DocumentKind Kind() const { return kind_; }
  const TextFormat& Format() const { return format_; }
  /// Of this kind alone.
  IniTree& Ini() { return *ini_; }
  const IniTree& Ini() const { return *ini_; }
  RegDocument& Reg() { return *reg_; }
  const RegDocument& Reg() const { return *reg_; }
  RegCoding Coding() const { return CodingFor(reg_->Version()); }
  static RegCoding CodingFor(RegVersion version);
  /// What a registry file is that says no version.
  RegVersion UnsaidVersion() const { return UnsaidVersionIn(format_); }
  static RegVersion UnsaidVersionIn(const TextFormat& format);
  /// Txt and Rtf: the text, and the bytes. Of others where they are held so.
  const std::string& Text() const { return text_; }
  const std::string& Bytes() const { return text_; }
  std::string TakeText() { return std::move(text_); }
  /// Ini and Reg.
  const SourceLines& Lines() const { return kind_ == DocumentKind::Ini ? ini_->Lines() : reg_->Lines(); }
  /// The lines of any kind but Rtf, in parts of whole lines.
  PartProducer Parts() const;
  /// A text in the encoding of the file. An INI file of ASCII alone may become UTF-8, which is usual
  /// but on Windows. Throws Trouble.
  std::string Encoded(const PartProducer& produce) const;
  /// Of the first line of a piece, from 1. Linear.
  std::uint64_t LineNumberOf(SourceLines::Piece piece) const;
  /// "NAME:LINE: ", or "NAME: " for 0.
  std::string At(std::uint64_t line) const;
  [[noreturn]] void Fail(std::uint64_t line, std::string_view why) const;
  /// Throws Trouble unless it is an INI or registry file.
  void RequireTree() const;

  /// Throws Trouble where lines below an entry may be more of its value: those would be left to what stands above then.
  void RequireOneLine(const IniNode& entry) const;

  /// Puts the document where --output says, else into the file, whole or not at all, in the encoding that it had. A
  /// file whose document was not edited is left alone; so is one that has changed since it was read, which is Trouble.
  /// Throws Trouble.
  void Save(const Arguments& arguments, Streams& streams);

 private:
  void Hold(DocumentKind kind, std::string text);
  std::string ReadPath(const std::filesystem::path& path);

  std::string name_;
  std::optional<std::filesystem::path> path_;
  std::optional<FileStamp> stamp_;
  /// It is missing so far.
  bool is_new_ = false;
  DocumentKind kind_ = DocumentKind::Ini;
  TextFormat format_;
  bool is_ascii_ = false;
  std::string text_;
  std::unique_ptr<IniTree> ini_;
  std::unique_ptr<RegDocument> reg_;
};

/// The lock of the file that a command writes, for as long as this lives: taken before any is read. One that waits for
/// half a minute in vain is Trouble; standard output, pipes and devices have none.
class OutputLock {
 public:
  explicit OutputLock(std::string_view output);
  /// The file that --output names, else the other one.
  OutputLock(const Arguments& arguments, std::string_view otherwise)
      : OutputLock(arguments.ValueOf(kOutputOption).value_or(otherwise)) {}

 private:
  EditLock lock_;
};

/// How many lines of a text are ended. Linear.
std::uint64_t LineEndsIn(std::string_view text);

/// Encodes a text in parts. Throws Trouble, as "NAME:LINE: …", for a character that the encoding has no place for, and
/// where the bytes would be read in another one.
std::string EncodeOrFail(const std::string& name, const TextFormat& format, const PartProducer& produce);

/// Writes bytes to a path, or standard output for "-", whole or not at all, but for pipes and devices. Throws Trouble.
void WriteOut(std::string_view name, std::string_view bytes, Streams& streams);

}  // namespace tme::console
