#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QLockFile>
#include <QSet>
#include <QString>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "documents/DocumentKind.h"
#include "files/TextFile.h"

namespace tme {

/// Why a version was kept.
enum class KeptReason : std::uint8_t {
  BeforeSave,     ///< the file's bytes before a save put others in their place
  NotSaved,       ///< a document that was closed without its changes reaching a file
  BeforeRestore,  ///< what stood there before an older version was put back
  Rescued,        ///< unsaved content that a crash left and that no window had room for
};
/// For people: "Before a save".
QString ReasonText(KeptReason reason);

/// What a content belongs to.
struct ContentOrigin {
  DocumentKind kind = DocumentKind::Txt;
  QString path;   ///< empty for a document that never had a file
  QString title;  ///< the caption of such a document; else the file's name
};

/// A content of the store and what names it: a version, or unsaved content of an open document that was put aside so
/// that a crash does not take it (whose reason says nothing).
struct KeptVersion {
  QString id;  ///< name in the store; later ones sort after earlier ones
  QDateTime time;
  KeptReason reason = KeptReason::BeforeSave;
  ContentOrigin origin;
  QByteArray digest;  ///< of the content, in hex
  qint64 bytes = 0;
};

/// The one place for the limits of the store. Newer versions have the first claim on the room that there is; content
/// that is put aside never goes.
struct HistoryLimits {
  int versions_per_file = 40;
  int days = 90;  ///< between a version of a file and its newest one; the newest five never go for their age
  qint64 total_bytes = qint64{1} << 30;
};

/// Kept versions of files and unsaved content of documents, in a folder that only the user can read: `blobs/` holds
/// each content once, under its digest; `versions/` and `aside/` hold one small file for each thing that names a
/// content. A content is on the disk before what names it, so a crash leaves at most a content that nothing names,
/// which a later Prune takes away. Nothing is created before there is something to keep. Any thread may call, and none
/// waits for a content that another one writes (but for two that are put aside).
class History {
 public:
  /// limits: for tests.
  explicit History(QString folder, HistoryLimits limits = {});

  /// Keeps a content. One that equals the newest version of the same origin makes no second version, and no failure.
  std::optional<FileFailure> Keep(const ContentOrigin& origin, KeptReason reason, std::string_view content,
                                  const QDateTime& time = QDateTime::currentDateTimeUtc());
  /// Keeps what the origin's file holds, before something else is written there; no file is no failure.
  std::optional<FileFailure> KeepFile(const ContentOrigin& origin, KeptReason reason = KeptReason::BeforeSave);
  /// What becomes of a write whose old bytes the history cannot take.
  enum class Unkept : std::uint8_t {
    Refused,
    Accepted,  ///< the user was asked
  };
  /// Writes over the bytes of the origin's file, for a folder that takes no new file. They join the history first.
  std::optional<FileFailure> Overwrite(const ContentOrigin& origin, std::string_view bytes, FileSteps& steps,
                                       Unkept unkept = Unkept::Refused);
  /// Keeps what the origin's file holds and puts these bytes there: whole or not at all, or by Overwrite.
  std::optional<FileFailure> ReplaceFile(const ContentOrigin& origin, std::string_view bytes);
  /// Newest first. path: of this file only.
  QList<KeptVersion> Versions(const std::optional<QString>& path = {}) const;
  /// The content that a digest names; nothing when it is gone or was damaged on the disk.
  std::optional<std::string> Content(const QByteArray& digest) const;

  static constexpr auto kDigest = QCryptographicHash::Blake2b_256;
  /// In hex.
  static QByteArray DigestOf(std::string_view content);

  /// Puts content aside under an id (NewId); replaces what had that id, whose content goes when nothing else of this
  /// process has it. Forgotten before it was done, or before it began, it did not happen.
  std::optional<FileFailure> PutAside(const QString& id, const ContentOrigin& origin, std::string_view content,
                                      const QDateTime& time = QDateTime::currentDateTimeUtc());
  /// For good, whatever another thread is about to put aside under the id.
  void ForgetAside(const QString& id);
  /// Oldest first.
  QList<KeptVersion> Aside() const;
  static QString NewId();
  /// What is aside under the id is about to be opened again. Returns at how many starts, up to the last one, the
  /// program ended over it.
  int BeginReopening(const QString& id);
  /// All is open.
  void EndReopening();

  /// Makes the store this process's own for as long as it lives. False while another process has it, one that is still
  /// asking its last questions: what is put aside is its business then, and nothing is removed. True when there is no
  /// store yet.
  bool Claim();
  /// Removes what is over the limits, contents that nothing names and what a crash left half written; of the last two,
  /// what is younger than an hour stays, since it may still be on its way. Only in a store that is claimed.
  void Prune(const QDateTime& now = QDateTime::currentDateTimeUtc());

  const QString& Folder() const { return folder_; }

 private:
  std::optional<FileFailure> Store(std::string_view content, const QByteArray& digest);
  /// As young as a new one, lest Prune take it before it is named. False when it is not there.
  bool MakeYoung(const QString& path);
  QString BlobPath(const QByteArray& digest) const;
  QString AsidePath(const QString& id) const;
  /// Sorts after every version in the store, even when the clock was put back.
  QString NextVersionId(const ContentOrigin& origin);
  /// Of a content that no snapshot names any more. mutex_ is held.
  void DropUnlessKept(const QByteArray& digest) const;
  void RemoveUnnamed(const QSet<QByteArray>& named, const QDateTime& settled);

  const QString folder_;
  const HistoryLimits limits_;
  /// Over the whole of a PutAside; taken before mutex_.
  std::mutex aside_mutex_;
  /// Over what follows and each removal of a content; never while one is written.
  std::mutex mutex_;
  QLockFile claim_;
  /// The contents that Keep was given.
  QSet<QByteArray> kept_;
  /// By id, the content that was written for this snapshot and that no other one names.
  QHash<QString, QByteArray> sole_;
  /// What the last start was opening again when it ended, and at how many starts it did.
  struct Reopening {
    QString id;
    int attempts = 0;
  };
  std::optional<Reopening> ended_over_;
  /// Every id that was: a snapshot's thread may not have begun when its document is saved.
  QSet<QString> forgotten_;
  qint64 last_version_ms_ = 0;
};

}  // namespace tme
