#include "shell/FolderListing.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QLocale>
#include <QStorageInfo>
#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace tme {
namespace {

// Columns, in characters.
constexpr int kSizeColumn = 17;
constexpr int kCountColumn = 16;
constexpr int kTotalColumn = 14;

struct ListedEntry {
  QString name;
  QString order;  ///< the name without letter case
  QDateTime changed;
  qint64 bytes = 0;
  bool is_folder = false;
};

QString Number(qint64 number) {
  QLocale locale(QLocale::English, QLocale::UnitedStates);
  locale.setNumberOptions(QLocale::DefaultNumberOptions);
  return locale.toString(number);
}

QString Line(const ListedEntry& entry) {
  const QString time = entry.changed.isValid() ? entry.changed.toString(u"yyyy-MM-dd  HH:mm"_s) : QString(17, u' ');
  const QString size =
      entry.is_folder ? u"    <DIR>"_s.leftJustified(kSizeColumn) : Number(entry.bytes).rightJustified(kSizeColumn);
  // A name may hold a line break; the list has a line for each name.
  return time + size + u' ' + QString(entry.name).replace(u'\n', QChar(0x240A)) + u'\n';
}

bool ReadEntries(const QString& folder, FolderListingWatch& watch, std::vector<ListedEntry>& entries) {
  QDir::Filters filters = QDir::AllEntries | QDir::Hidden | QDir::System;
  if (QDir(folder).isRoot()) filters |= QDir::NoDotAndDotDot;
  for (QDirIterator files(folder, filters); files.hasNext(); ++watch.entries) {
    if (watch.cancelled) return false;
    files.next();
    const QFileInfo file = files.fileInfo();
    const bool is_folder = file.isDir();
    entries.push_back({file.fileName(), {}, file.lastModified(), is_folder ? 0 : file.size(), is_folder});
    entries.back().order = entries.back().name.toCaseFolded();
  }
  return true;
}

}  // namespace

// The form of the listing is that of other systems' and untranslated.
QString ListFolder(const QString& folder, FolderListingWatch& watch) {
  std::vector<ListedEntry> entries;
  if (!ReadEntries(folder, watch, entries)) return {};
  std::sort(entries.begin(), entries.end(), [](const ListedEntry& a, const ListedEntry& b) {
    return a.order != b.order ? a.order < b.order : a.name < b.name;
  });
  qint64 files = 0, bytes = 0;
  QString listing = u" Directory of "_s + QDir::toNativeSeparators(folder) + u"\n\n"_s;
  for (const ListedEntry& entry : entries) {
    if (watch.cancelled) return {};
    listing += Line(entry);
    if (entry.is_folder) continue;
    ++files;
    bytes += entry.bytes;
  }
  const qint64 folders = static_cast<qint64>(entries.size()) - files;
  listing += Number(files).rightJustified(kCountColumn) + u" File(s) "_s + Number(bytes).rightJustified(kTotalColumn) +
             u" bytes\n"_s;
  listing += Number(folders).rightJustified(kCountColumn) + u" Dir(s)  "_s +
             Number(QStorageInfo(folder).bytesAvailable()).rightJustified(kTotalColumn) + u" bytes free\n"_s;
  return listing;
}

}  // namespace tme
