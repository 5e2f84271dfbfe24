#include "mainwindow/tablecommands.h"

#include "mainwindow/rackactions.h"
#include "ui/rack/rackview.h"
#include "ui/table/stationtable.h"
#include "ui/widgets/copytext.h"
#include "ui_mainwindow.h"

#include <QActionGroup>
#include <QHeaderView>
#include <QMenu>
#include <QMimeData>
#include <algorithm>
#include <utility>

TableCommands::TableCommands(const Ui::MainWindow &ui, StationTable &stations, RackActions &actions,
                             RowText rowAddress)
    : table_(*ui.myTableView)
    , rackView_(*ui.myCollectionView)
    , stations_(stations)
    , actions_(actions)
    , rowAddress_(std::move(rowAddress))
{
    connect(ui.addFavouriteAction, &QAction::triggered, this, &TableCommands::addToRack);
    connect(ui.copyStationNameAction, &QAction::triggered, this, &TableCommands::copyName);
    connect(ui.copyStationAddressAction, &QAction::triggered, this, &TableCommands::copyAddress);
    // Keys that mean something else where text is edited.
    for (QAction *action : {ui.addFavouriteAction, ui.copyStationNameAction, ui.copyStationAddressAction}) {
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    }
    rackView_.addAction(ui.addFavouriteAction);
    table_.addActions({ui.addFavouriteAction, ui.copyStationNameAction, ui.copyStationAddressAction});
    table_.setContextMenuPolicy(Qt::ActionsContextMenu);
    fillSortMenu(*ui.sortMenu);
}

void TableCommands::fillSortMenu(QMenu &menu)
{
    auto *columns = new QActionGroup(&menu);
    for (int column = 0; column < stations_.columnCount(); ++column) {
        const QString title = stations_.headerData(column, Qt::Horizontal).toString();
        if (!title.isEmpty()) {
            QAction *action = columns->addAction(title);
            action->setCheckable(true);
            action->setData(column);
            menu.addAction(action);
        }
    }
    connect(columns, &QActionGroup::triggered, this,
            [this](const QAction *action) { table_.sortBy(action->data().toInt()); });
    connect(&menu, &QMenu::aboutToShow, columns, [this, columns] {
        for (QAction *action : columns->actions()) {
            action->setChecked(action->data() == table_.horizontalHeader()->sortIndicatorSection());
        }
    });
}

void TableCommands::addToRack()
{
    QMimeData pasteboard;
    if (stations_.tableViewWriteRowsWithIndexes(&table_, table_.selectedRows(), pasteboard)) {
        const qsizetype end = rackView_.numberOfItems();
        actions_.collectionViewAcceptDrop(&rackView_, pasteboard, end);
        rackView_.scrollToIndex(end);
    }
}

void TableCommands::copyName()
{
    copy([this](int row) {
        return stations_.tableViewObjectValueForTableColumn(&table_, QLatin1StringView("id_station"), row)
            .toString();
    });
}

void TableCommands::copyAddress()
{
    copy(rowAddress_);
}

void TableCommands::copy(const RowText &textOf)
{
    const QList<int> rows = table_.selectedRows();
    copyText(rows.isEmpty() ? QString() : textOf(*std::max_element(rows.cbegin(), rows.cend())));
}
