#pragma once

#include <QGroupBox>

class QGridLayout;

/// A titled grid of radio buttons, its cells: at most one of them is selected. The cells are the widgets in
/// its grid layout; rows and columns count from 0.
class Matrix : public QGroupBox
{
    Q_OBJECT

public:
    using QGroupBox::QGroupBox;

    /// -1 where no cell is selected.
    int selectedRow() const;
    /// -1 where no cell is selected.
    int selectedColumn() const;
    /// Selects the button in that cell. Where there is none, none is selected afterwards.
    void selectCellAt(int row, int column);
    /// Null where there is none.
    QWidget *cellAt(int row, int column) const;

private:
    struct Position
    {
        int row = -1;
        int column = -1;
    };

    QGridLayout *grid() const;
    Position selected() const;
};
