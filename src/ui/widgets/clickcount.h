#pragma once

#include <QPointF>
#include <Qt>

class QMouseEvent;

/// Counts the clicks of a quick series of any length: Qt itself reports only single and double clicks, and
/// starts over with the third.
class ClickCount
{
public:
    /// To be called for every press and double-click event of the view, in order. Returns the event's
    /// position in its series, from 1. A series ends with another button, a pause longer than the desktop's
    /// double-click interval, or a press farther away than the drag distance.
    int count(const QMouseEvent &event);

private:
    int count_ = 0;
    Qt::MouseButton button_ = Qt::NoButton;
    /// In milliseconds of the events' own clock.
    quint64 time_ = 0;
    /// In screen coordinates, so that a series stays one when the view moves under the pointer.
    QPointF place_;
};
