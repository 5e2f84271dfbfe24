#include "ui/rack/rackaccessibility.h"

#include "ui/rack/rackaccessible.h"

namespace {
/// A button of a tile, which belongs to its station.
class TileButtonAccessible final : public QAccessibleWidget
{
public:
    explicit TileButtonAccessible(QToolButton *button)
        : QAccessibleWidget(button, QAccessible::Button)
    {
    }

    QAccessibleInterface *parent() const override;
    QStringList actionNames() const override
    {
        return QStringList(pressAction()) + QAccessibleWidget::actionNames();
    }
    void doAction(const QString &name) override;
};

QAccessibleInterface *TileButtonAccessible::parent() const
{
    const auto *tile = static_cast<RackItem *>(object()->parent());
    auto *view = qobject_cast<RackView *>(tile->parentWidget()->parentWidget());
    const auto *list = dynamic_cast<RackAccessible *>(QAccessible::queryAccessibleInterface(view));
    QAccessibleInterface *station = list != nullptr ? list->childOf(tile->station()) : nullptr;
    return station != nullptr ? station : QAccessibleWidget::parent();
}

void TileButtonAccessible::doAction(const QString &name)
{
    if (name == pressAction()) {
        static_cast<QToolButton *>(object())->click();
    } else {
        QAccessibleWidget::doAction(name);
    }
}

QAccessibleInterface *makeRackInterface(const QString &, QObject *object)
{
    if (auto *view = qobject_cast<RackView *>(object)) {
        return new RackAccessible(view);
    }
    auto *button = qobject_cast<QToolButton *>(object);
    return button != nullptr && qobject_cast<RackItem *>(button->parent()) != nullptr
               ? new TileButtonAccessible(button)
               : nullptr;
}
} // namespace

void installRackAccessibility()
{
    QAccessible::installFactory(&makeRackInterface);
}
