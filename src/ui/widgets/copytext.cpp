#include "ui/widgets/copytext.h"

#include <QClipboard>
#include <QGuiApplication>

void copyText(const QString &text)
{
    if (!text.isEmpty()) {
        QGuiApplication::clipboard()->setText(text);
    }
}
