#pragma once

#include "favourites/radiomodel.h"

#include <QColor>
#include <QToolButton>
#include <QWidget>

class ElidingLabel;
class RVImageView;
class StarLevel;
class ValueTransformers;

/// The frame of a tile. Lengths are in logical pixels.
struct RackItemFrame
{
    qreal cornerRadius = 8;
    QColor border = Qt::gray;
    qreal width = 1;
};

/// One station of the favourites rack as a tile: its artwork, name and stars, and the buttons for its details
/// and for playing it. A press beside the artwork and the buttons goes to whatever the tile stands in.
class RackItem : public QWidget
{
    Q_OBJECT

public:
    /// What the buttons carry as the property "tag".
    static constexpr int detailsTag = 100;
    static constexpr int playTag = 101;

    explicit RackItem(QWidget *parent = nullptr);

    /// The size of a tile with that font.
    static QSize sizeFor(const QFont &font);

    /// The name that a station is shown by; never empty.
    static QString nameOf(const RadioModel &station);

    /// Null where there is none, or where it has been destroyed: the tile does not own it.
    StationRecord station() const { return station_.lock(); }
    /// Shows the station as it is now. The artwork's path goes through "PathTransformer", and stands as it is
    /// where there is none of that name.
    void setStation(const StationRecord &station, const ValueTransformers &transformers);
    /// Has no station any more, but goes on showing the last one.
    void clear();

    void setFrame(const RackItemFrame &frame);
    void setSelected(bool selected);
    bool isSelected() const { return selected_; }
    /// Tab reaches the buttons of the current tile only.
    void setCurrent(bool current);
    bool isCurrent() const { return playButton_->focusPolicy() != Qt::NoFocus; }

    RVImageView *artwork() const { return artwork_; }
    StarLevel *stars() const { return stars_; }
    QToolButton *detailsButton() const { return detailsButton_; }
    QToolButton *playButton() const { return playButton_; }

    QSize sizeHint() const override { return sizeFor(font()); }

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QToolButton *addButton(const QString &objectName, int tag, const QString &toolTip);
    void showArtwork(const RadioModel &station, const ValueTransformers &transformers);
    void inkIcons();
    void layOut();

    std::weak_ptr<RadioModel> station_;
    RackItemFrame frame_;
    bool selected_ = false;
    RVImageView *artwork_;
    ElidingLabel *name_;
    StarLevel *stars_;
    QToolButton *detailsButton_;
    QToolButton *playButton_;
};
