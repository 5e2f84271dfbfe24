#pragma once

#include <QCoreApplication>
#include <QList>
#include <QMouseEvent>
#include <QWidget>

/// Sends `view` what Qt sends for presses of `button` after these pauses in milliseconds, of which 100
/// go on with a series: every second press of one is a double click. Gives the number of events that were
/// accepted.
inline int clickSeries(QWidget &view, const QList<quint64> &pauses, Qt::MouseButton button = Qt::LeftButton)
{
    // Later than any series before it.
    static quint64 time = 0;
    time += 10'000;
    int accepted = 0;
    bool doubled = false;
    for (const quint64 pause : pauses) {
        time += pause;
        doubled = !doubled && pause == 100;
        QMouseEvent event(doubled ? QEvent::MouseButtonDblClick : QEvent::MouseButtonPress, {5, 5}, {5, 5},
                          button, button, {});
        event.setTimestamp(time);
        QCoreApplication::sendEvent(&view, &event);
        accepted += event.isAccepted() ? 1 : 0;
    }
    return accepted;
}
