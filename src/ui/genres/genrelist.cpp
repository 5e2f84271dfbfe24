#include "ui/genres/genrelist.h"

#include <algorithm>

void GenreList::setDataSource(const GenreRecords &genres)
{
    dataSource_ = genres;
    selectionIndex_ = -1;
    Q_EMIT reset();
}

qsizetype GenreList::indexOf(const Genre *genre) const
{
    const auto found = std::find_if(dataSource_.begin(), dataSource_.end(),
                                    [genre](const GenreRecord &one) { return one.get() == genre; });
    return found == dataSource_.end() ? -1 : std::distance(dataSource_.begin(), found);
}

void GenreList::setSelectionIndex(qsizetype index)
{
    selectionIndex_ = index >= 0 && index < dataSource_.size() ? index : -1;
    Q_EMIT selectionChanged();
}
