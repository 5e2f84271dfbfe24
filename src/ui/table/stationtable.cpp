#include "ui/table/stationtable.h"

#include "base/displaytext.h"
#include "base/exception.h"
#include "base/rvobject.h"
#include "ui/drag/dragpayload.h"
#include "ui/widgets/plaintooltip.h"
#include "ui/widgets/svgicon.h"

#include <QCoreApplication>
#include <QMimeData>
#include <algorithm>
#include <array>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

namespace {
struct Column
{
    QLatin1StringView identifier;
    /// The entry's key that the column sorts by; none where it does not sort.
    QLatin1StringView sortKey;
    const char *title;
    bool isNumber;
};

constexpr std::array<Column, 7> columns{{
    {QLatin1StringView("id_status"), {}, "", false},
    {QLatin1StringView("id_station"), QLatin1StringView("name"), QT_TRANSLATE_NOOP("StationTable", "Station"),
     false},
    {QLatin1StringView("id_genre"), QLatin1StringView("genre"), QT_TRANSLATE_NOOP("StationTable", "Genre"),
     false},
    {QLatin1StringView("id_bitrate"), QLatin1StringView("bitrate"),
     QT_TRANSLATE_NOOP("StationTable", "kbit/s"), true},
    {QLatin1StringView("id_type"), QLatin1StringView("mt"), QT_TRANSLATE_NOOP("StationTable", "Type"), false},
    {QLatin1StringView("id_listener"), QLatin1StringView("listener"),
     QT_TRANSLATE_NOOP("StationTable", "Listeners"), true},
    {QLatin1StringView("id_currenttrack"), QLatin1StringView("ct"),
     QT_TRANSLATE_NOOP("StationTable", "Current track"), false},
}};

/// Names its row.
constexpr int stationColumn = 1;

const Column &columnAt(int section)
{
    return columns.at(static_cast<std::size_t>(section));
}

QVariant alignmentOf(const Column &column)
{
    return QVariant::fromValue(Qt::AlignVCenter | (column.isNumber ? Qt::AlignRight : Qt::AlignLeft));
}

QVariant typeName(const StationEntry &entry)
{
    QVariant mount = entry.value(QLatin1StringView("mt"));
    const QString type = mount.toString();
    if (type == QLatin1StringView("audio/mpeg")) {
        return QStringLiteral("MP3");
    }
    if (type == QLatin1StringView("audio/aacp")) {
        return QStringLiteral("AAC");
    }
    return mount;
}

/// The user's language, or English where the environment names none: the "C" locale knows neither the order
/// of words nor thousands separators.
QLocale displayLocale()
{
    const QLocale system = QLocale::system();
    return system.language() == QLocale::C ? QLocale(QLocale::English) : system;
}

/// Sorts indexes into `list` by the entries' keys, each of which is made once. What has no key comes first.
template <class Key, class KeyOf>
void sortByKey(QList<qsizetype> &indexes, const StationList &list, Qt::SortOrder order, const KeyOf &keyOf)
{
    std::vector<std::optional<Key>> keys;
    keys.reserve(static_cast<std::size_t>(list.size()));
    for (const StationEntry &entry : list) {
        keys.push_back(keyOf(entry));
    }
    std::stable_sort(indexes.begin(), indexes.end(), [&keys, order](qsizetype left, qsizetype right) {
        if (order == Qt::DescendingOrder) {
            std::swap(left, right);
        }
        return keys[static_cast<std::size_t>(left)] < keys[static_cast<std::size_t>(right)];
    });
}
} // namespace

StationTable::StationTable(const RVTableView *myTableView, QObject *parent)
    : QAbstractTableModel(parent)
    , myTableView_(myTableView)
    , locale_(displayLocale())
    , collator_(locale_)
    , circleRed_(svgIcon(QStringLiteral("circle_red")))
{
    collator_.setCaseSensitivity(Qt::CaseInsensitive);
    collator_.setNumericMode(true);
}

void StationTable::reload(const StationList &radioData)
{
    beginResetModel();
    radioData_ = radioData;
    order_.resize(radioData_.size());
    std::iota(order_.begin(), order_.end(), qsizetype{0});
    endResetModel();
}

qsizetype StationTable::numberOfRowsInTableView(const RVTableView *) const
{
    return radioData_.size();
}

const StationEntry &StationTable::stationAt(qsizetype row) const
{
    return radioData_.at(elementAt(order_, row));
}

QVariant StationTable::tableViewObjectValueForTableColumn(const RVTableView *, QLatin1StringView identifier,
                                                          qsizetype row) const
{
    const StationEntry &entry = stationAt(row);
    if (identifier == QLatin1StringView("id_type")) {
        return typeName(entry);
    }
    if (identifier == QLatin1StringView("id_status")) {
        return circleRed_;
    }
    for (const Column &column : columns) {
        if (column.identifier == identifier) {
            return entry.value(column.sortKey);
        }
    }
    return {};
}

