#pragma once

#include <QBasicTimer>
#include <QWidget>

/// A small turning ring that shows that something is awaited. While nothing is, it keeps its space, invisible
/// and without a timer.
class Spinner : public QWidget
{
    Q_OBJECT

public:
    explicit Spinner(QWidget *parent = nullptr);

    void setAnimating(bool animating);
    bool isAnimating() const { return timer_.isActive(); }

    QSize sizeHint() const override { return {24, 24}; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    QBasicTimer timer_;
    int step_ = 0;
};
