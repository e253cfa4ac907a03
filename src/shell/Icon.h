#pragma once

#include <QIcon>
#include <QString>

namespace tme {

/// A picture of resources/icons by its name, drawn sharp at each size that it was rendered at and scaled down from the
/// next larger one otherwise. A file is read when it is first shown. `when_selected` and `when_open`, if named, take
/// its place for QIcon::Selected and QIcon::On. A name without a picture gives an empty one.
QIcon Icon(const QString& name, const QString& when_selected = {}, const QString& when_open = {});

}  // namespace tme
