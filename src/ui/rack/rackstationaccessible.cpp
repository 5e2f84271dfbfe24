#include "base/displaytext.h"
#include "ui/rack/rackaccessible.h"
#include "ui/widgets/starlevel.h"

#include <QCoreApplication>

namespace {
QString spoken(const char *text)
{
    return QCoreApplication::translate("RackAccessibility", text);
}

const QString &detailsActionName()
{
    static const QString name = QStringLiteral("Details");
    return name;
}
} // namespace

qsizetype RackStationAccessible::index() const
{
    const FavouritesRack *rack = list_.rack();
    const StationRecord station = station_.lock();
    return rack != nullptr && station ? rack->indexOf(station.get()) : -1;
}

int RackStationAccessible::childCount() const
{
    return tile() != nullptr ? static_cast<int>(buttons().size()) : 0;
}

QAccessibleInterface *RackStationAccessible::child(int index) const
{
    return index >= 0 && index < childCount()
               ? QAccessible::queryAccessibleInterface(buttons().at(static_cast<std::size_t>(index)))
               : nullptr;
}

int RackStationAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    for (int index = 0; index < childCount(); ++index) {
        if (buttons().at(static_cast<std::size_t>(index)) == child->object()) {
            return index;
        }
    }
    return -1;
}

QAccessibleInterface *RackStationAccessible::childAt(int x, int y) const
{
    for (int index = 0; index < childCount(); ++index) {
        QAccessibleInterface *button = child(index);
        if (button->rect().contains(x, y)) {
            return button;
        }
    }
    return nullptr;
}

QString RackStationAccessible::text(QAccessible::Text kind) const
{
    const StationRecord station = station_.lock();
    if (!station) {
        return {};
    }
    switch (kind) {
    case QAccessible::Name:
        return RackItem::nameOf(*station);
    case QAccessible::Description:
        return description(*station);
    default:
        return {};
    }
}

QString RackStationAccessible::description(const RadioModel &station)
{
    QStringList parts;
    if (station.flag(RadioField::custom)) {
        parts.append(spoken(QT_TRANSLATE_NOOP("RackAccessibility", "custom station")));
    }
    if (const QString genre = displayText(station.text(RadioField::genre)); !genre.isEmpty()) {
        parts.append(genre);
    }
    if (const QString bitrate = displayText(station.text(RadioField::bitrate)); !bitrate.isEmpty()) {
        parts.append(spoken(QT_TRANSLATE_NOOP("RackAccessibility", "%1 kbit/s")).arg(bitrate));
    }
    parts.append(spoken(QT_TRANSLATE_NOOP("RackAccessibility", "%1 of %2 stars"))
                     .arg(StarLevel::starsOf(station.stars()))
                     .arg(StarLevel::mostStars));
    return parts.join(QStringLiteral(", "));
}

QRect RackStationAccessible::rect() const
{
    const qsizetype at = index();
    return at < 0 ? QRect()
                  : list_.view()->placeOfTile(at).translated(list_.view()->viewport()->mapToGlobal(QPoint()));
}

QAccessible::State RackStationAccessible::state() const
{
    QAccessible::State state;
    const qsizetype at = index();
    if (at < 0) {
        state.invalid = true;
        return state;
    }
    RackView &view = *list_.view();
    state.disabled = !view.isEnabled();
    state.invisible = !view.isVisible();
    state.offscreen = !view.viewport()->rect().intersects(view.placeOfTile(at));
    state.selectable = true;
    state.multiSelectable = true;
    state.extSelectable = true;
    state.selected = view.rack()->selectionIndexes().contains(at);
    state.focusable = true;
    state.focused = view.hasFocus() && view.currentIndex() == at;
    return state;
}

void *RackStationAccessible::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
}

QStringList RackStationAccessible::actionNames() const
{
    return {pressAction(), detailsActionName(), toggleAction(), setFocusAction()};
}

QString RackStationAccessible::localizedActionName(const QString &name) const
{
    if (name == pressAction()) {
        return spoken(QT_TRANSLATE_NOOP("RackAccessibility", "Play"));
    }
    if (name == detailsActionName()) {
        return spoken(QT_TRANSLATE_NOOP("RackAccessibility", "Show Details"));
    }
    return QAccessibleActionInterface::localizedActionName(name);
}

void RackStationAccessible::doAction(const QString &name)
{
    const qsizetype at = index();
    if (at < 0) {
        return;
    }
    RackView &view = *list_.view();
    if (name == pressAction()) {
        Q_EMIT view.activated(at);
    } else if (name == detailsActionName()) {
        view.scrollToIndex(at);
        if (const RackItem *shown = tile()) {
            shown->detailsButton()->click();
        }
    } else if (name == toggleAction()) {
        QList<qsizetype> selection = view.rack()->selectionIndexes();
        if (selection.removeAll(at) == 0) {
            selection.append(at);
        }
        view.rack()->setSelectionIndexes(selection);
    } else if (name == setFocusAction()) {
        view.setCurrent(at);
        view.scrollToIndex(at);
        view.setFocus();
    }
}

QStringList RackStationAccessible::keyBindingsForAction(const QString &name) const
{
    return name == pressAction() ? QStringList(QStringLiteral("Return")) : QStringList();
}

RackItem *RackStationAccessible::tile() const
{
    return list_.view() != nullptr ? list_.view()->itemAtIndex(index()) : nullptr;
}

std::array<QToolButton *, 2> RackStationAccessible::buttons() const
{
    const RackItem *shown = tile();
    return {shown->detailsButton(), shown->playButton()};
}
