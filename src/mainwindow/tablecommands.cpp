#include "mainwindow/tablecommands.h"

#include "base/displaytext.h"
#include "session/radiosession.h"
#include "ui/rack/rackview.h"
#include "ui/table/stationtable.h"
#include "ui/widgets/copytext.h"
#include "ui_mainwindow.h"

#include <QActionGroup>
#include <QHeaderView>
#include <QMenu>
#include <algorithm>

TableCommands::TableCommands(const Ui::MainWindow &ui, StationTable &stations, RadioSession &session)
    : table_(*ui.myTableView)
    , rackView_(*ui.myCollectionView)
    , stations_(stations)
    , session_(session)
{
    connect(ui.addFavouriteAction, &QAction::triggered, this, &TableCommands::addToRack);
    connect(ui.copyStationNameAction, &QAction::triggered, this, [this] {
        const StationEntry *station = selectedStation();
        copyText(station != nullptr ? station->text(QLatin1StringView("name")) : QString());
    });
    connect(ui.copyStationAddressAction, &QAction::triggered, this, [this] {
        const StationEntry *station = selectedStation();
        copyText(station != nullptr ? withoutUserInfo(session_.directory().playAddress(*station))
                                    : QString());
    });
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

const StationEntry *TableCommands::selectedStation() const
{
    const QList<int> rows = table_.selectedRows();
    return rows.isEmpty() ? nullptr : &stations_.stationAt(*std::max_element(rows.cbegin(), rows.cend()));
}

void TableCommands::addToRack()
{
    if (const StationEntry *station = selectedStation()) {
        const qsizetype end = rackView_.numberOfItems();
        session_.favourites().add(*station, end);
        rackView_.scrollToIndex(end);
    }
}
