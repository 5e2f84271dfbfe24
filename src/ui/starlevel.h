#pragma once

#include <QSlider>

/// A rating of 0 to 5 stars. Where it is editable, a press or a drag over the stars sets as many, a press on
/// the only star of one takes that away, and the keys count up and down; elsewhere it takes no events at all.
class StarLevel : public QSlider
{
    Q_OBJECT

public:
    static constexpr int mostStars = 5;

    explicit StarLevel(QWidget *parent = nullptr);

    void setEditable(bool editable);
    /// Draws the stars in gold, not in the colour of the text.
    void setHighlighted(bool highlighted);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    int starsAt(const QMouseEvent &event) const;

    bool highlighted_ = false;
};
