#pragma once

class QApplication;
class QPalette;

/// What the user may choose.
enum class Appearance { Desktop, Light, Dark };

enum class Palette { Light, Dark };

/// Whether a window of that palette is dark.
bool isDark(const QPalette &palette);

/// Sets the look of the whole application: one style, one palette, one style sheet, so that it is the same on
/// every desktop. Called again, it changes the look at once.
void applyLook(QApplication &application, Palette palette = Palette::Light);
