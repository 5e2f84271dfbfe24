#include "ui/table/tableaccessibility.h"

#include "ui/table/rvtableview.h"

#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QHeaderView>
#include <algorithm>
#include <unordered_map>
#include <utility>

namespace {
/// Stands for the headers where rows and columns are counted.
constexpr int headerPlace = -1;

QString textOf(const QAbstractItemModel &model, int row, int column, int role)
{
    if (row == headerPlace && column == headerPlace) {
        return {};
    }
    if (row == headerPlace) {
        return model.headerData(column, Qt::Horizontal, role).toString();
    }
    return column == headerPlace ? model.headerData(row, Qt::Vertical, role).toString()
                                 : model.index(row, column).data(role).toString();
}

/// The table. Its children are the header's cells, then row after row, each after its row header: the order
/// that Qt's item views use to report which cell has the focus.
class TableAccessible final : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    explicit TableAccessible(RVTableView *table)
        : QAccessibleWidget(table, QAccessible::Table)
    {
    }

    /// Null while the view is being destroyed.
    RVTableView *view() const { return qobject_cast<RVTableView *>(object()); }
    const QAbstractItemModel *model() const { return view() != nullptr ? view()->model() : nullptr; }
    bool has(int row, int column) const { return row < rowCount() && column < columnCount(); }
    bool isSelected(int row) const;
    bool select(int row, bool selected) const;

    int childCount() const override { return (rowCount() + 1) * (columnCount() + 1); }
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }
    QAccessibleInterface *cellAt(int row, int column) const override;
    int selectedCellCount() const override { return selectedRowCount() * columnCount(); }
    QList<QAccessibleInterface *> selectedCells() const override;
    QString columnDescription(int column) const override { return nameAt(headerPlace, column); }
    QString rowDescription(int row) const override { return nameAt(row, headerPlace); }
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override { return static_cast<int>(selectedRows().size()); }
    int columnCount() const override { return model() != nullptr ? model()->columnCount() : 0; }
    int rowCount() const override { return model() != nullptr ? model()->rowCount() : 0; }
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override;
    bool isColumnSelected(int) const override { return false; }
    bool isRowSelected(int row) const override { return isSelected(row); }
    bool selectRow(int row) override { return select(row, true); }
    bool selectColumn(int) override { return false; }
    bool unselectRow(int row) override { return select(row, false); }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent *) override { dropChildren(); }

    QString nameAt(int row, int column) const;

protected:
    ~TableAccessible() override { dropChildren(); }

private:
    void dropChildren();

    /// By child index; made on demand.
    mutable std::unordered_map<int, QAccessible::Id> children_;
};

