#pragma once

class QApplication;

/// Which palette the window has.
enum class Appearance {
    /// Dark where the desktop's own palette was dark when the program started.
    Desktop,
    Light,
    Dark,
};

/// Dresses the whole application: one style, one palette, one style sheet, so that it looks the same on every
/// desktop. Called again, it changes what is shown.
void applyLook(QApplication &application, Appearance appearance = Appearance::Desktop);
