#pragma once

#include <QMargins>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <optional>

/// Which way a key moves in a grid: left and right on the screen, whatever the layout direction.
enum class TileStep { left, right, up, down, pageUp, pageDown, first, last };

/// The step of an arrow key, Home, End, PageUp or PageDown; none for any other key.
std::optional<TileStep> tileStepOf(int key);

/// Indexes from `first` up to, and without, `end`.
struct TileRange
{
    qsizetype first = 0;
    qsizetype end = 0;

    friend bool operator==(const TileRange &, const TileRange &) = default;
};

/// A grid of equal tiles that wraps at the width of its viewport: where each tile is, and which tile is at a
/// point. Points and rectangles are in logical pixels from the top left of the content, which is as wide as
/// the viewport. Every operation takes constant time.
struct TileGrid
{
    QSize tile{1, 1};
    /// Between two tiles, across and down.
    int spacing = 0;
    /// Around the tiles; the left one is where a row begins, on whichever side that is.
    QMargins margins;
    int width = 0;
    qsizetype count = 0;
    Qt::LayoutDirection direction = Qt::LeftToRight;

    /// At least one, however narrow the viewport is.
    int columns() const;
    qsizetype rows() const;
    int contentHeight() const;
    /// The rectangle of the tile at `index`; also for an index that has no tile yet.
    QRect rectOf(qsizetype index) const;
    /// The tile that covers the point; -1 where none does.
    qsizetype indexAt(const QPoint &point) const;
    /// The indexes of all rows that reach into the pixels from `top` to `bottom`.
    TileRange indexesWithin(int top, int bottom) const;
    /// The gap in the order for a drop at the point: 0 is before the first tile, `count` after the last, also
    /// for a point below all rows.
    qsizetype gapAt(const QPoint &point) const;
    /// The bar that marks the gap. A gap between two rows has two positions; it is marked in the row that
    /// `pointer` is in.
    QRect markOf(qsizetype gap, const QPoint &pointer) const;
    /// The index that a step from `index` leads to; `index` itself at the edge. `pageHeight` is the height of
    /// the visible part. There has to be a tile.
    qsizetype neighbour(qsizetype index, TileStep step, int pageHeight) const;

private:
    int pitchAcross() const { return tile.width() + spacing; }
    int pitchDown() const { return tile.height() + spacing; }
    /// May be below 0, and beyond the last row.
    qsizetype rowAt(int y) const;
    QRect mirrored(const QRect &rectangle) const;
};
