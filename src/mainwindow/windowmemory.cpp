#include "mainwindow/windowmemory.h"

#include "settings/statefile.h"

#include <QHeaderView>
#include <QSplitter>
#include <algorithm>

namespace {
constexpr QLatin1StringView geometryKey("window/geometry");
constexpr QLatin1StringView orderKey("columns/order");
/// Wider than any screen; in logical pixels.
constexpr int widestColumn = 4000;

QString widthKey(const QString &column)
{
    return QLatin1StringView("columns/") + column;
}

QStringList sorted(QStringList texts)
{
    texts.sort();
    return texts;
}
} // namespace

WindowMemory::WindowMemory(StateFile &state, QObject *parent)
    : QObject(parent)
    , state_(state)
{
}

void WindowMemory::restoreGeometry(QWidget &window) const
{
    window.restoreGeometry(state_.bytes(geometryKey));
}

void WindowMemory::keepGeometry(const QWidget &window)
{
    state_.setValue(geometryKey, window.saveGeometry());
}

void WindowMemory::bindColumns(QHeaderView &header, int identifierRole)
{
    QStringList identifiers;
    for (int section = 0; section < header.count(); ++section) {
        identifiers.append(
            header.model()->headerData(section, header.orientation(), identifierRole).toString());
    }
    header.setSectionsMovable(true);
    header.setFirstSectionMovable(false);
    // An order of other columns than these, or one that begins with another, is none.
    const QStringList order = state_.texts(orderKey);
    if (sorted(order) == sorted(identifiers) && order.constFirst() == identifiers.constFirst()) {
        for (int place = 1; place < header.count(); ++place) {
            header.moveSection(header.visualIndex(static_cast<int>(identifiers.indexOf(order.at(place)))),
                               place);
        }
    }
    for (int section = 0; section < header.count(); ++section) {
        const int width = state_.integer(widthKey(identifiers.at(section)), header.sectionSize(section));
        if (header.sectionResizeMode(section) == QHeaderView::Interactive) {
            header.resizeSection(section, std::clamp(width, header.minimumSectionSize(), widestColumn));
        }
    }
    connect(&header, &QHeaderView::sectionMoved, this,
            [this, &header, identifiers] { keepOrder(header, identifiers); });
    connect(&header, &QHeaderView::sectionResized, this,
            [this, &header, identifiers](int section, int, int width) {
                // The last one has no width of its own, and one that stands in for a width is not the user's.
                if (header.visualIndex(section) != header.count() - 1) {
                    state_.setValue(widthKey(identifiers.at(section)), width);
                }
            });
}

void WindowMemory::keepOrder(const QHeaderView &header, const QStringList &identifiers)
{
    QStringList order;
    for (int place = 0; place < header.count(); ++place) {
        order.append(identifiers.at(header.logicalIndex(place)));
    }
    state_.setValue(orderKey, order);
}

void WindowMemory::bindSplitter(QSplitter &splitter)
{
    const QString key = QLatin1StringView("splitters/") + splitter.objectName();
    const QList<int> sizes = state_.integers(key);
    const bool plausible = sizes.size() == splitter.count() &&
                           std::all_of(sizes.cbegin(), sizes.cend(), [](int size) { return size > 0; });
    if (plausible) {
        splitter.setSizes(sizes);
    }
    connect(&splitter, &QSplitter::splitterMoved, this,
            [this, &splitter, key] { state_.setIntegers(key, splitter.sizes()); });
}
