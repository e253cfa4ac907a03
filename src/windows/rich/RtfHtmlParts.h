#pragma once

#include <QString>
#include <string>

#include "windows/rich/RtfStore.h"

class QTextDocument;

/// Parts of a marked-up text that the toolkit takes in another form than a file has them. Internal to RtfHtml.
namespace tme {

inline constexpr double kPointsPerPixel = 0.75;

/// Says backgrounds, and widths and lines of tables, in words that the toolkit takes as browsers do.
QString WithKnownStyles(const QString& html);
/// Marks the items that begin a list with a first number, of which the toolkit knows nothing.
QString WithListStarts(QString html);
/// Gives each list an entry in tables, which are returned, and its items their indents outright.
std::string ResolveLists(QTextDocument& text);
/// Pictures whose bytes stand in the text become objects of the store; others go.
void ResolvePictures(QTextDocument& text, RtfStore& store);

}  // namespace tme
