#include "ui/widgets/clickcount.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QStyleHints>

int ClickCount::count(const QMouseEvent &event)
{
    const QStyleHints &hints = *QGuiApplication::styleHints();
    const bool goesOn = count_ > 0 && event.button() == button_ && event.timestamp() >= time_ &&
                        event.timestamp() - time_ < static_cast<quint64>(hints.mouseDoubleClickInterval()) &&
                        (event.globalPosition() - place_).manhattanLength() < hints.startDragDistance();
    // The first click of a double click may have gone to another view.
    const int first = event.type() == QEvent::MouseButtonDblClick ? 2 : 1;
    count_ = goesOn ? count_ + 1 : first;
    button_ = event.button();
    time_ = event.timestamp();
    place_ = event.globalPosition();
    return count_;
}
