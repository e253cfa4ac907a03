#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "documents/rtf/RtfUnseen.h"
#include "windows/rich/RtfStore.h"

namespace tme {

/// What the traces of a rich-text document say; plain text, of which what comes from the file may be anything. Lines of
/// a tip are apart by line feeds.
class RtfTraceTexts {
  Q_DECLARE_TR_FUNCTIONS(RtfTraceTexts)

 public:
  /// The document stays as long as this.
  explicit RtfTraceTexts(const RtfStore& store);

  struct Band {
    QString text;  ///< one line; empty where there is nothing to say
    QString tip;
  };
  /// Of what stands above the text on each page, borders of pages included; and below it.
  Band Top();
  Band Bottom();
  /// How a tracked change is drawn.
  enum class Mark : std::uint8_t { None, Inserted, Deleted, Changed };
  struct Revision {
    Mark mark = Mark::None;
    QString tip;
  };
  /// number: of a char format, plus 1.
  Revision OfFormat(int number);
  /// Of comments, fields, headers and the like among groups as they came; empty for none.
  QString OfGroups(const std::string& groups);
  /// Of what the words of a section, which is no first one, say of its pages; empty for nothing.
  QString OfSection(const std::string& words);
  /// Of comments, formulas, hidden text and headers of sections among what stands unseen at a place; empty for none.
  QString OfAttached(const std::vector<RtfStore::Attached>& parts);

 private:
  /// Headers or footers of the first section, with what these draw over the page.
  QStringList OnPages(rtf::UnseenKind kind);
  static Band BandOf(const QStringList& texts);
  QString OfUnseen(const rtf::Unseen& unseen) const;
  QString OfRevision(const rtf::Revision& revision);
  static QString PagesOf(const rtf::Unseen& unseen);
  static QString ByWhom(const QString& author, const rtf::PackedTime& time);

  const RtfStore& store_;
  rtf::GroupTexts texts_;
  std::optional<std::vector<std::string>> authors_;
};

}  // namespace tme
