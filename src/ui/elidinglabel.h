#pragma once

#include <QLabel>

/// A label of one line of plain text. What does not fit is elided, so that the width of a text never moves
/// its neighbours; the tooltip then shows the whole.
class ElidingLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidingLabel(QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool isElided() const;
};
