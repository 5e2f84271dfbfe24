#pragma once

#include <QPointF>
#include <Qt>

class QMouseEvent;

/// Counts the clicks of a quick series, as far as it goes: the toolkit itself tells only single clicks and
/// double ones, and begins anew with the third.
class ClickCount
{
public:
    /// Takes a press or a double-click event, each that the view gets and in their order, and gives its place
    /// in its series, from 1. A series ends with another button, a pause longer than the desktop's for double
    /// clicks, or a press farther away than where a drag would begin.
    int count(const QMouseEvent &event);

private:
    int count_ = 0;
    Qt::MouseButton button_ = Qt::NoButton;
    /// In milliseconds of the events' own clock.
    quint64 time_ = 0;
    /// On the screen, so that a view that moves under the pointer is not clicked twice.
    QPointF place_;
};
