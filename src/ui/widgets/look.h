#pragma once

class QApplication;
class QPalette;

/// What the user may choose.
enum class Appearance { Desktop, Light, Dark };

enum class Palette { Light, Dark };

/// Whether a window of that palette is dark.
bool isDark(const QPalette &palette);

/// Dresses the whole application: one style, one palette, one style sheet, so that it looks the same on every
/// desktop. Called again, it changes what is shown.
void applyLook(QApplication &application, Palette palette = Palette::Light);
