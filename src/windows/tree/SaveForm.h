#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "documents/SourceLines.h"
#include "files/TextEncoding.h"

class QWidget;

namespace tme {

/// The form of a document that is held whole: what can be chosen for a save.
struct SaveForm {
  /// Of the kinds that the window offers.
  std::size_t kind = 0;
  TextEncoding encoding = TextEncoding::CodePage;
  LineEnds line_ends = LineEnds::CrLf;
};

/// A kind of file that a document can become.
struct FormKind {
  QString name;
  TextEncoding encoding;  ///< as such files usually have it
};

/// Shows a dialog that begins with the present form. kinds: may be empty. Nothing when cancelled.
std::optional<SaveForm> AskForSaveForm(QWidget* parent, const std::vector<FormKind>& kinds, const SaveForm& present);

}  // namespace tme
