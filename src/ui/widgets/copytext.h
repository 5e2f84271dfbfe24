#pragma once

#include <QString>

/// Puts `text` on the clipboard as it stands; does nothing where `text` is empty.
void copyText(const QString &text);
