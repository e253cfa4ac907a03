#pragma once

#include <QCoreApplication>
#include <QString>
#include <cstdint>
#include <vector>

#include "windows/rich/RtfStore.h"

namespace tme {

enum class RtfRevision : std::uint8_t { Unknown, None, Inserted, Deleted };

/// What the traces of a rich-text document say; plain text, of which what comes from the file may be anything.
class RtfTraceTexts {
  Q_DECLARE_TR_FUNCTIONS(RtfTraceTexts)

 public:
  struct Band {
    QString text;  ///< one line; empty where there is nothing to say
    QString tip;
  };
  /// Of what stands above the text on each page, borders of pages included; and below it.
  static Band Top(const rtf::RtfDocument& document);
  static Band Bottom(const rtf::RtfDocument& document);
  /// number: of a char format, plus 1.
  static RtfRevision RevisionOf(const rtf::RtfDocument& document, int number);
  static QString OfRevision(RtfRevision revision);
  /// Of comments, formulas and headers of sections among what stands unseen at a place; empty for none.
  static QString OfAttached(const RtfStore& store, const std::vector<RtfStore::Attached>& parts);

 private:
  static Band BandOf(const rtf::RtfDocument& document, std::string_view word, const QString& name);
  static QString OfObject(const rtf::RtfDocument& document, const std::string& group);
};

}  // namespace tme
