#pragma once

#include <QCoreApplication>
#include <QString>
#include <vector>

#include "shell/DocumentFile.h"
#include "shell/NoticeBar.h"

namespace tme {

/// What DocumentFile tells, in the user's words: the one place of these sentences.
class FileMessages {
  Q_DECLARE_TR_FUNCTIONS(FileMessages)

 public:
  /// Messages about a file that could not be read or written.
  static QString ReadFailed(const QString& path, const FileFailure& failure);
  static QString WriteFailed(const QString& path, const FileFailure& failure);
  /// The end of each message about a failed write.
  static QString WhatIsSafe(const QString& path, const FileFailure& failure);
  /// Why the history could not take what a file holds.
  static QString NotKept(const FileFailure& failure);
  /// Empty for no change.
  static QString OfDiskChange(DocumentFile::DiskChange change);

  struct Notice {
    QString text;
    NoticeLife life = NoticeLife::UntilSave;
    bool leads_to_history = false;  ///< it has a button that opens File History
  };
  /// What a write has to say; file: as it was when it was written, not yet moved to the target.
  static std::vector<Notice> OfWrite(const DocumentFile& file, const DocumentFile::Target& target,
                                     const DocumentFile::Written& written);
  /// Empty when a save kept the encoding.
  static QString OfEncoding(TextEncoding before, TextEncoding after);
};

}  // namespace tme
