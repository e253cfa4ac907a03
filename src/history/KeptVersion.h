#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include "documents/DocumentKind.h"
#include "documents/Holding.h"

namespace tme {

/// Why a version was kept.
enum class KeptReason : std::uint8_t {
  BeforeSave,     ///< the file's bytes before a save put others in their place
  NotSaved,       ///< a document that was closed without its changes reaching a file
  BeforeRestore,  ///< what stood there before an older version was put back
  Rescued,        ///< unsaved content that a crash left and that no window had room for
};

/// What a content belongs to.
struct ContentOrigin {
  DocumentKind kind = DocumentKind::Txt;
  QString path;   ///< empty for a document that never had a file
  QString title;  ///< the caption of such a document; else the file's name
  /// How the document held it, and is to hold it again.
  Holding holding = Holding::ByRules;
};

/// Two contents of equal origin are versions of one thing.
inline bool SameOrigin(const ContentOrigin& a, const ContentOrigin& b) {
  return a.kind == b.kind && a.path == b.path && (!a.path.isEmpty() || a.title == b.title);
}
/// Path of the file, or a text that is no path and holds the title; kinds that share a path share it.
inline QString OriginKey(const ContentOrigin& origin) {
  return origin.path.isEmpty() ? u'\n' + origin.title : origin.path;  // no path begins with a line break
}

/// A content of the store and what names it: a version, or a recovery snapshot of an open document (whose reason says
/// nothing).
struct KeptVersion {
  QString id;  ///< name in the store; later ones sort after earlier ones
  QDateTime time;
  KeptReason reason = KeptReason::BeforeSave;
  ContentOrigin origin;
  QByteArray digest;  ///< of the content, in hex
  qint64 bytes = 0;
};

}  // namespace tme
