#pragma once

#include <QPointer>
#include <QRect>
#include <QWidget>

/// A card that floats over its window, beside the control that opened it. It does not block clicks around it,
/// and stays open until its owner or Esc closes it, or its behaviour does.
class Popover : public QWidget
{
    Q_OBJECT

public:
    /// `window` is the window that it floats over, its parent.
    explicit Popover(QWidget *window);

    bool isShown() const { return isVisible(); }

    enum class Behaviour {
        /// It closes only when close() is called, or by Esc.
        ApplicationDefined = 0,
        /// It closes as well when the user turns to another control of its window, by a press, which that
        /// control gets, or with the keyboard. A press on the control that opened it is left to that control.
        /// Other windows and applications do not count.
        SemiTransient = 2,
    };
    Behaviour behaviour() const { return behaviour_; }
    void setBehaviour(Behaviour behaviour) { behaviour_ = behaviour; }

    enum class Side { Below, Above };

    /// Shows it beside `rectangle`, which is in the coordinates of `view`: on the preferred side where there
    /// is room, else on the other, and inside the window. The focus goes into it, to its focus proxy, and
    /// back when it closes.
    void showRelativeTo(const QRect &rectangle, QWidget *view, Side preferred = Side::Below);

    /// The same where it is not shown; else closes it.
    void toggleRelativeTo(const QRect &rectangle, QWidget *view, Side preferred = Side::Below);

    /// Moves to where its control is now; `view` may be another one that has taken the control's place.
    void follow(QWidget *view);
    /// To be called when its control has gone out of view and may be reused: the popover stays where it is,
    /// and when it closes, the focus goes to `instead`.
    void leave(QWidget *instead);

protected:
    /// Makes the controls; called once, when it is about to be shown for the first time.
    virtual void makeContent() = 0;

    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void place();
    void closeTopmost();
    /// Whether `event`, which is sent to `widget`, means that the user turns to another control of this
    /// window.
    bool isTurningElsewhere(const QWidget &widget, QEvent *event) const;

    QRect rectangle_;
    QPointer<QWidget> view_;
    QPointer<QWidget> focusBefore_;
    Side preferred_ = Side::Below;
    Behaviour behaviour_ = Behaviour::ApplicationDefined;
    bool hasContent_ = false;
    bool below_ = true;
    /// Where the arrow points, in this widget's own coordinates.
    int arrowX_ = 0;
};