/// A cell, or that of a header where its row or column is headerPlace. Its table owns it.
class CellAccessible final : public QAccessibleInterface,
                             public QAccessibleTableCellInterface,
                             public QAccessibleActionInterface
{
public:
    CellAccessible(const TableAccessible &table, int row, int column)
        : table_(table)
        , row_(row)
        , column_(column)
    {
    }

    bool isValid() const override { return table_.isValid() && table_.has(row_, column_); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return table_.window(); }
    QAccessibleInterface *parent() const override { return table(); }
    int childCount() const override { return 0; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    bool isSelected() const override { return table_.isSelected(row_); }
    QList<QAccessibleInterface *> columnHeaderCells() const override;
    QList<QAccessibleInterface *> rowHeaderCells() const override;
    int columnIndex() const override { return column_; }
    int rowIndex() const override { return row_; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface *table() const override { return const_cast<TableAccessible *>(&table_); }

    QStringList actionNames() const override;
    QString localizedActionName(const QString &name) const override;
    void doAction(const QString &name) override;
    QStringList keyBindingsForAction(const QString &name) const override;

private:
    bool isCell() const { return row_ != headerPlace && column_ != headerPlace; }
    /// Decided as for a click: by whether its title is shown.
    bool isSortable() const;
    QRect inViewport() const;

    const TableAccessible &table_;
    int row_;
    int column_;
};

bool TableAccessible::isSelected(int row) const
{
    return row != headerPlace && model() != nullptr && view()->selectionModel()->isRowSelected(row);
}

bool TableAccessible::select(int row, bool selected) const
{
    if (row < 0 || row >= rowCount()) {
        return false;
    }
    view()->selectionModel()->select(
        model()->index(row, 0),
        QItemSelectionModel::Rows | (selected ? QItemSelectionModel::Select : QItemSelectionModel::Deselect));
    return true;
}

QString TableAccessible::nameAt(int row, int column) const
{
    if (model() == nullptr || !has(row, column)) {
        return {};
    }
    const QString spoken = textOf(*model(), row, column, Qt::AccessibleTextRole);
    return spoken.isEmpty() ? textOf(*model(), row, column, Qt::DisplayRole) : spoken;
}

void TableAccessible::dropChildren()
{
    for (const auto &[index, id] : std::exchange(children_, {})) {
        QAccessible::deleteAccessibleInterface(id);
    }
}

QAccessibleInterface *TableAccessible::child(int index) const
{
    if (index < 0 || index >= childCount()) {
        return nullptr;
    }
    if (const auto made = children_.find(index); made != children_.end()) {
        return QAccessible::accessibleInterface(made->second);
    }
    const int places = columnCount() + 1;
    auto *cell = new CellAccessible(*this, index / places - 1, index % places - 1);
    children_.emplace(index, QAccessible::registerAccessibleInterface(cell));
    return cell;
}

int TableAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    const auto *cell = dynamic_cast<const CellAccessible *>(child);
    return cell != nullptr ? (cell->rowIndex() + 1) * (columnCount() + 1) + cell->columnIndex() + 1 : -1;
}

QAccessibleInterface *TableAccessible::childAt(int x, int y) const
{
    const QHeaderView &header = *view()->horizontalHeader();
    const QPoint inHeader = header.viewport()->mapFromGlobal(QPoint(x, y));
    if (header.viewport()->rect().contains(inHeader)) {
        return cellAt(headerPlace, header.logicalIndexAt(inHeader));
    }
    const QPoint inViewport = view()->viewport()->mapFromGlobal(QPoint(x, y));
    const QModelIndex index =
        view()->viewport()->rect().contains(inViewport) ? view()->indexAt(inViewport) : QModelIndex();
    return index.isValid() ? cellAt(index.row(), index.column()) : nullptr;
}

QAccessibleInterface *TableAccessible::focusChild() const
{
    const QModelIndex current = view()->currentIndex();
    return view()->hasFocus() && current.isValid() ? cellAt(current.row(), current.column()) : nullptr;
}

QAccessible::State TableAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.multiSelectable = true;
    state.extSelectable = true;
    return state;
}

void *TableAccessible::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface *>(this)
                                               : QAccessibleWidget::interface_cast(type);
}

QAccessibleInterface *TableAccessible::cellAt(int row, int column) const
{
    return row >= headerPlace && column >= headerPlace && has(row, column)
               ? child((row + 1) * (columnCount() + 1) + column + 1)
               : nullptr;
}

QList<int> TableAccessible::selectedRows() const
{
    QList<int> rows = model() != nullptr ? view()->selectedRows() : QList<int>();
    std::sort(rows.begin(), rows.end());
    return rows;
}

QList<QAccessibleInterface *> TableAccessible::selectedCells() const
{
    QList<QAccessibleInterface *> cells;
    for (const int row : selectedRows()) {
        for (int column = 0; column < columnCount(); ++column) {
            cells.append(cellAt(row, column));
        }
    }
    return cells;
}

QString CellAccessible::text(QAccessible::Text kind) const
{
    return kind == QAccessible::Name ? table_.nameAt(row_, column_) : QString();
}

QAccessible::Role CellAccessible::role() const
{
    if (isCell()) {
        return QAccessible::Cell;
    }
    return row_ == headerPlace ? QAccessible::ColumnHeader : QAccessible::RowHeader;
}

