#pragma once

#include "base/sortdescriptor.h"
#include "directory/stationentry.h"
#include "ui/table/rvtableview.h"

#include <QAbstractTableModel>
#include <QCollator>
#include <QIcon>
#include <QLocale>

/// What the station table shows, in the order that the user has chosen: one row for each entry of the station
/// list, as the list stood when reload() was called last, so that the rows on screen never run past the list
/// behind them. Which station stands in a row is for this class to say, and nobody else.
class StationTable : public QAbstractTableModel, public RVTableView::DataSource
{
    Q_OBJECT

public:
    /// The role of a column's identifier in its header data.
    static constexpr int identifierRole = Qt::UserRole;

    /// `myTableView` is the one table whose rows may be dragged.
    explicit StationTable(const RVTableView *myTableView, QObject *parent = nullptr);

    /// Shows `radioData`, which shares its entries with the caller's list, in the list's own order.
    void reload(const StationList &radioData);

    /// The number of entries, whichever table asks.
    qsizetype numberOfRowsInTableView(const RVTableView *table) const;

    /// The station in that row. Raises RangeError for a row that there is not.
    const StationEntry &stationAt(qsizetype row) const;

    /// What the column with that identifier shows for the entry at `row`: text, a number, an icon; invalid
    /// where the entry has nothing there, or for an identifier that is not known. Raises RangeError for a row
    /// that there is not.
    QVariant tableViewObjectValueForTableColumn(const RVTableView *table, QLatin1StringView identifier,
                                                qsizetype row) const;

    /// Sorts the rows by `descriptors`, those that the table has now; the first one counts most. Stations of
    /// which neither goes before the other keep their order.
    void tableViewSortDescriptorsDidChange(const RVTableView *table,
                                           const QList<SortDescriptor> &descriptors);

    /// Writes the station at the highest of `rows`, and no other. False for another table, and without rows.
    bool tableViewWriteRowsWithIndexes(const RVTableView *table, const QList<int> &rows,
                                       QMimeData &pasteboard) override;

    /// Every drop may do everything, whatever it is and wherever.
    Qt::DropActions tableViewValidateDrop(const RVTableView *table, const QMimeData &pasteboard,
                                          int proposedRow) override;

    /// The star level for a bit rate in kbit/s: exact matches, and the top level for every other value.
    static int bitrateToStar(double bitrate);

    /// The order that the rack's layout may bind to.
    static QList<SortDescriptor> radioItemSortDescriptors();

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

private:
    void sortBy(const SortDescriptor &descriptor);
    QString displayedText(const QVariant &value) const;

    const RVTableView *myTableView_;
    StationList radioData_;
    /// Which entry of the list stands in each row.
    QList<qsizetype> order_;
    QLocale locale_;
    QCollator collator_;
    QIcon circleRed_;
};