void StationTable::tableViewSortDescriptorsDidChange(const RVTableView *,
                                                     const QList<SortDescriptor> &descriptors)
{
    if (descriptors.isEmpty()) {
        return;
    }
    beginResetModel();
    // Stable sorts, the least important first, leave the order of them all.
    std::for_each(descriptors.crbegin(), descriptors.crend(),
                  [this](const SortDescriptor &descriptor) { sortBy(descriptor); });
    endResetModel();
}

void StationTable::sortBy(const SortDescriptor &descriptor)
{
    const QByteArray keyName = descriptor.key.toLatin1();
    const QLatin1StringView key(keyName);
    const bool isNumber = std::any_of(columns.begin(), columns.end(), [key](const Column &column) {
        return column.sortKey == key && column.isNumber;
    });
    if (isNumber) {
        sortByKey<qint64>(order_, radioData_, descriptor.order, [key](const StationEntry &entry) {
            const QVariant value = entry.value(key);
            return value.isValid() ? std::optional(value.toLongLong()) : std::nullopt;
        });
        return;
    }
    sortByKey<QCollatorSortKey>(order_, radioData_, descriptor.order, [this, key](const StationEntry &entry) {
        const QString text = entry.text(key);
        return text.isNull() ? std::nullopt : std::optional(collator_.sortKey(text));
    });
}

bool StationTable::tableViewWriteRowsWithIndexes(const RVTableView *table, const QList<int> &rows,
                                                 QMimeData &pasteboard)
{
    if (table != myTableView_ || rows.isEmpty()) {
        return false;
    }
    const int row = *std::max_element(rows.cbegin(), rows.cend());
    pasteboard.setData(DragPayload::stationType, DragPayload::ofStation(stationAt(row)));
    return true;
}

Qt::DropActions StationTable::tableViewValidateDrop(const RVTableView *, const QMimeData &, int)
{
    return Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
}

int StationTable::bitrateToStar(double bitrate)
{
    constexpr double beyondEveryLevel = 1000;
    switch (bitrate >= 0 && bitrate < beyondEveryLevel ? static_cast<int>(bitrate) : 0) {
    case 32:
        return 1;
    case 64:
        return 2;
    case 128:
        return 3;
    case 256:
        return 4;
    default:
        return 5;
    }
}

QList<SortDescriptor> StationTable::radioItemSortDescriptors()
{
    return RVObject::mysortDescriptor(QStringLiteral("star"), true);
}

int StationTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(numberOfRowsInTableView(nullptr));
}

int StationTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(columns.size());
}

Qt::ItemFlags StationTable::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.isValid() ? flags | Qt::ItemIsDragEnabled : flags;
}

QVariant StationTable::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const Column &column = columnAt(index.column());
    if (role == Qt::TextAlignmentRole) {
        return alignmentOf(column);
    }
    const bool isStatus = column.identifier == QLatin1StringView("id_status");
    if (isStatus && role == Qt::AccessibleTextRole) {
        return tr("on air");
    }
    const bool wanted =
        isStatus ? role == Qt::DecorationRole : role == Qt::DisplayRole || role == Qt::ToolTipRole;
    if (!wanted) {
        return {};
    }
    QVariant value = tableViewObjectValueForTableColumn(nullptr, column.identifier, index.row());
    if (isStatus) {
        return value;
    }
    const QString shown = displayedText(value);
    return role == Qt::ToolTipRole ? plainToolTip(shown) : shown;
}

QVariant StationTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical && role == Qt::AccessibleTextRole && section >= 0 &&
        section < rowCount()) {
        return data(index(section, stationColumn), Qt::DisplayRole);
    }
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) {
        return {};
    }
    const Column &column = columnAt(section);
    switch (role) {
    case Qt::DisplayRole:
        return QCoreApplication::translate("StationTable", column.title);
    case Qt::TextAlignmentRole:
        return alignmentOf(column);
    case Qt::AccessibleTextRole:
        return column.sortKey.isEmpty() ? tr("Status") : QVariant();
    case identifierRole:
        return QString(column.identifier);
    default:
        return {};
    }
}

void StationTable::sort(int column, Qt::SortOrder order)
{
    const bool sortable = column >= 0 && !columnAt(column).sortKey.isEmpty();
    tableViewSortDescriptorsDidChange(nullptr, sortable
                                                   ? QList<SortDescriptor>{{columnAt(column).sortKey, order}}
                                                   : QList<SortDescriptor>());
}

QString StationTable::displayedText(const QVariant &value) const
{
    return value.typeId() == QMetaType::LongLong ? locale_.toString(value.toLongLong())
                                                 : displayText(value.toString());
}
