#pragma once

#include <QColor>
#include <QWidget>

/// A box that frames its contents with a background, rounded corners and a faint outline.
class RoundedBox : public QWidget
{
    Q_OBJECT

public:
    explicit RoundedBox(QWidget *parent = nullptr);

    /// In logical pixels; 0 until it is set.
    void setCornerRadius(qreal radius);
    /// The same in every palette; none until it is set.
    void setBackgroundColor(const QColor &colour);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    qreal cornerRadius_ = 0;
    QColor backgroundColor_ = Qt::transparent;
};
