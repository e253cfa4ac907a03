#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace tme {

/// How the bytes of a text file stand for characters.
enum class TextEncoding : std::uint8_t {
  CodePage,  ///< the 8-bit code page of the system (see CodePage.h); pure ASCII counts as this
  Utf8,      ///< without byte order mark; a few bytes may be no UTF-8 (see DecodeText)
  Utf8Bom,   ///< with byte order mark
  Utf16Le,   ///< with byte order mark
  Utf16Be,   ///< with byte order mark
  Utf16LeUnmarked,
  Utf16BeUnmarked,
};
inline constexpr int kTextEncodings = 7;

/// "the 8-bit code page", "UTF-8", "UTF-8 with byte order mark", "UTF-16 LE", "UTF-16 LE without byte order mark".
std::string_view EncodingName(TextEncoding encoding);

struct TextFormat {
  TextEncoding encoding = TextEncoding::CodePage;
  /// UTF-16 only: the last byte of a file with an odd number of bytes; written back at the end.
  std::optional<char> stray_byte;
  /// What a text becomes that the 8-bit code page cannot hold: Utf8, Utf8Bom or Utf16Le.
  TextEncoding fallback = TextEncoding::Utf8;
};
/// The Unicode encoding of a file that other programs of this system must read too: on Windows UTF-16 LE, which the
/// system's profile functions read, elsewhere UTF-8.
TextEncoding SystemUnicode();

struct DecodedText {
  /// UTF-8 without byte order mark; line ends as in the file. Lone UTF-16 surrogates are kept as three bytes each, and
  /// invalid bytes of a UTF-8 file as they are, so that EncodeText gives the same bytes again.
  std::string text;
  TextFormat format;
};

/// Never fails. Bytes without a mark are
/// - UTF-16 when, read so, none of at least four units is U+0000, a lone surrogate, private or no character, and those
///   that speak for it are a third of all and more than those that speak against it. For it speaks a high byte that no
///   8-bit text has (a control other than tab and line ends), against it two printable ASCII bytes, or such a control
///   as low byte alone. Bytes without NUL are no UTF-16, so that no text of an 8-bit encoding is taken for it;
/// - UTF-8 when all of them are, or when there are at least twice as many characters beyond ASCII as places that are
///   invalid (each what a decoder shows as one U+FFFD). Of 8-bit text, single letters of Latin pages are hardly ever
///   UTF-8, pairs of East Asian ones about one in five;
/// - else text of the 8-bit code page.
/// Takes the bytes over; no copy is made when they are UTF-8 already.
DecodedText DecodeText(std::string bytes);

/// Where the bytes would not be read as this text again, another encoding instead, and `format` says so: the 8-bit code
/// page may have no byte for a character, or bytes that look like another encoding, and becomes the format's fallback;
/// UTF-16 takes only what is UTF-8, and gets a mark where it would not be recognised. UTF-8 holds any text: invalid
/// bytes pass through, but may be read as another encoding next time. Takes the text over; no copy is made when it
/// stands for itself.
std::string EncodeText(std::string text, TextFormat& format);

/// Why a file could not be read or written, in the system's words ("Permission denied").
struct FileFailure {
  std::string reason;
  /// A write got no temporary file or could not put it in place, because the folder or who holds the file does not
  /// allow it or a new file would have other rights or links, and changed nothing; WriteFileInPlace may still work.
  bool folder_refused = false;
  /// A write in place failed, and so did putting the old bytes back: the file holds neither these nor the new ones. Or
  /// the system took the old file away and could not put the new one there, which is left beside it then (Windows).
  bool file_damaged = false;
};

/// An open file as the system numbers it: a file descriptor, on Windows a HANDLE.
using FileHandle = std::intptr_t;
inline constexpr FileHandle kNoFile = -1;

