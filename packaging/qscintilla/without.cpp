// What the component asks for of its parts that are not built: lexers, and the widget that completes words.
#include <Qsci/qsciscintilla.h>

extern "C" int Scintilla_LinkLexers() { return 0; }

bool QsciScintilla::isAutoCompletionList() const { return false; }
