#pragma once

#include "ui/genres/genre.h"

#include <QObject>

/// The genres of the picker, in the order of their file, and which of them is selected. What shows them
/// follows its signals. Main thread.
class GenreList : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    const GenreRecords &dataSource() const { return dataSource_; }
    /// Replaces the whole list; nothing is selected then.
    void setDataSource(const GenreRecords &genres);

    /// The index of that very genre; -1 where it is not in the list.
    qsizetype indexOf(const Genre *genre) const;

    /// -1 where nothing is selected.
    qsizetype selectionIndex() const { return selectionIndex_; }
    /// Selects nothing where there is no such index.
    void setSelectionIndex(qsizetype index);

Q_SIGNALS:
    /// The list has been replaced.
    void reset();
    void selectionChanged();

private:
    GenreRecords dataSource_;
    qsizetype selectionIndex_ = -1;
};
