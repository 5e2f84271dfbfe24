#pragma once

#include <QAbstractTableModel>
#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

/// A title that has been heard.
struct HeardTitle
{
    /// When it began.
    QDateTime time;
    QString station;
    QString title;
};

/// The titles heard last, newest first; kept for as long as the program runs.
class TitleHistory : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// Beyond it the oldest ones are forgotten.
    static constexpr qsizetype limit = 50;

    enum Column { Time, Title, Station, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    /// Enters a title, unless it is that of the entry before, on the same station: a stream that is taken up
    /// again says its title once more. Texts must be fit to be shown.
    void add(const HeardTitle &title);

    const QList<HeardTitle> &titles() const { return titles_; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    QList<HeardTitle> titles_;
};

/// The titles as CSV after RFC 4180, in UTF-8, below a line of headings: Time (ISO 8601 with its offset from
/// UTC), Station, Title. What a spreadsheet would take for a formula is led by an apostrophe.
QByteArray titlesAsCsv(const QList<HeardTitle> &titles);
