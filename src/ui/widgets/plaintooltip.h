#pragma once

#include <QString>

/// `text` as a tooltip that shows it literally. QToolTip guesses whether a text is HTML, so that this is HTML
/// with the text escaped.
inline QString plainToolTip(const QString &text)
{
    return text.isEmpty() ? QString()
                          : QLatin1StringView("<p>") + text.toHtmlEscaped() + QLatin1StringView("</p>");
}
