#pragma once

#include <QString>
#include <functional>

namespace tme {

/// Takes the first path off a text of paths parted by blanks. A text that names an existing file as a whole is one
/// path, so a path with blanks is found only as the last; quotation marks mean nothing. text: trimmed and not empty;
/// afterwards trimmed again, and empty behind the last path. The path is never empty.
QString TakePath(QString& text, const std::function<bool(const QString&)>& file_exists);

}  // namespace tme
