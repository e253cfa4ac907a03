#pragma once

#include <QCoreApplication>
#include <QString>
#include <cstdint>

#include "documents/reg/RegData.h"

namespace tme {

struct RegValueRecord;
class RegDocument;

/// How the text of a document's values is coded, with the code page of this system.
RegCoding CodingOf(const RegDocument& document);

/// A value of a document that is held whole, as its row in a list shows it.
class RegValueText {
  Q_DECLARE_TR_FUNCTIONS(RegValueText)

 public:
  enum class Picture : std::uint8_t { Text, Number, Bytes, Deletion };

  QString name;
  QString type;
  QString data;
  Picture picture = Picture::Text;
};
/// Decodes no more than a row can show: data of over a megabyte are shown as their first bytes.
RegValueText TextOfValue(const RegValueRecord& record, const RegCoding& coding);
/// "(Default)" for the empty name.
QString NameOfValue(const RegValueRecord& record);

}  // namespace tme
