#pragma once

#include "ui/widgets/elidinglabel.h"

/// A line of plain text that can be clicked, by the mouse or by Enter and the space bar; the pointing hand
/// says so all over it. Its tooltip is its own, elided or not.
class TextOver : public ElidingLabel
{
    Q_OBJECT

public:
    explicit TextOver(QWidget *parent = nullptr);

Q_SIGNALS:
    void clicked();

protected:
    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool pressed_ = false;
};
