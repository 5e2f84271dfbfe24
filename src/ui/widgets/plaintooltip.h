#pragma once

#include <QString>

/// `text` as a tooltip that shows it to the letter: tooltips guess whether they are given HTML, and this one
/// is.
inline QString plainToolTip(const QString &text)
{
    return text.isEmpty() ? QString()
                          : QLatin1StringView("<p>") + text.toHtmlEscaped() + QLatin1StringView("</p>");
}
