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

    enum class Side { Below, Above };

    /// Shows it beside `rectangle`, which is in the coordinates of `view`: on the preferred side where there
    /// is room, else on the other, and inside the window. The focus goes into it, to its focus proxy, and
    /// back when it closes.
    void showRelativeTo(const QRect &rectangle, QWidget *view, Side preferred = Side::Below);

    /// Goes where its control has gone, or to the one that stands for it now.
    void follow(QWidget *view);
    /// Its control is out of sight, and may come to stand for something else: it stays where it is, and when
    /// it closes, the focus goes to `instead`.
    void leave(QWidget *instead);

protected:
    /// Makes the controls; called once, when it is about to be shown for the first time.
    virtual void makeContent() = 0;

    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void place();
    void closeTopmost();

    QRect rectangle_;
    QPointer<QWidget> view_;
    QPointer<QWidget> focusBefore_;
    Side preferred_ = Side::Below;
    bool hasContent_ = false;
    bool below_ = true;
    /// Where the arrow points, in this widget's own coordinates.
    int arrowX_ = 0;
};
