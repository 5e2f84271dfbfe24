#pragma once

#include "ui/widgets/popover.h"

#include <QThreadPool>
#include <memory>

class TitleHistory;

namespace Ui {
class HistoryPopover;
}

/// The titles heard last, to be looked at, copied and saved. Its controls are made when it is first shown.
class HistoryPopover : public Popover
{
    Q_OBJECT

public:
    /// `history` must outlive the use of the popover.
    HistoryPopover(QWidget *window, TitleHistory &history);
    ~HistoryPopover() override;

protected:
    void makeContent() override;
    void showEvent(QShowEvent *event) override;

private:
    void showHistory();
    /// The titles of the selected rows, one a line; all where none is selected.
    void copy();
    void askWhereToSave();
    /// Writes all titles, on a thread of its own, and says how that went.
    void save(const QString &path);
    /// `error` is empty where all went well.
    void showSaved(const QString &error);

    std::unique_ptr<Ui::HistoryPopover> ui_;
    TitleHistory &history_;
    /// Its destructor waits for the last write.
    QThreadPool writer_;
};
