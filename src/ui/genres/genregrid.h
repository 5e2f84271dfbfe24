#pragma once

#include "ui/genres/genrebox.h"
#include "ui/genres/genrelist.h"
#include "ui/widgets/tilegrid.h"

#include <QAbstractScrollArea>
#include <vector>

class QLineEdit;

/// The genres as a wrapping grid of tiles that scrolls vertically. A tile is made when it first comes into
/// view, and stays its genre's from then on. The list holds which genre is selected; the view holds which one
/// is current, where the keys move from, and which are shown. An index is always one of the list, whatever is
/// shown.
class GenreGrid : public QAbstractScrollArea
{
    Q_OBJECT

public:
    explicit GenreGrid(QWidget *parent = nullptr);

    /// Shows `list`, which has to outlive the view, and follows it from now on. To be called once.
    void setArrayController(GenreList *list);
    /// Receives the clicks on tiles; may be null. Not owned.
    void setDelegate(GenreBox::Delegate *delegate);
    /// Shows only the genres whose name contains the text of `field`, ignoring case, accents, blanks and
    /// hyphens. Keys move the focus between the two: Down and Enter in the field, Up in the first row,
    /// letters and Escape in the grid. Not owned. To be called once.
    void setFilterField(QLineEdit *field);

    qsizetype numberOfItems() const;
    /// The tile at `index`; null where there is no such index, or the tile has not been made yet.
    GenreBox *itemAtIndex(qsizetype index) const;
    /// The tile at `index`, which must be valid; made if need be.
    GenreBox *madeItemAtIndex(qsizetype index);
    /// The index of the genre whose tile that is; -1 for any other object.
    qsizetype indexOf(const QObject *tile) const;
    /// Those that pass the filter, ascending.
    const QList<qsizetype> &shownIndexes() const { return shown_; }
    /// Where the keys move from; -1 where there is none yet. It is always shown.
    qsizetype currentIndex() const { return current_; }
    void setCurrentIndex(qsizetype index);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // genregrid.cpp: what is shown
    void reload();
    void applyFilter();
    void layOut();
    TileGrid measuredGrid() const;
    void layOutTiles();
    void showSelection();
    void showCurrent();
    void scrollToCurrent();
    void announceCurrent();

    // genregridinput.cpp: what the user does
    bool filterKeyPressed(const QKeyEvent &event);
    bool pressTyped();
    void enterTiles();
    void stepTo(TileStep step);
    void typeIntoFilter(QKeyEvent *event);

    GenreList *list_ = nullptr;
    GenreBox::Delegate *delegate_ = nullptr;
    /// Null where there is none, or none any more.
    QLineEdit *filterField_ = nullptr;
    QList<qsizetype> shown_;
    TileGrid grid_;
    /// One for each genre, null until it is made.
    std::vector<GenreBox *> tiles_;
    qsizetype current_ = -1;
    bool layingOut_ = false;
};
