#pragma once

#include <QColor>
#include <QSlider>

/// A rating of 0 to 5 stars. Where it is editable, a press or a drag over the stars sets as many, a press on
/// the only set star clears it, and the keys count up and down. One that is not editable takes no events at
/// all.
class StarLevel : public QSlider
{
    Q_OBJECT

public:
    static constexpr int mostStars = 5;

    /// The stars that a value of any type stands for: 0 where it is no number.
    static int starsOf(const QVariant &value);
    /// How stars are drawn.
    struct Inks
    {
        QColor set;
        QColor unset;
    };
    /// Draws `stars` of the stars as set and the others as unset, all of them over the width of `place`,
    /// starting on the side where a line in that direction starts. The painter's pen and brush are changed.
    static void paint(QPainter &painter, const QRectF &place, int stars, const Inks &inks,
                      Qt::LayoutDirection direction);

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
