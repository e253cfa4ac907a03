#pragma once

#include <QStringList>

namespace tme {

/// The extensions of one "File Filter": "*.TXT;*.INF" as the entries "TXT" and "INF".
class FilterList {
 public:
  /// Replaces all entries; each piece loses its leading "*.".
  void Load(const QString& filter);
  /// Empty for an empty list, which is the default filter at the next start.
  QString Save() const;

  /// The entry that stands for the extension now: the new one at the end, or the one that was there already, in
  /// whatever letter case. -1 when the extension is empty.
  qsizetype Add(const QString& extension);
  /// Nothing happens for an index that is no entry.
  void Remove(qsizetype index);
  const QStringList& Extensions() const { return extensions_; }

 private:
  QStringList extensions_;
};

enum class ExtensionFault : std::uint8_t { None, Empty, TooLong, IllegalCharacter };

/// Whether a typed extension can be added.
ExtensionFault CheckExtension(const QString& extension);
/// What the user is told of a fault, line breaks in place; empty without one.
QString ExtensionFaultText(ExtensionFault fault, const QString& extension);

}  // namespace tme
