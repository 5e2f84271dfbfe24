#include "session/titlehistory.h"

#include <QLocale>
#include <QRegularExpression>

namespace {
QString csvText(QString text)
{
    // A spreadsheet takes such a cell for a formula, which could send what stands in the others away. Where
    // semicolons separate cells, one may begin in the middle of a text.
    static const QRegularExpression formulaStart(
        QStringLiteral("(^|;)(\\s*)([=+\\-@\\t\\r\\x{ff1d}\\x{ff0b}\\x{ff0d}\\x{ff20}])"));
    text.replace(formulaStart, QStringLiteral("\\1'\\2\\3"));
    return QLatin1Char('"') + text.replace(QLatin1Char('"'), QLatin1StringView("\"\"")) + QLatin1Char('"');
}

QString timeOfDay(const QTime &time)
{
    const QLocale locale = QLocale::system();
    return locale.language() == QLocale::C ? time.toString(QStringLiteral("HH:mm"))
                                           : locale.toString(time, QLocale::ShortFormat);
}

QString csvTime(const QDateTime &time)
{
    return time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODate);
}
} // namespace

void TitleHistory::add(const HeardTitle &title)
{
    if (!titles_.isEmpty() && titles_.constFirst().station == title.station &&
        titles_.constFirst().title == title.title) {
        return;
    }
    if (titles_.size() == limit) {
        const int last = static_cast<int>(limit) - 1;
        beginRemoveRows({}, last, last);
        titles_.removeLast();
        endRemoveRows();
    }
    beginInsertRows({}, 0, 0);
    titles_.prepend(title);
    endInsertRows();
}

int TitleHistory::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(titles_.size());
}

int TitleHistory::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant TitleHistory::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || role != Qt::DisplayRole) {
        return {};
    }
    const HeardTitle &title = titles_.at(index.row());
    switch (index.column()) {
    case Time:
        return timeOfDay(title.time.time());
    case Title:
        return title.title;
    case Station:
        return title.station;
    default:
        return {};
    }
}

QVariant TitleHistory::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical || role != Qt::DisplayRole) {
        return QAbstractTableModel::headerData(section, orientation, role);
    }
    switch (section) {
    case Time:
        return tr("Time");
    case Title:
        return tr("Title");
    case Station:
        return tr("Station");
    default:
        return {};
    }
}

QByteArray titlesAsCsv(const QList<HeardTitle> &titles)
{
    QString csv = QStringLiteral("Time,Station,Title\r\n");
    for (const HeardTitle &title : titles) {
        csv += csvTime(title.time) + QLatin1Char(',') + csvText(title.station) + QLatin1Char(',') +
               csvText(title.title) + QLatin1StringView("\r\n");
    }
    return csv.toUtf8();
}
