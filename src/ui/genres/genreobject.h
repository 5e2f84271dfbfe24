#pragma once

#include "ui/genres/genrebox.h"
#include "ui/genres/genrelist.h"

#include <QPointer>

class GenreGrid;

/// Receives the genre that has been chosen.
class GenreObjectDelegate
{
public:
    /// `name` is null where the genre has none.
    virtual void genreObjectReceiveName(const QString &name) = 0;

protected:
    ~GenreObjectDelegate() = default;
};

/// The genre picker's controller: fills the grid, and turns a click on a tile into a choice. Main thread.
class GenreObject : public QObject, public GenreBox::Delegate
{
    Q_OBJECT

public:
    explicit GenreObject(GenreGrid *myCollection, QObject *parent = nullptr);

    /// May be null. Not owned.
    void setDelegate(GenreObjectDelegate *delegate) { delegate_ = delegate; }
    GenreObjectDelegate *delegate() const { return delegate_; }
    /// The genres that the grid shows, and which of them is selected.
    GenreList *arrayController() { return &arrayController_; }
    const GenreList *arrayController() const { return &arrayController_; }
    /// The grid of tiles.
    GenreGrid *myCollection() const;
    /// A box of the picker's view; the controller itself has no use for it.
    QWidget *myBox() const { return myBox_; }
    void setMyBox(QWidget *box) { myBox_ = box; }

    /// Fills the picker from the resource "genre". One that holds no list leaves it empty; one that is not
    /// there raises Exception and leaves it empty too.
    void awakeFromNib();
    /// Selects the genre whose tile is, or holds, `sender`, and tells the delegate its name. Does nothing
    /// where there is none.
    void boxClicked(GenreBox *sender) override;

private:
    GenreRecord genreOf(const GenreBox *box) const;

    GenreObjectDelegate *delegate_ = nullptr;
    GenreList arrayController_;
    QPointer<GenreGrid> myCollection_;
    QPointer<QWidget> myBox_;
};
