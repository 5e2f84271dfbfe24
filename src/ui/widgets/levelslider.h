#pragma once

#include <QSlider>

/// A horizontal slider that is filled from 0, wherever in its range that lies, to its value. A press anywhere
/// moves the handle there; a double click resets it to 0 where 0 is in the middle of the range.
class LevelSlider : public QSlider
{
    Q_OBJECT

public:
    explicit LevelSlider(QWidget *parent = nullptr);

    QSize sizeHint() const override { return {192, 24}; }

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool isMirrored() const;
    void follow(const QMouseEvent &event);
    qreal positionOf(int value) const;
};
