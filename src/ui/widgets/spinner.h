#pragma once

#include <QBasicTimer>
#include <QWidget>

/// A small turning ring that says that something is being waited for. Keeps its place, and stays unseen and
/// without a timer while nothing is.
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
