#pragma once

#include <QString>
#include <QStringView>
#include <string_view>

namespace tme {

/// The string table of the options, 101 to 118; "#" stands for a line break (see ShellUtilities::FormatHelpText).
/// Spelling and doubled blanks belong to the texts. Empty for any other identifier.
QString HelpText(int id);

/// What the context help of a control says.
struct HelpTopic {
  std::string_view control;
  const char* title;  ///< untranslated
  int text_id;

  QString Title() const;
};

/// Null for a control that has no topic of its own.
const HelpTopic* FindHelpTopic(QStringView control);

}  // namespace tme
