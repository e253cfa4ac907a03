#pragma once

#include <QString>
#include <functional>

namespace tme {

/// Takes the first path off a text of paths parted by blanks. A text that names something existing as a whole is one
/// path, blanks at its end and all, so a path with blanks is found only as the last; quotation marks mean nothing.
/// text: afterwards trimmed, and empty behind the last path. The path is empty for nothing but blanks.
QString TakePath(QString& text, const std::function<bool(const QString&)>& exists);

}  // namespace tme
