#pragma once

#include <QPointer>
#include <QRect>
#include <QWidget>

/// A card that floats over its window, beside the control that opened it. It takes no click away from what
/// lies around it, and stays until whoever opened it closes it, or Esc does.
class Popover : public QWidget
{
    Q_OBJECT

public:
    /// `window` is the window that it floats over, its parent.
    explicit Popover(QWidget *window);

    bool isShown() const { return isVisible(); }

    /// Shows it beside `rectangle`, which is in the coordinates of `view`: below where there is room, else
    /// above, and inside the window. The focus goes into it, to its focus proxy, and back when it closes.
    void showRelativeTo(const QRect &rectangle, QWidget *view);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void place();

    QRect rectangle_;
    QPointer<QWidget> view_;
    QPointer<QWidget> focusBefore_;
    bool below_ = true;
    /// Where the arrow points, in this widget's own coordinates.
    int arrowX_ = 0;
};
