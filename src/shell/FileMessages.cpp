#include "shell/FileMessages.h"

#include "files/FileStamp.h"
#include "files/TextEncoding.h"
#include "system/FilePath.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

QString ReasonOf(const FileFailure& failure) { return QString::fromStdString(failure.reason); }

QString NameOf(TextEncoding encoding) { return QString::fromUtf8(EncodingName(encoding)); }

}  // namespace

QString FileMessages::ReadFailed(const QString& path, const FileFailure& failure) {
  return tr("TME could not open the file") + u"\r( "_s + path + u" )\r"_s + ReasonOf(failure) + u'.';
}

QString FileMessages::WriteFailed(const QString& path, const FileFailure& failure) {
  return tr("TME could not save the file") + u"\r( "_s + path + u" )\r"_s + ReasonOf(failure) + u".  "_s +
         WhatIsSafe(path, failure);
}

QString FileMessages::WhatIsSafe(const QString& path, const FileFailure& failure) {
  if (failure.file_damaged)
    return tr("The file on disk is incomplete now; Tools, File History has what it held before.");
  return StampOf(FilePath(path)) ? tr("The file on disk is unchanged.") : tr("Nothing was written.");
}

QString FileMessages::NotKept(const FileFailure& failure) {
  return tr("What the file holds now could not be kept in the history: %1.").arg(ReasonOf(failure));
}

QString FileMessages::OfDiskChange(DocumentFile::DiskChange change) {
  switch (change) {
    case DocumentFile::DiskChange::Changed:
      return tr(
          "The file was changed on the disk after it was opened here. A save replaces that content; Tools, File "
          "History keeps it.");
    case DocumentFile::DiskChange::Gone:
      return tr("The file is no longer on the disk. A save makes it anew.");
    case DocumentFile::DiskChange::None:
      break;
  }
  return {};
}

std::vector<FileMessages::Notice> FileMessages::OfWrite(const DocumentFile& file, const DocumentFile::Target& target,
                                                        const DocumentFile::Written& written) {
  std::vector<Notice> notices;
  if (!written.left_out.isEmpty()) {
    const QString said = tr("The save left out, or wrote in another form: %1.").arg(written.left_out);
    if (target.path != file.Path())
      notices.push_back(
          {tr("Not in this file, or in another form: %1. %2 has it as it was.").arg(written.left_out, file.Title())});
    else if (target.not_kept)
      notices.push_back({said});
    else
      notices.push_back({said + u' ' + tr("File History has the file as it was."), NoticeLife::Document, true});
  }
  if (written.made_anew) notices.push_back({tr("The file was no longer on the disk; the save made it anew.")});
  if (target.is_foreign && !target.not_kept)
    notices.push_back({tr("The file had been changed on the disk; that content is kept in Tools, File History.")});
  if (target.not_kept)
    notices.push_back(
        {tr("What the file held before could not be kept in the history: %1.").arg(ReasonOf(*target.not_kept))});
  return notices;
}

QString FileMessages::OfEncoding(TextEncoding before, TextEncoding after) {
  if (before == after) return {};
  if (before != TextEncoding::CodePage)
    return tr("The file is now written as %1, since %2 would not be read as the same text.")
        .arg(NameOf(after), NameOf(before));
  return tr("The file is now written as %1, because %2 has no place for some of its characters.")
      .arg(NameOf(after), NameOf(before));
}

}  // namespace tme
