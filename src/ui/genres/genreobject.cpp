#include "ui/genres/genreobject.h"

#include "base/rvobject.h"
#include "ui/genres/genregrid.h"

#include <QJsonArray>

GenreObject::GenreObject(GenreGrid *myCollection, QObject *parent)
    : QObject(parent)
    , myCollection_(myCollection)
{
    myCollection->setDelegate(this);
    myCollection->setArrayController(&arrayController_);
}

GenreGrid *GenreObject::myCollection() const
{
    return myCollection_;
}

void GenreObject::awakeFromNib()
{
    arrayController_.setDataSource({});
    const auto elements = RVObject::jsonFromBundle(QStringLiteral("genre"));
    arrayController_.setDataSource(Genre::listFromJson(elements.value_or(QJsonArray())));
}

void GenreObject::boxClicked(GenreBox *sender)
{
    const GenreRecord genre = genreOf(sender);
    if (!genre) {
        return;
    }
    arrayController_.setSelectionIndex(arrayController_.indexOf(genre.get()));
    if (delegate_ != nullptr) {
        delegate_->genreObjectReceiveName(genre->nameText());
    }
}

/// The last one that matches, should several.
GenreRecord GenreObject::genreOf(const GenreBox *box) const
{
    GenreRecord chosen;
    const qsizetype count = myCollection_ == nullptr ? 0 : myCollection_->numberOfItems();
    for (qsizetype index = 0; index < count; ++index) {
        const QWidget *view = myCollection_->itemAtIndex(index);
        if (view != nullptr && (view == box || view->isAncestorOf(box))) {
            chosen = arrayController_.dataSource().at(index);
        }
    }
    return chosen;
}
