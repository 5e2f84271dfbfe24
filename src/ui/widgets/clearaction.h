#pragma once

class QColor;
class QLineEdit;

/// Gives `field` a button that empties it, drawn in `ink` and there while the field holds text. The toolkit's
/// own looks through every icon theme for its picture before the window is there.
void addClearAction(QLineEdit *field, const QColor &ink);
