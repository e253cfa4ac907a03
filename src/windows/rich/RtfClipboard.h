#pragma once

#include <QByteArray>
#include <QString>
#include <memory>
#include <string>

class QMimeData;

namespace tme {

/// Rich text under every name that programs look for, with plain text beside it. The caller owns it.
std::unique_ptr<QMimeData> RtfMimeData(const std::string& rtf, const QString& text);

/// Rich text under whichever name it stands; empty when there is none.
QByteArray RtfOf(const QMimeData& data);

/// A picture as the bytes of a PNG file; empty when there is none.
QByteArray PictureOf(const QMimeData& data);

}  // namespace tme
