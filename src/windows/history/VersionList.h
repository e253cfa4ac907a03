#pragma once

#include <QTreeWidget>

#include "history/KeptVersion.h"

namespace tme {

/// Path of the file; the title of a document that has none.
QString ShownName(const ContentOrigin& origin);
/// Short, and to the second: versions may be kept in quick succession.
QString ShownTime(const QDateTime& time);

/// Kept versions with time, reason, file and size, sorted by any of them.
class VersionList : public QTreeWidget {
  Q_OBJECT

 public:
  enum class Of : std::uint8_t { OneFile, AllFiles };

  explicit VersionList(QWidget* parent = nullptr);

  /// Replaces what is listed, without a signal. versions: newest first. The version of that id becomes the current one,
  /// else the one on top.
  void List(QList<KeptVersion> versions, Of of, const QString& current_id);
  /// Null when the list is empty.
  const KeptVersion* Current() const;

 private:
  void AddRow(int index);
  void FitColumns(Of of);

  QList<KeptVersion> versions_;
};

}  // namespace tme
