#include "ui/widgets/tilegrid.h"

#include <algorithm>
#include <limits>

namespace {
constexpr int markWidth = 4;

/// Rounds down on either side of 0.
qsizetype floorDivided(int dividend, int divisor)
{
    return dividend >= 0 ? dividend / divisor : -((divisor - 1 - dividend) / divisor);
}
} // namespace

std::optional<TileStep> tileStepOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return TileStep::left;
    case Qt::Key_Right:
        return TileStep::right;
    case Qt::Key_Up:
        return TileStep::up;
    case Qt::Key_Down:
        return TileStep::down;
    case Qt::Key_PageUp:
        return TileStep::pageUp;
    case Qt::Key_PageDown:
        return TileStep::pageDown;
    case Qt::Key_Home:
        return TileStep::first;
    case Qt::Key_End:
        return TileStep::last;
    default:
        return std::nullopt;
    }
}

int TileGrid::columns() const
{
    return std::max(1, (width - margins.left() - margins.right() + spacing) / pitchAcross());
}

qsizetype TileGrid::rows() const
{
    return (count + columns() - 1) / columns();
}

int TileGrid::contentHeight() const
{
    const qsizetype tiles = rows() == 0 ? 0 : rows() * pitchDown() - spacing;
    const qsizetype height = margins.top() + tiles + margins.bottom();
    return static_cast<int>(std::min<qsizetype>(height, std::numeric_limits<int>::max()));
}

QRect TileGrid::rectOf(qsizetype index) const
{
    const QPoint corner(margins.left() + static_cast<int>(index % columns()) * pitchAcross(),
                        margins.top() + static_cast<int>(index / columns()) * pitchDown());
    return mirrored(QRect(corner, tile));
}

qsizetype TileGrid::indexAt(const QPoint &point) const
{
    const qsizetype row = rowAt(point.y());
    const int x = mirrored(QRect(point, QSize(1, 1))).x() - margins.left();
    const qsizetype column = floorDivided(x, pitchAcross());
    const qsizetype index = row * columns() + column;
    const bool inside = row >= 0 && column >= 0 && column < columns() && index < count;
    return inside && rectOf(index).contains(point) ? index : -1;
}

TileRange TileGrid::indexesWithin(int top, int bottom) const
{
    const qsizetype rowsAbove = floorDivided(top - margins.top() + spacing, pitchDown());
    const qsizetype rowsBegun = floorDivided(bottom - margins.top(), pitchDown()) + 1;
    const qsizetype firstRow = std::clamp<qsizetype>(rowsAbove, 0, rows());
    const qsizetype endRow = std::clamp<qsizetype>(rowsBegun, firstRow, rows());
    return {.first = std::min(count, firstRow * columns()), .end = std::min(count, endRow * columns())};
}

qsizetype TileGrid::gapAt(const QPoint &point) const
{
    const qsizetype row = std::max<qsizetype>(0, rowAt(point.y()));
    if (row >= rows()) {
        return count;
    }
    // As many tiles of the row are before the gap as have their middle before the point.
    const int x = mirrored(QRect(point, QSize(1, 1))).x() - margins.left();
    const qsizetype before = floorDivided(x - tile.width() / 2, pitchAcross()) + 1;
    return std::min(count, row * columns() + std::clamp<qsizetype>(before, 0, columns()));
}

QRect TileGrid::markOf(qsizetype gap, const QPoint &pointer) const
{
    const bool betweenRows = gap > 0 && gap % columns() == 0;
    const bool above = betweenRows && (gap == count || rowAt(pointer.y()) < gap / columns());
    const QRect beside = mirrored(rectOf(above ? gap - 1 : gap));
    // In the middle of the spacing, or of what there is of it at the edge.
    const int reach = std::min(spacing, margins.left()) / 2 + markWidth / 2;
    const int x = above ? beside.left() + beside.width() + reach - markWidth : beside.left() - reach;
    return mirrored(QRect(x, beside.top(), markWidth, beside.height()));
}

qsizetype TileGrid::neighbour(qsizetype index, TileStep step, int pageHeight) const
{
    const bool reversed = direction == Qt::RightToLeft;
    const qsizetype last = count - 1;
    const qsizetype pageRows = std::max(1, pageHeight / pitchDown());
    const auto rowsDown = [&](qsizetype down) {
        const qsizetype row = std::clamp<qsizetype>(index / columns() + down, 0, rows() - 1);
        return std::min(last, row * columns() + index % columns());
    };
    switch (step) {
    case TileStep::left:
        return std::clamp<qsizetype>(index + (reversed ? 1 : -1), 0, last);
    case TileStep::right:
        return std::clamp<qsizetype>(index + (reversed ? -1 : 1), 0, last);
    case TileStep::up:
        return rowsDown(-1);
    case TileStep::down:
        return rowsDown(1);
    case TileStep::pageUp:
        return rowsDown(-pageRows);
    case TileStep::pageDown:
        return rowsDown(pageRows);
    case TileStep::first:
        return 0;
    case TileStep::last:
        return last;
    }
    return index;
}

/// A row reaches half-way into the spacing on either side of it.
qsizetype TileGrid::rowAt(int y) const
{
    return floorDivided(y - margins.top() + spacing / 2, pitchDown());
}

QRect TileGrid::mirrored(const QRect &rectangle) const
{
    if (direction == Qt::LeftToRight) {
        return rectangle;
    }
    return {QPoint(width - rectangle.x() - rectangle.width(), rectangle.y()), rectangle.size()};
}