/// The steps of a whole-or-nothing write, one virtual each, so that a test can fail at any of them. Each returns what
/// went wrong, as the system numbers it; no error when all is well. After a failed open the handle is kNoFile; after
/// any other failure but that of Close it is open still.
class FileSteps {
 public:
  virtual ~FileSteps() = default;
  virtual std::error_code OpenExisting(const std::filesystem::path& path, FileHandle& handle);
  /// mode: of the new file; Windows gives it what its folder hands down.
  virtual std::error_code OpenTemporary(const std::filesystem::path& path, unsigned mode, FileHandle& handle);
  /// May write fewer bytes than asked for; `written` says how many.
  virtual std::error_code Write(FileHandle handle, const char* data, std::size_t size, std::size_t& written);
  /// Cuts an existing file to what was written into it.
  virtual std::error_code Truncate(FileHandle handle, std::size_t size);
  virtual std::error_code Flush(FileHandle handle);
  virtual std::error_code Close(FileHandle handle);
  /// On Windows it is tried again for about a second, which the caller waits, while another program holds a file,
  /// and a failure may leave `to` gone; `from` is there then. Elsewhere both are as they were after a failure.
  virtual std::error_code Replace(const std::filesystem::path& from, const std::filesystem::path& to);
  virtual std::error_code FlushFolder(const std::filesystem::path& folder);
  virtual void Remove(const std::filesystem::path& path);
};

/// What tells one state of a file from another without reading it.
struct FileStamp {
  std::uint64_t size = 0;
  std::int64_t modified_ns = 0;  ///< since the system's epoch
  std::uint64_t file_id = 0;
  bool operator==(const FileStamp&) const = default;
};
/// Nothing for what is no regular file, or is not there.
std::optional<FileStamp> StampOf(const std::filesystem::path& path);
/// True only when the system says that the path leads nowhere; a look that failed says nothing.
bool IsAbsent(const std::filesystem::path& path);

/// Documents are held in memory; a larger file is refused with a reason.
inline constexpr std::uint64_t kMaxFileBytes = std::uint64_t{1} << 31;

/// Whole file into `bytes` (replaced). A directory, a pipe or a device is a failure, and so is a file over
/// kMaxFileBytes.
std::optional<FileFailure> ReadFileBytes(const std::filesystem::path& path, std::string& bytes);

/// Takes the next part of a file; false when it could not be written, and the producer should stop.
using FilePart = std::function<bool(std::string_view)>;
/// Hands over all parts of a file; false to give up, which leaves the target as it is.
using PartProducer = std::function<bool(const FilePart&)>;

/// Whole or not at all: a temporary file in the same folder with all that the target has beside its bytes (owner,
/// group, mode, access list, labels; on Windows its attributes, access list and alternate streams), written, flushed to
/// disk, put in place; symbolic links are followed, a read-only target is refused, and so is one of which a new file
/// cannot have all that. After a failure the target has its old bytes (or is absent as before)
/// and no temporary file is left.
std::optional<FileFailure> WriteFileParts(const std::filesystem::path& path, const PartProducer& produce,
                                          FileSteps& steps);
/// Over the bytes of an existing file, for a folder that allows no temporary file. After a failure the old bytes are
/// written back; a crash midway leaves a mixture, so they must be safe elsewhere.
std::optional<FileFailure> WriteFileInPlace(const std::filesystem::path& path, std::string_view bytes,
                                            std::string_view old_bytes, FileSteps& steps);
std::optional<FileFailure> WriteFileBytes(const std::filesystem::path& path, std::string_view bytes);

/// The system's file layer for files that only the user may read, whatever the system gives to new ones.
class PrivateFileSteps : public FileSteps {
 public:
  std::error_code OpenTemporary(const std::filesystem::path& path, unsigned mode, FileHandle& handle) override;
};
/// As WriteFileBytes, a file of the program's own.
std::optional<FileFailure> WritePrivateFile(const std::filesystem::path& path, std::string_view bytes);
/// Takes away what others may do with a file or folder of the program's own. Nothing on Windows, whose folders for the
/// user hand down that nobody else may. A failure changes nothing.
void MakePrivate(const std::filesystem::path& path);

/// Removes the temporary files that killed writes left in the folder, and none that a process may still write.
void RemoveLeftTemporaries(const std::filesystem::path& folder);

/// The same for text in parts of whole lines (UTF-8), in the given encoding or the one that EncodeText would take, and
/// `format` says so; the producer may run again.
std::optional<FileFailure> WriteTextFile(const std::filesystem::path& path, TextFormat& format,
                                         const PartProducer& produce);
std::optional<FileFailure> WriteTextFile(const std::filesystem::path& path, TextFormat& format,
                                         const PartProducer& produce, FileSteps& steps);

}  // namespace tme
