#include "ui/genres/genreaccessibility.h"

#include "ui/genres/genregrid.h"

#include <QAccessibleWidget>

namespace {
GenreGrid *gridOf(const QWidget *tile)
{
    const QWidget *viewport = tile->parentWidget();
    return viewport == nullptr ? nullptr : qobject_cast<GenreGrid *>(viewport->parentWidget());
}

class AccessibleGenreBox : public QAccessibleWidget
{
public:
    explicit AccessibleGenreBox(GenreBox *box)
        : QAccessibleWidget(box, QAccessible::ListItem)
    {
    }

    QAccessibleInterface *parent() const override
    {
        GenreGrid *grid = gridOf(widget());
        return grid == nullptr ? QAccessibleWidget::parent() : QAccessible::queryAccessibleInterface(grid);
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = box().isSelected();
        state.focusable = true;
        state.focused = box().isCurrent();
        return state;
    }

    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }

    void doAction(const QString &name) override
    {
        GenreGrid *grid = gridOf(widget());
        if (name == pressAction()) {
            box().press();
        } else if (name == setFocusAction() && grid != nullptr) {
            grid->setCurrentIndex(grid->indexOf(&box()));
            grid->setFocus(Qt::OtherFocusReason);
        }
    }

private:
    GenreBox &box() const { return *static_cast<GenreBox *>(widget()); }
};

/// Its children are the tiles that pass the filter; they are made on demand.
class AccessibleGenreGrid : public QAccessibleWidget
{
public:
    explicit AccessibleGenreGrid(GenreGrid *grid)
        : QAccessibleWidget(grid, QAccessible::List)
    {
    }

    int childCount() const override { return static_cast<int>(grid().shownIndexes().size()); }

    QAccessibleInterface *child(int place) const override
    {
        const QList<qsizetype> &shown = grid().shownIndexes();
        return place < 0 || place >= shown.size() ? nullptr : interfaceAt(shown.at(place));
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        const qsizetype index = child == nullptr ? -1 : grid().indexOf(child->object());
        return static_cast<int>(grid().shownIndexes().indexOf(index));
    }

    QAccessibleInterface *childAt(int x, int y) const override
    {
        const QWidget &viewport = *grid().viewport();
        auto *box = qobject_cast<GenreBox *>(viewport.childAt(viewport.mapFromGlobal(QPoint(x, y))));
        return box == nullptr ? nullptr : QAccessible::queryAccessibleInterface(box);
    }

    QAccessibleInterface *focusChild() const override
    {
        return grid().hasFocus() && grid().currentIndex() >= 0 ? interfaceAt(grid().currentIndex()) : nullptr;
    }

private:
    GenreGrid &grid() const { return *static_cast<GenreGrid *>(widget()); }
    QAccessibleInterface *interfaceAt(qsizetype index) const
    {
        return QAccessible::queryAccessibleInterface(grid().madeItemAtIndex(index));
    }
};

QAccessibleInterface *genreInterface(const QString &, QObject *object)
{
    if (auto *box = qobject_cast<GenreBox *>(object)) {
        return new AccessibleGenreBox(box);
    }
    if (auto *grid = qobject_cast<GenreGrid *>(object)) {
        return new AccessibleGenreGrid(grid);
    }
    return nullptr;
}
} // namespace

void installGenreAccessibility()
{
    QAccessible::installFactory(genreInterface);
}
