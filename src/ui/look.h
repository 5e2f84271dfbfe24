#pragma once

class QApplication;

/// Dresses the whole application: one style, one palette, one style sheet, so that it looks the same on every
/// desktop. The palette is the dark one where the desktop's own is dark.
void applyLook(QApplication &application);
