#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

/// The picture `name` among the program's icons, crisp at every size and scale factor.
QIcon svgIcon(const QString &name);

/// The same drawn in one colour: what the picture draws in `currentColor` takes `ink`, and is fainter while
/// disabled.
QIcon svgIcon(const QString &name, const QColor &ink);
