#pragma once

#include <QTextDocument>
#include <QVariant>

namespace tme {

/// A text that loads nothing that stands in it, neither files nor pages. The base class reads any file that a picture
/// names, also where the edit around has refused it.
class ClosedDocument : public QTextDocument {
 public:
  using QTextDocument::QTextDocument;

 protected:
  QVariant loadResource(int /*type*/, const QUrl& /*name*/) override { return {}; }
};

}  // namespace tme
