#pragma once

#include <QObject>
#include <QStringList>

class QHeaderView;
class StateFile;

/// The widths and the order of the station table's columns. Until the user sets a width, those of text share
/// the room that the table has; from then on all keep the user's widths, also at later starts. The values in
/// the state file are checked one by one: an invalid one leaves its default.
class TableColumns : public QObject
{
    Q_OBJECT

public:
    /// `header` is that of a table whose model is a StationTable; both must outlive this object. The first
    /// column keeps its place, and the last one gets the width that is left.
    TableColumns(QHeaderView &header, StateFile &state, QObject *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void restoreOrder();
    bool restoreWidths();
    void keepOrder();
    void keepWidths();
    void share(int width);

    QHeaderView &header_;
    StateFile &state_;
    /// Of the columns as the model has them.
    QStringList identifiers_;
    /// Nobody has set a width.
    bool shared_ = true;
    bool sharing_ = false;
};
