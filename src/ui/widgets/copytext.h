#pragma once

#include <QString>

/// Puts `text` on the clipboard as it stands; leaves the clipboard alone where there is nothing in it.
void copyText(const QString &text);
