#pragma once

#include "favourites/favouritesrack.h"
#include "ui/rack/rackitem.h"
#include "ui/rack/rvimageview.h"
#include "ui/widgets/tilegrid.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QPointer>
#include <QStringList>
#include <optional>
#include <vector>

class QDropEvent;
class QMimeData;

/// The favourites rack as a wrapping grid of tiles. There are tiles only for the visible rows and one more on
/// either side; they are reused for other stations, but a station keeps its tile while it is in view. The
/// rack holds which stations are selected; the view holds which one is current, where the keys move from.
class RackView : public QAbstractScrollArea
{
    Q_OBJECT

public:
    /// Decides what tiles do and what may be dropped between them.
    class Delegate : public RVImageView::Delegate
    {
    public:
        /// A button of a tile was pressed; its property "tag" says which.
        virtual void itemButtonAction(QAbstractButton *sender) = 0;
        /// Whether a drag of the tiles at `indexes`, which ascend, may start; writes what it carries.
        virtual bool collectionViewWriteItemsAtIndexes(RackView *view, const QList<qsizetype> &indexes,
                                                       QMimeData &pasteboard) = 0;
        /// What a drop before the tile at `proposedIndex` would do; Qt::IgnoreAction refuses it. The number
        /// of items stands for the end.
        virtual Qt::DropAction collectionViewValidateDrop(RackView *view, const QMimeData &pasteboard,
                                                          qsizetype proposedIndex) = 0;
        /// Whether the drop was taken.
        virtual bool collectionViewAcceptDrop(RackView *view, const QMimeData &pasteboard,
                                              qsizetype index) = 0;

    protected:
        ~Delegate() = default;
    };

    explicit RackView(QWidget *parent = nullptr);

    /// Shows `rack`, and follows it from now on. Neither is owned, and `transformers` has to outlive the
    /// view. To be called once.
    void setRack(FavouritesRack *rack, const ValueTransformers &transformers);
    /// May be null: buttons and double clicks do nothing then, and nothing is dragged or dropped. Not owned.
    void setDelegate(Delegate *delegate);
    /// The MIME types of which a drag has to carry one to be dropped here. Only drags that began in this
    /// program are looked at.
    void registerForDraggedTypes(const QStringList &types) { draggedTypes_ = types; }

    /// The frame of every tile; lengths in logical pixels.
    void setItemFrame(qreal cornerRadius, const QColor &border, qreal width);
    /// Whether the tiles' stars are gold.
    void setLevelIndicatorHighlighted(bool highlighted);
    /// A quiet text in the middle of an empty rack; none where empty.
    void setPlaceholderText(const QString &text);

    /// Null before setRack(), and once the rack is gone.
    FavouritesRack *rack() const { return rack_; }
    qsizetype numberOfItems() const;
    /// The tile of the station at `index`; null where there is none, for instance because it is out of view.
    RackItem *itemAtIndex(qsizetype index);
    /// The station whose tile covers a point of the viewport; -1 where none does.
    qsizetype indexUnder(const QPoint &position);
    /// The rectangle of the tile of the station at `index` in viewport coordinates, whether or not it is
    /// visible.
    QRect placeOfTile(qsizetype index);
    /// The current tile's index, where the keys move from; -1 before there is one.
    qsizetype currentIndex();
    /// Makes the tile at `index` the current one; does nothing where there is no such index.
    void setCurrent(qsizetype index);
    /// Brings the tile at `index` into view.
    void scrollToIndex(qsizetype index);

    QSize sizeHint() const override;
    /// High enough for one row.
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// Enter was pressed on the tile at `index`.
    void activated(qsizetype index);
    /// A tile was clicked with the right button, or the menu key pressed on it; it is selected by now.
    void contextMenuRequested(const QPoint &globalPosition);
    /// Tiles have moved, or show other stations.
    void scrolled();

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override { mousePressEvent(event); }
    void contextMenuEvent(QContextMenuEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

    /// The object in this program that began the drag; null for a drag from outside.
    virtual const QObject *originOf(const QDropEvent &event) const;

private:
    /// A station and its index; the index remains when the station is removed.
    struct Place
    {
        std::weak_ptr<RadioModel> station;
        qsizetype index = -1;
    };
    /// What the left button was pressed on.
    struct Press
    {
        QPoint position;
        qsizetype index = -1;
        /// The click takes effect on release, because the press may begin a drag.
        bool deferred = false;
    };

    // rackview.cpp: what is shown
    void scheduleLayout();
    void layOutIfDue();
    void layOut();
    TileGrid measuredGrid() const;
    void layOutTiles();
    bool assignTiles(const TileRange &range);
    RackItem *spareTile();
    void leaveTile(RackItem *tile);
    RackItem *tileAt(qsizetype index) const;
    QList<RackItem *> madeTiles() const;
    void refreshStation(qsizetype index);
    void showSelection();
    Place placeOf(qsizetype index) const;
    void followStation(Place &place) const;
    int scrollOffset() const;
    QRect focusRing() const;

    // rackviewinput.cpp: what the user does
    void select(qsizetype index, Qt::KeyboardModifiers modifiers);
    void showCurrent();
    void announceCurrent();
    void stepTo(TileStep step, Qt::KeyboardModifiers modifiers);
    void pressEnter();
    void startDrag(const Press &press);
    bool accepts(const QDropEvent &event) const;
    qsizetype proposedGap(QDropEvent &event);
    void moveMark(const QPoint &pointer);
    void hideMark();

    QPointer<FavouritesRack> rack_;
    const ValueTransformers *transformers_ = nullptr;
    Delegate *delegate_ = nullptr;
    QStringList draggedTypes_;
    RackItemFrame frame_;
    bool levelIndicatorHighlighted_ = false;
    QString placeholderText_;

    TileGrid grid_;
    /// The tiles of the stations from firstShown_ on; those without a station, hidden, are in pool_.
    std::vector<RackItem *> tiles_;
    qsizetype firstShown_ = 0;
    std::vector<RackItem *> pool_;
    bool layoutDue_ = false;
    bool layingOut_ = false;
    /// A copy of the rack's selection, updated with every change; ascending.
    QList<qsizetype> selection_;
    Place current_;
    /// Where a selection with Shift begins.
    Place anchor_;

    Press press_;
    /// The station whose tile button was pressed.
    std::weak_ptr<RadioModel> pressedStation_;
    /// Where a drag hovers, in the viewport.
    std::optional<QPoint> pointer_;
    QRect mark_;
    QBasicTimer autoScroll_;
};
