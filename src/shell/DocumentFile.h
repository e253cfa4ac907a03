#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>
#include <string>

#include "documents/DocumentKind.h"
#include "files/FileStamp.h"
#include "files/TextEncoding.h"
#include "files/TextFile.h"
#include "history/History.h"

namespace tme {

/// A document as a file: its name, whether it is changed, its format, and what is known of the file on the disk. Says
/// nothing to the user: what happened is in the results, and a window makes notices and messages of them.
class DocumentFile {
 public:
  /// history: of kept versions; outlives this.
  DocumentFile(DocumentKind kind, History& history) : kind_(kind), history_(history) {}

  /// Whether a file that is opened joins the recent files.
  enum class Recent : std::uint8_t { Joins, StaysOut };

  DocumentKind Kind() const { return kind_; }
  /// Full path; empty for a document without a file.
  const QString& Path() const { return state_.path; }
  /// What the caption shows: the file's name without its folder, or the name of a document without a file.
  const QString& Title() const { return state_.title; }
  ContentOrigin Origin() const { return {kind_, Path(), Title(), HeldAs()}; }
  /// How the document is held; by the rules for kinds that know no other way.
  Holding HeldAs() const { return state_.holding; }
  void Hold(Holding holding) { state_.holding = holding; }
  bool JoinsRecentFiles() const { return state_.recent == Recent::Joins; }

  /// The changed flag, which its marker and the questions follow. Not every edit sets it, and not every set flag has an
  /// edit behind it: what has to be written goes by IsModified.
  bool IsChanged() const { return state_.is_changed; }
  void SetChanged(bool changed) { state_.is_changed = changed; }

  /// How the file's text stands for characters; the default for a document without a file.
  const TextFormat& Format() const { return state_.format; }
  void SetFormat(const TextFormat& format) { state_.format = format; }

  /// No document: as constructed.
  void Clear() { state_ = {}; }
  /// A document without a file.
  void BecomeNew(const QString& title);
  /// The document of a file, which Read has still to read.
  void BecomeFileAt(const QString& path, Recent recent = Recent::Joins);
  /// A document whose content comes from elsewhere than its file, if it has one.
  void BecomeKept(const ContentOrigin& origin);
  /// The document was saved to a path, which is its file from now on.
  void MoveTo(const QString& path);
  void SetTitle(const QString& title) { state_.title = title; }
  /// The document has no file any more and keeps its title.
  void ForgetPath();

  /// Replaces `bytes` with those of the file at Path(). Until MarkUnmodified the document counts as being read. After a
  /// failure all is as it was.
  std::optional<FileFailure> Read(std::string& bytes);
  /// The content is read from elsewhere than the file, and counts as being read until MarkUnmodified or MarkModified.
  void BeginReading() { state_.is_being_read = true; }
  bool IsBeingRead() const { return state_.is_being_read; }
  /// The content of this revision is what the file holds.
  void MarkUnmodified(std::uint64_t revision);
  /// Tells one state of the file from another; as MarkUnmodified got it.
  std::uint64_t FileRevision() const { return state_.file_revision; }
  /// The content is in no file.
  void MarkModified() { MarkUnmodified(kNoRevision); }
  /// Whether the content was edited since it was read or written, given its revision now. Not before a file is wholly
  /// read, which may take a question to the user.
  bool IsModified(std::uint64_t revision) const { return !state_.is_being_read && revision != state_.file_revision; }

  /// To be called once the file is read: what the reader left out or took in another form, as a list for the middle of
  /// a sentence ("1 comment, 2 blank lines"). Empty: nothing; no text: something that needs no telling after a save.
  void SetLeftOut(const std::optional<QString>& what) { state_.left_out = what; }
  /// Whether the document holds all that its file does: the reader left nothing out, or a save made the file what the
  /// document holds. False for a content that came from elsewhere.
  bool HoldsWholeFile() const { return state_.left_out && state_.left_out->isEmpty(); }

  enum class DiskChange : std::uint8_t { None, Changed, Gone };
  /// What happened to the file on the disk after it was read or written here; each change is told once.
  DiskChange CheckDisk();

  /// Whether the file has on the disk what a write would put there; it counts as written then.
  bool IsOnDisk(const TextFormat& format, const PartProducer& produce);

  /// A file that a save is about to replace.
  struct Target {
    QString path{};
    bool is_foreign = false;  ///< it was changed after this document was read or written
    /// Why the history could not take what it holds.
    std::optional<FileFailure> not_kept{};
    bool may_be_lost = false;  ///< the user was asked about what could not be kept
  };
  /// Keeps what the file at a path holds in the history, unless it is what this document wrote there.
  Target KeepReplaced(const QString& path);
  /// Whether the file is still the one that was read and not written since: its bytes are as safe as the document.
  bool IsAsRead(const QString& path) const;

  /// What a write did, beside the target that it was given.
  struct Written {
    std::optional<FileFailure> failure{};  ///< the file is as FileFailure says; the rest holds after a success only
    bool made_anew = false;                ///< the document's own file had gone from the disk
    /// What the file that was read has and the written one has not, as SetLeftOut got it; told once.
    QString left_out{};
  };
  /// Writes the parts to a target, whole or not at all, in the given encoding (which may have to change) or, without a
  /// format, as they are. Where the folder allows no whole write, the file is written in place.
  Written Write(const Target& target, TextFormat* format, const PartProducer& produce, FileSteps& steps);
  /// What Write would write, in memory.
  static std::string BytesOf(TextFormat* format, const PartProducer& produce);

  /// A content of the document joins the history as one that reached no file. False when it could not.
  bool Keep(std::string_view content) const;

 private:
  static constexpr std::uint64_t kNoRevision = ~std::uint64_t{0};

  ContentOrigin OriginAt(const QString& path) const;
  std::optional<FileFailure> WriteInPlace(const Target& target, TextFormat* format, const PartProducer& produce,
                                          FileSteps& steps) const;

  const DocumentKind kind_;
  History& history_;
  struct State {
    QString path{};
    QString title{};
    Recent recent = Recent::Joins;
    Holding holding = Holding::ByRules;
    bool is_changed = false;
    bool is_being_read = false;
    TextFormat format{};
    /// The document's revision when the file was last read or written.
    std::uint64_t file_revision = 0;
    std::optional<QString> left_out{};
    /// Of the file when it was last read or written here; nothing for none.
    std::optional<FileStamp> stamp{};
    /// Of the bytes that this document last wrote to its file; empty before it did. They need not be kept before the
    /// next save.
    QByteArray own_digest{};
    /// The state of the disk that CheckDisk told of; the inner one is empty for a file that is gone.
    std::optional<std::optional<FileStamp>> told_stamp{};
  };
  State state_{};
};

}  // namespace tme
