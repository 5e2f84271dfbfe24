#include "mainwindow/windowmemory.h"

#include "settings/statefile.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSplitter>
#include <algorithm>

namespace {
/// Where the window begins and how wide and high it is, without the frame; while it is maximised, what it was
/// before.
constexpr QLatin1StringView geometryKey("window/geometry");
constexpr QLatin1StringView maximisedKey("window/maximised");
/// Beyond every screen; in logical pixels.
constexpr int farthestPlace = 100'000;
} // namespace

WindowMemory::WindowMemory(StateFile &state, QObject *parent)
    : QObject(parent)
    , state_(state)
{
}

void WindowMemory::restoreGeometry(QWidget &window) const
{
    // Not in Qt's own form: that moves a window down by the height of a title, with or without
    // one.
    if (QList<int> kept = state_.integers(geometryKey); kept.size() == 4) {
        for (int &number : kept) {
            number = std::clamp(number, -farthestPlace, farthestPlace);
        }
        const QRect place(kept[0], kept[1], kept[2], kept[3]);
        if (place.width() <= 0 || place.height() <= 0) {
            return;
        }
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