/// Row headers are not shown: each is at the beginning of its row, with no width.
QRect CellAccessible::inViewport() const
{
    const RVTableView &view = *table_.view();
    const QHeaderView &header = *view.horizontalHeader();
    const int left = column_ == headerPlace ? 0 : view.columnViewportPosition(column_);
    const int width = column_ == headerPlace ? 0 : view.columnWidth(column_);
    return row_ == headerPlace ? QRect(left, -header.height(), width, header.height())
                               : QRect(left, view.rowViewportPosition(row_), width, view.rowHeight(row_));
}

bool CellAccessible::isSortable() const
{
    return row_ == headerPlace && isValid() && table_.view()->isSortingEnabled() &&
           !textOf(*table_.model(), row_, column_, Qt::DisplayRole).isEmpty();
}

QRect CellAccessible::rect() const
{
    return isValid() ? inViewport().translated(table_.view()->viewport()->mapToGlobal(QPoint())) : QRect();
}

QAccessible::State CellAccessible::state() const
{
    QAccessible::State state;
    if (!isValid()) {
        state.invalid = true;
        return state;
    }
    const RVTableView &view = *table_.view();
    state.disabled = !view.isEnabled();
    state.invisible = !view.isVisible() || column_ == headerPlace;
    state.offscreen = row_ != headerPlace && !view.viewport()->rect().intersects(inViewport());
    if (isCell()) {
        state.selectable = true;
        state.multiSelectable = true;
        state.extSelectable = true;
        state.selected = isSelected();
        state.focusable = true;
        state.focused = view.hasFocus() && view.currentIndex() == view.model()->index(row_, column_);
    }
    return state;
}

void *CellAccessible::interface_cast(QAccessible::InterfaceType type)
{
    switch (type) {
    case QAccessible::TableCellInterface:
        return static_cast<QAccessibleTableCellInterface *>(this);
    case QAccessible::ActionInterface:
        return actionNames().isEmpty() ? nullptr : static_cast<QAccessibleActionInterface *>(this);
    default:
        return nullptr;
    }
}

QList<QAccessibleInterface *> CellAccessible::columnHeaderCells() const
{
    return {table_.cellAt(headerPlace, column_)};
}

QList<QAccessibleInterface *> CellAccessible::rowHeaderCells() const
{
    return {table_.cellAt(row_, headerPlace)};
}

QStringList CellAccessible::actionNames() const
{
    if (isCell()) {
        const QStringList always{toggleAction(), setFocusAction()};
        return table_.view()->hasAction() ? QStringList(pressAction()) + always : always;
    }
    return isSortable() ? QStringList(pressAction()) : QStringList();
}

QString CellAccessible::localizedActionName(const QString &name) const
{
    if (name != pressAction()) {
        return QAccessibleActionInterface::localizedActionName(name);
    }
    return isCell() ? QCoreApplication::translate("TableAccessibility", "Play")
                    : QCoreApplication::translate("TableAccessibility", "Sort");
}

void CellAccessible::doAction(const QString &name)
{
    if (!isValid()) {
        return;
    }
    RVTableView &view = *table_.view();
    if (name == pressAction()) {
        isCell() ? view.act(row_) : view.sortBy(column_);
    } else if (name == toggleAction()) {
        table_.select(row_, !isSelected());
    } else if (name == setFocusAction()) {
        view.setCurrentIndex(view.model()->index(row_, column_));
        view.setFocus();
    }
}

QStringList CellAccessible::keyBindingsForAction(const QString &name) const
{
    return isCell() && name == pressAction() ? QStringList(QStringLiteral("Return")) : QStringList();
}

QAccessibleInterface *makeTableInterface(const QString &, QObject *object)
{
    auto *table = qobject_cast<RVTableView *>(object);
    return table != nullptr ? new TableAccessible(table) : nullptr;
}
} // namespace

void installTableAccessibility()
{
    QAccessible::installFactory(&makeTableInterface);
}
