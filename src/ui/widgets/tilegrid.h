#pragma once

#include <QMargins>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <optional>

/// Which way a key moves in a grid: left and right as they are seen, whichever way it is read.
enum class TileStep { left, right, up, down, pageUp, pageDown, first, last };

/// Where an arrow key, Home, End, PageUp or PageDown leads; none for any other.
std::optional<TileStep> tileStepOf(int key);

/// Indexes from `first` up to, and without, `end`.
struct TileRange
{
    qsizetype first = 0;
    qsizetype end = 0;

    friend bool operator==(const TileRange &, const TileRange &) = default;
};

/// A grid of equal tiles that wraps at the width of its viewport: where each stands, and what stands at a
/// point. Points and rectangles are in logical pixels from the top left of the content, which is as wide as
/// the viewport. Nothing here takes longer for more tiles.
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
    /// Where the tile at `index` stands; also for an index that has none yet.
    QRect rectOf(qsizetype index) const;
    /// The tile that covers the point; -1 where none does.
    qsizetype indexAt(const QPoint &point) const;
    /// The indexes of all rows that reach into the pixels from `top` to `bottom`.
    TileRange indexesWithin(int top, int bottom) const;
    /// Where in the order something that is dropped at the point belongs: 0 is before the first tile, `count`
    /// after the last, and below all rows.
    qsizetype gapAt(const QPoint &point) const;
    /// The bar that shows the gap. The one between two rows has two places; it is shown in the row that
    /// `pointer` is in.
    QRect markOf(qsizetype gap, const QPoint &pointer) const;
    /// Where a step from `index` leads; to itself at the edge. `pageHeight` is how much is seen at a time.
    /// There has to be a tile.
    qsizetype neighbour(qsizetype index, TileStep step, int pageHeight) const;

private:
    int pitchAcross() const { return tile.width() + spacing; }
    int pitchDown() const { return tile.height() + spacing; }
    /// May be below 0, and beyond the last.
    qsizetype rowAt(int y) const;
    QRect mirrored(const QRect &rectangle) const;
};
