#include "ui/widgets/matrix.h"

#include <QAbstractButton>
#include <QGridLayout>

int Matrix::selectedRow() const
{
    return selected().row;
}

int Matrix::selectedColumn() const
{
    return selected().column;
}

void Matrix::selectCellAt(int row, int column)
{
    if (auto *button = qobject_cast<QAbstractButton *>(cellAt(row, column))) {
        button->setChecked(true);
        return;
    }
    const Position old = selected();
    if (auto *button = qobject_cast<QAbstractButton *>(cellAt(old.row, old.column))) {
        // An exclusive button cannot be unchecked otherwise.
        button->setAutoExclusive(false);
        button->setChecked(false);
        button->setAutoExclusive(true);
    }
}

QWidget *Matrix::cellAt(int row, int column) const
{
    const QLayoutItem *item = grid() != nullptr ? grid()->itemAtPosition(row, column) : nullptr;
    return item != nullptr ? item->widget() : nullptr;
}

QGridLayout *Matrix::grid() const
{
    return qobject_cast<QGridLayout *>(layout());
}

Matrix::Position Matrix::selected() const
{
    const int cells = grid() != nullptr ? grid()->count() : 0;
    for (int index = 0; index < cells; ++index) {
        const auto *button = qobject_cast<QAbstractButton *>(grid()->itemAt(index)->widget());
        if (button != nullptr && button->isChecked()) {
            Position position;
            int rows = 0;
            int columns = 0;
            grid()->getItemPosition(index, &position.row, &position.column, &rows, &columns);
            return position;
        }
    }
    return {};
}
