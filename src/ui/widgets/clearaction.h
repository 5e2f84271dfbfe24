#pragma once

class QColor;
class QLineEdit;

/// Gives `field` a button that empties it, drawn in `ink` and visible while the field holds text. QLineEdit's
/// own clear button searches every icon theme for its picture before the window is shown.
void addClearAction(QLineEdit *field, const QColor &ink);
