#include "mainwindow/windowmemory.h"

#include "settings/statefile.h"

#include <QGuiApplication>
#include <QHeaderView>
#include <QScreen>
#include <QSplitter>
#include <algorithm>

namespace {
/// Where the window begins and how wide and high it is, without the frame; while it is maximised, what it was
/// before.
constexpr QLatin1StringView geometryKey("window/geometry");
constexpr QLatin1StringView maximisedKey("window/maximised");
constexpr QLatin1StringView orderKey("columns/order");
/// Beyond every screen; in logical pixels.
constexpr int farthestPlace = 100'000;
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
    // Not by the toolkit's own form of it: that moves a window down by the height of a title, with or without
    // one.
    if (QList<int> kept = state_.integers(geometryKey); kept.size() == 4) {
        for (int &number : kept) {
            number = std::clamp(number, -farthestPlace, farthestPlace);
        }
        const QRect place(kept[0], kept[1], kept[2], kept[3]);
        const QScreen *screen = QGuiApplication::screenAt(place.center());
        const QScreen *room = screen != nullptr ? screen : QGuiApplication::primaryScreen();
        window.resize(place.size().boundedTo(room->availableSize()));
        if (screen != nullptr) {
            window.move(place.topLeft());
        }
    }
    if (state_.integer(maximisedKey, 0) != 0) {
        window.setWindowState(Qt::WindowMaximized);
    }
}

void WindowMemory::keepGeometry(const QWidget &window)
{
    const QRect place = window.normalGeometry();
    state_.setIntegers(geometryKey, {place.x(), place.y(), place.width(), place.height()});
    state_.setValue(maximisedKey, window.isMaximized() ? 1 : 0);
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
