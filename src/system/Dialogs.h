#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>

namespace tme {

enum class MsgButtons : std::uint8_t { Ok, YesNo, YesNoCancel, OkCancel, TryAgainCancel };
/// Program: the program's own icon.
enum class MsgIcon : std::uint8_t { None, Information, Question, Warning, Program };
enum class MsgAnswer : std::uint8_t { Ok, Yes, No, Cancel, TryAgain };

/// Modal questions to the user. Virtual, so that a test can answer instead.
class Dialogs {
 public:
  virtual ~Dialogs() = default;
  /// Plain text, never markup. Escape and closing the box answer Cancel where there is one, else No, else Ok.
  virtual MsgAnswer MsgBox(const QString& text, MsgButtons buttons, MsgIcon icon, const QString& title);
  /// A question with buttons of its own; the index of the one that was chosen. The last one is the default, and what
  /// Escape and closing the box answer.
  virtual int Choose(const QString& text, const QStringList& buttons, MsgIcon icon, const QString& title);
  /// Single-line question; empty when cancelled.
  virtual QString InputBox(const QString& prompt, const QString& title, const QString& text = {});
};

/// The text with invisible places to break where it has none for so many characters, as a long path has: a label breaks
/// its lines at blanks only.
inline constexpr int kLongestRun = 60;
QString Breakable(const QString& text);

/// What a line edit holds, as one line: pasted line breaks become blanks, as the box shows them.
QString OneLine(QString text);

}  // namespace tme
