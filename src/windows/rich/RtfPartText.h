#pragma once

#include <QCoreApplication>
#include <QString>

#include "documents/rtf/RtfContents.h"

namespace tme {

/// What is said about the parts of a rich-text file. All of it is plain text; what comes from the file may be anything.
class RtfPartText {
  Q_DECLARE_TR_FUNCTIONS(RtfPartText)

 public:
  /// Text of a file; what would show its letters in another order is shown as its number, so that no name looks like
  /// another.
  static QString Shown(const std::string& text);
  /// Whether the text of a link looks like an address, and like another one than where the link leads.
  static bool IsOtherAddress(const QString& text, const QString& target);
  /// "Embedded object: Excel.Sheet.12"
  static QString What(const rtf::Part& part);
  /// Where it leads and what is in it; empty for nothing.
  static QString Where(const rtf::Part& part);
  /// Empty where a size says nothing.
  static QString Size(const rtf::Part& part);
  /// All of it in one line, for a tool tip.
  static QString Tip(const rtf::Part& part);
  /// The heading of all parts of a kind.
  static QString Heading(rtf::PartKind kind);
  /// What the parts of a kind are good for, in whole sentences.
  static QString Meaning(rtf::PartKind kind);

 private:
  static bool IsOtherAddress(const rtf::Part& part);
  static QString OfObject(const rtf::Part& part);
  static QString OfField(const QString& word);
  static QString NameOfGroup(const rtf::Part& part);
};

}  // namespace tme
